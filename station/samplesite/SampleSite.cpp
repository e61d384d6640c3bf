#include "SampleSite.h"

#include "SampleFiles.h"
#include "StationData.h"
#include "StationLog.h"
#include "StationProtocol.h"
#include "files/PrivateFolder.h"
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

/// What is there already is somebody's: recordings of groups that were removed, or of an attempt that was cut off
/// before there were groups.
QString freeFolder(const QString &name)
{
    QString folder = name;
    for (int number = 2; isNameTaken(folder); ++number)
        folder = QStringLiteral("%1-%2").arg(name).arg(number);
    return folder;
}

/// Says that the station had its sample site, so that nobody gives it another one unasked.
void leaveMark(const QString &dataFolder)
{
    const PrivateFolder folder(dataFolder);
    if (!folder.newFile(SampleSite::mark).isOpen() && !QFileInfo::exists(dataFolder + u'/' + SampleSite::mark))
        qCWarning(stationLog, "The file %s/%s cannot be made.", qPrintable(dataFolder), qPrintable(SampleSite::mark));
}
} // namespace

const QString SampleSite::mark = QStringLiteral("sample-site-offered");

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

    const QString folder = freeFolder(dataFolder + QStringLiteral("/sample"));
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
    leaveMark(dataFolder);
    return StationReturnCode::Success;
}
