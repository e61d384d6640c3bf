#include "AnswerTable.h"

#include <QMetaMethod>

#include <algorithm>
#include <iterator>

namespace {

constexpr auto volumes = "getVolumeModel";
constexpr auto nasServers = "getNASServerModel";

struct TableRow
{
    const char *invokable;
    const char *command;
    const char *signal;
    const char *model;
    bool carriesRequestId = false;
};

constexpr TableRow answers[] = {
    {"getVolume", "getVolume", "getVolumeResponded", volumes},
    {"getServerDir", "getServerDir", "getServerDirResponded", "getServerDirModel"},
    {"getRecordingGroup", "getRecordingGroup", "getRecordingGroupResponded", "getRecordingGroupModel", true},
    {"addRecordingGroupWithCompleteInfo", "addRecordingGroupWithCompleteInfo", "addRecordingGroupWithCompleteInfoResp",
     nullptr},
    {"updateRecordingGroup", "updateRecordingGroup", "updateRecordingGroupResp", nullptr},
    {"removeRecordingGroup", "removeRecordingGroup", "removeRecordingGroupResp", nullptr},
    {"removePathFromRecordingGroup", "removePathFromRecordingGroup", "removePathFromRecordingGroupResp", nullptr},
    {"retrieveRecordingGroupTreeModel", "retrieveRecordingGroupTreeModel", "retrieveRecordingGroupTreeModelFinish",
     "getRecordingGroupTreeModel"},
    {"getNASServers", "GetNasServers", "getNASServersResponded", nasServers},
    {"addNASServer", "AddNasServer", "addNASServerResponded", nasServers},
    {"updateNASServer", "UpdateNASServer", "updateNASServerResponsed", nasServers},
    {"removeNASServer", "RemoveNASServer", "removeNASServerResponsed", nasServers},
    {"getNASServerDir", "GetNasDir", "getNASServerDirResponded", "getNASServerDirModel"},
    {"getNASServerCapacity", "GetNasCapacity", "getNASServerCapacityResponded", nullptr},
    {"addNASPathToVolume", "GetNasCapacity", "getNASServerCapacityResponded", volumes},
    {"addNASPathsToVolume", "addNASPathsToVolume", "addNASPathsToVolumeResp", volumes},
    {"reloadStorageUsageInfo", "reloadStorageUsageInfo", "volumeInfoChanged", nullptr},
};

struct QueryRow
{
    const char *invokable;
    QStringList requests;
};

const QList<QueryRow> &queries()
{
    static const QString volume = QStringLiteral("getVolume");
    static const QString groups = QStringLiteral("retrieveRecordingGroupTreeModel");
    static const QString usage = QStringLiteral("reloadStorageUsageInfo");
    static const QList<QueryRow> rows{
        {"getVolumeModel", {volume}},
        {"getVolumeInfo", {volume}},
        {"getRecordingGroupModel", {QStringLiteral("getRecordingGroup")}},
        {"getNASServerModel", {QStringLiteral("getNASServers")}},
        {"getRecordingGroupTreeModel", {groups}},
        {"getRecordingGroupPathList", {groups}},
        {"getRecordingGroupReservedSpaceList", {groups}},
        {"getRecordingGroupNasPathList", {groups}},
        {"getRecordingGroupRecoveryPathList", {groups}},
        {"getRecordingGroupReservedTime", {groups}},
        {"getRecordingGroupMemberList", {groups}},
        {"getRecordingGroupIDList", {groups}},
        {"streamIndexHasBeenSetTmShiftSeamlessInOtherRecGroups", {groups}},
        {"getStorageUsageModel", {usage}},
        {"getGroupVolumeModel", {usage}},
        {"getRecordingGroupInfoList", {groups, usage}},
    };
    return rows;
}

} // namespace

std::optional<AnswerRow> answerOf(const QString &invokable, const QMetaObject &plugin)
{
    const auto *const row = std::find_if(std::begin(answers), std::end(answers), [&invokable](const TableRow &answer) {
        return invokable == QLatin1String(answer.invokable);
    });
    if (row != std::end(answers))
        return AnswerRow{row->command, row->signal, row->model, row->carriesRequestId};
    const QByteArray command = invokable.toLatin1();
    const QByteArray signal = command + "Responded";
    for (int i = plugin.methodOffset(); i < plugin.methodCount(); ++i) {
        if (plugin.method(i).methodType() == QMetaMethod::Signal && plugin.method(i).name() == signal)
            return AnswerRow{command, signal};
    }
    return {};
}

QStringList requestsBefore(const QString &invokable)
{
    for (const QueryRow &row : queries()) {
        if (invokable == QLatin1String(row.invokable))
            return row.requests;
    }
    return {};
}

QStringList commandsOnConnect()
{
    return {QStringLiteral("GetNasServers"), QStringLiteral("getRecordingGroup"),
            QStringLiteral("reloadStorageUsageInfo")};
}
