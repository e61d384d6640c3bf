#include "GroupStation.h"

#include <QRegularExpression>
#include <QTest>

/// Requests about groups that are no requests, and those about cameras.
class StationGroupRequestsTest : public QObject, private GroupStation
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theTreeIsForTheStationItself_data();
    void theTreeIsForTheStationItself();
    void badRequestsAreRefused_data();
    void badRequestsAreRefused();
    void camerasAreAddedAndRemoved();
    void camerasAreRefused_data();
    void camerasAreRefused();
};

void StationGroupRequestsTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    setUp();
}

void StationGroupRequestsTest::cleanup()
{
    tearDown();
}

void StationGroupRequestsTest::theTreeIsForTheStationItself_data()
{
    QTest::addColumn<QString>("own");
    QTest::addColumn<QString>("asked");
    QTest::addColumn<bool>("isKnown");
    QTest::newRow("direct") << QString() << QString() << true;
    QTest::newRow("direct, asked for another") << QString() << QStringLiteral("st1") << false;
    QTest::newRow("behind a relay") << QStringLiteral("st1") << QStringLiteral("st1") << true;
    QTest::newRow("behind a relay, connected directly") << QStringLiteral("st1") << QString() << true;
    QTest::newRow("behind a relay, asked for another") << QStringLiteral("st1") << QStringLiteral("ST1") << false;
}

void StationGroupRequestsTest::theTreeIsForTheStationItself()
{
    QFETCH(QString, own);
    QFETCH(QString, asked);
    QFETCH(bool, isKnown);
    add(groupMap(QStringLiteral("a"), {}));
    m_station = makeStation(own);
    const StationReply reply = m_station->ask(QStringLiteral("retrieveRecordingGroupTreeModel"),
                                              QVariantMap{{QStringLiteral("relayPath"), asked}});
    if (isKnown) {
        QCOMPARE(reply.returnCode, QStringLiteral("0"));
        QCOMPARE(reply.data.toList().size(), 1);
        QCOMPARE(reply.data.toList().front().toMap().value(QStringLiteral("relayPath")), QVariant(own));
    } else {
        QCOMPARE(StationClient::replyText(reply), QStringLiteral("UnknownStation invalid"));
    }
}

void StationGroupRequestsTest::badRequestsAreRefused_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QVariant>("data");
    const auto row = [](const char *name, const char *command, const QVariant &data) {
        QTest::addRow("%s, %s", command, name) << QString::fromLatin1(command) << data;
    };
    const QString somewhere = QStringLiteral("/somewhere");
    const auto without = [](QVariantMap map, const char *key) {
        map.remove(QString::fromLatin1(key));
        return map;
    };
    const auto with = [](QVariantMap map, const char *key, const QVariant &value) {
        map.insert(QString::fromLatin1(key), value);
        return map;
    };
    const QVariantMap ids{{QStringLiteral("recordingGroupIDList"), QStringList{unknownId}}};
    const QVariantMap pairs = with(ids, "recordingGroupPathList", QStringList{somewhere});
    const QVariantMap addGroup = with(pathMap(somewhere), "recordingGroupName", QStringLiteral("a"));
    const QVariantMap addPath = with(pathMap(somewhere), "recordingGroupID", unknownId);
    const QVariantMap whole = groupMap(QStringLiteral("a"), {});
    const QVariantMap update = updateMap(unknownId, {});
    const QVariantMap camera{{QStringLiteral("camName"), QStringLiteral("c")}, {QStringLiteral("streams"), 1}};

    row("a map", "getRecordingGroup", QVariantMap());
    row("a map", "station.listCameras", ids);
    for (const char *command : {"retrieveRecordingGroupTreeModel", "addRecordingGroup", "addPathToRecordingGroup",
                                "removePathFromRecordingGroup", "removeRecordingGroup", "updateRecordingGroup",
                                "addRecordingGroupWithCompleteInfo", "station.addCamera", "station.removeCamera"}) {
        row("nothing", command, {});
        row("a list", command, QVariantList{QVariantMap()});
        row("an empty map", command, QVariantMap());
    }
    row("a number", "retrieveRecordingGroupTreeModel", QVariantMap{{QStringLiteral("relayPath"), 1}});
    row("no path", "addRecordingGroup", without(addGroup, "path"));
    row("no kind", "addRecordingGroup", without(addGroup, "pathType"));
    row("no reserve", "addRecordingGroup", without(addGroup, "reserveSpace"));
    row("no name", "addRecordingGroup", without(addGroup, "recordingGroupName"));
    row("a name that is a number", "addRecordingGroup", with(addGroup, "recordingGroupName", 1));
    row("a kind that is text", "addRecordingGroup", with(addGroup, "pathType", QStringLiteral("0")));
    row("a kind that is huge", "addRecordingGroup", with(addGroup, "pathType", Q_INT64_C(1) << 32));
    row("a broken reserve", "addRecordingGroup", with(addGroup, "reserveSpace", 1024.5));
    row("an endless reserve", "addRecordingGroup", with(addGroup, "reserveSpace", qInf()));
    row("no number", "addRecordingGroup", with(addGroup, "reserveSpace", qQNaN()));
    row("a huge reserve", "addRecordingGroup", with(addGroup, "reserveSpace", 9223372036854775808.0));
    row("an unsigned huge reserve", "addRecordingGroup", with(addGroup, "reserveSpace", ~Q_UINT64_C(0)));
    row("a reserve that is a flag", "addRecordingGroup", with(addGroup, "reserveSpace", true));
    row("no id", "addPathToRecordingGroup", without(addPath, "recordingGroupID"));
    row("a path that is bytes", "addPathToRecordingGroup", with(addPath, "path", QByteArray("/somewhere")));
    row("no ids", "removeRecordingGroup", with(ids, "recordingGroupIDList", QStringList()));
    row("an id alone", "removeRecordingGroup", with(ids, "recordingGroupIDList", unknownId));
    row("an id that is a number", "removeRecordingGroup", with(ids, "recordingGroupIDList", QVariantList{1}));
    row("no paths", "removePathFromRecordingGroup", with(pairs, "recordingGroupPathList", QStringList()));
    row("one path more", "removePathFromRecordingGroup",
        with(pairs, "recordingGroupPathList", QStringList{somewhere, somewhere}));
    row("nothing to remove", "removePathFromRecordingGroup",
        QVariantMap{{QStringLiteral("recordingGroupIDList"), QStringList()},
                    {QStringLiteral("recordingGroupPathList"), QStringList()}});
    row("no flag", "addRecordingGroupWithCompleteInfo", without(whole, "recordingGroupReservedTimeEnabled"));
    row("a flag that is a number", "addRecordingGroupWithCompleteInfo",
        with(whole, "recordingGroupReservedTimeEnabled", 1));
    row("no time", "addRecordingGroupWithCompleteInfo", without(whole, "recordingGroupReservedTime"));
    row("paths that are text", "addRecordingGroupWithCompleteInfo",
        with(whole, "pathInfoList", QStringList{somewhere}));
    row("a path without recovery's type", "addRecordingGroupWithCompleteInfo",
        with(whole, "pathInfoList", QVariantList{with(pathMap(somewhere), "isRecoveryMode", 0)}));
    row("a path without reserve", "addRecordingGroupWithCompleteInfo",
        with(whole, "pathInfoList", QVariantList{without(pathMap(somewhere), "reserveSpace")}));
    row("a member without camera", "addRecordingGroupWithCompleteInfo",
        with(whole, "deviceInfos", QVariantList{without(memberMap(QStringLiteral("Yard"), 0), "camName")}));
    row("a member without stream", "addRecordingGroupWithCompleteInfo",
        with(whole, "deviceInfos", QVariantList{without(memberMap(QStringLiteral("Yard"), 0), "streamIndex")}));
    row("no id", "updateRecordingGroup", without(update, "recordingGroupID"));
    row("settings in a list", "updateRecordingGroup", with(update, "updateSetRecordingGroup", QVariantList()));
    row("a name that is a number", "updateRecordingGroup",
        with(update, "updateSetRecordingGroup", QVariantMap{{QStringLiteral("recordingGroupName"), 1}}));
    row("nodes that are text", "updateRecordingGroup",
        with(update, "updateSetRecordingGroup",
             QVariantMap{{QStringLiteral("recordingGroupNodeIdList"), QStringLiteral("a")}}));
    row("cameras that are text", "updateRecordingGroup",
        with(update, "updateRmCameraList", QStringList{QStringLiteral("Yard")}));
    row("paths that are maps", "updateRecordingGroup",
        with(update, "updateRmPathList", QVariantList{pathMap(somewhere)}));
    row("a change without path", "updateRecordingGroup",
        with(update, "updateSetPathList", QVariantList{without(pathMap(somewhere), "path")}));
    row("a change to a text", "updateRecordingGroup",
        with(update, "updateSetPathList", QVariantList{with(pathMap(somewhere), "reserveSpace", somewhere)}));
    row("no streams", "station.addCamera", with(camera, "streams", 0));
    row("17 streams", "station.addCamera", with(camera, "streams", 17));
    row("no number of streams", "station.addCamera", without(camera, "streams"));
}

void StationGroupRequestsTest::badRequestsAreRefused()
{
    QFETCH(QString, command);
    QFETCH(QVariant, data);
    QCOMPARE(m_station->text(command, data), QStringLiteral("BadRequest invalid"));
    QCOMPARE(state(), QStringLiteral("0 QVariantList []"));
}

void StationGroupRequestsTest::camerasAreAddedAndRemoved()
{
    const QString list = QStringLiteral("station.listCameras");
    QCOMPARE(m_station->text(list),
             QStringLiteral("0 QVariantList [{camName: QString \"Gate\", streams: int 1}, "
                            "{camName: QString \"Yard\", streams: int 3}]"));
    QCOMPARE(m_station->text(QStringLiteral("station.removeCamera"),
                             QVariantMap{{QStringLiteral("camName"), QStringLiteral("Gate")}}),
             QStringLiteral("0 invalid"));
    QCOMPARE(m_station->text(list), QStringLiteral("0 QVariantList [{camName: QString \"Yard\", streams: int 3}]"));
}

void StationGroupRequestsTest::camerasAreRefused_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("camera");
    QTest::addColumn<QString>("returnCode");
    const QString add = QStringLiteral("station.addCamera");
    const QString remove = QStringLiteral("station.removeCamera");
    QTest::newRow("there") << add << QStringLiteral("Yard") << QStringLiteral("CameraExists");
    QTest::newRow("other capitals") << add << QStringLiteral("yard") << QStringLiteral("0");
    QTest::newRow("no name") << add << QString() << QStringLiteral("EmptyCameraName");
    QTest::newRow("a blank name") << add << QStringLiteral(" ") << QStringLiteral("EmptyCameraName");
    QTest::newRow("too long") << add << QString(241, u'a') << QStringLiteral("NameRefused");
    QTest::newRow("not there") << remove << QStringLiteral("yard") << QStringLiteral("CameraNotFound");
    QTest::newRow("a member") << remove << QStringLiteral("Yard") << QStringLiteral("CameraInUse");
}

void StationGroupRequestsTest::camerasAreRefused()
{
    QFETCH(QString, command);
    QFETCH(QString, camera);
    QFETCH(QString, returnCode);
    add(groupMap(QStringLiteral("a"), {pathMap(path(QStringLiteral("disk/a")))},
                 {memberMap(QStringLiteral("Yard"), 0)}));
    const QString before = m_station->text(QStringLiteral("station.listCameras"));
    const QVariantMap data{{QStringLiteral("camName"), camera}, {QStringLiteral("streams"), 16}};
    QCOMPARE(m_station->text(command, data), returnCode + QStringLiteral(" invalid"));
    QCOMPARE(m_station->text(QStringLiteral("station.listCameras")) == before, returnCode != QStringLiteral("0"));
}

QTEST_GUILESS_MAIN(StationGroupRequestsTest)
#include "tst_station_group_requests.moc"
