#include "FakeFramework.h"
#include "PluginRecordingManagement.h"
#include "companions/StationPlugin.h"
#include "companions/StatusMonitorPlugin.h"

#include <QAbstractItemModelTester>
#include <QRegularExpression>
#include <QSysInfo>
#include <QTest>

#include <memory>

namespace {

QVariantMap figures(const QString &groupId, int recordedDays, int reservedMinutes, qlonglong size = 1000)
{
    return {{"recordingGroupID", groupId},
            {"recordingGroupName", "Gate " + groupId},
            {"recordingGroupReservedTime", reservedMinutes},
            {"volumeSize", size},
            {"volumeAvailableSize", 0},
            {"volumeOneDayUsage", 1024 * 1024},
            {"volumeRecordedDays", recordedDays}};
}

constexpr int day = 1440; // minutes

} // namespace

class TestCompanions : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void stationIsNamed();
    void stationHasDefaults();
    void pluginTakesItsTreeFromTheStationPlugin();

    void shortGroupRaisesOneAlarm();
    void nameOfTheGroupFollows();
    void groupThatSufficesWithdrawsIt();
    void groupsOfStationsAreToldApart();
    void removedGroupWithdrawsIt();
    void volumeErrorIsRaisedOnce();
    void volumeThatComesBackWithdrawsIt();
    void volumeErrorWithdrawnAndRaisedByTheNextEvent();
    void volumeErrorsOfStationsAreToldApart();
    void withdrawalOfNothingIsSilent();
    void alarmCarriesItsTime();
    void aStationKnowsMoreOfAShortGroup();
    void aStationAloneRaisesNoShortGroup();
    void theDirectStationsAlarmsAreItsOwn();
    void alarmsOfAStationAreCounted();

private:
    void change(const QVariantList &entries, const QString &source = {})
    {
        m_plugin->EventProcessor("VolumeChanged", 0, 0, 0, entries, source);
    }
    void settle() { QCoreApplication::sendPostedEvents(m_monitor.get()); }
    /// Source, kind, group's id and name of each alarm.
    QStringList alarms() const
    {
        QStringList lines;
        for (int row = 0; row < m_monitor->rowCount(); ++row) {
            const QModelIndex index = m_monitor->index(row);
            lines.append(QStringList{index.data(StatusMonitorPlugin::SourceRole).toString(),
                                     index.data(StatusMonitorPlugin::KindRole).toString(),
                                     index.data(StatusMonitorPlugin::GroupIdRole).toString(),
                                     index.data(StatusMonitorPlugin::GroupNameRole).toString()}
                             .join(u'|'));
        }
        return lines;
    }

    std::unique_ptr<FakeFramework> m_framework;
    std::unique_ptr<StationPlugin> m_station;
    std::unique_ptr<StatusMonitorPlugin> m_monitor;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
    std::unique_ptr<PluginRecordingManagement> m_plugin;
    QStringList m_news; // what the monitor signalled
};

void TestCompanions::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_framework = std::make_unique<FakeFramework>();
    m_station = std::make_unique<StationPlugin>("North", "relay-7");
    m_monitor = std::make_unique<StatusMonitorPlugin>();
    m_tester = std::make_unique<QAbstractItemModelTester>(m_monitor.get(),
                                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    m_framework->pluginObjects.insert("1AA33B3D0AA047C9A202F1181284D2CD", m_station.get());
    m_framework->pluginObjects.insert("{CA5B02D6-F3E0-4FD7-A55C-17F425D5B415}", m_monitor.get());
    m_news.clear();
    const auto note = [this](const QString &what) {
        return [this, what](const StatusMonitorPlugin::Alarm &alarm) {
            m_news.append(QStringList{what, alarm.source, alarm.groupId}.join(u' '));
        };
    };
    connect(m_monitor.get(), &StatusMonitorPlugin::raised, this, note("raised"));
    connect(m_monitor.get(), &StatusMonitorPlugin::withdrawn, this, note("withdrawn"));
    m_plugin = std::make_unique<PluginRecordingManagement>();
    QVERIFY(m_plugin->InitialPluginBase(nullptr, nullptr, m_framework.get()));
}

void TestCompanions::cleanup()
{
    m_plugin.reset();
    m_tester.reset();
    m_monitor.reset();
    m_station.reset();
    m_framework.reset();
}

void TestCompanions::stationIsNamed()
{
    QVariant station;
    QVERIFY(QMetaObject::invokeMethod(m_station.get(), "getStationTree", Qt::DirectConnection,
                                      Q_RETURN_ARG(QVariant, station)));
    const QVariantMap map = station.toMap();
    QCOMPARE(map.keys(), (QStringList{"ip", "name", "relayPath", "type"}));
    QCOMPARE(map.value("name"), QVariant("North"));
    QCOMPARE(map.value("relayPath"), QVariant("relay-7"));
    QCOMPARE(map.value("type"), QVariant("RecordingServer"));
    QCOMPARE(StationPlugin::pluginId, "1AA33B3D0AA047C9A202F1181284D2CD");
}

void TestCompanions::stationHasDefaults()
{
    const QVariantMap map = StationPlugin({}, {}).getStationTree().toMap();
    QCOMPARE(map.value("name"), QVariant(QSysInfo::machineHostName()));
    QCOMPARE(map.value("relayPath"), QVariant(QString()));
    const QString address = map.value("ip").toString();
    static const QRegularExpression numbers(QStringLiteral("^([0-9]+(\\.[0-9]+){3}|[0-9a-f:]+(%.+)?)$"));
    QVERIFY2(numbers.match(address).hasMatch(), qPrintable(address));
    QVERIFY(address != "::1");
}

void TestCompanions::pluginTakesItsTreeFromTheStationPlugin()
{
    QVERIFY(m_plugin->retrieveRecordingGroupTreeModel());
    QCOMPARE(m_framework->sent.last().command, "retrieveRecordingGroupTreeModel");
    QCOMPARE(m_framework->sent.last().data, QVariant(QVariantMap{{"relayPath", "relay-7"}}));
    m_plugin->CommandProcessor(
        "retrieveRecordingGroupTreeModel",
        QVariantList{
            QVariantMap{{"recordingGroupID", "{1}"}, {"recordingGroupName", "Gate"}, {"relayPath", "relay-7"}}},
        nullptr, "0", {}, true, {});
    const auto *tree = qobject_cast<QAbstractItemModel *>(m_plugin->getRecordingGroupTreeModel());
    QVERIFY(tree);
    QCOMPARE(tree->rowCount(), 1);
    const QModelIndex station = tree->index(0, 0);
    const QHash<int, QByteArray> roles = tree->roleNames();
    QCOMPARE(station.data(roles.key("nameRole")), QVariant("North"));
    QCOMPARE(station.data(roles.key("typeRole")), QVariant("RecordingServer"));
    QCOMPARE(tree->rowCount(station), 1);
    QCOMPARE(tree->index(0, 0, station).data(roles.key("nameRole")), QVariant("Gate"));
}

void TestCompanions::shortGroupRaisesOneAlarm()
{
    for (int event = 0; event < 3; ++event) {
        change({figures("1", 1, 3 * day), figures("2", 5, 3 * day)}, "relay-7");
        settle();
    }
    QCOMPARE(alarms(), QStringList{"relay-7|InsufficientRecordingDays|1|Gate 1"});
    QCOMPARE(m_monitor->index(0).data(StatusMonitorPlugin::KindRole),
             QVariant::fromValue(StatusMonitorPlugin::InsufficientRecordingDays));
    QCOMPARE(m_news, QStringList{"raised relay-7 1"});
}

void TestCompanions::nameOfTheGroupFollows()
{
    QVariantMap group = figures("1", 1, 3 * day);
    change({group});
    group["recordingGroupName"] = "Yard";
    change({group});
    QCOMPARE(alarms(), QStringList{"|InsufficientRecordingDays|1|Yard"});
    QCOMPARE(m_news, QStringList{"raised  1"});
}

void TestCompanions::groupThatSufficesWithdrawsIt()
{
    change({figures("1", 1, 3 * day), figures("2", 0, 3 * day)});
    change({figures("1", 3, 3 * day), figures("2", 0, 3 * day)});
    change({figures("1", 3, 3 * day), figures("2", 0, 3 * day)});
    QCOMPARE(alarms(), QStringList{"|InsufficientRecordingDays|2|Gate 2"});
    QCOMPARE(m_news, (QStringList{"raised  1", "raised  2", "withdrawn  1"}));
    change({figures("1", 1, 3 * day), figures("2", 0, 3 * day)});
    QCOMPARE(alarms(), (QStringList{"|InsufficientRecordingDays|2|Gate 2", "|InsufficientRecordingDays|1|Gate 1"}));
    QCOMPARE(m_news.last(), "raised  1");
}

void TestCompanions::groupsOfStationsAreToldApart()
{
    change({figures("1", 1, 3 * day)}, "a");
    change({figures("1", 1, 3 * day)}, "b");
    change({figures("1", 5, 3 * day)}, "a");
    QCOMPARE(alarms(), QStringList{"b|InsufficientRecordingDays|1|Gate 1"});
}

void TestCompanions::removedGroupWithdrawsIt()
{
    change({figures("1", 1, 3 * day), figures("2", 1, 3 * day)}, "a");
    change({figures("1", 1, 3 * day, 0)}, "b");
    settle();
    m_monitor->keepGroups("a", {"2", "3"});
    QCOMPARE(alarms(),
             (QStringList{"a|InsufficientRecordingDays|2|Gate 2", "b|VolumeError||",
                          "b|InsufficientRecordingDays|1|Gate 1"}));
    QCOMPARE(m_news.last(), "withdrawn a 1");
}

void TestCompanions::volumeErrorIsRaisedOnce()
{
    for (int event = 0; event < 3; ++event) {
        change({figures("1", 9, day, 0), figures("1", 9, day, 0)}, "a");
        QCOMPARE(alarms(), QStringList{"a|VolumeError||"}); // also between the event and the event loop
        settle();
    }
    QCOMPARE(alarms(), QStringList{"a|VolumeError||"});
    QCOMPARE(m_news, QStringList{"raised a "});
}

void TestCompanions::volumeThatComesBackWithdrawsIt()
{
    change({figures("1", 9, day, 0)}, "a");
    settle();
    change({figures("1", 9, day)}, "a");
    change({figures("1", 9, day)}, "a");
    settle();
    QCOMPARE(alarms(), QStringList{});
    QCOMPARE(m_news, (QStringList{"raised a ", "withdrawn a "}));
}

void TestCompanions::volumeErrorWithdrawnAndRaisedByTheNextEvent()
{
    change({figures("1", 9, day, 0)}, "a");
    settle();
    change({figures("1", 9, day)}, "a");
    settle();
    change({figures("1", 9, day, 0)}, "a");
    settle();
    QCOMPARE(m_news, (QStringList{"raised a ", "withdrawn a ", "raised a "}));
}

void TestCompanions::volumeErrorsOfStationsAreToldApart()
{
    change({figures("1", 9, day, 0)}, "a");
    change({figures("1", 9, day, 0)}, "b");
    change({figures("1", 9, day)}, "a");
    settle();
    QCOMPARE(alarms(), QStringList{"b|VolumeError||"});
}

void TestCompanions::withdrawalOfNothingIsSilent()
{
    change({figures("1", 9, day)}, "a");
    m_monitor->keepGroups("a", {});
    settle();
    QCOMPARE(m_news, QStringList{});
}

void TestCompanions::alarmCarriesItsTime()
{
    const QDateTime before = QDateTime::currentDateTime();
    change({figures("1", 1, 3 * day)});
    const QDateTime since = m_monitor->index(0).data(StatusMonitorPlugin::SinceRole).toDateTime();
    QVERIFY(since >= before && since <= QDateTime::currentDateTime());
    change({figures("1", 1, 3 * day)});
    QCOMPARE(m_monitor->index(0).data(StatusMonitorPlugin::SinceRole).toDateTime(), since);
    QCOMPARE(m_monitor->roleNames().value(StatusMonitorPlugin::SinceRole), "sinceRole");
}

/// The station tells its alarms before the figures that they belong to.
void TestCompanions::aStationKnowsMoreOfAShortGroup()
{
    const QVariantMap told{{"kind", "InsufficientRecordingDays"},
                           {"severity", "warning"},
                           {"subject", "Gate 1"},
                           {"recordingGroupID", "1"},
                           {"text", "Gate 1 is short."},
                           {"remedy", "Reserve less."},
                           {"since", "2026-03-20T12:00:00.000Z"}};
    const auto facts = [this] {
        const QModelIndex index = m_monitor->index(0);
        QStringList texts;
        for (const int role : {StatusMonitorPlugin::WordRole, StatusMonitorPlugin::SubjectRole,
                               StatusMonitorPlugin::TextRole, StatusMonitorPlugin::RemedyRole})
            texts.append(index.data(role).toString());
        return texts.join(u'|') + index.data(StatusMonitorPlugin::SinceRole).toDateTime().toUTC().toString("|dd hh:mm");
    };
    m_monitor->setStationAlarms({}, {told});
    change({figures("1", 1, 3 * day)});
    QCOMPARE(alarms(), QStringList("|InsufficientRecordingDays|1|Gate 1"));
    QCOMPARE(facts(), "InsufficientRecordingDays|Gate 1|Gate 1 is short.|Reserve less.|20 12:00");

    QVariantMap seen = told;
    seen.insert("acknowledgedAt", "2026-03-20T13:00:00.000Z");
    seen.insert("acknowledgedBy", "ann");
    m_monitor->setStationAlarms({}, {seen});
    QCOMPARE(m_monitor->index(0).data(StatusMonitorPlugin::AcknowledgedByRole), QVariant("ann"));
    m_monitor->setStationAlarms("another", {});
    QCOMPARE(facts(), "InsufficientRecordingDays|Gate 1|Gate 1 is short.|Reserve less.|20 12:00");
    m_monitor->setStationAlarms({}, {});
    QCOMPARE(facts(), "||||20 12:00");
    QCOMPARE(m_monitor->rowCount(), 1); // the plug-in says so still
    change({figures("1", 5, 3 * day)});
    QCOMPARE(m_news, (QStringList{"raised  1", "withdrawn  1"}));
}

/// It is the plug-in's rule that decides what stands in the client.
void TestCompanions::aStationAloneRaisesNoShortGroup()
{
    const QVariantMap told{{"kind", "InsufficientRecordingDays"}, {"recordingGroupID", "1"}, {"subject", "Gate 1"}};
    m_monitor->setStationAlarms({}, {told});
    QCOMPARE(m_monitor->rowCount(), 0);
    QCOMPARE(m_news, QStringList());
}

void TestCompanions::theDirectStationsAlarmsAreItsOwn()
{
    m_monitor->setDirectStation("a");
    change({figures("1", 1, 3 * day)});
    change({figures("1", 1, 3 * day)}, "b");
    m_monitor->setDirectStation("b");
    change({figures("1", 5, 3 * day)}, "a");
    change({figures("1", 1, 3 * day)});
    QCOMPARE(alarms(), QStringList("b|InsufficientRecordingDays|1|Gate 1"));
    QCOMPARE(m_news, (QStringList{"raised a 1", "raised b 1", "withdrawn a 1"}));
}

void TestCompanions::alarmsOfAStationAreCounted()
{
    using Count = StatusMonitorPlugin::Count;
    change({figures("1", 1, 3 * day), figures("2", 9, 3 * day, 0)}, "a");
    change({figures("1", 1, 3 * day)}, "b");
    QCOMPARE(m_monitor->count("a"), (Count{2, 1}));
    QCOMPARE(m_monitor->count("b"), (Count{1, 0}));
    QCOMPARE(m_monitor->count("c"), Count());
    change({figures("1", 5, 3 * day)}, "a");
    settle();
    QCOMPARE(m_monitor->count("a"), Count());
    QCOMPARE(m_monitor->count("b"), (Count{1, 0}));
}

QTEST_GUILESS_MAIN(TestCompanions)
#include "tst_companions.moc"
