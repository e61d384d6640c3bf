#include "GroupStation.h"

#include <QRegularExpression>
#include <QTest>

/// Recording groups change and go, and what becomes of their folders.
class StationGroupUpdatesTest : public QObject, private GroupStation
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aGroupIsUpdated();
    void anUpdateMayBeEmpty();
    void anUpdateIsRefusedAsAWhole();
    void pathsAreRemovedInParts();
    void groupsAreRemovedInParts();
    void bytesBehindLinksAreNotCounted();
    void aRenamedGroupKeepsItsFolder();
    void twoGroupsNeverShareAFolder();
};

void StationGroupUpdatesTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    setUp();
}

void StationGroupUpdatesTest::cleanup()
{
    tearDown();
}

void StationGroupUpdatesTest::aGroupIsUpdated()
{
    const QString id =
        add(groupMap(QStringLiteral("a"), {pathMap(path(QStringLiteral("disk/a")), 1024)},
                     {memberMap(QStringLiteral("Yard"), 0), memberMap(QStringLiteral("Yard"), 1)}, false, 5));
    const QVariantMap parts{
        {QStringLiteral("updateRmCameraList"),
         QVariantList{QVariantMap{{QStringLiteral("camName"), QStringLiteral("Yard")}}}},
        {QStringLiteral("updateAddCameraList"), QVariantList{memberMap(QStringLiteral("Yard"), 1, true, true)}},
        {QStringLiteral("updateRmPathList"), QStringList{path(QStringLiteral("disk/a"))}},
        {QStringLiteral("updateAddPathList"), QVariantList{pathMap(path(QStringLiteral("disk/b")), 0)}},
        {QStringLiteral("updateSetPathList"),
         QVariantList{QVariantMap{{QStringLiteral("path"), path(QStringLiteral("disk/b"))},
                                  {QStringLiteral("pathType"), 0},
                                  {QStringLiteral("reserveSpace"), 10240},
                                  {QStringLiteral("isRecoveryMode"), true}}}},
        {QStringLiteral("updateSetRecordingGroup"),
         QVariantMap{{QStringLiteral("recordingGroupName"), QStringLiteral("b")},
                     {QStringLiteral("recordingGroupReservedTimeEnabled"), true},
                     {QStringLiteral("recordingGroupReservedTime"), 45},
                     {QStringLiteral("recordingGroupNodeIdList"), QStringList{QStringLiteral("node 1")}}}},
    };
    QCOMPARE(update(id, parts), QStringLiteral("0 QVariantList []"));
    QCOMPARE(state(),
             QStringLiteral("0 QVariantList [{recordingGroupID: QString \"%1\", "
                            "recordingGroupMemberList: QVariantList [{camName: QString \"Yard\", "
                            "enableSeamless: bool true, enableTimeShift: bool true, streamIndex: int 1}], "
                            "recordingGroupNASPathList: QStringList [], recordingGroupName: QString \"b\", "
                            "recordingGroupNodeIdList: QStringList [\"node 1\"], "
                            "recordingGroupPathList: QStringList [\"%2\"], "
                            "recordingGroupRecoveryPathList: QStringList [\"%2\"], "
                            "recordingGroupReservedTime: int 45, relayPath: QString \"\", "
                            "reserveSpace: QVariantList [qlonglong 10240]}]")
                 .arg(id, path(QStringLiteral("disk/b"))));
}

void StationGroupUpdatesTest::anUpdateMayBeEmpty()
{
    const QString id = add(groupMap(QStringLiteral("a"), {pathMap(path(QStringLiteral("disk/a")))}));
    const QString before = state();
    QCOMPARE(update(id, {}), QStringLiteral("0 QVariantList []"));
    QCOMPARE(m_station->text(QStringLiteral("updateRecordingGroup"), idMap(id)), QStringLiteral("0 QVariantList []"));
    QCOMPARE(state(), before);
}

void StationGroupUpdatesTest::anUpdateIsRefusedAsAWhole()
{
    const QString id = add(groupMap(QStringLiteral("a"), {pathMap(path(QStringLiteral("disk/a")))},
                                    {memberMap(QStringLiteral("Gate"), 0)}));
    add(groupMap(QStringLiteral("b"), {}));
    const QString before = state();
    const QString error = QStringLiteral("{element: QString \"%1\", index: int %2, returnCode: QString \"%3\", "
                                         "value: QString \"%4\"}");
    QCOMPARE(update(unknownId, {}),
             QStringLiteral("RecordingGroupNotFound QVariantList [%1]")
                 .arg(error.arg(QStringLiteral("recordingGroupID"), QStringLiteral("-1"),
                                QStringLiteral("RecordingGroupNotFound"), unknownId)));
    const QVariantMap parts{
        {QStringLiteral("updateAddCameraList"), QVariantList{memberMap(QStringLiteral("Yard"), 1)}},
        {QStringLiteral("updateRmPathList"), QVariantList{path(QStringLiteral("disk/a"))}},
        {QStringLiteral("updateSetRecordingGroup"),
         QVariantMap{{QStringLiteral("recordingGroupName"), QStringLiteral("b")}}},
    };
    QCOMPARE(update(id, parts),
             QStringLiteral("LastPathOfGroup QVariantList [%1, %2]")
                 .arg(error.arg(QStringLiteral("updateRmPathList"), QStringLiteral("0"),
                                QStringLiteral("LastPathOfGroup"), path(QStringLiteral("disk/a"))),
                      error.arg(QStringLiteral("recordingGroupName"), QStringLiteral("-1"),
                                QStringLiteral("RecordingGroupNameInUse"), QStringLiteral("b"))));
    QCOMPARE(state(), before);
}

void StationGroupUpdatesTest::pathsAreRemovedInParts()
{
    const QString disk = path(QStringLiteral("disk/a"));
    const QString small = path(QStringLiteral("small/c"));
    const QString id =
        add(groupMap(QStringLiteral("a/b"), {pathMap(disk), pathMap(small)}, {memberMap(QStringLiteral("Gate"), 0)}));
    QVERIFY(makeFile(disk + QStringLiteral("/a%2Fb/Gate/2026-01-01/1"), 1000));
    QVERIFY(makeFile(small + QStringLiteral("/a%2Fb/Gate/2026-01-01/1"), 30));
    QVERIFY(makeFile(small + QStringLiteral("/other/file"), 5));
    const QVariantMap request{
        {QStringLiteral("recordingGroupIDList"), QStringList{id, unknownId, id, id}},
        {QStringLiteral("recordingGroupPathList"), QStringList{small + u'/', small, small, disk}},
    };
    QStringList texts;
    const QList<StationReply> parts = m_station->parts(QStringLiteral("removePathFromRecordingGroup"), request);
    for (const StationReply &part : parts)
        texts.append(StationClient::replyText(part));
    const QString data = QStringLiteral("path: QString \"%1\", recordingGroupID: QString \"%2\"}");
    QCOMPARE(texts,
             (QStringList{
                 QStringLiteral("0 {keptBytes: qlonglong 30, ") + data.arg(small + u'/', id) + QStringLiteral(" ..."),
                 QStringLiteral("RecordingGroupNotFound {") + data.arg(small, unknownId) + QStringLiteral(" ..."),
                 QStringLiteral("PathNotInGroup {") + data.arg(small, id) + QStringLiteral(" ..."),
                 QStringLiteral("LastPathOfGroup {") + data.arg(disk, id),
             }));
    QVERIFY2(state().contains(QStringLiteral("PathList: QStringList [\"%1\"]").arg(disk)), qPrintable(state()));
    QVERIFY(QFile::exists(small + QStringLiteral("/a%2Fb/Gate/2026-01-01/1")));
}

void StationGroupUpdatesTest::groupsAreRemovedInParts()
{
    const QString disk = path(QStringLiteral("disk/a"));
    const QString small = path(QStringLiteral("small/c"));
    const QString first =
        add(groupMap(QStringLiteral("a"), {pathMap(disk), pathMap(small)}, {memberMap(QStringLiteral("Gate"), 0)}));
    const QString second = add(groupMap(QStringLiteral("b"), {pathMap(disk)}));
    const QString third = add(groupMap(QStringLiteral("c"), {}));
    QVERIFY(makeFile(disk + QStringLiteral("/a/Gate/2026-01-01/1"), 1000));
    QVERIFY(makeFile(disk + QStringLiteral("/a/Gate/2026-01-02/.hidden"), 200));
    QVERIFY(makeFile(small + QStringLiteral("/a/Gate/2026-01-01/1"), 30));
    QVERIFY(makeFile(disk + QStringLiteral("/b/file"), Q_INT64_C(5) << 30)); // no bytes on the disk
    const QVariantMap request{{QStringLiteral("recordingGroupIDList"), QVariantList{first, first, second}}};
    QStringList texts;
    const QList<StationReply> parts = m_station->parts(QStringLiteral("removeRecordingGroup"), request);
    for (const StationReply &part : parts)
        texts.append(StationClient::replyText(part));
    QCOMPARE(texts,
             (QStringList{
                 QStringLiteral("0 {keptBytes: qlonglong 1230, recordingGroupID: QString \"%1\"} ...").arg(first),
                 QStringLiteral("RecordingGroupNotFound {recordingGroupID: QString \"%1\"} ...").arg(first),
                 QStringLiteral("0 {keptBytes: qlonglong 5368709120, recordingGroupID: QString \"%1\"}").arg(second),
             }));
    QVERIFY(QFile::exists(disk + QStringLiteral("/a/Gate/2026-01-02/.hidden")));
    const QVariantList left = m_station->ask(QStringLiteral("getRecordingGroup")).data.toList();
    QCOMPARE(left.size(), 1);
    QCOMPARE(left.front().toMap().value(QStringLiteral("recordingGroupID")).toString(), third);
}

void StationGroupUpdatesTest::bytesBehindLinksAreNotCounted()
{
    const QString disk = path(QStringLiteral("disk/a"));
    const QString first = add(groupMap(QStringLiteral("a"), {pathMap(disk)}));
    const QString second = add(groupMap(QStringLiteral("b"), {pathMap(disk)}));
    QVERIFY(makeFile(path(QStringLiteral("elsewhere/file")), 1000));
    QVERIFY(makeFile(disk + QStringLiteral("/a/file"), 1));
    QVERIFY(QFile::link(path(QStringLiteral("elsewhere")), disk + QStringLiteral("/a/folder")));
    QVERIFY(QFile::link(path(QStringLiteral("elsewhere/file")), disk + QStringLiteral("/a/link")));
    QVERIFY(QFile::link(path(QStringLiteral("elsewhere")), disk + QStringLiteral("/b")));
    const QList<StationReply> parts =
        m_station->parts(QStringLiteral("removeRecordingGroup"),
                         QVariantMap{{QStringLiteral("recordingGroupIDList"), QStringList{first, second}}});
    QCOMPARE(parts.size(), 2);
    QCOMPARE(parts.at(0).data.toMap().value(QStringLiteral("keptBytes")), QVariant(Q_INT64_C(1)));
    QCOMPARE(parts.at(1).data.toMap().value(QStringLiteral("keptBytes")), QVariant(Q_INT64_C(0)));
}

void StationGroupUpdatesTest::aRenamedGroupKeepsItsFolder()
{
    const QString disk = path(QStringLiteral("disk/a"));
    const QString id = add(groupMap(QStringLiteral("before"), {pathMap(disk)}));
    QVERIFY(makeFile(disk + QStringLiteral("/before/file"), 7));
    QVERIFY(makeFile(disk + QStringLiteral("/after/file"), 1000));
    const QVariantMap name{{QStringLiteral("recordingGroupName"), QStringLiteral("after")}};
    QCOMPARE(update(id, {{QStringLiteral("updateSetRecordingGroup"), name}}), QStringLiteral("0 QVariantList []"));
    QVERIFY(QFile::exists(disk + QStringLiteral("/before/file")));
    QCOMPARE(m_station->text(QStringLiteral("removeRecordingGroup"),
                             QVariantMap{{QStringLiteral("recordingGroupIDList"), QStringList{id}}}),
             QStringLiteral("0 {keptBytes: qlonglong 7, recordingGroupID: QString \"%1\"}").arg(id));
}

void StationGroupUpdatesTest::twoGroupsNeverShareAFolder()
{
    const QString disk = path(QStringLiteral("disk/a"));
    const QString first = add(groupMap(QStringLiteral("a"), {pathMap(disk)}));
    const QVariantMap name{{QStringLiteral("recordingGroupName"), QStringLiteral("b")}};
    QCOMPARE(update(first, {{QStringLiteral("updateSetRecordingGroup"), name}}), QStringLiteral("0 QVariantList []"));
    const QString second = add(groupMap(QStringLiteral("a"), {pathMap(disk)}));
    const QString third = add(groupMap(QStringLiteral("A"), {pathMap(disk)}));
    QVERIFY(makeFile(disk + QStringLiteral("/a/file"), 1));
    QVERIFY(makeFile(disk + QStringLiteral("/a-2/file"), 20));
    QVERIFY(makeFile(disk + QStringLiteral("/A-3/file"), 300));
    const QList<StationReply> parts =
        m_station->parts(QStringLiteral("removeRecordingGroup"),
                         QVariantMap{{QStringLiteral("recordingGroupIDList"), QStringList{first, second, third}}});
    QList<qint64> bytes;
    for (const StationReply &part : parts)
        bytes.append(part.data.toMap().value(QStringLiteral("keptBytes")).toLongLong());
    QCOMPARE(bytes, (QList<qint64>{1, 20, 300}));
}

QTEST_GUILESS_MAIN(StationGroupUpdatesTest)
#include "tst_station_group_updates.moc"
