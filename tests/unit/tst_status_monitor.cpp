#include "FakeFramework.h"
#include "PluginRecordingManagement.h"
#include "TraceRecorder.h"

#include <QAbstractItemModel>
#include <QPointer>
#include <QRegularExpression>
#include <QTest>

#include <functional>
#include <memory>

namespace {

const QString monitorId = QStringLiteral("{CA5B02D6-F3E0-4FD7-A55C-17F425D5B415}");

// As the client's monitor, with a hook into every call.
class Monitor : public QObject
{
    Q_OBJECT

public:
    Q_INVOKABLE void removeVolumeError(const QString &source) { note({"removeVolumeError", source}); }
    Q_INVOKABLE void monitorVolumeStatus(const QString &source) { note({"monitorVolumeStatus", source}); }
    Q_INVOKABLE void monitorSufficientRecordingGroup(const QString &source, const QString &id)
    {
        note({"monitorSufficientRecordingGroup", source, id});
    }
    Q_INVOKABLE void monitorInsufficientRecordingDays(const QString &source, const QString &name, const QString &id)
    {
        note({"monitorInsufficientRecordingDays", source, name, id});
    }

    QStringList calls;
    std::function<void()> duringCall;

private:
    void note(const QStringList &call)
    {
        calls.append(call.join(' '));
        if (duringCall)
            duringCall();
    }
};

class OtherObject : public QObject
{
    Q_OBJECT

public:
    Q_INVOKABLE void removeVolumeError(int) { QFAIL("called with the wrong type"); }
};

// Knows one of the methods, and that in two ways.
class PartialMonitor : public QObject
{
    Q_OBJECT

public:
    Q_INVOKABLE void monitorInsufficientRecordingDays(const QString &source, const QString &name, const QString &id)
    {
        calls.append(source + ' ' + name + ' ' + id);
    }
    Q_INVOKABLE void monitorInsufficientRecordingDays(const QString &) { QFAIL("called with too few arguments"); }

    QStringList calls;
};

// Ends within its first call.
class LeavingMonitor : public QObject
{
    Q_OBJECT

public:
    explicit LeavingMonitor(int &laterCalls)
        : m_laterCalls(laterCalls)
    {
    }
    Q_INVOKABLE void removeVolumeError(const QString &) { delete this; }
    Q_INVOKABLE void monitorVolumeStatus(const QString &) { ++m_laterCalls; }
    Q_INVOKABLE void monitorSufficientRecordingGroup(const QString &, const QString &) { ++m_laterCalls; }

private:
    int &m_laterCalls;
};

QVariantMap entry(const QString &groupId, const QVariantMap &more = {})
{
    QVariantMap map{{"recordingGroupID", groupId},
                    {"recordingGroupName", "Gate" + groupId},
                    {"volumeSize", 1000},
                    {"volumeRecordedDays", -1},
                    {"volumeOneDayUsage", -1}};
    map.insert(more);
    return map;
}

// @p recorded and @p remaining days, against @p reserve minutes
QVariantMap days(int recorded, int remaining, int reserve)
{
    return entry("1",
                 {{"volumeRecordedDays", recorded},
                  {"volumeAvailableSize", remaining},
                  {"volumeOneDayUsage", remaining < 0 ? -1 : 1024},
                  {"recordingGroupReservedTime", reserve}});
}

QVariantMap volume(const QVariant &size, const QVariant &available)
{
    return entry("1", {{"volumeSize", size}, {"volumeAvailableSize", available}});
}

} // namespace

class StatusMonitorTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void volumesWithoutSize_data();
    void volumesWithoutSize();
    void groupsAgainstTheirReserve_data();
    void groupsAgainstTheirReserve();
    void everyGroupIsReportedInRowOrder();
    void everyEventReportsAgain();
    void monitorIsAskedForWithTheHandle();
    void missingMonitorChangesNothing();
    void monitorWithoutTheMethodsChangesNothing();
    void monitorWithOneMethodHearsOfIt();
    void everyCallMayComeBack_data();
    void everyCallMayComeBack();
    void monitorMayComeBack_data();
    void monitorMayComeBack();
    void monitorMayGoAway();

private:
    using QObject::event; // not hidden by the one below
    void event(const QVariant &data, const QString &source = QStringLiteral("st1"))
    {
        m_plugin->EventProcessor("VolumeChanged", 0, 0, 0, data, source);
    }

    FakeFramework m_framework;
    std::unique_ptr<Monitor> m_monitor;
    std::unique_ptr<PluginRecordingManagement> m_plugin;
};

void StatusMonitorTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_monitor = std::make_unique<Monitor>();
    m_framework = {};
    m_framework.pluginObjects.insert(monitorId, m_monitor.get());
    m_plugin = std::make_unique<PluginRecordingManagement>();
    QVERIFY(m_plugin->InitialPluginBase(nullptr, this, &m_framework));
    takeTraceLines();
}

void StatusMonitorTest::volumesWithoutSize_data()
{
    QTest::addColumn<QVariant>("data");
    QTest::addColumn<bool>("reported");

    QTest::newRow("one of two") << QVariant(QVariantList{volume(5, 5), volume(0, 0)}) << true;
    QTest::newRow("both: reported once") << QVariant(QVariantList{volume(0, 0), volume(0, 0)}) << true;
    QTest::newRow("something available") << QVariant(QVariantList{volume(0, 5)}) << false;
    QTest::newRow("full") << QVariant(QVariantList{volume(5, 0)}) << false;
    QTest::newRow("less than nothing") << QVariant(QVariantList{volume(0, -1), volume(-1, 0)}) << false;
    QTest::newRow("sizes missing") << QVariant(QVariantList{QVariantMap{{"recordingGroupID", "1"}}}) << true;
    QTest::newRow("sizes that are no numbers") << QVariant(QVariantList{volume("big", "empty")}) << true;
    QTest::newRow("not a map") << QVariant(QVariantList{7}) << true;
    QTest::newRow("no volumes") << QVariant(QVariantList{}) << false;
    QTest::newRow("not a list") << QVariant(7) << false;
}

void StatusMonitorTest::volumesWithoutSize()
{
    QFETCH(QVariant, data);
    QFETCH(bool, reported);
    event(data);
    QStringList expected{"removeVolumeError st1"};
    if (reported)
        expected.append("monitorVolumeStatus st1");
    QCOMPARE(m_monitor->calls, expected);
}

void StatusMonitorTest::groupsAgainstTheirReserve_data()
{
    QTest::addColumn<QVariantMap>("entryOfGroup");
    QTest::addColumn<QString>("call"); // empty: none

    const QString enough = "monitorSufficientRecordingGroup st1 1";
    const QString tooFew = "monitorInsufficientRecordingDays st1 Gate1 1";
    QTest::newRow("2879 minutes are one day") << days(1, 0, 2879) << enough;
    QTest::newRow("2880 minutes are two days") << days(1, 0, 2880) << tooFew;
    QTest::newRow("recorded and remaining days add up") << days(1, 1, 2880) << enough;
    QTest::newRow("less than a day is none") << days(0, 0, 1439) << enough;
    QTest::newRow("one day of none") << days(0, 0, 1440) << tooFew;
    QTest::newRow("no reserve") << days(0, 0, 0) << enough;
    QTest::newRow("recorded days unknown") << days(-1, 5, 9999) << "";
    QTest::newRow("remaining days unknown") << days(5, -1, 9999) << "";
    QTest::newRow("a negative reserve") << days(5, 5, -1) << "";
    QTest::newRow("the largest figures") << entry("1",
                                                  {{"volumeRecordedDays", 2147483647},
                                                   {"volumeAvailableSize", 2147483647},
                                                   {"volumeOneDayUsage", 1024},
                                                   {"recordingGroupReservedTime", 2147483647}})
                                         << enough;
    QTest::newRow("less than nothing available")
        << entry("1", {{"volumeRecordedDays", 5}, {"volumeAvailableSize", -2}, {"volumeOneDayUsage", 1024}}) << "";
}

void StatusMonitorTest::groupsAgainstTheirReserve()
{
    QFETCH(QVariantMap, entryOfGroup);
    QFETCH(QString, call);
    event(QVariantList{entryOfGroup});
    QStringList expected{"removeVolumeError st1"};
    if (!call.isEmpty())
        expected.append(call);
    QCOMPARE(m_monitor->calls, expected);
}

void StatusMonitorTest::everyGroupIsReportedInRowOrder()
{
    const auto known = [](const QString &id, int recorded) {
        return entry(
            id, {{"volumeRecordedDays", recorded}, {"volumeOneDayUsage", 512}, {"recordingGroupReservedTime", 7200}});
    };
    event(
        QVariantList{known("c", 9), known("backupID", 1), entry("unknown"), known("", 9), known("a", 1), volume(0, 0)});
    QCOMPARE(
        m_monitor->calls,
        (QStringList{"removeVolumeError st1", "monitorVolumeStatus st1", "monitorInsufficientRecordingDays st1 Gatea a",
                     "monitorInsufficientRecordingDays st1 Backup backupID", "monitorSufficientRecordingGroup st1 c"}));
}

void StatusMonitorTest::everyEventReportsAgain()
{
    const QStringList once{"removeVolumeError st1", "monitorSufficientRecordingGroup st1 1"};
    event(QVariantList{days(5, 5, 1440)});
    event(QVariantList{days(5, 5, 1440)});
    QCOMPARE(m_monitor->calls, once + once);
    QCOMPARE(takeErrorLines(), QStringList{});
}

void StatusMonitorTest::monitorIsAskedForWithTheHandle()
{
    event(QVariantList{});
    QVERIFY(!m_framework.askedPlugins.isEmpty());
    for (const QString &id : m_framework.askedPlugins)
        QCOMPARE(id, monitorId);
    QCOMPARE(m_framework.lastHandle, this);
}

void StatusMonitorTest::missingMonitorChangesNothing()
{
    m_framework.pluginObjects.clear();
    event(QVariantList{days(1, 0, 2880), volume(0, 0)});
    QCOMPARE(qobject_cast<QAbstractItemModel *>(m_plugin->getStorageUsageModel("st1"))->rowCount(), 1);
    QCOMPARE(takeErrorLines(), QStringList{});
}

void StatusMonitorTest::monitorWithoutTheMethodsChangesNothing()
{
    OtherObject other;
    m_framework.pluginObjects.insert(monitorId, &other);
    event(QVariantList{days(1, 0, 2880), volume(0, 0)});
    QCOMPARE(qobject_cast<QAbstractItemModel *>(m_plugin->getStorageUsageModel("st1"))->rowCount(), 1);
    QCOMPARE(takeErrorLines(), QStringList{});
}

void StatusMonitorTest::monitorWithOneMethodHearsOfIt()
{
    PartialMonitor partial;
    m_framework.pluginObjects.insert(monitorId, &partial);
    event(QVariantList{volume(0, 0), days(1, 0, 2880)});
    QCOMPARE(partial.calls, QStringList{"st1 Gate1 1"});
    QCOMPARE(takeErrorLines(), QStringList{});
}

void StatusMonitorTest::everyCallMayComeBack_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QStringList>("callsAfterIt"); // of the event around, the figures being forgotten
    QTest::newRow("removeVolumeError") << "removeVolumeError" << QStringList{"monitorVolumeStatus st1"};
    QTest::newRow("monitorVolumeStatus") << "monitorVolumeStatus" << QStringList{};
    const QString second = "monitorInsufficientRecordingDays st1 Gate2 2";
    QTest::newRow("monitorSufficientRecordingGroup") << "monitorSufficientRecordingGroup" << QStringList{second};
    QTest::newRow("monitorInsufficientRecordingDays") << "monitorInsufficientRecordingDays" << QStringList{};
}

// From within the first call of a method the connection comes up again, which forgets the figures, and every model is
// asked for.
void StatusMonitorTest::everyCallMayComeBack()
{
    QFETCH(QString, method);
    QFETCH(QStringList, callsAfterIt);
    m_framework.accepts = false;
    const QVariantList entries{
        days(5, 5, 1440), volume(0, 0),
        entry("2", {{"volumeRecordedDays", 1}, {"volumeOneDayUsage", 512}, {"recordingGroupReservedTime", 7200}})};
    QStringList before;
    m_monitor->duringCall = [&] {
        if (!before.isEmpty() || !m_monitor->calls.constLast().startsWith(method + ' '))
            return;
        before = m_monitor->calls;
        m_plugin->PluginServerConnected();
        QCOMPARE(qobject_cast<QAbstractItemModel *>(m_plugin->getStorageUsageModel("st1"))->rowCount(), 0);
        QVERIFY(m_plugin->getGroupVolumeModel("st1", "1"));
    };
    event(entries);
    QVERIFY(!before.isEmpty());
    QCOMPARE(m_monitor->calls.mid(before.size()), callsAfterIt);
    m_monitor->calls.clear();
    event(entries);
    QCOMPARE(m_monitor->calls,
             (QStringList{"removeVolumeError st1", "monitorVolumeStatus st1", "monitorSufficientRecordingGroup st1 1",
                          "monitorInsufficientRecordingDays st1 Gate2 2"}));
}

void StatusMonitorTest::monitorMayComeBack_data()
{
    QTest::addColumn<QString>("what");
    QTest::newRow("for another station's model") << "model";
    QTest::newRow("to report the connection up again") << "connection";
    QTest::newRow("with an event of the same station") << "event";
}

void StatusMonitorTest::monitorMayComeBack()
{
    QFETCH(QString, what);
    m_framework.duringSend = [this](const FakeFramework::Sent &sent) {
        if (sent.command == "getRecordingGroup")
            m_plugin->CommandProcessor(sent.command, {}, sent.context, "0", {}, true, {});
    };
    const QVariantList entries{days(5, 5, 1440), entry("2", {{"volumeRecordedDays", 1}, {"volumeOneDayUsage", 512}})};
    int depth = 0;
    m_monitor->duringCall = [&] {
        if (++depth < 4) {
            if (what == "model")
                m_plugin->getStorageUsageModel(QString::number(depth));
            else if (what == "connection")
                m_plugin->PluginServerConnected();
            else
                event(QVariantList{days(0, 0, 1440)}); // fewer rows than the round that is under way
        }
        --depth;
    };
    event(entries);
    QCOMPARE(m_monitor->calls.constFirst(), "removeVolumeError st1");
    if (what == "model")
        QCOMPARE(m_monitor->calls,
                 (QStringList{"removeVolumeError st1", "monitorSufficientRecordingGroup st1 1",
                              "monitorSufficientRecordingGroup st1 2"}));
    if (what == "connection") // the first call forgot the figures
        QCOMPARE(m_monitor->calls, QStringList{"removeVolumeError st1"});
    m_monitor->duringCall = {};
    m_monitor->calls.clear();
    event(entries);
    QCOMPARE(m_monitor->calls.size(), 3);
}

void StatusMonitorTest::monitorMayGoAway()
{
    int laterCalls = 0;
    const QPointer<QObject> monitor = new LeavingMonitor(laterCalls);
    m_framework.pluginObjects.insert(monitorId, monitor);
    connect(monitor, &QObject::destroyed, this, [this] { m_framework.pluginObjects.clear(); });
    event(QVariantList{volume(0, 0), days(5, 5, 0)});
    QVERIFY(!monitor);
    QCOMPARE(laterCalls, 0);
    QVERIFY(m_plugin->getGroupVolumeModel("st1", "1"));
}

QTEST_GUILESS_MAIN(StatusMonitorTest)
#include "tst_status_monitor.moc"
