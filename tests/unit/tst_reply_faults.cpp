#include "HeapWatch.h"
#include "MemoryFailure.h"
#include "ModelText.h"
#include "PluginRecordingManagement.h"
#include "PluginSite.h"
#include "SignalLog.h"
#include "TraceRecorder.h"

#include <QRegularExpression>
#include <QStandardItemModel>
#include <QTest>

#include <functional>
#include <stdexcept>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
using MayLeak = __lsan::ScopedDisabler;
#else
struct MayLeak
{
    MayLeak() { }
};
#endif

namespace {

using Plugin = PluginRecordingManagement;

/// A reply or event that fills a model.
struct Reply
{
    const char *name; ///< the command, or "VolumeChanged"
    QVariant data;
    std::function<void(Plugin &)> request; ///< gives the reply its context
    std::function<QAbstractItemModel *(Plugin &)> model; ///< that the reply fills
    const char *line; ///< that a lost row leaves; none where nothing is written
    bool goesOn = true; ///< a lost row leaves the others, and one line each
};

QAbstractItemModel *modelOf(QObject *object)
{
    return qobject_cast<QAbstractItemModel *>(object);
}

const QVariantMap north{{"recordingGroupID", "{1}"}, {"recordingGroupName", "North"}, {"relayPath", "st1"}};
const QVariantMap south{{"recordingGroupID", "{2}"}, {"recordingGroupName", "South"}, {"relayPath", "st1"}};
const QVariantMap folders{{"basePath", "/"}, {"dirFolderList", QStringList{"a", "b", "c"}}};

const QList<Reply> replies{
    {"getVolume", QVariantList{QVariantMap{{"volumePath", "D:/"}}, QVariantMap{{"volumePath", "E:/"}}, QVariantMap{}},
     [](Plugin &plugin) { plugin.getVolume(); }, [](Plugin &plugin) { return modelOf(plugin.getVolumeModel()); },
     "handleRetrieveVolume, new VolumeItem failed"},
    {"getRecordingGroup", QVariantList{north, south}, [](Plugin &plugin) { plugin.getRecordingGroup(); },
     [](Plugin &plugin) { return modelOf(plugin.getRecordingGroupModel()); },
     "handleGetRecordingGroup, new RecordingGroupItem failed"},
    {"retrieveRecordingGroupTreeModel", QVariantList{north, south},
     [](Plugin &plugin) { plugin.retrieveRecordingGroupTreeModel(); },
     [](Plugin &plugin) { return modelOf(plugin.getRecordingGroupTreeModel()); },
     "appendRecordingGroupToTreeModel, new RecordingGroupTreeModelItem failed"},
    {"GetNasServers", QVariantList{QVariantMap{{"id", "1"}, {"host", "a"}}, QVariantMap{{"id", "2"}, {"host", "b"}}},
     [](Plugin &plugin) { plugin.getNASServers(); }, [](Plugin &plugin) { return modelOf(plugin.getNASServerModel()); },
     "handleGetNASServers, Create NASServer item error", false},
    {"AddNasServer", "7", [](Plugin &plugin) { plugin.addNASServer("nas"); },
     [](Plugin &plugin) { return modelOf(plugin.getNASServerModel()); },
     "handleAddNASServer, replace model item list failed", false},
    {"getServerDir", folders, [](Plugin &plugin) { plugin.getServerDir("/"); },
     [](Plugin &plugin) { return modelOf(plugin.getServerDirModel()); },
     "handleGetServerDir, Create ServerDir item error", false},
    {"GetNasDir", folders, [](Plugin &plugin) { plugin.getNASServerDir("/"); },
     [](Plugin &plugin) { return modelOf(plugin.getNASServerDirModel()); },
     "handleGetNASServerDir, Create NASServerDir item error", false},
    {"GetNasCapacity", QVariantMap{{"total", 10}, {"used", 4}},
     [](Plugin &plugin) { plugin.addNASPathToVolume("//nas/share"); },
     [](Plugin &plugin) { return modelOf(plugin.getVolumeModel()); },
     "handleGetNASServerCapacity, new VolumeItem failed"},
    {"addNASPathsToVolume", QVariantList{QVariantMap{{"diskName", "//nas/a"}}, QVariantMap{{"diskName", "//nas/b"}}},
     [](Plugin &plugin) {
         plugin.addNASPathsToVolume({"//nas/a", "//nas/b"});
     },
     [](Plugin &plugin) { return modelOf(plugin.getVolumeModel()); },
     "handleAddNASPathsToVolume, new VolumeItem failed"},
    {"VolumeChanged", QVariantList{north, south, QVariantMap{}}, [](Plugin &) {},
     [](Plugin &plugin) { return modelOf(plugin.getStorageUsageModel("")); }, nullptr},
};

// Rows at the top and below, without the identifiers.
QStringList rowsOf(const QAbstractItemModel &model)
{
    return modelText(model, {258, 259, 260, 263});
}

/// The plug-in with a reply on its way.
class ReplySite
{
public:
    explicit ReplySite(const Reply &reply)
        : m_reply(reply)
        , m_site(true)
        , m_signals(&m_site.plugin)
    {
        reply.request(m_site.plugin);
        if (!m_site.framework.sent.isEmpty())
            m_context = m_site.framework.sent.takeLast().context;
        m_site.framework.sent.clear();
        model = reply.model(m_site.plugin);
        m_signals.take();
        takeTraceLines();
    }

    void deliver(const QVariant &data)
    {
        Plugin &plugin = m_site.plugin;
        const QString name = m_reply.name;
        if (name == "VolumeChanged")
            plugin.EventProcessor(name, 0, 0, 0, data, "");
        else
            plugin.CommandProcessor(name, data, m_context, "0", {}, true, {});
    }
    void deliver() { deliver(m_reply.data); }

    Plugin &plugin() { return m_site.plugin; }
    /// The names of the signals since the last call.
    QStringList takeSignals()
    {
        return m_signals.take().replaceInStrings(QRegularExpression(QStringLiteral("\\(.*")), QString());
    }

    QAbstractItemModel *model = nullptr;

private:
    const Reply &m_reply;
    PluginSite m_site;
    SignalLog m_signals;
    void *m_context = nullptr;
};

int countOf(const QString &text, const QStringList &lines)
{
    return static_cast<int>(lines.filter(text).size());
}

} // namespace

Q_DECLARE_METATYPE(const Reply *)

/// Memory that runs out and slots that throw cost a reply no more than the row or the slot that they hit.
class ReplyFaultsTest : public QObject
{
    Q_OBJECT

private slots:
    void everyAllocationFailsOnce_data();
    void everyAllocationFailsOnce();
    void slotsOfTheModelMayThrow_data();
    void slotsOfTheModelMayThrow();
    void slotsOfThePluginMayThrow_data() { addReplies(); }
    void slotsOfThePluginMayThrow();
    void otherCommandsSurviveThrowingSlots();
    void updatedAndRemovedServersSurviveThrowingSlots();
    void aGroupThatIsNotCachedLeavesALine();
    void theStatusMonitorMayThrow();

private:
    static void addReplies()
    {
        QTest::addColumn<const Reply *>("reply");
        for (const Reply &reply : replies)
            QTest::newRow(reply.name) << &reply;
    }
};

void ReplyFaultsTest::everyAllocationFailsOnce_data()
{
    QTest::addColumn<const Reply *>("reply");
    QTest::addColumn<bool>("nothrow");
    for (const Reply &reply : replies) {
        QTest::addRow("%s, throwing", reply.name) << &reply << false;
        QTest::addRow("%s, without exception", reply.name) << &reply << true;
    }
}

void ReplyFaultsTest::everyAllocationFailsOnce()
{
    QFETCH(const Reply *, reply);
    QFETCH(bool, nothrow);
    QStringList signalsOfAll;
    QStringList all;
    for (int round = 0; round < 2; ++round) { // the first one fills what Qt keeps for good
        ReplySite site(*reply);
        site.deliver();
        signalsOfAll = site.takeSignals();
        all = rowsOf(*site.model);
    }

    bool failed = true;
    for (int nth = 0; failed; ++nth) {
        const std::ptrdiff_t before = liveBlocks();
        {
            ReplySite site(*reply);
            {
                const AllocationFailure failure(
                    nth, nothrow ? AllocationFailure::Kind::Nothrow : AllocationFailure::Kind::Throwing);
                site.deliver();
                failed = failure.happened();
            }
            const QByteArray place = "allocation " + QByteArray::number(nth);
            const QStringList rows = rowsOf(*site.model);
            const QStringList lines = takeErrorLines();
            if (const QString unread = "EventProcessor, out of memory"; countOf(unread, lines) == 1)
                QCOMPARE(site.takeSignals(), QStringList{"volumeInfoChanged"}); // the figures stay as they were
            else
                QVERIFY2(site.takeSignals() == signalsOfAll, place);
            QVERIFY2(failed || (rows == all && lines.isEmpty()), place);
            if (reply->line && reply->goesOn)
                QVERIFY2(rows.size() + countOf(reply->line, lines) == all.size(), place);
            else if (reply->line)
                QVERIFY2(rows == all || countOf(reply->line, lines) == 1, place);
            site.model = nullptr;
        }
        // Qt Gui is built without exceptions: where the second block of an item fails, the first one stays.
        const std::ptrdiff_t left = liveBlocks() - before;
        QVERIFY2(left <= (failed ? 1 : 0), qPrintable(QStringLiteral("allocation %1 left %2").arg(nth).arg(left)));
    }
}

void ReplyFaultsTest::slotsOfTheModelMayThrow_data()
{
    QTest::addColumn<const Reply *>("reply");
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<bool>("always");
    for (const Reply &reply : replies) {
        for (const char *const signal :
             {"modelAboutToBeReset()", "modelReset()", "columnsAboutToBeInserted(QModelIndex,int,int)",
              "columnsInserted(QModelIndex,int,int)", "rowsAboutToBeInserted(QModelIndex,int,int)",
              "rowsInserted(QModelIndex,int,int)"}) {
            for (const bool always : {false, true})
                QTest::addRow("%s: %s, %s", reply.name, signal, always ? "always" : "once")
                    << &reply << QByteArray(signal) << always;
        }
    }
}

/// Throws whenever a signal that it is connected to comes.
class Thrower : public QObject
{
    Q_OBJECT

public:
    explicit Thrower(bool always = true)
        : m_always(always)
    {
    }

    int thrown = 0;

public slots:
    void fail()
    {
        if (thrown++ == 0 || m_always)
            throw std::runtime_error("a slot's own");
    }

private:
    bool m_always;
};

/// A status monitor that throws out of every call.
class ThrowingMonitor : public QObject
{
    Q_OBJECT

public:
    QStringList called;

    Q_INVOKABLE void removeVolumeError(const QString &) { fail("removeVolumeError"); }
    Q_INVOKABLE void monitorVolumeStatus(const QString &) { fail("monitorVolumeStatus"); }
    Q_INVOKABLE void monitorSufficientRecordingGroup(const QString &, const QString &id) { fail("sufficient " + id); }

private:
    void fail(const QString &call)
    {
        called.append(call);
        throw std::runtime_error("a monitor's own");
    }
};

void ReplyFaultsTest::slotsOfTheModelMayThrow()
{
    QFETCH(const Reply *, reply);
    QFETCH(QByteArray, signal);
    QFETCH(bool, always);
    ReplySite whole(*reply);
    whole.deliver();
    const QStringList signalsOfAll = whole.takeSignals();
    const QStringList all = rowsOf(*whole.model);

    ReplySite site(*reply);
    Thrower thrower(always);
    connect(site.model, QByteArray::number(QSIGNAL_CODE) + signal, &thrower, SLOT(fail()));
    site.deliver();
    const QStringList lines = takeErrorLines();
    QCOMPARE(site.takeSignals(), signalsOfAll);
    const bool rowsCannotCome = always && (signal.startsWith("rowsAbout") || signal.startsWith("columnsAbout"));
    if (thrower.thrown > 0 && rowsCannotCome)
        QVERIFY(!lines.isEmpty() || !reply->line);
    else
        QCOMPARE(rowsOf(*site.model), all);
}

void ReplyFaultsTest::slotsOfThePluginMayThrow()
{
    QFETCH(const Reply *, reply);
    ReplySite whole(*reply);
    whole.deliver();
    const QStringList signalsOfAll = whole.takeSignals();
    QVERIFY(!signalsOfAll.isEmpty());
    const QStringList all = rowsOf(*whole.model);

    const QMetaObject &meta = Plugin::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        if (method.methodType() != QMetaMethod::Signal || !signalsOfAll.contains(QString::fromLatin1(method.name())))
            continue;
        ReplySite site(*reply);
        Thrower thrower;
        connect(&site.plugin(), QByteArray::number(QSIGNAL_CODE) + method.methodSignature(), &thrower, SLOT(fail()));
        site.deliver();
        QCOMPARE(thrower.thrown, signalsOfAll.count(QString::fromLatin1(method.name())));
        QCOMPARE(countOf("exception: a slot's own", takeErrorLines()), thrower.thrown);
        QCOMPARE(site.takeSignals(), signalsOfAll);
        QCOMPARE(rowsOf(*site.model), all);
    }
}

void ReplyFaultsTest::otherCommandsSurviveThrowingSlots()
{
    PluginSite site(true);
    Thrower thrower;
    connect(&site.plugin, &Plugin::recordingGroupRetrievedChanged, &thrower, &Thrower::fail);
    connect(&site.plugin, &Plugin::addNASPathsToVolumeResp, &thrower, &Thrower::fail);
    connect(&site.plugin, &Plugin::createDirectoryResponded, &thrower, &Thrower::fail);
    takeTraceLines();
    QCOMPARE(site.plugin.getRecordingGroup(), "");
    QVERIFY(!site.plugin.addNASPathsToVolume({}));
    site.plugin.CommandProcessor("createDirectory", {}, nullptr, "0", {}, true, {});
    QCOMPARE(takeErrorLines(),
             (QStringList{"PluginRecordingManagement::getRecordingGroup, exception: a slot's own",
                          "PluginRecordingManagement::addNASPathsToVolume, exception: a slot's own",
                          "PluginRecordingManagement::CommandProcessor, exception: a slot's own"}));
    QVERIFY(site.framework.sent.isEmpty());
}

void ReplyFaultsTest::updatedAndRemovedServersSurviveThrowingSlots()
{
    PluginSite site(true);
    Plugin &plugin = site.plugin;
    plugin.CommandProcessor("GetNasServers", QVariantList{QVariantMap{{"id", "1"}, {"host", "a"}}}, nullptr, "0", {},
                            true, {});
    Thrower thrower;
    QAbstractItemModel &model = *modelOf(plugin.getNASServerModel());
    connect(&model, &QAbstractItemModel::dataChanged, &thrower, &Thrower::fail);
    connect(&model, &QAbstractItemModel::rowsRemoved, &thrower, &Thrower::fail);
    SignalLog log(&plugin);
    plugin.updateNASServer("1", "b", "d", "u", "p");
    {
        const MayLeak qtGui; // built without exceptions: it keeps the list of roles that it tells
        site.reply();
    }
    QCOMPARE(modelText(model, {257, 258, 259, 260, 261}), QStringList{"1 | b | d | u | p"});
    plugin.removeNASServer("1");
    site.reply();
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(log.take(), (QStringList{"updateNASServerResponsed(NonError, \"1\")", "removeNASServerResponsed(true)"}));
    QCOMPARE(thrower.thrown, 5);
}

void ReplyFaultsTest::aGroupThatIsNotCachedLeavesALine()
{
    const auto reply = std::find_if(replies.begin(), replies.end(), [](const Reply &entry) {
        return QByteArray(entry.name) == "retrieveRecordingGroupTreeModel";
    });
    QVariantMap first = north;
    first.insert("recordingGroupReservedTime", 5);
    QVariantMap second = south;
    second.insert("recordingGroupReservedTime", 5);
    const QVariantList groups{first, second};
    int left = 0;
    bool failed = true;
    for (int nth = 0; failed; ++nth) {
        ReplySite site(*reply);
        {
            const AllocationFailure failure(nth, AllocationFailure::Kind::Throwing);
            site.deliver(groups);
            failed = failure.happened();
        }
        int cached = 0;
        for (const char *const id : {"{1}", "{2}"})
            cached += site.plugin().getRecordingGroupReservedTime(id, "st1") == 5 ? 1 : 0;
        const int lines = countOf("saveRecordingGroupData, new RecordingGroupData failed", takeErrorLines());
        QCOMPARE(cached + lines, 2);
        left += lines;
    }
    QVERIFY(left > 0);
}

void ReplyFaultsTest::theStatusMonitorMayThrow()
{
    PluginSite site(true);
    ThrowingMonitor monitor;
    site.framework.pluginObjects.insert("{CA5B02D6-F3E0-4FD7-A55C-17F425D5B415}", &monitor);
    SignalLog log(&site.plugin);
    QVariantMap known = north;
    known.insert("volumeOneDayUsage", 1024);
    QVariantMap alsoKnown = south;
    alsoKnown.insert("volumeOneDayUsage", 1024);
    takeTraceLines();
    site.plugin.EventProcessor("VolumeChanged", 0, 0, 0, QVariantList{known, alsoKnown}, "");
    QCOMPARE(monitor.called, (QStringList{"removeVolumeError", "sufficient {1}", "sufficient {2}"}));
    QCOMPARE(countOf("exception: a monitor's own", takeErrorLines()), 3);
    QCOMPARE(log.take(), QStringList{"volumeInfoChanged()"});
}

QTEST_GUILESS_MAIN(ReplyFaultsTest)
#include "tst_reply_faults.moc"
