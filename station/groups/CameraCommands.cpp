#include "CameraCommands.h"

#include "FolderNames.h"
#include "GroupStore.h"
#include "RequestMap.h"
#include "ServerVocabulary.h"
#include "StationData.h"
#include "StationVocabulary.h"
#include "service/Edit.h"
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
    return folderName(name).isEmpty() ? StationReturnCode::NameRefused : ReturnCode::Success;
}

/// What is answered; with "0" it is kept and given already.
QString add(Edit &edit, Database &database, const Camera &camera)
{
    const QString refusal = checkName(camera.name);
    if (refusal != ReturnCode::Success)
        return refusal;
    Transaction transaction(database);
    GroupStore store(database);
    if (isKnown(store, camera.name))
        return StationReturnCode::CameraExists;
    store.insert(camera);
    edit.commit(transaction, lastPart(ReturnCode::Success));
    return ReturnCode::Success;
}

/// Likewise.
QString remove(Edit &edit, Database &database, const QString &name)
{
    Transaction transaction(database);
    GroupStore store(database);
    if (!isKnown(store, name))
        return StationReturnCode::CameraNotFound;
    if (isMember(store, name))
        return StationReturnCode::CameraInUse;
    store.removeCamera(name);
    edit.commit(transaction, lastPart(ReturnCode::Success));
    return ReturnCode::Success;
}
} // namespace

CameraCommands::CameraCommands(StationData &data)
    : m_data(data)
{
}

void CameraCommands::enterInto(CommandTable &table)
{
    table.insert(StationCommandName::listCameras,
                 [this](const QVariant &data, const Answer &answer) { listCameras(data, answer); });
    table.insert(StationCommandName::addCamera, [this](const std::shared_ptr<Edit> &edit) { addCamera(*edit); });
    table.insert(StationCommandName::removeCamera, [this](const std::shared_ptr<Edit> &edit) { removeCamera(*edit); });
}

void CameraCommands::listCameras(const QVariant &data, const Answer &answer)
{
    if (!data.isNull())
        throw BadRequest(QStringLiteral("no data was expected"));
    QVariantList list;
    const QList<Camera> cameras = GroupStore(m_data.database()).cameras();
    for (const Camera &camera : cameras)
        list.append(QVariantMap{{FieldKey::camName, camera.name}, {StationKey::streams, camera.streams}});
    answer(lastPart(ReturnCode::Success, list));
}

void CameraCommands::addCamera(Edit &edit)
{
    const RequestMap request(edit.data());
    const Camera camera{request.string(FieldKey::camName), request.smallInteger(StationKey::streams)};
    edit.setSubject({{}, {}, camera.name});
    if (camera.streams < 1 || camera.streams > mostStreams)
        throw BadRequest(QStringLiteral("1 to %1 streams were expected").arg(mostStreams));
    edit.answer(lastPart(add(edit, m_data.database(), camera)));
}

void CameraCommands::removeCamera(Edit &edit)
{
    const QString name = RequestMap(edit.data()).string(FieldKey::camName);
    edit.setSubject({{}, {}, name});
    edit.answer(lastPart(remove(edit, m_data.database(), name)));
}
