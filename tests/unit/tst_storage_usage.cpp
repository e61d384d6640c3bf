#include "FakeFramework.h"
#include "HeapWatch.h"
#include "ModelText.h"
#include "PluginRecordingManagement.h"
#include "SignalLog.h"
#include "TraceRecorder.h"

#include <QAbstractItemModelTester>
#include <QPointer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>
#include <QUuid>

#include <limits>
#include <memory>

namespace {

constexpr qlonglong largest = std::numeric_limits<qlonglong>::max();
constexpr qlonglong smallest = std::numeric_limits<qlonglong>::min();

const QList<int> usageRoles{257, 258, 262, 263, 264, 265};
const QList<int> volumeRoles{258, 259, 260, 261, 262, 263};

QVariantMap entry(const QString &groupId, const QVariant &available, const QVariant &recorded, const QVariant &oneDay)
{
    return {{"recordingGroupID", groupId},
            {"recordingGroupName", "Gate"},
            {"volumeAvailableSize", available},
            {"volumeRecordedDays", recorded},
            {"volumeOneDayUsage", oneDay}};
}

QVariantMap with(QVariantMap map, const QString &key, const QVariant &value)
{
    map.insert(key, value);
    return map;
}

} // namespace

class StorageUsageTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void reloadSendsNothingButTheRelayPath();
    void reloadRefused();
    void figuresOfAGroup_data();
    void figuresOfAGroup();
    void theLastEntryGivesNameAndReserve();
    void rowsStandInGroupOrder();
    void rowsHaveEmptyLists();
    void storageWithoutGroupIsSignalledOnce();
    void theBackupGroupHasItsOwnName();
    void oddDataGivesNoRows_data();
    void oddDataGivesNoRows();
    void oddEntries_data();
    void oddEntries();
    void stationsAreKeptApart();
    void usageModelIsRefilledInPlace();
    void unknownGroupHasNoModel();
    void groupModelsHoldTheEntries();
    void groupModelsHoldAnyNumber();
    void groupModelsAreReplacedByEachEvent();
    void groupModelsOutliveAConnection();
    void signalsAndModelsOfAnEvent();
    void viewsSeeOneResetAndOneInsertion();
    void failedRowIsSkipped();
    void groupModelIsWholeOrNull();
    void groupModelsAreMadeWhenTheyAreAskedFor();
    void newModelsAreNotAtOldAddresses();
    void listenersMayComeBack_data();
    void listenersMayComeBack();
    void listenerMayComeBackWithAnEventOfTheStation();
    void everySignalMayComeBack_data();
    void everySignalMayComeBack();
    void theEndOfAModelMayComeBack();

private:
    using QObject::event; // not hidden by the one below
    void event(const QVariant &data, const QString &source = {})
    {
        m_plugin->EventProcessor("VolumeChanged", 0, 0, 0, data, source);
    }
    QStandardItemModel *usageModel(const QString &source = {}) const
    {
        return qobject_cast<QStandardItemModel *>(m_plugin->getStorageUsageModel(source));
    }
    QStandardItemModel *groupModel(const QString &source, const QString &id) const
    {
        return qobject_cast<QStandardItemModel *>(m_plugin->getGroupVolumeModel(source, id));
    }
    QStringList rows(const QString &source = {}) const { return modelText(*usageModel(source), usageRoles); }

    FakeFramework m_framework;
    std::unique_ptr<PluginRecordingManagement> m_plugin;
};

void StorageUsageTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_framework = {};
    m_plugin = std::make_unique<PluginRecordingManagement>();
    QVERIFY(m_plugin->InitialPluginBase(nullptr, this, &m_framework));
    takeTraceLines();
}

void StorageUsageTest::reloadSendsNothingButTheRelayPath()
{
    QVERIFY(m_plugin->reloadStorageUsageInfo());
    QVERIFY(m_plugin->reloadStorageUsageInfo("st1"));
    QCOMPARE(m_framework.sent.size(), 2);
    for (const FakeFramework::Sent &sent : m_framework.sent) {
        QCOMPARE(sent.command, "reloadStorageUsageInfo");
        QVERIFY(!sent.data.isValid());
        QCOMPARE(sent.context, nullptr);
    }
    QCOMPARE(m_framework.sent.at(0).relayPath, "");
    QCOMPARE(m_framework.sent.at(1).relayPath, "st1");
    SignalLog log(m_plugin.get());
    m_plugin->CommandProcessor("reloadStorageUsageInfo", {}, nullptr, "0", {}, true, {});
    QCOMPARE(log.take(), QStringList{}); // the figures come as an event
}

void StorageUsageTest::reloadRefused()
{
    m_framework.accepts = false;
    QVERIFY(!m_plugin->reloadStorageUsageInfo());
    QCOMPARE(takeTraceLines(),
             QStringList{"error: PluginRecordingManagement::sendRequestToServer, Send command failed."});
}

void StorageUsageTest::figuresOfAGroup_data()
{
    QTest::addColumn<QVariantList>("entries");
    QTest::addColumn<QString>("figures"); // recorded days, remaining days, one-day usage

    const auto row = [](const char *name, const QVariantList &entries, const QString &figures) {
        QTest::newRow(name) << entries << figures;
    };
    row("two entries, one day unknown", {entry("{1}", 3000, 3, 2048), entry("{1}", 3000, -1, 1024)},
        "int:3 | int:2000 | qlonglong:3072");
    row("all days unknown", {entry("{1}", 3000, -1, -1), entry("{1}", 3000, -7, -2)}, "int:-1 | int:-1 | qlonglong:-1");
    row("less than 1 KB a day", {entry("{1}", 3000, 3, 512)}, "int:3 | int:0 | qlonglong:512");
    row("less than 1 KB a day, nothing available", {entry("{1}", 0, 3, 1023)}, "int:3 | int:0 | qlonglong:1023");
    row("less than 1 KB a day, less than nothing", {entry("{1}", -5, 3, 1)}, "int:3 | int:0 | qlonglong:1");
    row("nothing a day", {entry("{1}", 3000, 0, 0)}, "int:0 | int:-1 | qlonglong:0");
    row("whole KB only", {entry("{1}", 10, 3, 2047)}, "int:3 | int:10 | qlonglong:2047");
    row("a part of a day counts as none", {entry("{1}", 11, 3, 4096)}, "int:3 | int:2 | qlonglong:4096");
    row("less than nothing available", {entry("{1}", 5, 3, 2048), entry("{1}", -12, 3, 0)},
        "int:6 | int:-3 | qlonglong:2048");
    row("a number of days beyond 32 bits", {entry("{1}", 5, (1LL << 32) + 7, -1)}, "int:7 | int:-1 | qlonglong:-1");
    row("remaining days beyond 32 bits", {entry("{1}", (1LL << 40) + (3LL << 31), 1, 1024)},
        "int:1 | int:-2147483648 | qlonglong:1024");
    row("the largest number available", {entry("{1}", largest, 1, 1024)}, "int:1 | int:0 | qlonglong:1024");
    row("the smallest number available", {entry("{1}", smallest, 1, 1024)}, "int:1 | int:0 | qlonglong:1024");
    row("the available sizes wrap", {entry("{1}", largest, 1, 1024), entry("{1}", 4, -1, -1)},
        "int:1 | int:0 | qlonglong:1024");
    row("the usages wrap below zero", {entry("{1}", 9, 1, largest), entry("{1}", 4, -1, 1)},
        "int:1 | int:-1 | qlonglong:-9223372036854775808");
    row("the recorded days wrap", {entry("{1}", 9, largest, -1), entry("{1}", 4, 2, -1)},
        "int:1 | int:-1 | qlonglong:-1");
    row("keys that are missing are 0", {QVariantMap{{"recordingGroupID", "{1}"}, {"recordingGroupName", "Gate"}}},
        "int:0 | int:-1 | qlonglong:0");
    row("the smallest numbers are unknown", {entry("{1}", 3000, smallest, smallest)}, "int:-1 | int:-1 | qlonglong:-1");
    row("the largest number of days", {entry("{1}", 0, largest, -1)}, "int:-1 | int:-1 | qlonglong:-1");
    row("the largest usage", {entry("{1}", largest, 1, largest)}, "int:1 | int:1024 | qlonglong:9223372036854775807");
    row("the same entry twice", {entry("{1}", 30, 3, 1024), entry("{1}", 30, 3, 1024)},
        "int:6 | int:30 | qlonglong:2048");
    row("numbers as text", {entry("{1}", "3000", "3", "1024")}, "int:3 | int:3000 | qlonglong:1024");
    row("no numbers", {entry("{1}", "much", "many", QVariantMap{})}, "int:0 | int:-1 | qlonglong:0");
}

void StorageUsageTest::figuresOfAGroup()
{
    QFETCH(QVariantList, entries);
    QFETCH(QString, figures);
    event(entries);
    QCOMPARE(rows(), QStringList{"{1} | Gate | " + figures + " | int:0"});
    QCOMPARE(takeErrorLines(), QStringList{});
}

void StorageUsageTest::theLastEntryGivesNameAndReserve()
{
    const QVariantMap first = with(entry("{1}", 0, -1, -1), "recordingGroupReservedTime", 10);
    QVariantMap last = with(entry("{1}", 0, -1, -1), "recordingGroupReservedTime", "20");
    last.insert("recordingGroupName", "Yard");
    event(QVariantList{first, entry("{2}", 0, -1, -1), last});
    QCOMPARE(modelText(*usageModel(), {257, 258, 265}), (QStringList{"{1} | Yard | int:20", "{2} | Gate | int:0"}));
}

void StorageUsageTest::rowsStandInGroupOrder()
{
    event(QVariantList{entry("b", 0, -1, -1), entry("B", 0, -1, -1), entry("a", 0, -1, -1), entry("b", 0, -1, -1)});
    QCOMPARE(modelText(*usageModel(), {257}), (QStringList{"B", "a", "b"}));
}

void StorageUsageTest::rowsHaveEmptyLists()
{
    event(QVariantList{entry("{1}", 0, -1, -1)});
    QCOMPARE(modelText(*usageModel(), {259, 260, 261}),
             QStringList{"QStringList:[] | QStringList:[] | QStringList:[]"});
    QCOMPARE(usageModel()->roleNames().value(262), "recordedDaysRole");
}

void StorageUsageTest::storageWithoutGroupIsSignalledOnce()
{
    SignalLog log(m_plugin.get(), [this] { return rows("st1").join(';'); });
    const QVariantMap orphan = with(entry("", 5, 1, 1024), "recordingPath", "F:/");
    event(QVariantList{orphan, entry("{1}", 0, -1, -1), orphan}, "st1");
    QCOMPARE(log.take(),
             (QStringList{"unsupportedStorages(\"st1\") with ",
                          "volumeInfoChanged() with {1} | Gate | int:-1 | int:-1 | qlonglong:-1 | int:0"}));
    QCOMPARE(modelText(*groupModel("st1", ""), {258}), (QStringList{"F:/", "F:/"}));
}

void StorageUsageTest::theBackupGroupHasItsOwnName()
{
    event(QVariantList{entry("backupID", 0, -1, -1), entry("backupid", 0, -1, -1)});
    QCOMPARE(modelText(*usageModel(), {257, 258}), (QStringList{"backupID | Backup", "backupid | Gate"}));
}

void StorageUsageTest::oddDataGivesNoRows_data()
{
    QTest::addColumn<QVariant>("data");
    QTest::newRow("nothing") << QVariant();
    QTest::newRow("a number") << QVariant(3);
    QTest::newRow("a map") << QVariant(entry("{1}", 0, 0, 0));
    QTest::newRow("an empty list") << QVariant(QVariantList{});
    QTest::newRow("a hash") << QVariant(QVariantHash{{"0", entry("{1}", 0, 0, 0)}});
}

void StorageUsageTest::oddDataGivesNoRows()
{
    QFETCH(QVariant, data);
    event(QVariantList{entry("{1}", 0, -1, -1)});
    QVERIFY(groupModel("", "{1}"));
    SignalLog log(m_plugin.get());
    event(data);
    QCOMPARE(rows(), QStringList{});
    QVERIFY(!groupModel("", "{1}"));
    QCOMPARE(log.take(), QStringList{"volumeInfoChanged()"});
}

void StorageUsageTest::oddEntries_data()
{
    QTest::addColumn<QVariant>("odd");
    QTest::newRow("a text") << QVariant("text");
    QTest::newRow("nothing") << QVariant();
    QTest::newRow("an empty map") << QVariant(QVariantMap{});
    QTest::newRow("a list") << QVariant(QVariantList{entry("{2}", 0, -1, -1)});
    QTest::newRow("a group that is no text") << QVariant(with(entry("", 0, -1, -1), "recordingGroupID", QVariantMap{}));
}

void StorageUsageTest::oddEntries()
{
    QFETCH(QVariant, odd);
    SignalLog log(m_plugin.get());
    event(QVariantList{odd, entry("{1}", 0, -1, -1)});
    QCOMPARE(modelText(*usageModel(), {257}), QStringList{"{1}"});
    QCOMPARE(log.take(), (QStringList{"unsupportedStorages(\"\")", "volumeInfoChanged()"}));
    QCOMPARE(groupModel("", "")->rowCount(), 1);
}

void StorageUsageTest::stationsAreKeptApart()
{
    event(QVariantList{entry("{1}", 0, -1, -1)}, "st1");
    event(QVariantList{entry("{2}", 0, -1, -1)}, "");
    QCOMPARE(modelText(*usageModel("st1"), {257}), QStringList{"{1}"});
    QCOMPARE(modelText(*usageModel(""), {257}), QStringList{"{2}"});
    QVERIFY(groupModel("st1", "{1}"));
    QVERIFY(!groupModel("", "{1}"));
}

void StorageUsageTest::usageModelIsRefilledInPlace()
{
    const QPointer<QStandardItemModel> model = usageModel("st1");
    QVERIFY(model);
    QCOMPARE(model->rowCount(), 0);
    QCOMPARE(model->roleNames().size(), 9);
    event(QVariantList{entry("{1}", 0, -1, -1)}, "st1");
    event(QVariantList{entry("{2}", 0, -1, -1)}, "st1");
    QCOMPARE(usageModel("st1"), model.data());
    QCOMPARE(modelText(*model, {257}), QStringList{"{2}"});
    QCOMPARE(model->parent(), m_plugin.get());
    QCOMPARE(model->roleNames().size(), 9);
}

void StorageUsageTest::unknownGroupHasNoModel()
{
    QVERIFY(!groupModel("", "{1}"));
    event(QVariantList{entry("{1}", 0, -1, -1)});
    QVERIFY(!groupModel("", "{2}"));
    QVERIFY(!groupModel("", "{2}")); // asking makes none
    QVERIFY(!groupModel("st1", "{1}"));
}

void StorageUsageTest::groupModelsHoldTheEntries()
{
    const QVariantMap first{
        {"recordingGroupID", "{1}"}, {"recordingPath", "D:/Rec"}, {"volumeName", "Data"},           {"volumeSize", 100},
        {"volumeAvailableSize", 40}, {"volumeIsSystem", true},    {"volumePath", "not the root D:"}};
    const QVariantMap second{{"recordingGroupID", "{1}"}, {"recordingPath", "//n/s"}, {"volumeIsNAS", true}};
    event(QVariantList{first, with(first, "recordingGroupID", "{2}"), second, first}, "st1");
    const QStandardItemModel *const model = groupModel("st1", "{1}");
    QVERIFY(model);
    QCOMPARE(modelText(*model, volumeRoles),
             (QStringList{"D:/Rec | Data | qlonglong:100 | qlonglong:40 | bool:true | bool:false",
                          "//n/s |  | qlonglong:0 | qlonglong:0 | bool:false | bool:true",
                          "D:/Rec | Data | qlonglong:100 | qlonglong:40 | bool:true | bool:false"}));
    QCOMPARE(groupModel("st1", "{2}")->rowCount(), 1);
    QCOMPARE(model->parent(), m_plugin.get());
    QCOMPARE(model->roleNames().value(258), "rootPathRole");
    const QString id = model->index(0, 0).data(257).toString();
    QCOMPARE(QUuid(id).toString(), id);
    QVERIFY(id != model->index(2, 0).data(257).toString());
}

void StorageUsageTest::groupModelsHoldAnyNumber()
{
    event(QVariantList{with(entry("{1}", smallest, -1, -1), "volumeSize", largest),
                       with(entry("{1}", largest, -1, -1), "volumeSize", smallest)});
    QCOMPARE(modelText(*groupModel("", "{1}"), {260, 261}),
             (QStringList{"qlonglong:9223372036854775807 | qlonglong:-9223372036854775808",
                          "qlonglong:-9223372036854775808 | qlonglong:9223372036854775807"}));
}

void StorageUsageTest::groupModelsAreReplacedByEachEvent()
{
    event(QVariantList{entry("{1}", 0, -1, -1), entry("{2}", 0, -1, -1)}, "st1");
    event(QVariantList{entry("{3}", 0, -1, -1)}, "");
    const QPointer<QStandardItemModel> shown = groupModel("st1", "{1}");
    const QPointer<QStandardItemModel> elsewhere = groupModel("", "{3}");
    QAbstractItemModelTester view(shown, QAbstractItemModelTester::FailureReportingMode::QtTest);
    event(QVariantList{entry("{1}", 0, -1, -1), entry("{1}", 0, -1, -1)}, "st1");
    QVERIFY(shown.isNull());
    QCOMPARE(groupModel("st1", "{1}")->rowCount(), 2);
    QVERIFY(!groupModel("st1", "{2}"));
    QCOMPARE(groupModel("", "{3}"), elsewhere.data());
}

void StorageUsageTest::groupModelsOutliveAConnection()
{
    event(QVariantList{entry("{1}", 0, -1, -1)});
    const QPointer<QStandardItemModel> usage = usageModel();
    const QPointer<QStandardItemModel> group = groupModel("", "{1}");
    m_framework.accepts = false;
    m_plugin->PluginServerConnected();
    QVERIFY(usage.isNull());
    QVERIFY(group);
    QCOMPARE(groupModel("", "{1}"), group.data());
}

void StorageUsageTest::signalsAndModelsOfAnEvent()
{
    SignalLog log(m_plugin.get(), [this] {
        const QStandardItemModel *const group = groupModel("", "{1}");
        return QStringLiteral("%1 usage rows, %2 volume rows")
            .arg(usageModel()->rowCount())
            .arg(group ? group->rowCount() : -1);
    });
    event(QVariantList{entry("{1}", 0, -1, -1), entry("", 0, -1, -1)});
    QCOMPARE(log.take(),
             (QStringList{"unsupportedStorages(\"\") with 0 usage rows, 1 volume rows",
                          "volumeInfoChanged() with 1 usage rows, 1 volume rows"}));
}

void StorageUsageTest::viewsSeeOneResetAndOneInsertion()
{
    QStandardItemModel *const model = usageModel();
    QAbstractItemModelTester tester(model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    event(QVariantList{entry("{9}", 0, -1, -1)});
    QSignalSpy resets(model, &QAbstractItemModel::modelReset);
    QSignalSpy insertions(model, &QAbstractItemModel::rowsInserted);
    event(QVariantList{entry("{1}", 0, -1, -1), entry("{2}", 0, -1, -1), entry("{3}", 0, -1, -1)});
    QCOMPARE(resets.size(), 1);
    QCOMPARE(insertions.size(), 1);
    QCOMPARE(model->rowCount(), 3);
}

void StorageUsageTest::failedRowIsSkipped()
{
    usageModel();
    QSet<QStringList> seen;
    bool failed = true;
    for (int nth = 0; failed; ++nth) {
        const AllocationFailure failure(nth, AllocationFailure::Kind::Throwing, sizeof(QStandardItem));
        event(QVariantList{entry("{1}", 0, -1, -1), entry("{2}", 0, -1, -1)});
        failed = failure.happened();
        seen.insert(modelText(*usageModel(), {257}));
    }
    QVERIFY(seen.contains(QStringList{"{1}"}));
    QVERIFY(seen.contains(QStringList{"{2}"}));
    QVERIFY(seen.contains(QStringList{"{1}", "{2}"}));
}

void StorageUsageTest::groupModelIsWholeOrNull()
{
    event(QVariantList{entry("{1}", 0, -1, -1), entry("{2}", 0, -1, -1), entry("{1}", 0, -1, -1)});
    bool failed = true;
    for (int nth = 0; failed; ++nth) {
        event(QVariantList{entry("{1}", 0, -1, -1), entry("{2}", 0, -1, -1), entry("{1}", 0, -1, -1)});
        const qsizetype children = m_plugin->children().size();
        {
            const AllocationFailure failure(nth, AllocationFailure::Kind::Throwing);
            const QStandardItemModel *const model = groupModel("", "{1}");
            failed = failure.happened();
            QVERIFY(model ? model->rowCount() == 2 : failed);
            QCOMPARE(m_plugin->children().size(), children + (model ? 1 : 0));
        }
        QCOMPARE(groupModel("", "{1}")->rowCount(), 2); // asked again with memory there
    }
}

void StorageUsageTest::groupModelsAreMadeWhenTheyAreAskedFor()
{
    const qsizetype children = m_plugin->children().size();
    const QVariantMap path = with(with(entry("{2}", 7, -1, -1), "recordingPath", "D:/Rec"), "volumeIsNAS", true);
    event(QVariantList{entry("{1}", 0, -1, -1), path, entry("{2}", 0, -1, -1)});
    QCOMPARE(m_plugin->children().size(), children + 1); // the usage model
    const QVariantList infos = m_plugin->getRecordingGroupInfoList();
    const QStandardItemModel *const model = groupModel("", "{2}");
    QCOMPARE(m_plugin->children().size(), children + 2);
    QCOMPARE(groupModel("", "{2}"), model);
    m_plugin->getStorageUsageModel("");
    QCOMPARE(m_plugin->getRecordingGroupInfoList(), infos);
    QCOMPARE(m_plugin->children().size(), children + 2);
}

void StorageUsageTest::newModelsAreNotAtOldAddresses()
{
    constexpr int groupCount = 40; // so many that the allocator hands out some address again
    QVariantList entries;
    for (int i = 0; i < groupCount; ++i)
        entries.append(entry(QString::number(i), 0, -1, -1));
    QSet<const void *> before;
    for (int i = 0; i < 20; ++i) {
        event(entries);
        QSet<const void *> now;
        const int asked = i % 3 == 1 ? 1 : groupCount; // models that are asked for later than others, too
        for (int group = 0; group < asked; ++group)
            now.insert(groupModel("", QString::number(group)));
        QCOMPARE(now.size(), asked);
        QVERIFY2(!now.intersects(before), "a view that asks again would take the new model for the old one");
        before = now;
    }
}

void StorageUsageTest::listenersMayComeBack_data()
{
    QTest::addColumn<QString>("listener");
    QTest::newRow("for another station's model") << "model";
    QTest::newRow("to report the connection up again") << "connection";
    QTest::newRow("with an event of another station") << "event";
}

void StorageUsageTest::listenersMayComeBack()
{
    QFETCH(QString, listener);
    const auto comeBack = [&] {
        if (listener == "model") {
            for (int i = 0; i < 100; ++i)
                m_plugin->getStorageUsageModel(QString::number(i));
        } else if (listener == "connection") {
            m_plugin->PluginServerConnected();
        } else {
            event(QVariantList{entry("{1}", 0, -1, -1)}, "elsewhere");
        }
    };
    // PluginServerConnected() asks for the groups; answer at once, so that nothing is left over.
    m_framework.duringSend = [this](const FakeFramework::Sent &sent) {
        if (sent.command == "getRecordingGroup")
            m_plugin->CommandProcessor(sent.command, {}, sent.context, "0", {}, true, {});
    };
    connect(m_plugin.get(), &PluginRecordingManagement::unsupportedStorages, this, comeBack);
    const QVariantList entries{entry("", 0, -1, -1), entry("{1}", 0, -1, -1), entry("{2}", 0, -1, -1)};
    for (int i = 0; i < 3; ++i) {
        QStandardItemModel *const model = usageModel("st1");
        connect(model, &QAbstractItemModel::rowsInserted, this, comeBack);
        connect(model, &QAbstractItemModel::modelReset, this, comeBack);
        event(entries, "st1");
        QVERIFY(groupModel("st1", "{2}"));
        // A new connection forgot the model that was being filled; a new one stands ready and is empty.
        QCOMPARE(usageModel("st1")->rowCount(), listener == "connection" ? 0 : 2);
    }
}

void StorageUsageTest::listenerMayComeBackWithAnEventOfTheStation()
{
    int signalled = 0;
    connect(m_plugin.get(), &PluginRecordingManagement::unsupportedStorages, this, [&] {
        if (++signalled == 1)
            event(QVariantList{entry("{9}", 0, -1, -1)}, "st1");
    });
    event(QVariantList{entry("", 0, -1, -1), entry("{1}", 0, -1, -1)}, "st1");
    QCOMPARE(signalled, 1);
    // The rows of the event within come first: the event around it had cleared the model already.
    QCOMPARE(modelText(*usageModel("st1"), {257}), (QStringList{"{9}", "{1}"}));
    QVERIFY(groupModel("st1", "{9}"));
    QVERIFY(!groupModel("st1", "{1}"));
    event(QVariantList{entry("{1}", 0, -1, -1)}, "st1");
    QCOMPARE(modelText(*usageModel("st1"), {257}), QStringList{"{1}"});
}

void StorageUsageTest::everySignalMayComeBack_data()
{
    QTest::addColumn<QByteArray>("signal");
    QTest::newRow("of storage without a group") << QByteArray(SIGNAL(unsupportedStorages(QString)));
    QTest::newRow("of new figures") << QByteArray(SIGNAL(volumeInfoChanged()));
}

// Asks for everything that hands a model out, and reads it.
void StorageUsageTest::everySignalMayComeBack()
{
    QFETCH(QByteArray, signal);
    m_framework.accepts = false;
    QSignalSpy heard(m_plugin.get(), signal.constData());
    QStringList infoLists;
    const auto comeBack = [&] {
        const qsizetype infos = m_plugin->getRecordingGroupInfoList().size();
        const auto *const group = groupModel("", "{1}");
        infoLists.append(QStringLiteral("%1 groups, %2 volumes").arg(infos).arg(group ? group->rowCount() : -1));
        m_plugin->PluginServerConnected();
        QCOMPARE(usageModel()->rowCount(), 0);
    };
    if (signal.contains("unsupportedStorages"))
        connect(m_plugin.get(), &PluginRecordingManagement::unsupportedStorages, this, comeBack);
    else
        connect(m_plugin.get(), &PluginRecordingManagement::volumeInfoChanged, this, comeBack);
    const QVariantList entries{entry("", 0, -1, -1), entry("{1}", 0, -1, -1)};
    event(entries);
    event(entries);
    QCOMPARE(heard.size(), 2);
    const QString seen = signal.contains("unsupportedStorages") ? "0 groups, 1 volumes" : "1 groups, 1 volumes";
    QCOMPARE(infoLists, (QStringList{seen, seen}));
}

void StorageUsageTest::theEndOfAModelMayComeBack()
{
    const QVariantList entries{entry("{1}", 0, -1, -1), entry("{2}", 0, -1, -1)};
    event(entries);
    int ends = 0;
    connect(groupModel("", "{1}"), &QObject::destroyed, this, [&] {
        ++ends;
        QVERIFY(!groupModel("", "{1}"));
        event(entries);
    });
    event(entries);
    QCOMPARE(ends, 1);
    QCOMPARE(groupModel("", "{1}")->rowCount(), 1);

    connect(usageModel(), &QObject::destroyed, this, [&] {
        ++ends;
        m_plugin->getStorageUsageModel("");
    });
    m_framework.accepts = false;
    m_plugin->PluginServerConnected();
    QCOMPARE(ends, 2);
    QCOMPARE(usageModel()->rowCount(), 0);
}

QTEST_GUILESS_MAIN(StorageUsageTest)
#include "tst_storage_usage.moc"
