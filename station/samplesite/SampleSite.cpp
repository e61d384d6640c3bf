#include "SampleSite.h"

#include "SampleFiles.h"
#include "ServerVocabulary.h"
#include "StationData.h"
#include "StationLog.h"
#include "StationVocabulary.h"
#include "files/PrivateFolder.h"
#include "groups/FolderNames.h"
#include "groups/GroupStore.h"
#include "service/Edit.h"
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

bool isEmpty(Database &database)
{
    const Snapshot snapshot(database);
    const GroupStore store(database);
    return store.groups().isEmpty() && store.cameras().isEmpty();
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
    table.insert(StationCommandName::createSampleSite,
                 [this](const std::shared_ptr<Edit> &edit) { createSampleSite(*edit); });
}

void SampleSite::createSampleSite(Edit &edit)
{
    const QVariant &data = edit.data();
    if (!data.isNull() && data.metaType() != QMetaType::fromType<QVariantMap>())
        return edit.answer(lastPart(StationReturnCode::BadRequest));
    const QString returnCode = create(edit);
    edit.answer(lastPart(returnCode));
    if (returnCode == ReturnCode::Success && m_groupsChanged)
        m_groupsChanged();
}

/// The files are made beside their place, and moved there before the groups are made: what is cut off leaves no half,
/// and nobody waits for the database meanwhile.
QString SampleSite::create(Edit &edit)
{
    if (!isEmpty(m_data.database()))
        return StationReturnCode::SiteNotEmpty;
    const QString dataFolder = QFileInfo(m_data.folder()).canonicalFilePath();
    const std::optional<Volume> volume = m_volumes.volumeHolding(dataFolder);
    if (!volume)
        return StationReturnCode::OutsideVolumes;

    const QString folder = freeFolder(dataFolder + QStringLiteral("/sample"));
    edit.setSubject({{}, {}, folder});
    const QList<SampleGroup> groups = sampleGroups(*volume);
    SampleFiles files(folder);
    if (const QString failure = files.write(groups, QDateTime::currentDateTime()); !failure.isEmpty())
        return failure;
    if (!files.moveToPlace())
        return StationReturnCode::DirectoryExists;
    Database &database = m_data.database();
    Transaction transaction(database);
    if (!isEmpty(database)) // somebody was quicker
        return StationReturnCode::SiteNotEmpty;
    GroupStore store(database);
    for (const SampleGroup &group : groups) {
        for (const QString &camera : group.cameras)
            store.insert(Camera{camera, 1});
        store.insert(recordingGroup(group, SampleFiles::pathIn(folder)));
    }
    edit.commit(transaction, lastPart(ReturnCode::Success, QVariantMap{{StationKey::created, true}}));
    files.keep();
    leaveMark(dataFolder);
    return ReturnCode::Success;
}
