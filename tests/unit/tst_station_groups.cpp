#include "GroupStation.h"

#include <QJsonDocument>
#include <QRegularExpression>
#include <QTest>
#include <QUuid>

/// Recording groups are added, as a client sends it, on real folders and a real database.
class StationGroupsTest : public QObject, private GroupStation
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aStationBeginsWithout();
    void aGroupIsAdded();
    void aGroupIsAddedWithEverything();
    void aNumberMayBeOfAnyType();
    void addingIsRefusedWithACode();
    void addingIsRefusedWithEveryError();
    void aPathIsAdded();
};

void StationGroupsTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    setUp();
}

void StationGroupsTest::cleanup()
{
    tearDown();
}

void StationGroupsTest::aStationBeginsWithout()
{
    QCOMPARE(m_station->text(QStringLiteral("getRecordingGroup")), QStringLiteral("0 QVariantList []"));
    QCOMPARE(state(), QStringLiteral("0 QVariantList []"));
}

void StationGroupsTest::aGroupIsAdded()
{
    QVariantMap request = pathMap(path(QStringLiteral("disk/a/")), 2048);
    request.remove(QStringLiteral("isRecoveryMode"));
    request.insert(QStringLiteral("recordingGroupName"), QStringLiteral("Höfe"));
    const StationReply reply = m_station->ask(QStringLiteral("addRecordingGroup"), request);
    const QString id = reply.data.toMap().value(QStringLiteral("recordingGroupID")).toString();
    QCOMPARE(StationClient::replyText(reply), QStringLiteral("0 {recordingGroupID: QString \"%1\"}").arg(id));
    QCOMPARE(QUuid(id).toString(), id);
    QVERIFY(!QUuid(id).isNull());

    QCOMPARE(m_station->text(QStringLiteral("getRecordingGroup")),
             QStringLiteral("0 QVariantList [{recordingGroupID: QString \"%1\", "
                            "recordingGroupNASPathList: QStringList [], recordingGroupName: QString \"Höfe\", "
                            "recordingGroupNodeIdList: QStringList [], "
                            "recordingGroupPathList: QStringList [\"%2\"]}]")
                 .arg(id, path(QStringLiteral("disk/a"))));
    QCOMPARE(QDir(path(QStringLiteral("disk/a"))).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList());
}

void StationGroupsTest::aGroupIsAddedWithEverything()
{
    const QString first = add(groupMap(QStringLiteral("z"), {pathMap(path(QStringLiteral("disk/b")))}, {}, false, 30));
    const QString second = add(groupMap(
        QStringLiteral("a"),
        {pathMap(path(QStringLiteral("small/c")), 1024), pathMap(path(QStringLiteral("disk/a")), 4096, true)},
        {memberMap(QStringLiteral("Yard"), 2, true), memberMap(QStringLiteral("Gate"), 0, false, true)}, true, 90));
    QVERIFY(first != second);
    const QString expected =
        QStringLiteral("0 QVariantList ["
                       "{recordingGroupID: QString \"%1\", recordingGroupMemberList: QVariantList [], "
                       "recordingGroupNASPathList: QStringList [], recordingGroupName: QString \"z\", "
                       "recordingGroupNodeIdList: QStringList [], recordingGroupPathList: QStringList [\"%3/b\"], "
                       "recordingGroupRecoveryPathList: QStringList [], recordingGroupReservedTime: int 0, "
                       "relayPath: QString \"\", reserveSpace: QVariantList [qlonglong 0]}, "
                       "{recordingGroupID: QString \"%2\", recordingGroupMemberList: QVariantList ["
                       "{camName: QString \"Yard\", enableSeamless: bool false, enableTimeShift: bool true, "
                       "streamIndex: int 2}, "
                       "{camName: QString \"Gate\", enableSeamless: bool true, enableTimeShift: bool false, "
                       "streamIndex: int 0}], "
                       "recordingGroupNASPathList: QStringList [], recordingGroupName: QString \"a\", "
                       "recordingGroupNodeIdList: QStringList [], "
                       "recordingGroupPathList: QStringList [\"%4/c\", \"%3/a\"], "
                       "recordingGroupRecoveryPathList: QStringList [\"%3/a\"], "
                       "recordingGroupReservedTime: int 90, relayPath: QString \"\", "
                       "reserveSpace: QVariantList [qlonglong 1024, qlonglong 4096]}]")
            .arg(first, second, path(QStringLiteral("disk")), path(QStringLiteral("small")));
    QCOMPARE(state(), expected);
}

void StationGroupsTest::aNumberMayBeOfAnyType()
{
    const QVariantMap group = groupMap(QStringLiteral("a"), {pathMap(path(QStringLiteral("disk/a")), 2048, true)},
                                       {memberMap(QStringLiteral("Yard"), 1)}, true, 60);
    const QVariant fromJson = QJsonDocument::fromJson(QJsonDocument::fromVariant(group).toJson()).toVariant();
    QCOMPARE(add(fromJson.toMap()).size(), unknownId.size());
    QVariantMap numbers = groupMap(QStringLiteral("b"), {pathMap(path(QStringLiteral("disk/b")))});
    numbers.insert(QStringLiteral("recordingGroupReservedTime"), 7.0);
    QVariantMap otherPath = pathMap(path(QStringLiteral("small/c")));
    otherPath.insert(QStringLiteral("reserveSpace"), 1024.0);
    otherPath.insert(QStringLiteral("pathType"), 0u);
    numbers.insert(QStringLiteral("pathInfoList"), QVariantList{otherPath});
    QCOMPARE(add(numbers).size(), unknownId.size());
    otherPath.insert(QStringLiteral("path"), path(QStringLiteral("disk/a")));
    otherPath.insert(QStringLiteral("reserveSpace"), 1024);
    otherPath.insert(QStringLiteral("recordingGroupName"), QStringLiteral("c"));
    QCOMPARE(m_station->ask(QStringLiteral("addRecordingGroup"), otherPath).returnCode, QStringLiteral("0"));
    QVERIFY2(state().contains(QStringLiteral("[qlonglong 1024]")), qPrintable(state()));
}

void StationGroupsTest::addingIsRefusedWithACode()
{
    QCOMPARE(add(groupMap(QStringLiteral("a"), {pathMap(path(QStringLiteral("disk/a")))})).size(), unknownId.size());
    const QString before = state();
    QVariantMap request = pathMap(path(QStringLiteral("nowhere")), 1000);
    request.insert(QStringLiteral("recordingGroupName"), QStringLiteral("a"));
    QCOMPARE(m_station->text(QStringLiteral("addRecordingGroup"), request),
             QStringLiteral("RecordingGroupNameInUse invalid"));
    request.insert(QStringLiteral("recordingGroupName"), QStringLiteral("b"));
    QCOMPARE(m_station->text(QStringLiteral("addRecordingGroup"), request),
             QStringLiteral("DirectoryNotFound invalid"));
    request.insert(QStringLiteral("path"), path(QStringLiteral("disk/a")));
    QCOMPARE(m_station->text(QStringLiteral("addRecordingGroup"), request),
             QStringLiteral("ReservedSpaceRefused invalid"));
    request.insert(QStringLiteral("reserveSpace"), 11 * 1024);
    QCOMPARE(m_station->text(QStringLiteral("addRecordingGroup"), request),
             QStringLiteral("ReservedSpaceExceedsVolume invalid"));
    request.insert(QStringLiteral("path"), QStringLiteral("//nas/rec"));
    request.insert(QStringLiteral("pathType"), 1);
    QCOMPARE(m_station->text(QStringLiteral("addRecordingGroup"), request),
             QStringLiteral("NasServerNotFound invalid"));
    QCOMPARE(state(), before);
}

void StationGroupsTest::addingIsRefusedWithEveryError()
{
    QVERIFY(makeFile(path(QStringLiteral("disk/file")), 0));
    const QVariantMap group = groupMap(
        QStringLiteral(" "), {pathMap(path(QStringLiteral("disk/a"))), pathMap(path(QStringLiteral("disk/file")), -1)},
        {memberMap(QStringLiteral("Yard"), 3)}, true, 0);
    const QString error = QStringLiteral("{element: QString \"%1\", index: int %2, returnCode: QString \"%3\", "
                                         "value: QString \"%4\"}");
    const QStringList errors{
        error.arg(QStringLiteral("recordingGroupName"), QStringLiteral("-1"), QStringLiteral("EmptyRecordingGroupName"),
                  QStringLiteral(" ")),
        error.arg(QStringLiteral("recordingGroupReservedTime"), QStringLiteral("-1"),
                  QStringLiteral("ReservedTimeRefused"), QStringLiteral("0")),
        error.arg(QStringLiteral("pathInfoList"), QStringLiteral("1"), QStringLiteral("NotADirectory"),
                  path(QStringLiteral("disk/file"))),
        error.arg(QStringLiteral("pathInfoList"), QStringLiteral("1"), QStringLiteral("ReservedSpaceRefused"),
                  path(QStringLiteral("disk/file"))),
        error.arg(QStringLiteral("deviceInfos"), QStringLiteral("0"), QStringLiteral("StreamNotFound"),
                  QStringLiteral("Yard")),
    };
    QCOMPARE(m_station->text(QStringLiteral("addRecordingGroupWithCompleteInfo"), group),
             QStringLiteral("EmptyRecordingGroupName {errorAction: QVariantList [%1]}")
                 .arg(errors.join(QStringLiteral(", "))));
    QCOMPARE(state(), QStringLiteral("0 QVariantList []"));
}

void StationGroupsTest::aPathIsAdded()
{
    const QString id = add(groupMap(QStringLiteral("a"), {pathMap(path(QStringLiteral("disk/a")))}));
    QVariantMap request = pathMap(path(QStringLiteral("small/c")), 2048);
    request.remove(QStringLiteral("isRecoveryMode"));
    request.insert(idMap(id));
    QCOMPARE(m_station->text(QStringLiteral("addPathToRecordingGroup"), request), QStringLiteral("0 invalid"));
    const QString after = state();
    QVERIFY2(after.contains(QStringLiteral("reserveSpace: QVariantList [qlonglong 0, qlonglong 2048]")),
             qPrintable(after));
    QCOMPARE(m_station->text(QStringLiteral("addPathToRecordingGroup"), request),
             QStringLiteral("PathInGroup invalid"));
    request.insert(idMap(unknownId));
    QCOMPARE(m_station->text(QStringLiteral("addPathToRecordingGroup"), request),
             QStringLiteral("RecordingGroupNotFound invalid"));
    QCOMPARE(state(), after);
}

QTEST_GUILESS_MAIN(StationGroupsTest)
#include "tst_station_groups.moc"
