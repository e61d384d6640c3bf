#include "FakeFramework.h"
#include "PluginRecordingManagement.h"
#include "SignalLog.h"
#include "TraceRecorder.h"
#include "TypedText.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <functional>
#include <limits>
#include <memory>

using Plugin = PluginRecordingManagement;
using Call = std::function<bool(Plugin &)>;

namespace {

const QVariantMap completeGroup{
    {"recordingGroupName", "Gate"}, {"recordingGroupReservedTimeEnabled", true}, {"recordingGroupReservedTime", 60}};
const QVariantMap completePath{
    {"path", "D:/Rec"}, {"pathType", 0}, {"reserveSpace", 2048LL}, {"isRecoveryMode", false}};

QVariantMap without(QVariantMap map, const QString &key)
{
    map.remove(key);
    return map;
}

QVariantMap with(QVariantMap map, const QString &key, const QVariant &value)
{
    map.insert(key, value);
    return map;
}

Call completeCall(const QVariantMap &group, const QVariantList &paths)
{
    return [=](Plugin &plugin) { return plugin.addRecordingGroupWithCompleteInfo(group, paths, {}); };
}

} // namespace

Q_DECLARE_METATYPE(Call)

class RecordingGroupEditsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void sendsTheWholeRequest_data();
    void sendsTheWholeRequest();
    void refusedArgumentsSendNothing_data();
    void refusedArgumentsSendNothing();
    void theFrameworksRefusalIsLoggedOnce_data();
    void theFrameworksRefusalIsLoggedOnce();
    void repliesBecomeSignals_data();
    void repliesBecomeSignals();
    void errorListsArePassedWhole_data();
    void errorListsArePassedWhole();
    void editsChangeNeitherModelNorCache();

private:
    FakeFramework m_framework;
    std::unique_ptr<Plugin> m_plugin;
};

void RecordingGroupEditsTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_framework = {};
    m_plugin = std::make_unique<Plugin>();
    QVERIFY(m_plugin->InitialPluginBase(nullptr, this, &m_framework));
    takeTraceLines();
}

void RecordingGroupEditsTest::sendsTheWholeRequest_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("request");

    QTest::newRow("add a group")
        << Call([](Plugin &plugin) { return plugin.addRecordingGroup("Gate", "D:\\Rec", Plugin::NetHost, 4096); })
        << "addRecordingGroup"
        << "{path: QString \"D:\\Rec\", pathType: int 1, recordingGroupName: QString \"Gate\", "
           "reserveSpace: qlonglong 4096}";
    QTest::newRow("add a group with the default reserve space")
        << Call([](Plugin &plugin) { return plugin.addRecordingGroup("Gate", "D:/Rec", Plugin::Local); })
        << "addRecordingGroup"
        << "{path: QString \"D:/Rec\", pathType: int 0, recordingGroupName: QString \"Gate\", "
           "reserveSpace: qlonglong 2048}";
    QTest::newRow("reserve space 0 is valid")
        << Call([](Plugin &plugin) { return plugin.addRecordingGroup("Gate", "D:/Rec", Plugin::Local, 0); })
        << "addRecordingGroup"
        << "{path: QString \"D:/Rec\", pathType: int 0, recordingGroupName: QString \"Gate\", "
           "reserveSpace: qlonglong 0}";
    QTest::newRow("add a path") << Call([](Plugin &plugin) {
        return plugin.addPathToRecordingGroup("{7}", "//n/s", Plugin::NetDomain, 1024);
    }) << "addPathToRecordingGroup"
                                << "{path: QString \"//n/s\", pathType: int 2, recordingGroupID: QString \"{7}\", "
                                   "reserveSpace: qlonglong 1024}";
    QTest::newRow("a negative multiple of 1024 passes")
        << Call([](Plugin &plugin) { return plugin.addPathToRecordingGroup("{7}", "D:/", Plugin::Local, -2048); })
        << "addPathToRecordingGroup"
        << "{path: QString \"D:/\", pathType: int 0, recordingGroupID: QString \"{7}\", "
           "reserveSpace: qlonglong -2048}";
    QTest::newRow("add a path with the default reserve space")
        << Call([](Plugin &plugin) { return plugin.addPathToRecordingGroup("{7}", "D:/", Plugin::Local); })
        << "addPathToRecordingGroup"
        << "{path: QString \"D:/\", pathType: int 0, recordingGroupID: QString \"{7}\", "
           "reserveSpace: qlonglong 2048}";
    QTest::newRow("remove paths")
        << Call([](Plugin &plugin) {
               return plugin.removePathFromRecordingGroup({"{1}", "{2}"}, {"D:/", ""});
           })
        << "removePathFromRecordingGroup"
        << "{recordingGroupIDList: QStringList [\"{1}\", \"{2}\"], recordingGroupPathList: QStringList [\"D:/\", "
           "\"\"]}";
    QTest::newRow("remove groups") << Call([](Plugin &plugin) {
        return plugin.removeRecordingGroup({"{1}", ""});
    }) << "removeRecordingGroup"
                                   << "{recordingGroupIDList: QStringList [\"{1}\", \"\"]}";
    QTest::newRow("add a complete group")
        << Call([](Plugin &plugin) {
               return plugin.addRecordingGroupWithCompleteInfo(
                   with(completeGroup, "other", 1), {with(completePath, "more", "kept")}, {QVariantMap{{"cam", 1}}, 5});
           })
        << "addRecordingGroupWithCompleteInfo"
        << "{deviceInfos: QVariantList [{cam: int 1}, int 5], pathInfoList: QVariantList [{isRecoveryMode: bool "
           "false, more: QString \"kept\", path: QString \"D:/Rec\", pathType: int 0, reserveSpace: qlonglong 2048}], "
           "recordingGroupName: QString \"Gate\", recordingGroupReservedTime: int 60, "
           "recordingGroupReservedTimeEnabled: bool true}";
    QTest::newRow("a complete group's name, flag and time are sent as read, the paths as given")
        << completeCall({{"recordingGroupName", 12},
                         {"recordingGroupReservedTimeEnabled", "true"},
                         {"recordingGroupReservedTime", "90"}},
                        {with(completePath, "reserveSpace", "1024")})
        << "addRecordingGroupWithCompleteInfo"
        << "{deviceInfos: QVariantList [], pathInfoList: QVariantList [{isRecoveryMode: bool false, path: QString "
           "\"D:/Rec\", pathType: int 0, reserveSpace: QString \"1024\"}], recordingGroupName: QString \"12\", "
           "recordingGroupReservedTime: int 90, recordingGroupReservedTimeEnabled: bool true}";
    QTest::newRow("reserved time 0 passes while it is not enabled")
        << completeCall(
               with(with(completeGroup, "recordingGroupReservedTimeEnabled", false), "recordingGroupReservedTime", 0),
               {completePath})
        << "addRecordingGroupWithCompleteInfo"
        << "{deviceInfos: QVariantList [], pathInfoList: QVariantList [{isRecoveryMode: bool false, path: QString "
           "\"D:/Rec\", pathType: int 0, reserveSpace: qlonglong 2048}], recordingGroupName: QString \"Gate\", "
           "recordingGroupReservedTime: int 0, recordingGroupReservedTimeEnabled: bool false}";
    QTest::newRow("a path may be empty and of any type")
        << completeCall(completeGroup,
                        {with(with(with(completePath, "path", ""), "pathType", "odd"), "isRecoveryMode", QVariant())})
        << "addRecordingGroupWithCompleteInfo"
        << "{deviceInfos: QVariantList [], pathInfoList: QVariantList [{isRecoveryMode: invalid, path: QString \"\", "
           "pathType: QString \"odd\", reserveSpace: qlonglong 2048}], recordingGroupName: QString \"Gate\", "
           "recordingGroupReservedTime: int 60, recordingGroupReservedTimeEnabled: bool true}";
    QTest::newRow("update") << Call([](Plugin &plugin) {
        return plugin.updateRecordingGroup("{7}", {1}, {"2"}, {QVariantMap{{"k", 3}}}, {4.5}, {true}, {{"name", "N"}});
    }) << "updateRecordingGroup"
                            << "{recordingGroupID: QString \"{7}\", updateAddCameraList: QVariantList [int 1], "
                               "updateAddPathList: "
                               "QVariantList [{k: int 3}], updateRmCameraList: QVariantList [QString \"2\"], "
                               "updateRmPathList: "
                               "QVariantList [double 4.5], updateSetPathList: QVariantList [bool true], "
                               "updateSetRecordingGroup: {name: "
                               "QString \"N\"}}";
    QTest::newRow("update with every argument empty")
        << Call([](Plugin &plugin) { return plugin.updateRecordingGroup("", {}, {}, {}, {}, {}, {}); })
        << "updateRecordingGroup"
        << "{recordingGroupID: QString \"\", updateAddCameraList: QVariantList [], updateAddPathList: QVariantList "
           "[], updateRmCameraList: QVariantList [], updateRmPathList: QVariantList [], updateSetPathList: "
           "QVariantList [], updateSetRecordingGroup: {}}";
}

void RecordingGroupEditsTest::sendsTheWholeRequest()
{
    QFETCH(Call, call);
    QFETCH(QString, command);
    QFETCH(QString, request);
    SignalLog log(m_plugin.get());
    QVERIFY(call(*m_plugin));
    QCOMPARE(m_framework.sent.size(), 1);
    const FakeFramework::Sent &sent = m_framework.sent.constFirst();
    QCOMPARE(sent.command, command);
    QCOMPARE(typedText(sent.data), request);
    QCOMPARE(sent.context, nullptr);
    QCOMPARE(sent.relayPath, QString());
    QVERIFY(!sent.flag);
    QCOMPARE(log.take(), QStringList{});
    QCOMPARE(takeTraceLines(), QStringList{});
}

void RecordingGroupEditsTest::refusedArgumentsSendNothing_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QString>("message");

    const auto row = [](const char *name, const Call &call, const char *message) {
        QTest::newRow(name) << call << QString::fromLatin1(message);
    };
    const auto addGroup = [](const QString &name, const QString &path, qlonglong space) {
        return Call([=](Plugin &plugin) { return plugin.addRecordingGroup(name, path, Plugin::Local, space); });
    };
    const auto addPath = [](const QString &id, const QString &path, qlonglong space) {
        return Call([=](Plugin &plugin) { return plugin.addPathToRecordingGroup(id, path, Plugin::Local, space); });
    };
    const auto removePaths = [](const QStringList &ids, const QStringList &paths) {
        return Call([=](Plugin &plugin) { return plugin.removePathFromRecordingGroup(ids, paths); });
    };

    row("add a group: the reserve space is checked before the strings", addGroup("", "", 1000),
        "addRecordingGroup, Reserve space must be multiple of 1024");
    row("add a group: 1025", addGroup("Gate", "D:/", 1025),
        "addRecordingGroup, Reserve space must be multiple of 1024");
    row("add a group: -1", addGroup("Gate", "D:/", -1), "addRecordingGroup, Reserve space must be multiple of 1024");
    row("add a group: the largest number", addGroup("Gate", "D:/", std::numeric_limits<qlonglong>::max()),
        "addRecordingGroup, Reserve space must be multiple of 1024");
    row("add a group: no name", addGroup("", "D:/", 2048), "addRecordingGroup, Call function with empty parameter");
    row("add a group: no path", addGroup("Gate", "", 2048), "addRecordingGroup, Call function with empty parameter");
    row("add a path: the reserve space is checked before the strings", addPath("", "", 1000),
        "addPathToRecordingGroup, Reserve space must be multiple of 1024");
    row("add a path: no id", addPath("", "D:/", 2048), "addPathToRecordingGroup, Call function with empty parameter");
    row("add a path: no path", addPath("{7}", "", 2048), "addPathToRecordingGroup, Call function with empty parameter");
    row("remove paths: one id and no path", removePaths({"{1}"}, {}),
        "removePathFromRecordingGroup, Call function with empty parameter");
    row("remove paths: no id and one path", removePaths({}, {"D:/"}),
        "removePathFromRecordingGroup, Call function with empty parameter");
    row("remove paths: neither", removePaths({}, {}),
        "removePathFromRecordingGroup, Call function with empty parameter");
    row("remove paths: two ids and one path", removePaths({"{1}", "{2}"}, {"D:/"}),
        "removePathFromRecordingGroup, List length mismatch");
    row(
        "remove groups: none", [](Plugin &plugin) { return plugin.removeRecordingGroup({}); },
        "removeRecordingGroup, Call function with empty parameter");

    constexpr auto notCompleted = "addRecordingGroupWithCompleteInfo, Group info is not completed.";
    constexpr auto nameEmpty = "addRecordingGroupWithCompleteInfo, Group name is empty.";
    constexpr auto timeWrong = "addRecordingGroupWithCompleteInfo, Reserved time's config is error.";
    constexpr auto noPath = "addRecordingGroupWithCompleteInfo, No any path is given.";
    constexpr auto pathWrong = "addRecordingGroupWithCompleteInfo, Pathinfo's structure (passed from Qml) is error.";
    constexpr auto spaceWrong = "addRecordingGroupWithCompleteInfo, Reserve space must be multiple of 1024";
    row("complete: nothing at all", completeCall({}, {}), notCompleted);
    row("complete: no name key", completeCall(without(completeGroup, "recordingGroupName"), {completePath}),
        notCompleted);
    row("complete: no flag key",
        completeCall(without(completeGroup, "recordingGroupReservedTimeEnabled"), {completePath}), notCompleted);
    row("complete: no time key", completeCall(without(completeGroup, "recordingGroupReservedTime"), {completePath}),
        notCompleted);
    row("complete: the keys come before the name",
        completeCall(without(with(completeGroup, "recordingGroupName", ""), "recordingGroupReservedTime"), {}),
        notCompleted);
    const QVariantMap nameless = with(with(completeGroup, "recordingGroupName", ""), "recordingGroupReservedTime", 0);
    row("complete: the name comes before the time", completeCall(nameless, {}), nameEmpty);
    row("complete: a name that is no string",
        completeCall(with(completeGroup, "recordingGroupName", QVariantMap{}), {completePath}), nameEmpty);
    row("complete: the time comes before the paths",
        completeCall(with(completeGroup, "recordingGroupReservedTime", 0), {}), timeWrong);
    row("complete: the time is negative",
        completeCall(with(completeGroup, "recordingGroupReservedTime", -5), {completePath}), timeWrong);
    row("complete: the time is no number",
        completeCall(with(completeGroup, "recordingGroupReservedTime", "soon"), {completePath}), timeWrong);
    row("complete: no path", completeCall(completeGroup, {}), noPath);
    for (const char *key : {"path", "pathType", "reserveSpace", "isRecoveryMode"})
        row(qPrintable(QStringLiteral("complete: a path without %1").arg(key)),
            completeCall(completeGroup, {without(completePath, key)}), pathWrong);
    row("complete: a path that is no map", completeCall(completeGroup, {"D:/Rec"}), pathWrong);
    row("complete: the second path lacks a key",
        completeCall(completeGroup, {completePath, without(completePath, "path")}), pathWrong);
    row("complete: reserve space 1000", completeCall(completeGroup, {with(completePath, "reserveSpace", 1000)}),
        spaceWrong);
    row("complete: the first bad path decides",
        completeCall(completeGroup, {with(completePath, "reserveSpace", 1000), QVariantMap{}}), spaceWrong);
    row("complete: a path's keys come before its space",
        completeCall(completeGroup, {without(with(completePath, "reserveSpace", 1000), "isRecoveryMode")}), pathWrong);
}

void RecordingGroupEditsTest::refusedArgumentsSendNothing()
{
    QFETCH(Call, call);
    QFETCH(QString, message);
    SignalLog log(m_plugin.get());
    QVERIFY(!call(*m_plugin));
    QVERIFY(m_framework.sent.isEmpty());
    QCOMPARE(takeTraceLines(), QStringList{"error: PluginRecordingManagement::" + message});
    QCOMPARE(log.take(), QStringList{});
}

void RecordingGroupEditsTest::theFrameworksRefusalIsLoggedOnce_data()
{
    sendsTheWholeRequest_data();
}

void RecordingGroupEditsTest::theFrameworksRefusalIsLoggedOnce()
{
    QFETCH(Call, call);
    m_framework.accepts = false;
    QVERIFY(!call(*m_plugin));
    QCOMPARE(m_framework.sent.size(), 1);
    QCOMPARE(takeTraceLines(),
             QStringList{"error: PluginRecordingManagement::sendRequestToServer, Send command failed."});
}

void RecordingGroupEditsTest::repliesBecomeSignals_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QVariant>("data");
    QTest::addColumn<QString>("returnCode");
    QTest::addColumn<bool>("finish");
    QTest::addColumn<QStringList>("signalLines");

    const auto row = [](const char *name, const char *command, const QVariant &data, const char *code, bool finish,
                        const QStringList &lines) {
        QTest::newRow(name) << QString::fromLatin1(command) << data << QString::fromLatin1(code) << finish << lines;
    };
    const QVariantList list{1, 2};
    row("group added", "addRecordingGroup", {}, "0", true, {"addRecordingGroupResponded(true)"});
    row("group refused", "addRecordingGroup", {}, "7", true, {"addRecordingGroupResponded(false)"});
    row("group added, more to come", "addRecordingGroup", {}, "0", false, {});
    row("group refused, more to come", "addRecordingGroup", {}, "7", false, {});
    row("path added", "addPathToRecordingGroup", {}, "0", false, {"addPathToRecordingGroupResponded(true)"});
    row("path refused", "addPathToRecordingGroup", {}, "00", true, {"addPathToRecordingGroupResponded(false)"});
    row("path removed, more to come", "removePathFromRecordingGroup", {}, "0", false,
        {"removePathFromRecordingGroupResp(true, false)"});
    row("path not removed", "removePathFromRecordingGroup", {}, "", true,
        {"removePathFromRecordingGroupResp(false, true)"});
    row("group removed, more to come", "removeRecordingGroup", {}, "0", false,
        {"removeRecordingGroupResp(true, false)"});
    row("group not removed", "removeRecordingGroup", {}, "1", true, {"removeRecordingGroupResp(false, true)"});
    row("complete group added", "addRecordingGroupWithCompleteInfo",
        QVariantMap{{"recordingGroupID", "{9}"}, {"errorAction", list}}, "0", false,
        {"addRecordingGroupWithCompleteInfoResp(true, \"{9}\", [0])"});
    row("complete group refused without reasons", "addRecordingGroupWithCompleteInfo",
        QVariantMap{{"recordingGroupID", "{9}"}}, "1", true,
        {"addRecordingGroupWithCompleteInfoResp(false, \"{9}\", [0])"});
    row("complete group refused with reasons", "addRecordingGroupWithCompleteInfo", QVariantMap{{"errorAction", list}},
        "1", true, {"addRecordingGroupWithCompleteInfoResp(false, \"\", [2])"});
    row("complete group refused with a reason that is no list", "addRecordingGroupWithCompleteInfo",
        QVariantMap{{"errorAction", 3}}, "1", true, {"addRecordingGroupWithCompleteInfoResp(false, \"\", [0])"});
    row("complete group answered with no map", "addRecordingGroupWithCompleteInfo", list, "0", true,
        {"addRecordingGroupWithCompleteInfoResp(true, \"\", [0])"});
    row("group updated, the list passed on success too", "updateRecordingGroup", list, "0", false,
        {"updateRecordingGroupResp(true, [2])"});
    row("group not updated", "updateRecordingGroup", list, "1", true, {"updateRecordingGroupResp(false, [2])"});
    row("group updated without a list", "updateRecordingGroup", {}, "0", true, {"updateRecordingGroupResp(true, [0])"});
    row("group updated with a text", "updateRecordingGroup", 17, "0", true, {"updateRecordingGroupResp(true, [0])"});
}

void RecordingGroupEditsTest::repliesBecomeSignals()
{
    QFETCH(QString, command);
    QFETCH(QVariant, data);
    QFETCH(QString, returnCode);
    QFETCH(bool, finish);
    QFETCH(QStringList, signalLines);
    SignalLog log(m_plugin.get());
    m_plugin->CommandProcessor(command, data, nullptr, returnCode, {}, finish, {});
    QCOMPARE(log.take(), signalLines);
    QCOMPARE(takeErrorLines(), QStringList{}); // the station's refusals are the signals' business
    QVERIFY(m_framework.sent.isEmpty());
}

void RecordingGroupEditsTest::errorListsArePassedWhole_data()
{
    QTest::addColumn<QVariant>("sentList");
    QTest::addColumn<QString>("received");

    const QVariantList reasons{QVariantMap{{"path", "D:/"}, {"reason", "full"}}, 4, QVariant()};
    QTest::newRow("maps and others") << QVariant(reasons)
                                     << "QVariantList [{path: QString \"D:/\", reason: QString \"full\"}, int 4, "
                                        "invalid]";
    QTest::newRow("strings") << QVariant(QStringList{"a", "b"}) << "QVariantList [QString \"a\", QString \"b\"]";
}

void RecordingGroupEditsTest::errorListsArePassedWhole()
{
    QFETCH(QVariant, sentList);
    QFETCH(QString, received);
    QSignalSpy complete(m_plugin.get(), &Plugin::addRecordingGroupWithCompleteInfoResp);
    QSignalSpy update(m_plugin.get(), &Plugin::updateRecordingGroupResp);
    m_plugin->CommandProcessor("addRecordingGroupWithCompleteInfo", QVariantMap{{"errorAction", sentList}}, nullptr,
                               "1", {}, true, {});
    m_plugin->CommandProcessor("updateRecordingGroup", sentList, nullptr, "1", {}, true, {});
    QCOMPARE(complete.size(), 1);
    QCOMPARE(typedText(complete.at(0).at(2)), received);
    QCOMPARE(update.size(), 1);
    QCOMPARE(typedText(update.at(0).at(1)), received);
}

void RecordingGroupEditsTest::editsChangeNeitherModelNorCache()
{
    const QVariantList groups{QVariantMap{{"recordingGroupID", "{1}"}, {"recordingGroupPathList", QStringList{"D:/"}}}};
    m_plugin->CommandProcessor("getRecordingGroup", groups, nullptr, "0", {}, true, {});
    m_plugin->CommandProcessor("retrieveRecordingGroupTreeModel", groups, nullptr, "0", {}, true, {});
    m_plugin->removeRecordingGroup({"{1}"});
    m_plugin->CommandProcessor("removeRecordingGroup", {}, nullptr, "0", {}, true, {});
    m_plugin->removePathFromRecordingGroup({"{1}"}, {"D:/"});
    m_plugin->CommandProcessor("removePathFromRecordingGroup", {}, nullptr, "0", {}, true, {});
    m_plugin->addRecordingGroup("Gate", "D:/", Plugin::Local);
    m_plugin->CommandProcessor("addRecordingGroup", {}, nullptr, "0", {}, true, {});

    const auto *model = qobject_cast<QAbstractItemModel *>(m_plugin->getRecordingGroupModel());
    QVERIFY(model);
    QCOMPARE(model->rowCount(), 1);
    QCOMPARE(typedText(m_plugin->getRecordingGroupPathList("{1}", "")), "QVariantList [QString \"D:/\"]");
}

QTEST_GUILESS_MAIN(RecordingGroupEditsTest)
#include "tst_recording_group_edits.moc"
