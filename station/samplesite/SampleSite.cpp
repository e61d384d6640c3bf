#include "SampleSite.h"

#include "SampleFiles.h"
#include "StationData.h"
#include "StationProtocol.h"
#include "groups/FolderNames.h"
#include "groups/GroupStore.h"
#include "store/Database.h"

#include <QFileInfo>
#include <QUuid>

#include <utility>

namespace {
constexpr int minutesPerDay = 24 * 60;

RecordingGroup recordingGroup(const SampleGroup &sample, const QString &path)
{
    RecordingGroup group;
    group.id = QUuid::createUuid().toString();
    group.name = sample.name;
    group.folder = folderName(sample.name);
    group.paths.append({path, PathKind::Local, sample.reservedMegabytes, false});
    for (const QString &camera : sample.cameras)
        group.members.append({camera, 0, false, false});
    group.reservedMinutes = sample.reservedDays * minutesPerDay;
    group.isReservedTimeEnabled = true;
    return group;
}
} // namespace

SampleSite::SampleSite(StationData &data, const VolumeSource &volumes, Changed groupsChanged)
    : m_data(data)
    , m_volumes(volumes)
    , m_groupsChanged(std::move(groupsChanged))
{
}

void SampleSite::enterInto(CommandTable &table)
{
    table.insert(StationOwnCommandName::createSampleSite,
                 [this](const QVariant &data, const Answer &answer) { createSampleSite(data, answer); });
}

void SampleSite::createSampleSite(const QVariant &data, const Answer &answer)
{
    if (!data.isNull() && data.metaType() != QMetaType::fromType<QVariantMap>())
        return answer(lastPart(StationReturnCode::BadRequest));
    const QString returnCode = create();
    if (returnCode != StationReturnCode::Success)
        return answer(lastPart(returnCode));
    answer(lastPart(returnCode, QVariantMap{{StationKey::created, true}}));
    if (m_groupsChanged)
        m_groupsChanged();
}

/// The files are made beside their place, and moved there just before the groups are: what is cut off leaves no half.
QString SampleSite::create()
{
    Database &database = m_data.database();
    Transaction transaction(database);
    GroupStore store(database);
    if (!store.groups().isEmpty() || !store.cameras().isEmpty())
        return StationReturnCode::SiteNotEmpty;
    const QString dataFolder = QFileInfo(m_data.folder()).canonicalFilePath();
    const std::optional<Volume> volume = m_volumes.volumeHolding(dataFolder);
    if (!volume)
        return StationReturnCode::OutsideVolumes;

    const QString folder = dataFolder + QStringLiteral("/sample");
    const QList<SampleGroup> groups = sampleGroups(*volume);
    SampleFiles files(folder);
    if (const QString failure = files.write(groups, QDateTime::currentDateTime()); !failure.isEmpty())
        return failure;
    for (const SampleGroup &group : groups) {
        for (const QString &camera : group.cameras)
            store.insert(Camera{camera, 1});
        store.insert(recordingGroup(group, SampleFiles::pathIn(folder)));
    }
    if (!files.moveToPlace())
        return StationReturnCode::DirectoryExists;
    transaction.commit();
    files.keep();
    return StationReturnCode::Success;
}
