#include "FakeFramework.h"
#include "HeapWatch.h"
#include "ModelText.h"
#include "PluginRecordingManagement.h"
#include "RequestContexts.h"
#include "SignalLog.h"
#include "TraceRecorder.h"
#include "TypedText.h"

#include <QAbstractItemModelTester>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>
#include <QUuid>

#include <functional>
#include <memory>

using Plugin = PluginRecordingManagement;
using Call = std::function<bool(Plugin &)>;

Q_DECLARE_METATYPE(Call)

namespace {

const QList<int> everyRole{257, 258, 259, 260, 261};

QVariantMap server(const QString &id, const QString &host)
{
    return {{"id", id}, {"host", host}, {"logonDomain", "D"}, {"userName", "U"}, {"password", "P"}};
}

} // namespace

class NasRegistryTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void sendsTheWholeRequest_data();
    void sendsTheWholeRequest();
    void refusedSendIsLogged_data();
    void refusedSendIsLogged();
    void refusedRemoveKeepsItsContext();
    void contextsCarryTheRequest();
    void emptyHostIsNotAdded();
    void failedContextSendsNothing_data();
    void failedContextSendsNothing();
    void listFillsTheModel_data();
    void listFillsTheModel();
    void refusedListKeepsTheRows();
    void failedRowStopsTheList();
    void addedServerIsAppended();
    void addErrorCodes_data();
    void addErrorCodes();
    void failedRowOfAnAdd();
    void repliesToTwoAdds_data();
    void repliesToTwoAdds();
    void ignoredAddIsDroppedAndFreed();
    void addAfterAnIgnoredOneCounts();
    void refusedAddKeepsTheOlderOneCurrent();
    void aSecondReplyToTheSameAddCountsAgain();
    void addWithoutContextIsStale();
    void addMayBeAnsweredWhileItIsSent();
    void updateChangesTheFirstMatchingRow();
    void updateOfAnUnknownServer();
    void refusedUpdateChangesNothing();
    void updateWithoutContext();
    void updateSurvivesTheEndOfItsRow();
    void removeTakesTheFirstMatchingRow();
    void removeReplies_data();
    void removeReplies();
    void repliesMayComeWhileTheyAreAskedFor();

private:
    void reply(const QString &command, const QString &code, const QVariant &data = {}, void *context = nullptr)
    {
        m_plugin->CommandProcessor(command, data, context, code, {}, true, {});
    }
    void *sentContext(int index = -1) const
    {
        return index < 0 ? m_framework.sent.constLast().context : m_framework.sent.at(index).context;
    }
    void fill(const QVariantList &servers)
    {
        reply("GetNasServers", "0", servers);
        m_log->take();
    }
    QStringList rows() const { return modelText(*m_model, everyRole); }

    FakeFramework m_framework;
    std::unique_ptr<Plugin> m_plugin;
    QStandardItemModel *m_model = nullptr;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
    std::unique_ptr<SignalLog> m_log;
};

void NasRegistryTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_framework = {};
    m_framework.duringSend = [](const FakeFramework::Sent &sent) { watchAllocation(sent.context); };
    m_plugin = std::make_unique<Plugin>();
    QVERIFY(m_plugin->InitialPluginBase(nullptr, this, &m_framework));
    m_model = qobject_cast<QStandardItemModel *>(m_plugin->getNASServerModel());
    QVERIFY(m_model);
    m_tester =
        std::make_unique<QAbstractItemModelTester>(m_model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    m_log = std::make_unique<SignalLog>(m_plugin.get(), [this] { return modelText(*m_model, {257, 258}).join(';'); });
    takeTraceLines();
}

void NasRegistryTest::sendsTheWholeRequest_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("request");

    QTest::newRow("list") << Call([](Plugin &plugin) { return plugin.getNASServers("st1"); }) << "GetNasServers"
                          << "QString \"st1\"";
    QTest::newRow("list, direct") << Call([](Plugin &plugin) { return plugin.getNASServers(); }) << "GetNasServers"
                                  << "QString \"\"";
    QTest::newRow("add") << Call([](Plugin &plugin) { return plugin.addNASServer("h", "d", "u", "p", "st1"); })
                         << "AddNasServer"
                         << "{host: QString \"h\", logonDomain: QString \"d\", password: QString \"p\", relayPath: "
                            "QString \"st1\", userName: QString \"u\"}";
    QTest::newRow("add with defaults")
        << Call([](Plugin &plugin) { return plugin.addNASServer("h"); }) << "AddNasServer"
        << "{host: QString \"h\", logonDomain: QString \"Host\", password: QString \"\", relayPath: QString \"\", "
           "userName: QString \"Guest\"}";
    QTest::newRow("add with all but the host empty")
        << Call([](Plugin &plugin) { return plugin.addNASServer("h", "", "", "", ""); }) << "AddNasServer"
        << "{host: QString \"h\", logonDomain: QString \"\", password: QString \"\", relayPath: QString \"\", "
           "userName: QString \"\"}";
    QTest::newRow("update")
        << Call([](Plugin &plugin) { return plugin.updateNASServer("7", "h", "d", "u", "p", "st1"); })
        << "UpdateNASServer"
        << "{host: QString \"h\", id: QString \"7\", logonDomain: QString \"d\", password: QString \"p\", relayPath: "
           "QString \"st1\", userName: QString \"u\"}";
    QTest::newRow("update of nothing")
        << Call([](Plugin &plugin) { return plugin.updateNASServer("", "", "", "", ""); }) << "UpdateNASServer"
        << "{host: QString \"\", id: QString \"\", logonDomain: QString \"\", password: QString \"\", relayPath: "
           "QString \"\", userName: QString \"\"}";
    QTest::newRow("remove") << Call([](Plugin &plugin) { return plugin.removeNASServer("7", "st1"); })
                            << "RemoveNASServer"
                            << "{id: QString \"7\", relayPath: QString \"st1\"}";
    QTest::newRow("remove nothing") << Call([](Plugin &plugin) { return plugin.removeNASServer(""); })
                                    << "RemoveNASServer"
                                    << "{id: QString \"\", relayPath: QString \"\"}";
}

void NasRegistryTest::sendsTheWholeRequest()
{
    QFETCH(Call, call);
    QFETCH(QString, command);
    QFETCH(QString, request);
    QVERIFY(call(*m_plugin));
    QCOMPARE(m_framework.sent.size(), 1);
    const FakeFramework::Sent &sent = m_framework.sent.constFirst();
    QCOMPARE(sent.command, command);
    QCOMPARE(typedText(sent.data), request);
    QCOMPARE(sent.relayPath, QString()); // the relay path is in the data
    QCOMPARE(sent.context == nullptr, command == "GetNasServers");
    QVERIFY(!isFreed(sent.context));
    QCOMPARE(m_log->take(), QStringList{});
    QCOMPARE(takeTraceLines(), QStringList{});
    reply(command, "refused", {}, sent.context);
    QCOMPARE(isFreed(sent.context), command != "GetNasServers");
}

void NasRegistryTest::refusedSendIsLogged_data()
{
    sendsTheWholeRequest_data();
}

void NasRegistryTest::refusedSendIsLogged()
{
    QFETCH(Call, call);
    QFETCH(QString, command);
    m_framework.accepts = false;
    QVERIFY(!call(*m_plugin));
    QCOMPARE(takeTraceLines(),
             QStringList{"error: PluginRecordingManagement::sendRequestToServer, Send command failed."});
    const bool kept = command == "RemoveNASServer";
    QCOMPARE(isFreed(sentContext()), command != "GetNasServers" && !kept);
    if (kept)
        delete static_cast<NASServerRequestContext *>(sentContext());
}

void NasRegistryTest::refusedRemoveKeepsItsContext()
{
    m_framework.accepts = false;
    QVERIFY(!m_plugin->removeNASServer("7", "st1"));
    QVERIFY(!isFreed(sentContext()));
    const std::unique_ptr<NASServerRequestContext> context(static_cast<NASServerRequestContext *>(sentContext()));
    QCOMPARE(typedText(*context), "{id: QString \"7\", relayPath: QString \"st1\"}");
}

void NasRegistryTest::contextsCarryTheRequest()
{
    m_plugin->addNASServer("h", "d", "u", "p", "st1");
    const auto *add = static_cast<AddNASServerContext *>(sentContext());
    QCOMPARE((QStringList{add->host, add->logonDomain, add->userName, add->password}),
             (QStringList{"h", "d", "u", "p"}));
    QCOMPARE(QUuid(add->requestId).toString(), add->requestId);
    QVERIFY(!QUuid(add->requestId).isNull());
    reply("AddNasServer", "1", {}, sentContext());

    m_plugin->updateNASServer("7", "h", "d", "u", "p", "st1");
    QCOMPARE(QVariant(*static_cast<QVariantMap *>(sentContext())), m_framework.sent.constLast().data);
    reply("UpdateNASServer", "1", {}, sentContext());
}

void NasRegistryTest::emptyHostIsNotAdded()
{
    QVERIFY(!m_plugin->addNASServer("", "d", "u", "p", "st1"));
    QVERIFY(m_framework.sent.isEmpty());
    QCOMPARE(takeTraceLines(), QStringList{"error: PluginRecordingManagement::addNASServer, host is empty"});
}

void NasRegistryTest::failedContextSendsNothing_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("add") << Call([](Plugin &plugin) { return plugin.addNASServer("h"); })
                         << QStringList{"error: PluginRecordingManagement::addNASServer, new AddNASServerContext "
                                        "failed"};
    QTest::newRow("update") << Call([](Plugin &plugin) { return plugin.updateNASServer("7", "h", "d", "u", "p"); })
                            << QStringList{};
    QTest::newRow("remove") << Call([](Plugin &plugin) { return plugin.removeNASServer("7"); }) << QStringList{};
}

void NasRegistryTest::failedContextSendsNothing()
{
    QFETCH(Call, call);
    QFETCH(QStringList, lines);
    {
        const AllocationFailure failure(0);
        QVERIFY(!call(*m_plugin));
        QVERIFY(failure.happened());
    }
    QVERIFY(m_framework.sent.isEmpty());
    QCOMPARE(takeTraceLines(), lines);
}

void NasRegistryTest::listFillsTheModel_data()
{
    QTest::addColumn<QVariant>("data");
    QTest::addColumn<QStringList>("rowTexts");

    QTest::newRow("two") << QVariant(QVariantList{server("2", "b"), server("1", "a")})
                         << QStringList{"2 | b | D | U | P", "1 | a | D | U | P"};
    QTest::newRow("without host or id") << QVariant(
        QVariantList{server("2", ""), server("", "a"), QVariantMap{{"id", "3"}}, 5, server("1", "a")})
                                        << QStringList{"1 | a | D | U | P"};
    QTest::newRow("only id and host") << QVariant(QVariantList{QVariantMap{{"id", 4}, {"host", 5.5}}})
                                      << QStringList{"4 | 5.5 |  |  | "};
    QTest::newRow("the same twice") << QVariant(QVariantList{server("1", "a"), server("1", "a")})
                                    << QStringList{"1 | a | D | U | P", "1 | a | D | U | P"};
    QTest::newRow("empty") << QVariant(QVariantList{}) << QStringList{};
    QTest::newRow("no list") << QVariant("text") << QStringList{};
}

void NasRegistryTest::listFillsTheModel()
{
    QFETCH(QVariant, data);
    QFETCH(QStringList, rowTexts);
    fill({server("9", "old")});
    reply("GetNasServers", "0", data);
    QCOMPARE(rows(), rowTexts);
    QCOMPARE(m_log->take(),
             QStringList{"getNASServersResponded(true) with " + modelText(*m_model, {257, 258}).join(';')});
    QCOMPARE(takeErrorLines(), QStringList{});
    for (int row = 0; row < m_model->rowCount(); ++row)
        QVERIFY(!m_model->index(row, 0).data(Qt::DisplayRole).isValid());
}

void NasRegistryTest::refusedListKeepsTheRows()
{
    fill({server("9", "old")});
    for (const char *code : {"1", "", "00", "LogonNASServerFaled"}) {
        reply("GetNasServers", code, QVariantList{server("1", "a")});
        QCOMPARE(m_log->take(), QStringList{"getNASServersResponded(false) with 9 | old"});
    }
    QCOMPARE(takeErrorLines(), QStringList{});
}

void NasRegistryTest::failedRowStopsTheList()
{
    {
        // The emptied model's root, then a row after the other.
        const AllocationFailure failure(2, AllocationFailure::Kind::Throwing, sizeof(QStandardItem));
        reply("GetNasServers", "0", QVariantList{server("1", "a"), server("2", "b"), server("3", "c")});
        QVERIFY(failure.happened());
    }
    QCOMPARE(m_log->take(), QStringList{"getNASServersResponded(false) with 1 | a"});
    QCOMPARE(takeErrorLines(),
             QStringList{"PluginRecordingManagement::handleGetNASServers, Create NASServer item error"});
}

void NasRegistryTest::addedServerIsAppended()
{
    fill({server("7", "old")});
    QVERIFY(m_plugin->addNASServer("h", "d", "u", "p", "st1"));
    bool freedDuringSignal = true;
    connect(m_plugin.get(), &Plugin::addNASServerResponded, this, [&] { freedDuringSignal = isFreed(sentContext()); });
    reply("AddNasServer", "0", "7", sentContext());
    QCOMPARE(rows(), (QStringList{"7 | old | D | U | P", "7 | h | d | u | p"}));
    QCOMPARE(m_log->take(), QStringList{"addNASServerResponded(NonError, \"7\") with 7 | old;7 | h"});
    QVERIFY(!freedDuringSignal);
    QVERIFY(isFreed(sentContext()));
}

void NasRegistryTest::addErrorCodes_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("error");
    QTest::newRow("exists") << "NASServerExist"
                            << "ServerExist";
    QTest::newRow("log-on, as it is spelt") << "LogonNASServerFaled"
                                            << "LogonFailed";
    QTest::newRow("log-on, spelt right") << "LogonNASServerFailed"
                                         << "Unknown";
    QTest::newRow("directory") << "GetNasDirFailed"
                               << "GetDirFailed";
    QTest::newRow("capacity") << "GetNasCapacityFailed"
                              << "GetCapacityFailed";
    QTest::newRow("other case") << "nasserverexist"
                                << "Unknown";
    QTest::newRow("empty") << ""
                           << "Unknown";
    QTest::newRow("a number") << "1"
                              << "Unknown";
    QTest::newRow("two zeros") << "00"
                               << "Unknown";
}

void NasRegistryTest::addErrorCodes()
{
    QFETCH(QString, code);
    QFETCH(QString, error);
    QVERIFY(m_plugin->addNASServer("h"));
    reply("AddNasServer", code, "7", sentContext());
    QCOMPARE(m_log->take(), QStringList{QStringLiteral("addNASServerResponded(%1, \"\") with ").arg(error)});
    QVERIFY(isFreed(sentContext()));

    QVERIFY(m_plugin->updateNASServer("7", "h", "d", "u", "p"));
    reply("UpdateNASServer", code, {}, sentContext());
    QCOMPARE(m_log->take(), QStringList{QStringLiteral("updateNASServerResponsed(%1, \"7\") with ").arg(error)});
    QVERIFY(isFreed(sentContext()));
    QCOMPARE(takeErrorLines(), QStringList{});
}

void NasRegistryTest::failedRowOfAnAdd()
{
    QVERIFY(m_plugin->addNASServer("h"));
    {
        const AllocationFailure failure(0);
        reply("AddNasServer", "0", "7", sentContext());
        QVERIFY(failure.happened());
    }
    QCOMPARE(m_log->take(), QStringList{"addNASServerResponded(Unknown, \"\") with "});
    QCOMPARE(takeErrorLines(),
             QStringList{"PluginRecordingManagement::handleAddNASServer, replace model item list failed"});
    QVERIFY(isFreed(sentContext()));
}

void NasRegistryTest::repliesToTwoAdds_data()
{
    QTest::addColumn<bool>("inOrder");
    QTest::newRow("in order") << true;
    QTest::newRow("the newer one first") << false;
}

void NasRegistryTest::repliesToTwoAdds()
{
    QFETCH(bool, inOrder);
    m_plugin->addNASServer("first");
    m_plugin->addNASServer("second");
    for (const int index : inOrder ? QList<int>{0, 1} : QList<int>{1, 0})
        reply("AddNasServer", "0", QString::number(index), sentContext(index));
    QCOMPARE(m_log->take(), QStringList{"addNASServerResponded(NonError, \"1\") with 1 | second"});
    QCOMPARE(modelText(*m_model, {257, 258}), QStringList{"1 | second"});
    QVERIFY(isFreed(sentContext(0)));
    QVERIFY(isFreed(sentContext(1)));
}

void NasRegistryTest::ignoredAddIsDroppedAndFreed()
{
    m_plugin->addNASServer("first");
    m_plugin->addNASServer("second");
    m_plugin->ignoreAddNASServerResponse();
    reply("AddNasServer", "0", "1", sentContext(0));
    reply("AddNasServer", "NASServerExist", {}, sentContext(1));
    QCOMPARE(m_log->take(), QStringList{});
    QCOMPARE(rows(), QStringList{});
    QVERIFY(isFreed(sentContext(0)));
    QVERIFY(isFreed(sentContext(1)));
}

void NasRegistryTest::addAfterAnIgnoredOneCounts()
{
    m_plugin->addNASServer("first");
    m_plugin->ignoreAddNASServerResponse();
    m_plugin->addNASServer("second");
    reply("AddNasServer", "0", "2", sentContext(1));
    reply("AddNasServer", "0", "1", sentContext(0));
    QCOMPARE(modelText(*m_model, {257, 258}), QStringList{"2 | second"});
}

void NasRegistryTest::refusedAddKeepsTheOlderOneCurrent()
{
    m_plugin->addNASServer("first");
    m_framework.accepts = false;
    QVERIFY(!m_plugin->addNASServer("second"));
    reply("AddNasServer", "0", "1", sentContext(0));
    QCOMPARE(m_log->take(), QStringList{"addNASServerResponded(NonError, \"1\") with 1 | first"});
}

void NasRegistryTest::aSecondReplyToTheSameAddCountsAgain()
{
    m_plugin->addNASServer("h");
    auto again = std::make_unique<AddNASServerContext>(*static_cast<AddNASServerContext *>(sentContext()));
    reply("AddNasServer", "0", "1", sentContext());
    reply("AddNasServer", "0", "2", again.release());
    QCOMPARE(modelText(*m_model, {257, 258}), (QStringList{"1 | h", "2 | h"}));
}

void NasRegistryTest::addWithoutContextIsStale()
{
    reply("AddNasServer", "0", "7");
    m_plugin->ignoreAddNASServerResponse();
    reply("AddNasServer", "NASServerExist");
    QCOMPARE(m_log->take(), QStringList{});
    QCOMPARE(rows(), QStringList{});
}

void NasRegistryTest::addMayBeAnsweredWhileItIsSent()
{
    m_framework.duringSend = [this](const FakeFramework::Sent &sent) {
        watchAllocation(sent.context);
        reply("AddNasServer", "0", "7", sent.context);
    };
    QVERIFY(m_plugin->addNASServer("h"));
    QCOMPARE(m_log->take(), QStringList{"addNASServerResponded(NonError, \"7\") with 7 | h"});
    QVERIFY(isFreed(sentContext()));
}

void NasRegistryTest::updateChangesTheFirstMatchingRow()
{
    fill({server("1", "a"), server("7", "b"), server("7", "c")});
    m_plugin->updateNASServer("7", "h", "d", "u", "p", "st1");
    QSignalSpy changes(m_model, &QAbstractItemModel::dataChanged);
    reply("UpdateNASServer", "0", {}, sentContext());
    QCOMPARE(rows(), (QStringList{"1 | a | D | U | P", "7 | h | d | u | p", "7 | c | D | U | P"}));
    QList<int> roles;
    for (const QList<QVariant> &change : changes)
        roles.append(change.at(2).value<QList<int>>());
    QCOMPARE(roles, (QList<int>{258, 259, 260, 261}));
    QCOMPARE(m_log->take(), QStringList{"updateNASServerResponsed(NonError, \"7\") with 1 | a;7 | h;7 | c"});
    QVERIFY(isFreed(sentContext()));
}

void NasRegistryTest::updateOfAnUnknownServer()
{
    for (const QString &id : {QString("8"), QString("")}) {
        fill({server("7", "b")});
        m_plugin->updateNASServer(id, "h", "d", "u", "p");
        reply("UpdateNASServer", "0", {}, sentContext());
        QCOMPARE(m_log->take(), QStringList{"updateNASServerResponsed(NonError, \"" + id + "\") with 7 | b"});
    }
    fill({});
    m_plugin->updateNASServer("7", "h", "d", "u", "p");
    reply("UpdateNASServer", "0", {}, sentContext());
    QCOMPARE(m_log->take(), QStringList{"updateNASServerResponsed(NonError, \"7\") with "});
}

void NasRegistryTest::refusedUpdateChangesNothing()
{
    fill({server("7", "b")});
    m_plugin->updateNASServer("7", "h", "d", "u", "p");
    reply("UpdateNASServer", "LogonNASServerFaled", {}, sentContext());
    QCOMPARE(rows(), QStringList{"7 | b | D | U | P"});
    QCOMPARE(m_log->take(), QStringList{"updateNASServerResponsed(LogonFailed, \"7\") with 7 | b"});
}

void NasRegistryTest::updateWithoutContext()
{
    fill({server("7", "b")});
    reply("UpdateNASServer", "0");
    QCOMPARE(m_log->take(), QStringList{"updateNASServerResponsed(NonError, \"\") with 7 | b"});
}

void NasRegistryTest::updateSurvivesTheEndOfItsRow()
{
    fill({server("7", "b")});
    m_plugin->updateNASServer("7", "h", "d", "u", "p");
    const QMetaObject::Connection connection = connect(m_model, &QAbstractItemModel::dataChanged, this,
                                                       [this] { reply("GetNasServers", "0", QVariantList{}); });
    reply("UpdateNASServer", "0", {}, sentContext());
    disconnect(connection);
    QCOMPARE(m_log->take(),
             (QStringList{"getNASServersResponded(true) with ", "updateNASServerResponsed(NonError, \"7\") with "}));
    QVERIFY(isFreed(sentContext()));
}

void NasRegistryTest::removeTakesTheFirstMatchingRow()
{
    fill({server("1", "a"), server("7", "b"), server("7", "c")});
    m_plugin->removeNASServer("7");
    reply("RemoveNASServer", "0", {}, sentContext());
    QCOMPARE(m_log->take(), QStringList{"removeNASServerResponsed(true) with 1 | a;7 | c"});
    QVERIFY(isFreed(sentContext()));
}

void NasRegistryTest::removeReplies_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("line");
    QTest::newRow("removed") << "7"
                             << "0"
                             << "removeNASServerResponsed(true) with ";
    QTest::newRow("unknown here") << "8"
                                  << "0"
                                  << "removeNASServerResponsed(true) with 7 | b";
    QTest::newRow("refused") << "7"
                             << "1"
                             << "removeNASServerResponsed(false) with 7 | b";
    QTest::newRow("refused by name") << "7"
                                     << "NASServerExist"
                                     << "removeNASServerResponsed(false) with 7 | b";
    QTest::newRow("no id") << ""
                           << "0"
                           << "removeNASServerResponsed(true) with 7 | b";
}

void NasRegistryTest::removeReplies()
{
    QFETCH(QString, id);
    QFETCH(QString, code);
    QFETCH(QString, line);
    fill({server("7", "b")});
    m_plugin->removeNASServer(id);
    reply("RemoveNASServer", code, {}, sentContext());
    QCOMPARE(m_log->take(), QStringList{line});
    QVERIFY(isFreed(sentContext()));

    fill({server("7", "b")});
    reply("RemoveNASServer", code); // a missing context names no server
    QCOMPARE(
        m_log->take(),
        QStringList{QStringLiteral("removeNASServerResponsed(%1) with 7 | b").arg(code == "0" ? "true" : "false")});
}

void NasRegistryTest::repliesMayComeWhileTheyAreAskedFor()
{
    fill({server("7", "b")});
    m_framework.duringSend = [this](const FakeFramework::Sent &sent) {
        watchAllocation(sent.context);
        reply(sent.command, "0", {}, sent.context);
    };
    QVERIFY(m_plugin->updateNASServer("7", "h", "d", "u", "p"));
    QVERIFY(isFreed(sentContext()));
    QVERIFY(m_plugin->removeNASServer("7"));
    QVERIFY(isFreed(sentContext()));
    QCOMPARE(
        m_log->take(),
        (QStringList{"updateNASServerResponsed(NonError, \"7\") with 7 | h", "removeNASServerResponsed(true) with "}));
}

QTEST_GUILESS_MAIN(NasRegistryTest)
#include "tst_nas_registry.moc"
