#include "VolumeCommands.h"

#include "Directories.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "service/Edit.h"

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
    enter(ServerCommand::getVolume, &VolumeCommands::getVolume);
    enter(ServerCommand::getServerDir, &VolumeCommands::getServerDir);
    table.insert(ServerCommand::createDirectory, [this](const std::shared_ptr<Edit> &edit) { createDirectory(edit); });
}

void VolumeCommands::getVolume(const QVariant &data, const Answer &answer) const
{
    if (!data.isNull())
        return answer(lastPart(StationReturnCode::BadRequest));
    QVariantList list;
    const QList<Volume> volumes = m_volumes.volumes();
    for (const Volume &volume : volumes) {
        list.append(QVariantMap{
            {FieldKey::volumePath, volume.path},
            {FieldKey::volumeName, volume.name},
            {FieldKey::volumeSize, volume.bytesTotal / bytesPerKilobyte},
            {FieldKey::volumeAvailableSize, volume.bytesAvailable / bytesPerKilobyte},
            {FieldKey::volumeIsSystem, volume.isSystem},
        });
    }
    answer(lastPart(ReturnCode::Success, list));
}

void VolumeCommands::getServerDir(const QVariant &data, const Answer &answer)
{
    const std::optional<QString> basePath = pathIn(data);
    if (!basePath)
        return answer(lastPart(StationReturnCode::BadRequest));
    const auto tell = [answer, path = *basePath](const FolderList &folders) {
        // A failure carries no data: a client that looks at the data alone takes it for no folder, not for an empty
        // one.
        if (folders.returnCode != ReturnCode::Success)
            return answer(lastPart(folders.returnCode));
        answer(lastPart(ReturnCode::Success,
                        QVariantMap{{FieldKey::basePath, path}, {FieldKey::dirFolderList, folders.names}}));
    };
    if (!basePath->isEmpty()) {
        return m_disks.run<FolderList>([path = *basePath](DiskVisit &visit) { return listFolders(path, visit); },
                                       {StationReturnCode::VolumeNotAnswering, {}}, tell);
    }
    FolderList folders{ReturnCode::Success, {}};
    const QList<Volume> volumes = m_volumes.volumes();
    for (const Volume &volume : volumes)
        folders.names.append(volume.path);
    tell(folders);
}

void VolumeCommands::createDirectory(const std::shared_ptr<Edit> &edit)
{
    const std::optional<QString> path = pathIn(edit->data());
    if (!path)
        return edit->answer(lastPart(StationReturnCode::BadRequest));
    edit->setSubject({{}, {}, *path});
    m_disks.run<NewFolder>([path = *path](DiskVisit &visit) { return planFolder(path, visit); },
                           {StationReturnCode::VolumeNotAnswering, {}, {}},
                           [this, edit](const NewFolder &folder) { edit->attempt([&] { make(folder, edit); }); });
}

void VolumeCommands::make(const NewFolder &folder, const std::shared_ptr<Edit> &edit)
{
    const QString refusal =
        folder.returnCode == ReturnCode::Success ? checkVolume(folder, m_volumes) : folder.returnCode;
    if (refusal != ReturnCode::Success)
        return edit->answer(lastPart(refusal));
    m_disks.run<QString>(
        [folder](DiskVisit &visit) { return makeFolder(folder, visit); }, StationReturnCode::VolumeNotAnswering,
        [edit](const QString &returnCode) { edit->attempt([&] { edit->answer(lastPart(returnCode)); }); });
}
