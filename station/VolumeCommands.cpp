#include "VolumeCommands.h"

#include "Directories.h"
#include "StationProtocol.h"

#include <optional>

namespace {
constexpr qint64 bytesPerKilobyte = 1024;

/// The path of a command whose data is a path and nothing else, with forward slashes; none when it is something else.
std::optional<QString> pathIn(const QVariant &data)
{
    if (data.metaType() != QMetaType::fromType<QString>())
        return {};
    return data.toString().replace(u'\\', u'/');
}
} // namespace

VolumeCommands::VolumeCommands(const VolumeSource &volumes, std::chrono::milliseconds limit)
    : m_volumes(volumes)
    , m_disks(limit)
{
}

void VolumeCommands::enterInto(CommandTable &table)
{
    const auto enter = [this, &table](const QString &name, auto member) {
        table.insert(name,
                     [this, member](const QVariant &data, const Answer &answer) { (this->*member)(data, answer); });
    };
    enter(StationCommandName::getVolume, &VolumeCommands::getVolume);
    enter(StationCommandName::getServerDir, &VolumeCommands::getServerDir);
    enter(StationCommandName::createDirectory, &VolumeCommands::createDirectory);
}

void VolumeCommands::getVolume(const QVariant &data, const Answer &answer) const
{
    if (!data.isNull())
        return answer(lastPart(StationReturnCode::BadRequest));
    QVariantList list;
    const QList<Volume> volumes = m_volumes.volumes();
    for (const Volume &volume : volumes) {
        list.append(QVariantMap{
            {StationKey::volumePath, volume.path},
            {StationKey::volumeName, volume.name},
            {StationKey::volumeSize, volume.bytesTotal / bytesPerKilobyte},
            {StationKey::volumeAvailableSize, volume.bytesAvailable / bytesPerKilobyte},
            {StationKey::volumeIsSystem, volume.isSystem},
        });
    }
    answer(lastPart(StationReturnCode::Success, list));
}

void VolumeCommands::getServerDir(const QVariant &data, const Answer &answer)
{
    const std::optional<QString> basePath = pathIn(data);
    if (!basePath)
        return answer(lastPart(StationReturnCode::BadRequest));
    const auto tell = [answer, path = *basePath](const FolderList &folders) {
        // A failure carries no data: a client that looks at the data alone takes it for no folder, not for an empty
        // one.
        if (folders.returnCode != StationReturnCode::Success)
            return answer(lastPart(folders.returnCode));
        answer(lastPart(StationReturnCode::Success,
                        QVariantMap{{StationKey::basePath, path}, {StationKey::dirFolderList, folders.names}}));
    };
    if (!basePath->isEmpty()) {
        return m_disks.run<FolderList>([path = *basePath](DiskVisit &visit) { return listFolders(path, visit); },
                                       {StationReturnCode::VolumeNotAnswering, {}}, tell);
    }
    FolderList folders{StationReturnCode::Success, {}};
    const QList<Volume> volumes = m_volumes.volumes();
    for (const Volume &volume : volumes)
        folders.names.append(volume.path);
    tell(folders);
}

void VolumeCommands::createDirectory(const QVariant &data, const Answer &answer)
{
    const std::optional<QString> path = pathIn(data);
    if (!path)
        return answer(lastPart(StationReturnCode::BadRequest));
    m_disks.run<NewFolder>([path = *path](DiskVisit &visit) { return planFolder(path, visit); },
                           {StationReturnCode::VolumeNotAnswering, {}, {}},
                           [this, answer](const NewFolder &folder) {
                               answerFailures(StationCommandName::createDirectory, answer,
                                              [&] { make(folder, answer); });
                           });
}

void VolumeCommands::make(const NewFolder &folder, const Answer &answer)
{
    const QString refusal =
        folder.returnCode == StationReturnCode::Success ? checkVolume(folder, m_volumes) : folder.returnCode;
    if (refusal != StationReturnCode::Success)
        return answer(lastPart(refusal));
    m_disks.run<QString>([folder](DiskVisit &visit) { return makeFolder(folder, visit); },
                         StationReturnCode::VolumeNotAnswering,
                         [answer](const QString &returnCode) { answer(lastPart(returnCode)); });
}
