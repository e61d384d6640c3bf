#include "FakeFramework.h"
#include "FakeStationPlugin.h"
#include "HeapWatch.h"
#include "ModelText.h"
#include "PluginRecordingManagement.h"
#include "SignalLog.h"
#include "TraceRecorder.h"
#include "TypedText.h"

#include <QAbstractItemModelTester>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>
#include <QUuid>

#include <memory>

namespace {

const QString &stationPluginId = FakeStationPlugin::pluginId;
const QList<int> describingRoles{259, 260, 261, 262, 263};

// Has a method of that name that answers in another way.
class OtherPlugin : public QObject
{
    Q_OBJECT

public:
    Q_INVOKABLE QVariantMap getStationTree() { return {{"name", "North"}}; }
};

QVariantMap group(const QString &id, const QVariant &relayPath = QStringLiteral("st1"))
{
    return {{"recordingGroupID", id}, {"recordingGroupName", "Group " + id}, {"relayPath", relayPath}};
}

} // namespace

class StationTreeTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void theStationStandsAlone();
    void stationFieldsAreTexts_data();
    void stationFieldsAreTexts();
    void theRequestNamesTheStationInItsData();
    void withoutAStationNothingIsSent_data();
    void withoutAStationNothingIsSent();
    void refusedSendStillClearsTheCache();
    void theCacheIsClearedAfterTheSend();
    void groupsHangUnderTheirStation();
    void groupValuesAreKeptAsTheyCame();
    void groupsOfOtherStationsAreOnlyCached();
    void groupsWithoutRelayPathAreDropped();
    void emptyRelayPathIsOneLikeAnyOther();
    void groupsAreNoParents();
    void groupsGoToTheFirstOfEqualStations();
    void deeperStationsAreFound();
    void oddReplies_data();
    void oddReplies();
    void refusedReplyChangesNothing_data();
    void refusedReplyChangesNothing();
    void theSignalComesWhenTreeAndCacheAreFilled();
    void refreshKeepsTheStation();
    void secondReplyAppendsAgain();
    void emptyTreeAsksForTheStationAgain();
    void failedItemIsSkipped();
    void aReplyIsOneInsertion();
    void stationMayLeaveWhileGroupsAreFilled();

private:
    void reply(const QVariant &data, const QString &code = "0")
    {
        m_plugin->CommandProcessor("retrieveRecordingGroupTreeModel", data, nullptr, code, {}, true, {});
    }
    QStringList tree() const { return modelText(*m_model, describingRoles); }
    QStringList groupIds(int station = 0) const { return modelText(*m_model, {263}, m_model->index(station, 0)); }

    FakeStationPlugin m_station;
    OtherPlugin m_other;
    FakeFramework m_framework;
    std::unique_ptr<PluginRecordingManagement> m_plugin;
    QStandardItemModel *m_model = nullptr;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
    std::unique_ptr<SignalLog> m_log;
};

void StationTreeTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_station.station = FakeStationPlugin().station;
    m_station.asked = 0;
    m_framework = {};
    m_framework.pluginObjects.insert(stationPluginId, &m_station);
    m_plugin = std::make_unique<PluginRecordingManagement>();
    QVERIFY(m_plugin->InitialPluginBase(nullptr, this, &m_framework));
    m_model = qobject_cast<QStandardItemModel *>(m_plugin->getRecordingGroupTreeModel());
    QVERIFY(m_model);
    m_tester =
        std::make_unique<QAbstractItemModelTester>(m_model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    m_log = std::make_unique<SignalLog>(m_plugin.get());
    takeTraceLines();
}

void StationTreeTest::theStationStandsAlone()
{
    QVERIFY(m_plugin->retrieveRecordingGroupTreeModel());
    QCOMPARE(tree(), QStringList{"North | st1 | NVR | 10.0.0.7 | invalid"});
    const QVariant id = m_model->index(0, 0).data(257);
    QCOMPARE(id.typeName(), "QString");
    QCOMPARE(QUuid(id.toString()).toString(), id.toString());
    QVERIFY(!QUuid(id.toString()).isNull());
    QVERIFY(!m_model->index(0, 0).data(Qt::DisplayRole).isValid());
    QCOMPARE(m_framework.askedPlugins, QStringList{stationPluginId});
    QCOMPARE(m_framework.lastHandle, this);
    QCOMPARE(takeTraceLines(), QStringList{});
    QCOMPARE(m_log->take(), QStringList{});
}

void StationTreeTest::stationFieldsAreTexts_data()
{
    QTest::addColumn<QVariantMap>("station");
    QTest::addColumn<QString>("row");
    QTest::newRow("missing") << QVariantMap{{"other", 1}} << " |  |  |  | invalid";
    QTest::newRow("numbers") << QVariantMap{{"name", 1}, {"ip", 2}, {"relayPath", 3}, {"type", 4}}
                             << "1 | 3 | 4 | 2 | invalid";
    QTest::newRow("a type like a group's")
        << QVariantMap{{"name", "N"}, {"type", "RecordingGroup"}} << "N |  | RecordingGroup |  | invalid";
}

void StationTreeTest::stationFieldsAreTexts()
{
    QFETCH(QVariantMap, station);
    QFETCH(QString, row);
    m_station.station = station;
    QVERIFY(m_plugin->retrieveRecordingGroupTreeModel());
    QCOMPARE(tree(), QStringList{row});
}

void StationTreeTest::theRequestNamesTheStationInItsData()
{
    QVERIFY(m_plugin->retrieveRecordingGroupTreeModel());
    QCOMPARE(m_framework.sent.size(), 1);
    const FakeFramework::Sent &sent = m_framework.sent.constFirst();
    QCOMPARE(sent.command, "retrieveRecordingGroupTreeModel");
    QCOMPARE(typedText(sent.data), "{relayPath: QString \"st1\"}");
    QCOMPARE(sent.context, nullptr);
    QCOMPARE(sent.relayPath, QString());
}

void StationTreeTest::withoutAStationNothingIsSent_data()
{
    QTest::addColumn<QString>("plugin");
    QTest::addColumn<QVariant>("station");
    QTest::newRow("no station plug-in") << "" << QVariant();
    QTest::newRow("no such method") << "plain" << QVariant();
    QTest::newRow("a method with another result") << "other" << QVariant();
    QTest::newRow("an empty map") << "station" << QVariant(QVariantMap{});
    QTest::newRow("nothing") << "station" << QVariant();
    QTest::newRow("a text") << "station" << QVariant("North");
}

void StationTreeTest::withoutAStationNothingIsSent()
{
    QFETCH(QString, plugin);
    QFETCH(QVariant, station);
    QObject plain;
    m_station.station = station;
    m_framework.pluginObjects.clear();
    if (plugin == "plain")
        m_framework.pluginObjects.insert(stationPluginId, &plain);
    else if (plugin == "other")
        m_framework.pluginObjects.insert(stationPluginId, &m_other);
    else if (plugin == "station")
        m_framework.pluginObjects.insert(stationPluginId, &m_station);
    QVariantMap record = group("{1}");
    record.insert("recordingGroupReservedTime", 5);
    reply(QVariantList{record});
    m_log->take();
    takeTraceLines();

    QVERIFY(!m_plugin->retrieveRecordingGroupTreeModel());
    QVERIFY(m_framework.sent.isEmpty());
    QCOMPARE(m_model->rowCount(), 0);
    QCOMPARE(takeTraceLines(),
             QStringList{"error: PluginRecordingManagement::retrieveRecordingGroupTreeModel, GetStationTree failed"});
    QCOMPARE(m_log->take(), QStringList{});
    QCOMPARE(m_plugin->getRecordingGroupReservedTime("{1}", "st1"), 5); // the cache is left alone
}

void StationTreeTest::refusedSendStillClearsTheCache()
{
    QVariantMap record = group("{1}");
    record.insert("recordingGroupReservedTime", 5);
    reply(QVariantList{record});
    QCOMPARE(m_plugin->getRecordingGroupReservedTime("{1}", "st1"), 5);
    takeTraceLines();
    m_framework.accepts = false;
    QVERIFY(m_plugin->retrieveRecordingGroupTreeModel());
    QCOMPARE(m_plugin->getRecordingGroupReservedTime("{1}", "st1"), 0);
    QCOMPARE(takeTraceLines(),
             QStringList{"error: PluginRecordingManagement::sendRequestToServer, Send command failed."});
}

void StationTreeTest::theCacheIsClearedAfterTheSend()
{
    QVariantMap record = group("{1}");
    record.insert("recordingGroupReservedTime", 5);
    reply(QVariantList{record});
    int duringSend = -1;
    m_framework.duringSend = [&](const FakeFramework::Sent &) {
        duringSend = m_plugin->getRecordingGroupReservedTime("{1}", "st1");
    };
    QVERIFY(m_plugin->retrieveRecordingGroupTreeModel());
    QCOMPARE(duringSend, 5);
    QCOMPARE(m_plugin->getRecordingGroupReservedTime("{1}", "st1"), 0);
}

void StationTreeTest::groupsHangUnderTheirStation()
{
    m_plugin->retrieveRecordingGroupTreeModel();
    reply(QVariantList{group("{2}"), group("{1}")});
    QCOMPARE(
        tree(),
        (QStringList{"North | st1 | NVR | 10.0.0.7 | invalid", "  Group {2} | st1 | RecordingGroup | invalid | {2}",
                     "  Group {1} | st1 | RecordingGroup | invalid | {1}"}));
    const QModelIndex first = m_model->index(0, 0, m_model->index(0, 0));
    const QVariant id = first.data(257);
    QCOMPARE(id.typeName(), "QUuid"); // a UUID, where the station has a text
    QVERIFY(!id.value<QUuid>().isNull());
    QVERIFY(id != first.siblingAtRow(1).data(257));
    QVERIFY(!m_model->hasChildren(first));
}

void StationTreeTest::groupValuesAreKeptAsTheyCame()
{
    m_plugin->retrieveRecordingGroupTreeModel();
    reply(QVariantList{
        QVariantMap{{"relayPath", "st1"}},
        QVariantMap{{"relayPath", "st1"}, {"recordingGroupName", 5}, {"recordingGroupID", QStringList{"a"}}}});
    QCOMPARE(modelText(*m_model, {259, 263}, m_model->index(0, 0)),
             (QStringList{"invalid | invalid", "int:5 | QStringList:[a]"}));
}

void StationTreeTest::groupsOfOtherStationsAreOnlyCached()
{
    m_plugin->retrieveRecordingGroupTreeModel();
    QVariantMap elsewhere = group("{1}", "st2");
    elsewhere.insert("recordingGroupReservedTime", 5);
    reply(QVariantList{elsewhere, group("{2}", "ST1"), group("{3}")});
    QCOMPARE(groupIds(), QStringList{"{3}"});
    QCOMPARE(m_plugin->getRecordingGroupReservedTime("{1}", "st2"), 5);
}

void StationTreeTest::groupsWithoutRelayPathAreDropped()
{
    m_station.station = QVariantMap{{"name", "direct"}};
    m_plugin->retrieveRecordingGroupTreeModel();
    QVariantMap without = group("{1}");
    without.remove("relayPath");
    reply(QVariantList{without, group("{2}", QVariant()), group("{3}", 0)});
    QCOMPARE(groupIds(), QStringList{}); // the station's relay path is an empty text, which is a value
}

void StationTreeTest::emptyRelayPathIsOneLikeAnyOther()
{
    m_station.station = QVariantMap{{"name", "direct"}};
    m_plugin->retrieveRecordingGroupTreeModel();
    QCOMPARE(typedText(m_framework.sent.constFirst().data), "{relayPath: QString \"\"}");
    reply(QVariantList{group("{1}", ""), group("{2}", "st1")});
    QCOMPARE(groupIds(), QStringList{"{1}"});
}

void StationTreeTest::groupsAreNoParents()
{
    m_plugin->retrieveRecordingGroupTreeModel();
    reply(QVariantList{group("{1}")});
    reply(QVariantList{group("{2}"), group("{3}")});
    QCOMPARE(groupIds(), (QStringList{"{1}", "{2}", "{3}"}));

    m_model->clear();
    m_station.station = QVariantMap{{"name", "odd"}, {"relayPath", "st1"}, {"type", "RecordingGroup"}};
    m_plugin->retrieveRecordingGroupTreeModel();
    reply(QVariantList{group("{1}")});
    QCOMPARE(groupIds(), QStringList{}); // a station that calls itself a group gets none
}

void StationTreeTest::groupsGoToTheFirstOfEqualStations()
{
    m_plugin->retrieveRecordingGroupTreeModel();
    for (const char *relayPath : {"st2", "st1"}) {
        auto *station = new QStandardItem;
        station->setData(relayPath, 260);
        m_model->appendRow(station);
    }
    reply(QVariantList{group("{1}", "st2"), group("{2}"), group("{3}", "st2")});
    QCOMPARE(groupIds(0), QStringList{"{2}"});
    QCOMPARE(groupIds(1), (QStringList{"{1}", "{3}"}));
    QCOMPARE(groupIds(2), QStringList{});
}

void StationTreeTest::deeperStationsAreFound()
{
    m_plugin->retrieveRecordingGroupTreeModel();
    auto *below = new QStandardItem; // without a relay path
    m_model->item(0, 0)->appendRow(below);
    QVariantMap without = group("{1}");
    without.remove("relayPath");
    reply(QVariantList{without});
    QCOMPARE(modelText(*m_model, {263}, below->index()), QStringList{"{1}"});
}

void StationTreeTest::oddReplies_data()
{
    QTest::addColumn<QVariant>("data");
    QTest::newRow("nothing") << QVariant();
    QTest::newRow("a number") << QVariant(5);
    QTest::newRow("a map") << QVariant(group("{1}"));
    QTest::newRow("an empty list") << QVariant(QVariantList{});
    QTest::newRow("no maps") << QVariant(QVariantList{5, "text", QVariant()});
}

void StationTreeTest::oddReplies()
{
    QFETCH(QVariant, data);
    m_plugin->retrieveRecordingGroupTreeModel();
    reply(data);
    QCOMPARE(tree().size(), 1);
    QCOMPARE(m_log->take(), QStringList{"retrieveRecordingGroupTreeModelFinish()"});
}

void StationTreeTest::refusedReplyChangesNothing_data()
{
    QTest::addColumn<QString>("code");
    for (const char *code : {"1", "", "00", "busy"})
        QTest::newRow(code) << QString::fromLatin1(code);
}

void StationTreeTest::refusedReplyChangesNothing()
{
    QFETCH(QString, code);
    m_plugin->retrieveRecordingGroupTreeModel();
    takeTraceLines();
    reply(QVariantList{group("{1}")}, code);
    QCOMPARE(tree(), QStringList{"North | st1 | NVR | 10.0.0.7 | invalid"});
    QVERIFY(m_plugin->getRecordingGroupIDList("").isEmpty());
    QCOMPARE(m_log->take(), QStringList{});
    QCOMPARE(takeErrorLines(),
             QStringList{"PluginRecordingManagement::handleRetrieveRecordingGroupTreeModel, Get recording group "
                         "failed, returnCode = "
                         + code});
}

void StationTreeTest::theSignalComesWhenTreeAndCacheAreFilled()
{
    m_plugin->retrieveRecordingGroupTreeModel();
    QVariantMap record = group("{1}");
    record.insert("recordingGroupReservedTime", 5);
    int cachedAtInsertion = -1;
    connect(m_model, &QAbstractItemModel::rowsInserted, this,
            [&] { cachedAtInsertion = m_plugin->getRecordingGroupReservedTime("{1}", "st1"); });
    SignalLog log(m_plugin.get(), [this] {
        return QStringLiteral("%1 in the tree, %2 minutes in the cache")
            .arg(groupIds().size())
            .arg(m_plugin->getRecordingGroupReservedTime("{1}", "st1"));
    });
    reply(QVariantList{record});
    QCOMPARE(log.take(),
             QStringList{"retrieveRecordingGroupTreeModelFinish() with 1 in the tree, 5 minutes in the cache"});
    QCOMPARE(cachedAtInsertion, 0); // first the tree, then the cache
}

void StationTreeTest::refreshKeepsTheStation()
{
    m_plugin->retrieveRecordingGroupTreeModel();
    reply(QVariantList{group("{1}"), group("{2}")});
    const QVariant id = m_model->index(0, 0).data(257);
    m_station.station = QVariantMap{{"name", "South"}, {"relayPath", "st9"}};
    QVERIFY(m_plugin->retrieveRecordingGroupTreeModel());
    QCOMPARE(m_station.asked, 1);
    QCOMPARE(tree(), QStringList{"North | st1 | NVR | 10.0.0.7 | invalid"});
    QCOMPARE(m_model->index(0, 0).data(257), id);
    QCOMPARE(typedText(m_framework.sent.at(1).data), "{relayPath: QString \"st1\"}");
    reply(QVariantList{group("{3}")});
    QCOMPARE(groupIds(), QStringList{"{3}"});
    QVERIFY(m_plugin->retrieveRecordingGroupTreeModel());
    QVERIFY(m_plugin->retrieveRecordingGroupTreeModel()); // with no groups to remove
    QCOMPARE(groupIds(), QStringList{});
}

void StationTreeTest::secondReplyAppendsAgain()
{
    m_plugin->retrieveRecordingGroupTreeModel();
    QVariantMap record = group("{1}");
    record.insert("recordingGroupMemberList", QVariantList{QVariantMap{{"camName", "cam"}}});
    reply(QVariantList{record});
    reply(QVariantList{record});
    QCOMPARE(groupIds(), (QStringList{"{1}", "{1}"}));
    QCOMPARE(m_plugin->getRecordingGroupIDList("st1/cam"), (QVariantList{"{1}", "{1}"}));
}

void StationTreeTest::emptyTreeAsksForTheStationAgain()
{
    m_plugin->retrieveRecordingGroupTreeModel();
    const QVariant id = m_model->index(0, 0).data(257);
    m_model->clear();
    m_plugin->retrieveRecordingGroupTreeModel();
    QCOMPARE(m_station.asked, 2);
    QCOMPARE(m_model->rowCount(), 1);
    QVERIFY(m_model->index(0, 0).data(257) != id);
}

void StationTreeTest::failedItemIsSkipped()
{
    QVariantMap record = group("{2}");
    record.insert("recordingGroupReservedTime", 5);
    const QVariantList groups{group("{1}"), record, group("{3}")};
    const QStringList withoutOne{"{1}", "{3}"};
    m_plugin->retrieveRecordingGroupTreeModel();
    // Qt allocates a few others of this size on the way to the second row.
    for (int nth = 1; groupIds() != withoutOne && nth < 10; ++nth) {
        m_plugin->retrieveRecordingGroupTreeModel();
        m_log->take();
        takeTraceLines();
        const AllocationFailure failure(nth, AllocationFailure::Kind::Throwing, sizeof(QStandardItem));
        reply(groups);
        QVERIFY(failure.happened());
    }
    QCOMPARE(groupIds(), withoutOne);
    QCOMPARE(m_plugin->getRecordingGroupReservedTime("{2}", "st1"), 5); // the cache has it
    QCOMPARE(takeErrorLines(),
             QStringList{"PluginRecordingManagement::appendRecordingGroupToTreeModel, new RecordingGroupTreeModelItem "
                         "failed"});
    QCOMPARE(m_log->take(), QStringList{"retrieveRecordingGroupTreeModelFinish()"});
}

void StationTreeTest::aReplyIsOneInsertion()
{
    m_plugin->retrieveRecordingGroupTreeModel();
    QSignalSpy insertions(m_model, &QAbstractItemModel::rowsInserted);
    reply(QVariantList{group("{1}"), group("{2}"), group("{3}")});
    QCOMPARE(insertions.size(), 1);
}

void StationTreeTest::stationMayLeaveWhileGroupsAreFilled()
{
    m_plugin->retrieveRecordingGroupTreeModel();
    auto *second = new QStandardItem;
    second->setData("st2", 260);
    m_model->appendRow(second);
    const QMetaObject::Connection connection =
        connect(m_model, &QAbstractItemModel::rowsInserted, this, [this] { m_model->removeRow(1); });
    reply(QVariantList{group("{1}"), group("{2}", "st2")});
    disconnect(connection);
    QCOMPARE(m_model->rowCount(), 1);
    QCOMPARE(groupIds(), QStringList{"{1}"});
}

QTEST_GUILESS_MAIN(StationTreeTest)
#include "tst_station_tree.moc"
