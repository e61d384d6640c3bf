#include "StationClient.h"
#include "StationData.h"
#include "groups/GroupCommands.h"
#include "groups/LocalPaths.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QUuid>

#include <memory>
#include <utility>

namespace {
const QString unknownId = QStringLiteral("{00000000-0000-0000-0000-000000000000}");

bool makeFile(const QString &path, qint64 size)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) && file.resize(size);
}

QVariantMap pathMap(const QString &path, qint64 reserve = 0, bool isRecovery = false, int kind = 0)
{
    return {
        {QStringLiteral("path"), path},
        {QStringLiteral("pathType"), kind},
        {QStringLiteral("reserveSpace"), reserve},
        {QStringLiteral("isRecoveryMode"), isRecovery},
    };
}

QVariantMap memberMap(const QString &camera, int stream, bool timeShift = false, bool seamless = false)
{
    return {
        {QStringLiteral("camName"), camera},
        {QStringLiteral("streamIndex"), stream},
        {QStringLiteral("enableTimeShift"), timeShift},
        {QStringLiteral("enableSeamless"), seamless},
    };
}

QVariantMap groupMap(const QString &name, const QVariantList &paths, const QVariantList &members = {},
                     bool enabled = false, int minutes = 0)
{
    return {
        {QStringLiteral("recordingGroupName"), name},
        {QStringLiteral("recordingGroupReservedTimeEnabled"), enabled},
        {QStringLiteral("recordingGroupReservedTime"), minutes},
        {QStringLiteral("pathInfoList"), paths},
        {QStringLiteral("deviceInfos"), members},
    };
}

/// What the plug-in sends: all six parts, most of them empty.
QVariantMap updateMap(const QString &id, const QVariantMap &parts)
{
    QVariantMap map{{QStringLiteral("recordingGroupID"), id},
                    {QStringLiteral("updateSetRecordingGroup"), QVariantMap()}};
    for (const char *list :
         {"updateRmCameraList", "updateAddCameraList", "updateRmPathList", "updateAddPathList", "updateSetPathList"})
        map.insert(QString::fromLatin1(list), QVariantList());
    map.insert(parts);
    return map;
}

QVariantMap idMap(const QString &id)
{
    return {{QStringLiteral("recordingGroupID"), id}};
}
} // namespace

/// The commands about recording groups and cameras, as a client sends them, on real folders and a real database.
class StationGroupsTest : public QObject
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
    void aGroupIsUpdated();
    void anUpdateMayBeEmpty();
    void anUpdateIsRefusedAsAWhole();
    void pathsAreRemovedInParts();
    void groupsAreRemovedInParts();
    void bytesBehindLinksAreNotCounted();
    void aRenamedGroupKeepsItsFolder();
    void twoGroupsNeverShareAFolder();
    void theTreeIsForTheStationItself_data();
    void theTreeIsForTheStationItself();
    void badRequestsAreRefused_data();
    void badRequestsAreRefused();
    void camerasAreAddedAndRemoved();
    void camerasAreRefused_data();
    void camerasAreRefused();
    void everythingIsThereForTheNextStation();
    void twoStationsOnOneDatabaseTakeTurns();
    void twoStationsAtOnceReserveNoMoreThanThereIs();
    void aDatabaseThatCannotBeOpenedIsAFailure();
    void whoeverAsksIsToldOfEveryEdit();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    std::unique_ptr<StationClient> makeStation(const QString &relayPath = {}) const;
    QString add(const QVariantMap &group);
    QString state() { return m_station->text(QStringLiteral("retrieveRecordingGroupTreeModel"), ownTree()); }
    static QVariantMap ownTree() { return {{QStringLiteral("relayPath"), QString()}}; }
    QString update(const QString &id, const QVariantMap &parts)
    {
        return m_station->text(QStringLiteral("updateRecordingGroup"), updateMap(id, parts));
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<StationClient> m_station;
};

void StationGroupsTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_folder = std::make_unique<QTemporaryDir>();
    for (const char *name : {"data", "disk/a", "disk/b", "small/c"})
        QVERIFY(QDir().mkpath(path(QString::fromLatin1(name))));
    m_station = makeStation();
    for (const auto &[name, streams] : {std::pair("Yard", 3), std::pair("Gate", 1)}) {
        const QVariantMap camera{{QStringLiteral("camName"), QString::fromLatin1(name)},
                                 {QStringLiteral("streams"), streams}};
        QCOMPARE(m_station->text(QStringLiteral("station.addCamera"), camera), QStringLiteral("0 invalid"));
    }
}

void StationGroupsTest::cleanup()
{
    m_station.reset();
    m_folder.reset();
}

std::unique_ptr<StationClient> StationGroupsTest::makeStation(const QString &relayPath) const
{
    constexpr qint64 gigabyte = Q_INT64_C(1) << 30;
    const QList<Volume> volumes{
        {path(QStringLiteral("disk")), QStringLiteral("Disk"), 10 * gigabyte, gigabyte, false, false},
        {path(QStringLiteral("small")), QStringLiteral("Small"), 2 * gigabyte, gigabyte, false, false},
    };
    return std::make_unique<StationClient>(path(QStringLiteral("data")), volumes, relayPath);
}

/// Adds a group; its id, or what the station says instead.
QString StationGroupsTest::add(const QVariantMap &group)
{
    const StationReply reply = m_station->ask(QStringLiteral("addRecordingGroupWithCompleteInfo"), group);
    const QString id = reply.data.toMap().value(QStringLiteral("recordingGroupID")).toString();
    return id.isEmpty() ? StationClient::replyText(reply) : id;
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

void StationGroupsTest::aGroupIsUpdated()
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

void StationGroupsTest::anUpdateMayBeEmpty()
{
    const QString id = add(groupMap(QStringLiteral("a"), {pathMap(path(QStringLiteral("disk/a")))}));
    const QString before = state();
    QCOMPARE(update(id, {}), QStringLiteral("0 QVariantList []"));
    QCOMPARE(m_station->text(QStringLiteral("updateRecordingGroup"), idMap(id)), QStringLiteral("0 QVariantList []"));
    QCOMPARE(state(), before);
}

void StationGroupsTest::anUpdateIsRefusedAsAWhole()
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

void StationGroupsTest::pathsAreRemovedInParts()
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

void StationGroupsTest::groupsAreRemovedInParts()
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

void StationGroupsTest::bytesBehindLinksAreNotCounted()
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

void StationGroupsTest::aRenamedGroupKeepsItsFolder()
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

void StationGroupsTest::twoGroupsNeverShareAFolder()
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

void StationGroupsTest::theTreeIsForTheStationItself_data()
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

void StationGroupsTest::theTreeIsForTheStationItself()
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

void StationGroupsTest::badRequestsAreRefused_data()
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

void StationGroupsTest::badRequestsAreRefused()
{
    QFETCH(QString, command);
    QFETCH(QVariant, data);
    QCOMPARE(m_station->text(command, data), QStringLiteral("BadRequest invalid"));
    QCOMPARE(state(), QStringLiteral("0 QVariantList []"));
}

void StationGroupsTest::camerasAreAddedAndRemoved()
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

void StationGroupsTest::camerasAreRefused_data()
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

void StationGroupsTest::camerasAreRefused()
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

void StationGroupsTest::everythingIsThereForTheNextStation()
{
    add(groupMap(QStringLiteral("a"), {pathMap(path(QStringLiteral("disk/a")), 1024)},
                 {memberMap(QStringLiteral("Yard"), 2, true, true)}, true, 9));
    const QString before = state();
    m_station.reset();
    m_station = makeStation();
    QCOMPARE(state(), before);
}

void StationGroupsTest::twoStationsOnOneDatabaseTakeTurns()
{
    const std::unique_ptr<StationClient> other = makeStation();
    QVariantMap request = pathMap(path(QStringLiteral("disk/a")), 6 * 1024);
    request.insert(QStringLiteral("recordingGroupName"), QStringLiteral("a"));
    QCOMPARE(m_station->ask(QStringLiteral("addRecordingGroup"), request).returnCode, QStringLiteral("0"));
    QCOMPARE(other->ask(QStringLiteral("addRecordingGroup"), request).returnCode,
             QStringLiteral("RecordingGroupNameInUse"));
    request.insert(QStringLiteral("recordingGroupName"), QStringLiteral("b"));
    QCOMPARE(other->ask(QStringLiteral("addRecordingGroup"), request).returnCode,
             QStringLiteral("ReservedSpaceExceedsVolume"));
    request.insert(QStringLiteral("reserveSpace"), 4 * 1024);
    QCOMPARE(other->ask(QStringLiteral("addRecordingGroup"), request).returnCode, QStringLiteral("0"));
    QCOMPARE(m_station->ask(QStringLiteral("getRecordingGroup")).data.toList().size(), 2);
}

void StationGroupsTest::twoStationsAtOnceReserveNoMoreThanThereIs()
{
    // Each asks for 1 GB at a time, until the disk of 10 GB is spoken for.
    const auto fill = [this](const QString &name, QStringList &codes) {
        const std::unique_ptr<StationClient> station = makeStation();
        for (int number = 0; number < 12; ++number) {
            QVariantMap request = pathMap(path(QStringLiteral("disk/a")), 1024);
            request.insert(QStringLiteral("recordingGroupName"), name + QString::number(number));
            codes.append(station->ask(QStringLiteral("addRecordingGroup"), request).returnCode);
        }
    };
    QStringList codes;
    QStringList otherCodes;
    const std::unique_ptr<QThread> other(QThread::create([&] { fill(QStringLiteral("other "), otherCodes); }));
    other->start();
    fill(QStringLiteral("one "), codes);
    QVERIFY(other->wait());
    codes += otherCodes;
    QCOMPARE(codes.count(QStringLiteral("0")), 10);
    QCOMPARE(codes.count(QStringLiteral("ReservedSpaceExceedsVolume")), 14);
    QCOMPARE(m_station->ask(QStringLiteral("getRecordingGroup")).data.toList().size(), 10);
}

void StationGroupsTest::whoeverAsksIsToldOfEveryEdit()
{
    const FakeVolumes volumes({{m_folder->path(), QStringLiteral("Disk"), 1 << 30, 1 << 30, false, false}});
    const LocalPaths paths(volumes);
    StationData data(path(QStringLiteral("data")));
    QStringList log;
    CommandTable table;
    GroupCommands commands(data, {&paths, nullptr, nullptr}, {}, [&log] { log.append(QStringLiteral("changed")); });
    commands.enterInto(table);
    QVariant id;
    const auto ask = [&](const char *command, const QVariantMap &request) {
        table.value(QString::fromLatin1(command))(request, [&](const StationReply &part) {
            log.append(part.returnCode);
            id = part.data.toMap().value(QStringLiteral("recordingGroupID"), id);
        });
        return std::exchange(log, {}).join(u' ');
    };
    const QVariantMap group = groupMap(QStringLiteral("a"), {pathMap(path(QStringLiteral("disk/a")))});
    QCOMPARE(ask("addRecordingGroupWithCompleteInfo", group), QStringLiteral("0 changed"));
    const QString made = id.toString();
    QCOMPARE(ask("addRecordingGroupWithCompleteInfo", group), QStringLiteral("RecordingGroupNameInUse"));
    QVariantMap other = pathMap(path(QStringLiteral("disk/b")));
    other.insert(QStringLiteral("recordingGroupName"), QStringLiteral("b"));
    QCOMPARE(ask("addRecordingGroup", other), QStringLiteral("0 changed"));
    other.insert(idMap(made));
    QCOMPARE(ask("addPathToRecordingGroup", other), QStringLiteral("0 changed"));
    QCOMPARE(ask("addPathToRecordingGroup", other), QStringLiteral("PathInGroup"));
    QCOMPARE(ask("updateRecordingGroup", idMap(made)), QStringLiteral("0 changed"));
    QCOMPARE(ask("updateRecordingGroup", idMap(unknownId)), QStringLiteral("RecordingGroupNotFound"));
    QCOMPARE(ask("retrieveRecordingGroupTreeModel", ownTree()), QStringLiteral("0"));
    const QStringList twice{made, made};
    const QString disk = path(QStringLiteral("disk/b"));
    QCOMPARE(ask("removePathFromRecordingGroup",
                 {{QStringLiteral("recordingGroupIDList"), twice},
                  {QStringLiteral("recordingGroupPathList"), QStringList{disk, disk}}}),
             QStringLiteral("0 changed PathNotInGroup"));
    QCOMPARE(ask("removeRecordingGroup", {{QStringLiteral("recordingGroupIDList"), twice}}),
             QStringLiteral("0 changed RecordingGroupNotFound"));
}

void StationGroupsTest::aDatabaseThatCannotBeOpenedIsAFailure()
{
    m_station.reset();
    QVERIFY(QDir(path(QStringLiteral("data"))).removeRecursively());
    QVERIFY(makeFile(path(QStringLiteral("data")), 1));
    m_station = makeStation();
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^getRecordingGroup: .*data")));
    QCOMPARE(m_station->text(QStringLiteral("getRecordingGroup")), QStringLiteral("DatabaseFailed invalid"));
    QVERIFY(QFile::remove(path(QStringLiteral("data"))));
    QCOMPARE(m_station->text(QStringLiteral("getRecordingGroup")), QStringLiteral("0 QVariantList []"));
}

QTEST_GUILESS_MAIN(StationGroupsTest)
#include "tst_station_groups.moc"
