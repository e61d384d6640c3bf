#include "FakeFramework.h"
#include "HeapWatch.h"
#include "PluginRecordingManagement.h"
#include "SignalLog.h"
#include "TraceRecorder.h"
#include "TypedText.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

#include <limits>
#include <memory>
#include <vector>

namespace {

QVariantMap member(const QString &camera, const QVariant &stream = {}, bool timeShift = false, bool seamless = false)
{
    QVariantMap map{{"camName", camera}, {"enableTimeShift", timeShift}, {"enableSeamless", seamless}};
    if (stream.isValid())
        map.insert("streamIndex", stream);
    return map;
}

QVariantMap group(const QString &id, const QString &relayPath, const QVariantList &members)
{
    return {{"recordingGroupID", id}, {"relayPath", relayPath}, {"recordingGroupMemberList", members}};
}

// The rules once more, over the plain values that the records were made of.
struct PlainMember
{
    QString camera;
    int stream;
    bool timeShift;
    bool seamless;
};

struct PlainGroup
{
    QString id;
    QString relayPath;
    int reservedTime;
    std::vector<PlainMember> members;
};

QVariantList groupsOfCamera(const std::vector<PlainGroup> &groups, const QString &cameraId)
{
    QVariantList ids;
    for (const PlainGroup &plain : groups) {
        bool records = false;
        for (const PlainMember &entry : plain.members) {
            const QString full =
                plain.relayPath.isEmpty() ? entry.camera : plain.relayPath + QStringLiteral("/") + entry.camera;
            records = records || full == cameraId;
        }
        if (records)
            ids.append(plain.id);
    }
    return ids;
}

int streamElsewhere(const std::vector<PlainGroup> &groups, const QString &camera, const QString &id,
                    const QString &relayPath)
{
    for (const PlainGroup &plain : groups) {
        if (plain.id == id && plain.relayPath == relayPath)
            continue;
        for (const PlainMember &entry : plain.members) {
            if (entry.camera != camera)
                continue;
            if (entry.timeShift || entry.seamless)
                return entry.stream;
            break;
        }
    }
    return -1;
}

int reservedTime(const std::vector<PlainGroup> &groups, const QString &id, const QString &relayPath)
{
    for (const PlainGroup &plain : groups) {
        if (plain.id == id && plain.relayPath == relayPath)
            return plain.reservedTime;
    }
    return 0;
}

} // namespace

class RecordingGroupQueriesTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void anEmptyCacheAnswersEmpty();
    void gettersReturnTheFieldsAsTheyCame();
    void gettersTakeTheFirstOfEqualRecords();
    void gettersNeedTheRightRelayPath();
    void cameraIsNamedWithItsRelayPath_data();
    void cameraIsNamedWithItsRelayPath();
    void aGroupIsListedOnceForACamera();
    void streamOfAnotherGroup_data();
    void streamOfAnotherGroup();
    void membersOfOddTypesReadAsEmpty();
    void namesAndPathsMayHoldSlashes();
    void answersFollowTheCache();
    void answersNothingWithoutMemory();
    void infoListWithoutUsageModelHoldsOneEmptyMap();
    void infoListOfAnEmptyUsageModelIsEmpty();
    void infoListNamesGroupsAndVolumes();
    void infoListHoldsAnyNumber();
    void infoListIsOfTheDirectlyConnectedStationOnly();
    void aMillionRandomQueriesFollowTheRules();

private:
    void save(const QVariantList &groups)
    {
        m_plugin->CommandProcessor("retrieveRecordingGroupTreeModel", groups, nullptr, "0", {}, true, {});
        m_log->take();
        takeTraceLines();
    }

    FakeFramework m_framework;
    std::unique_ptr<PluginRecordingManagement> m_plugin;
    std::unique_ptr<SignalLog> m_log;
};

void RecordingGroupQueriesTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_framework = {};
    m_plugin = std::make_unique<PluginRecordingManagement>();
    QVERIFY(m_plugin->InitialPluginBase(nullptr, this, &m_framework));
    m_log = std::make_unique<SignalLog>(m_plugin.get());
    takeTraceLines();
}

void RecordingGroupQueriesTest::cleanup()
{
    QCOMPARE(m_log->take(), QStringList{}); // no query emits, sends or logs
    QVERIFY(m_framework.sent.isEmpty());
    QCOMPARE(takeTraceLines(), QStringList{});
}

void RecordingGroupQueriesTest::anEmptyCacheAnswersEmpty()
{
    QVERIFY(m_plugin->getRecordingGroupPathList("", "").isEmpty());
    QVERIFY(m_plugin->getRecordingGroupReservedSpaceList("", "").isEmpty());
    QVERIFY(m_plugin->getRecordingGroupNasPathList("", "").isEmpty());
    QVERIFY(m_plugin->getRecordingGroupRecoveryPathList("", "").isEmpty());
    QVERIFY(m_plugin->getRecordingGroupMemberList("", "").isEmpty());
    QCOMPARE(m_plugin->getRecordingGroupReservedTime("", ""), 0);
    QVERIFY(m_plugin->getRecordingGroupIDList("").isEmpty());
    QCOMPARE(m_plugin->streamIndexHasBeenSetTmShiftSeamlessInOtherRecGroups("", "", ""), -1);
}

void RecordingGroupQueriesTest::gettersReturnTheFieldsAsTheyCame()
{
    QVariantMap record = group("{1}", "st1", {member("cam1", 2, true), 4});
    record.insert("recordingGroupPathList", QVariantList{"D:/", 1});
    record.insert("reserveSpace", QVariantList{2048LL, 4096});
    record.insert("recordingGroupNASPathList", QStringList{"//n/s"});
    record.insert("recordingGroupRecoveryPathList", QVariantList{QVariant(), true});
    record.insert("recordingGroupReservedTime", 90);
    save({record});
    QCOMPARE(typedText(m_plugin->getRecordingGroupPathList("{1}", "st1")), "QVariantList [QString \"D:/\", int 1]");
    QCOMPARE(typedText(m_plugin->getRecordingGroupReservedSpaceList("{1}", "st1")),
             "QVariantList [qlonglong 2048, int 4096]");
    QCOMPARE(typedText(m_plugin->getRecordingGroupNasPathList("{1}", "st1")), "QVariantList [QString \"//n/s\"]");
    QCOMPARE(typedText(m_plugin->getRecordingGroupRecoveryPathList("{1}", "st1")), "QVariantList [invalid, bool true]");
    QCOMPARE(typedText(m_plugin->getRecordingGroupMemberList("{1}", "st1")),
             "QVariantList [{camName: QString \"cam1\", enableSeamless: bool false, enableTimeShift: bool true, "
             "streamIndex: int 2}, int 4]");
    QCOMPARE(m_plugin->getRecordingGroupReservedTime("{1}", "st1"), 90);
}

void RecordingGroupQueriesTest::gettersTakeTheFirstOfEqualRecords()
{
    QVariantMap first = group("{1}", "st1", {member("first")});
    QVariantMap second = group("{1}", "st1", {member("second")});
    first.insert("recordingGroupPathList", QVariantList{"first"});
    second.insert("recordingGroupPathList", QVariantList{"second"});
    save({first, second});
    QCOMPARE(m_plugin->getRecordingGroupPathList("{1}", "st1"), QVariantList{"first"});
    QCOMPARE(m_plugin->getRecordingGroupMemberList("{1}", "st1"), QVariantList{member("first")});
}

void RecordingGroupQueriesTest::gettersNeedTheRightRelayPath()
{
    save({group("{1}", "st1", {member("cam1")})});
    QVERIFY(m_plugin->getRecordingGroupMemberList("{1}", "").isEmpty());
    QVERIFY(m_plugin->getRecordingGroupMemberList("{1}", "ST1").isEmpty());
    QVERIFY(m_plugin->getRecordingGroupMemberList("{2}", "st1").isEmpty());
    QCOMPARE(m_plugin->getRecordingGroupMemberList("{1}", "st1").size(), 1);
}

void RecordingGroupQueriesTest::cameraIsNamedWithItsRelayPath_data()
{
    QTest::addColumn<QString>("relayPath");
    QTest::addColumn<QString>("camera");
    QTest::addColumn<QString>("cameraId");
    QTest::addColumn<bool>("found");

    QTest::newRow("with the relay path") << "st1"
                                         << "cam1"
                                         << "st1/cam1" << true;
    QTest::newRow("without the relay path") << "st1"
                                            << "cam1"
                                            << "cam1" << false;
    QTest::newRow("of the direct station") << ""
                                           << "cam1"
                                           << "cam1" << true;
    QTest::newRow("of the direct station, with a slash") << ""
                                                         << "cam1"
                                                         << "/cam1" << false;
    QTest::newRow("in another case") << "st1"
                                     << "cam1"
                                     << "st1/CAM1" << false;
    QTest::newRow("longer") << "st1"
                            << "cam1"
                            << "st1/cam12" << false;
    QTest::newRow("another separator") << "st1"
                                       << "cam1"
                                       << "st1|cam1" << false;
    QTest::newRow("slashes in both") << "a/b"
                                     << "c/d"
                                     << "a/b/c/d" << true;
    QTest::newRow("no name") << "st1"
                             << ""
                             << "st1/" << true;
    QTest::newRow("no name, shorter") << "st1"
                                      << ""
                                      << "st1" << false;
    QTest::newRow("nothing at all") << ""
                                    << ""
                                    << "" << true;
}

void RecordingGroupQueriesTest::cameraIsNamedWithItsRelayPath()
{
    QFETCH(QString, relayPath);
    QFETCH(QString, camera);
    QFETCH(QString, cameraId);
    QFETCH(bool, found);
    save({group("{1}", relayPath, {member("other"), member(camera)})});
    QCOMPARE(typedText(m_plugin->getRecordingGroupIDList(cameraId)),
             found ? "QVariantList [QString \"{1}\"]" : "QVariantList []");
}

void RecordingGroupQueriesTest::aGroupIsListedOnceForACamera()
{
    save({group("{2}", "", {member("cam1", 0), member("cam1", 1)}), group("{1}", "", {member("cam1")}),
          group("{1}", "st1", {member("cam1")})});
    QCOMPARE(m_plugin->getRecordingGroupIDList("cam1"), (QVariantList{"{2}", "{1}"}));
    QCOMPARE(m_plugin->getRecordingGroupIDList("st1/cam1"), QVariantList{"{1}"});
}

void RecordingGroupQueriesTest::streamOfAnotherGroup_data()
{
    QTest::addColumn<QVariantList>("groups");
    QTest::addColumn<int>("stream");

    QTest::newRow("only the group itself") << QVariantList{group("{1}", "st1", {member("cam", 3, true, true)})} << -1;
    QTest::newRow("the same id behind another relay path")
        << QVariantList{group("{1}", "st2", {member("cam", 3, true)})} << 3;
    QTest::newRow("another id behind the same relay path")
        << QVariantList{group("{2}", "st1", {member("cam", 3, true)})} << 3;
    QTest::newRow("seamless alone") << QVariantList{group("{2}", "st1", {member("cam", 2, false, true)})} << 2;
    QTest::newRow("neither flag") << QVariantList{group("{2}", "st1", {member("cam", 2)})} << -1;
    QTest::newRow("the first member of the name decides for its group")
        << QVariantList{group("{2}", "", {member("cam", 1), member("cam", 2, true)})} << -1;
    QTest::newRow("and the next group is looked at")
        << QVariantList{group("{2}", "", {member("cam", 1), member("cam", 2, true)}),
                        group("{3}", "", {member("else", 5, true), member("cam", 4, true)})}
        << 4;
    QTest::newRow("the first group that has it")
        << QVariantList{group("{2}", "", {member("cam", 1, true)}), group("{3}", "", {member("cam", 4, true)})} << 1;
    QTest::newRow("no stream index") << QVariantList{group("{2}", "", {member("cam", {}, true)})} << 0;
    QTest::newRow("the name is compared without a relay path")
        << QVariantList{group("{2}", "st2", {member("st2/cam", 1, true), member("cam", 6, true)})} << 6;
    QTest::newRow("in another case") << QVariantList{group("{2}", "", {member("Cam", 1, true)})} << -1;
    QTest::newRow("every equal record is the group itself")
        << QVariantList{group("{1}", "st1", {member("cam", 3, true)}), group("{1}", "st1", {member("cam", 4, true)})}
        << -1;
}

void RecordingGroupQueriesTest::streamOfAnotherGroup()
{
    QFETCH(QVariantList, groups);
    QFETCH(int, stream);
    save(groups);
    QCOMPARE(m_plugin->streamIndexHasBeenSetTmShiftSeamlessInOtherRecGroups("cam", "{1}", "st1"), stream);
}

void RecordingGroupQueriesTest::membersOfOddTypesReadAsEmpty()
{
    save({group("{1}", "", {5, QVariant(), "cam"}),
          group("{2}", "", {QVariant(QVariantHash{{"camName", "cam"}, {"enableSeamless", 1}, {"streamIndex", "7"}})})});
    QCOMPARE(m_plugin->getRecordingGroupIDList(""), QVariantList{"{1}"});
    QCOMPARE(m_plugin->getRecordingGroupIDList("cam"), QVariantList{"{2}"});
    QCOMPARE(m_plugin->streamIndexHasBeenSetTmShiftSeamlessInOtherRecGroups("cam", "", ""), 7);
}

void RecordingGroupQueriesTest::namesAndPathsMayHoldSlashes()
{
    save({group("{1}", "a/b", {member("c")}), group("{2}", "a", {member("b/c")}), group("{3}", "", {member("a/b/c")}),
          group("{4}", "", {member("b/c")}), group("{5}", "a/b/", {member("")}), group("{6}", "", {member("/")})});
    QCOMPARE(m_plugin->getRecordingGroupIDList("a/b/c"), (QVariantList{"{1}", "{2}", "{3}"}));
    QCOMPARE(m_plugin->getRecordingGroupIDList("b/c"), QVariantList{"{4}"});
    QCOMPARE(m_plugin->getRecordingGroupIDList("a/b//"), QVariantList{"{5}"});
    QCOMPARE(m_plugin->getRecordingGroupIDList("/"), QVariantList{"{6}"});
    QCOMPARE(m_plugin->getRecordingGroupIDList("c"), QVariantList());
}

void RecordingGroupQueriesTest::answersFollowTheCache()
{
    const auto reservedTime = [this] { return m_plugin->getRecordingGroupReservedTime("{1}", ""); };
    const auto ids = [this] { return m_plugin->getRecordingGroupIDList("cam"); };
    const auto stream = [this] {
        return m_plugin->streamIndexHasBeenSetTmShiftSeamlessInOtherRecGroups("cam", "", "");
    };
    QVariantMap first = group("{1}", "", {member("cam", 1, true)});
    first.insert("recordingGroupReservedTime", 90);
    QVariantMap second = group("{2}", "", {member("cam", 2, true)});
    QCOMPARE(reservedTime(), 0);
    QCOMPARE(ids(), QVariantList());
    QCOMPARE(stream(), -1);
    save({second});
    QCOMPARE(reservedTime(), 0);
    QCOMPARE(ids(), QVariantList{"{2}"});
    QCOMPARE(stream(), 2);
    save({first});
    QCOMPARE(reservedTime(), 90);
    QCOMPARE(ids(), (QVariantList{"{2}", "{1}"}));
    m_plugin->clearRecordingGroupDataList();
    QCOMPARE(reservedTime(), 0);
    QCOMPARE(ids(), QVariantList());
    QCOMPARE(stream(), -1);
    save({first});
    QCOMPARE(reservedTime(), 90);
    QCOMPARE(ids(), QVariantList{"{1}"});
    QCOMPARE(stream(), 1);
}

void RecordingGroupQueriesTest::answersNothingWithoutMemory()
{
    QVariantMap record = group("{1}", "", {member("cam", 1, true)});
    record.insert("recordingGroupReservedTime", 90);
    save({record});
    {
        const AllocationFailure failure(0, AllocationFailure::Kind::Throwing);
        QCOMPARE(m_plugin->getRecordingGroupReservedTime("{1}", ""), 0);
        QVERIFY(failure.happened());
    }
    {
        const AllocationFailure failure(0, AllocationFailure::Kind::Throwing);
        QVERIFY(m_plugin->getRecordingGroupIDList("cam").isEmpty());
        QVERIFY(failure.happened());
    }
    {
        const AllocationFailure failure(0, AllocationFailure::Kind::Throwing);
        QCOMPARE(m_plugin->streamIndexHasBeenSetTmShiftSeamlessInOtherRecGroups("cam", "", ""), -1);
        QVERIFY(failure.happened());
    }
    QCOMPARE(m_plugin->getRecordingGroupReservedTime("{1}", ""), 90); // the next time goes well
    QCOMPARE(m_plugin->getRecordingGroupIDList("cam"), QVariantList{"{1}"});
}

void RecordingGroupQueriesTest::infoListWithoutUsageModelHoldsOneEmptyMap()
{
    QCOMPARE(typedText(m_plugin->getRecordingGroupInfoList()), "QVariantList [{}]");
    m_plugin->getStorageUsageModel("st1");
    QCOMPARE(typedText(m_plugin->getRecordingGroupInfoList()), "QVariantList [{}]");
}

void RecordingGroupQueriesTest::infoListOfAnEmptyUsageModelIsEmpty()
{
    m_plugin->getStorageUsageModel("");
    QCOMPARE(typedText(m_plugin->getRecordingGroupInfoList()), "QVariantList []");
}

void RecordingGroupQueriesTest::infoListNamesGroupsAndVolumes()
{
    const QVariantMap disk{{"recordingGroupID", "{1}"}, {"recordingGroupName", "Gate"}, {"recordingPath", "D:/Rec"},
                           {"volumeName", "Data"},      {"volumeSize", 2048},           {"volumeAvailableSize", 1536},
                           {"volumeRecordedDays", 4},   {"volumeOneDayUsage", 1024}};
    const QVariantMap share{{"recordingGroupID", "{1}"}, {"recordingGroupName", "Gate"}, {"recordingPath", "//n/s"},
                            {"volumeSize", 512},         {"volumeIsNAS", true},          {"volumeRecordedDays", -1},
                            {"volumeOneDayUsage", -1}};
    const QVariantMap backup{{"recordingGroupID", "backupID"},
                             {"recordingPath", "E:/"},
                             {"volumeRecordedDays", -1},
                             {"volumeOneDayUsage", -1}};
    m_plugin->EventProcessor("VolumeChanged", 0, 0, 0, QVariantList{disk, backup, share}, "");
    m_log->take();
    takeTraceLines();
    QCOMPARE(typedText(m_plugin->getRecordingGroupInfoList()),
             "QVariantList [{groupName: QString \"Backup\", recordedDays: int -1, recordingGroup: QString "
             "\"backupID\", remainingDays: int -1, volumeList: QVariantList [{isNAS: bool false, recordingPath: "
             "QString \"E:/\", remainingSpace: QString \"0.00 KB\", totalSpace: QString \"0.00 KB\"}]}, "
             "{groupName: QString \"Gate\", recordedDays: int 4, recordingGroup: QString \"{1}\", remainingDays: int "
             "1536, volumeList: QVariantList [{isNAS: bool false, recordingPath: QString \"D:/Rec\", remainingSpace: "
             "QString \"1.50 MB\", totalSpace: QString \"2.00 MB\"}, {isNAS: bool true, recordingPath: QString "
             "\"//n/s\", remainingSpace: QString \"0.00 KB\", totalSpace: QString \"512.00 KB\"}]}]");
}

void RecordingGroupQueriesTest::infoListHoldsAnyNumber()
{
    const QVariantMap disk{{"recordingGroupID", "{1}"},
                           {"volumeSize", std::numeric_limits<qlonglong>::max()},
                           {"volumeAvailableSize", std::numeric_limits<qlonglong>::min()},
                           {"volumeRecordedDays", (1LL << 33) + 5},
                           {"volumeOneDayUsage", 512}};
    m_plugin->EventProcessor("VolumeChanged", 0, 0, 0, QVariantList{disk}, "");
    m_log->take();
    takeTraceLines();
    QCOMPARE(typedText(m_plugin->getRecordingGroupInfoList()),
             "QVariantList [{groupName: QString \"\", recordedDays: int 5, recordingGroup: QString \"{1}\", "
             "remainingDays: int 0, volumeList: QVariantList [{isNAS: bool false, recordingPath: QString \"\", "
             "remainingSpace: QString \"-9223372036854775808.00 KB\", totalSpace: QString \"8589934592.00 TB\"}]}]");
}

void RecordingGroupQueriesTest::infoListIsOfTheDirectlyConnectedStationOnly()
{
    const QVariantList entries{QVariantMap{{"recordingGroupID", "{1}"}}};
    m_plugin->EventProcessor("VolumeChanged", 0, 0, 0, entries, "st1");
    m_plugin->getStorageUsageModel("");
    m_log->take();
    takeTraceLines();
    QCOMPARE(typedText(m_plugin->getRecordingGroupInfoList()), "QVariantList []");
}

void RecordingGroupQueriesTest::aMillionRandomQueriesFollowTheRules()
{
    QRandomGenerator random(20240117);
    const QStringList stations{"", "a", "a/b", "A"};
    const QStringList cameras{"", "1", "2", "b/1", "cam", "Cam"};
    const QStringList ids{"{1}", "{2}", "{3}", ""};
    const auto pick = [&random](const QStringList &list) { return list.at(random.bounded(list.size())); };

    constexpr int rounds = 1000;
    constexpr int queriesPerRound = 1000;
    for (int round = 0; round < rounds; ++round) {
        std::vector<PlainGroup> plain;
        QVariantList records;
        for (int i = random.bounded(6); i > 0; --i) {
            PlainGroup next{pick(ids), pick(stations), random.bounded(100), {}};
            QVariantList members;
            for (int j = random.bounded(4); j > 0; --j) {
                const PlainMember entry{pick(cameras), random.bounded(4), random.bounded(4) == 0,
                                        random.bounded(4) == 0};
                next.members.push_back(entry);
                members.append(member(entry.camera, entry.stream, entry.timeShift, entry.seamless));
            }
            QVariantMap record = group(next.id, next.relayPath, members);
            record.insert("recordingGroupReservedTime", next.reservedTime);
            records.append(record);
            plain.push_back(next);
        }
        m_plugin->clearRecordingGroupDataList();
        save(records);
        for (int query = 0; query < queriesPerRound; ++query) {
            const QString station = pick(stations);
            const QString camera = pick(cameras);
            const QString id = pick(ids);
            bool right = false;
            switch (query % 3) {
            case 0: {
                const QString cameraId = station.isEmpty() ? camera : station + '/' + camera;
                right = m_plugin->getRecordingGroupIDList(cameraId) == groupsOfCamera(plain, cameraId);
                break;
            }
            case 1:
                right = m_plugin->streamIndexHasBeenSetTmShiftSeamlessInOtherRecGroups(camera, id, station)
                    == streamElsewhere(plain, camera, id, station);
                break;
            default:
                right = m_plugin->getRecordingGroupReservedTime(id, station) == reservedTime(plain, id, station);
            }
            if (!right)
                QFAIL(qPrintable(
                    QStringLiteral("round %1, query %2: station \"%3\", camera \"%4\", group \"%5\" in %6")
                        .arg(QString::number(round), QString::number(query), station, camera, id, typedText(records))));
        }
    }
}

QTEST_GUILESS_MAIN(RecordingGroupQueriesTest)
#include "tst_recording_group_queries.moc"
