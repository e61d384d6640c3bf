#include "Station.h"

#include "Directories.h"
#include "MountedVolumes.h"
#include "StationProtocol.h"

#include <optional>
#include <utility>

namespace {
constexpr qint64 bytesPerKilobyte = 1024;

/// The path of a command whose data is a path and nothing else, with forward slashes; none when it is something else.
std::optional<QString> pathIn(const QVariant &data)
{
    if (data.metaType() != QMetaType::fromType<QString>())
        return {};
    return data.toString().replace(u'\\', u'/');
}

/// The last part of an answer.
StationReply reply(const QString &returnCode, const QVariant &data = {})
{
    return {returnCode, data, true};
}
} // namespace

Station::Station(std::unique_ptr<VolumeSource> volumes, QObject *parent)
    : QObject(parent)
    , m_volumes(volumes ? std::move(volumes) : std::make_unique<MountedVolumes>())
{
}

Station::~Station() = default;

void Station::handle(const StationCommand &command, const Answer &answer)
{
    bool isFinished = false;
    const Answer part = [&isFinished, &answer](const StationReply &replyPart) {
        isFinished = replyPart.finish;
        answer(replyPart);
    };
    // Whatever goes wrong, a command gets its last part, and nothing is thrown into the thread's event loop.
    try {
        carryOut(command, part);
    } catch (...) {
        if (!isFinished)
            answer(reply(StationReturnCode::InternalError));
    }
}

void Station::carryOut(const StationCommand &command, const Answer &answer)
{
    static const struct
    {
        const QString &name;
        void (Station::*handler)(const QVariant &data, const Answer &answer);
    } commands[] = {
        {StationCommandName::getVolume, &Station::getVolume},
        {StationCommandName::getServerDir, &Station::getServerDir},
        {StationCommandName::createDirectory, &Station::createDirectory},
    };
    for (const auto &known : commands) {
        if (known.name == command.name)
            return (this->*known.handler)(command.data, answer);
    }
    answer(reply(StationReturnCode::UnknownCommand));
}

void Station::getVolume(const QVariant &data, const Answer &answer)
{
    if (!data.isNull())
        return answer(reply(StationReturnCode::BadRequest));
    QVariantList list;
    const QList<Volume> volumes = m_volumes->volumes();
    for (const Volume &volume : volumes) {
        list.append(QVariantMap{
            {StationKey::volumePath, volume.path},
            {StationKey::volumeName, volume.name},
            {StationKey::volumeSize, volume.bytesTotal / bytesPerKilobyte},
            {StationKey::volumeAvailableSize, volume.bytesAvailable / bytesPerKilobyte},
            {StationKey::volumeIsSystem, volume.isSystem},
        });
    }
    answer(reply(StationReturnCode::Success, list));
}

void Station::getServerDir(const QVariant &data, const Answer &answer)
{
    const std::optional<QString> basePath = pathIn(data);
    if (!basePath)
        return answer(reply(StationReturnCode::BadRequest));
    FolderList folders{StationReturnCode::Success, {}};
    if (basePath->isEmpty()) {
        const QList<Volume> volumes = m_volumes->volumes();
        for (const Volume &volume : volumes)
            folders.names.append(volume.path);
    } else {
        folders = listFolders(*basePath);
    }
    // A failure carries no data: a client that looks at the data alone takes it for no folder, not for an empty one.
    if (folders.returnCode != StationReturnCode::Success)
        return answer(reply(folders.returnCode));
    answer(reply(StationReturnCode::Success,
                 QVariantMap{{StationKey::basePath, *basePath}, {StationKey::dirFolderList, folders.names}}));
}

void Station::createDirectory(const QVariant &data, const Answer &answer)
{
    const std::optional<QString> path = pathIn(data);
    answer(reply(path ? createFolder(*path, *m_volumes) : StationReturnCode::BadRequest));
}
