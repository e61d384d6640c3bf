#include "CameraCommands.h"

#include "FolderNames.h"
#include "GroupStore.h"
#include "RequestMap.h"
#include "StationData.h"
#include "StationProtocol.h"
#include "store/Database.h"

#include <algorithm>

namespace {
constexpr int mostStreams = 16;

bool isKnown(const GroupStore &store, const QString &name)
{
    const QList<Camera> cameras = store.cameras();
    return std::any_of(cameras.begin(), cameras.end(), [&name](const Camera &camera) { return camera.name == name; });
}

bool isMember(const GroupStore &store, const QString &name)
{
    const QList<RecordingGroup> groups = store.groups();
    return std::any_of(groups.begin(), groups.end(), [&name](const RecordingGroup &group) {
        return std::any_of(group.members.begin(), group.members.end(),
                           [&name](const GroupMember &member) { return member.camera == name; });
    });
}

/// "0" when a camera can be called that.
QString checkName(const QString &name)
{
    if (name.trimmed().isEmpty())
        return StationReturnCode::EmptyCameraName;
    return folderName(name).isEmpty() ? StationReturnCode::NameRefused : StationReturnCode::Success;
}
QString add(Database &database, const Camera &camera)
{
    const QString refusal = checkName(camera.name);
    if (refusal != StationReturnCode::Success)
        return refusal;
    Transaction transaction(database);
    GroupStore store(database);
    if (isKnown(store, camera.name))
        return StationReturnCode::CameraExists;
    store.insert(camera);
    transaction.commit();
    return StationReturnCode::Success;
}

QString remove(Database &database, const QString &name)
{
    Transaction transaction(database);
    GroupStore store(database);
    if (!isKnown(store, name))
        return StationReturnCode::CameraNotFound;
    if (isMember(store, name))
        return StationReturnCode::CameraInUse;
    store.removeCamera(name);
    transaction.commit();
    return StationReturnCode::Success;
}
} // namespace

CameraCommands::CameraCommands(StationData &data)
    : m_data(data)
{
}

void CameraCommands::enterInto(CommandTable &table)
{
    const auto enter = [this, &table](const QString &name, auto member) {
        table.insert(name,
                     [this, member](const QVariant &data, const Answer &answer) { (this->*member)(data, answer); });
    };
    enter(StationOwnCommandName::listCameras, &CameraCommands::listCameras);
    enter(StationOwnCommandName::addCamera, &CameraCommands::addCamera);
    enter(StationOwnCommandName::removeCamera, &CameraCommands::removeCamera);
}

void CameraCommands::listCameras(const QVariant &data, const Answer &answer)
{
    if (!data.isNull())
        throw BadRequest(QStringLiteral("no data was expected"));
    QVariantList list;
    const QList<Camera> cameras = GroupStore(m_data.database()).cameras();
    for (const Camera &camera : cameras)
        list.append(QVariantMap{{StationKey::camName, camera.name}, {StationKey::streams, camera.streams}});
    answer(lastPart(StationReturnCode::Success, list));
}

void CameraCommands::addCamera(const QVariant &data, const Answer &answer)
{
    const RequestMap request(data);
    const Camera camera{request.string(StationKey::camName), request.smallInteger(StationKey::streams)};
    if (camera.streams < 1 || camera.streams > mostStreams)
        throw BadRequest(QStringLiteral("1 to %1 streams were expected").arg(mostStreams));
    answer(lastPart(add(m_data.database(), camera)));
}

void CameraCommands::removeCamera(const QVariant &data, const Answer &answer)
{
    const QString name = RequestMap(data).string(StationKey::camName);
    answer(lastPart(remove(m_data.database(), name)));
}
