#include "NasServers.h"
#include "RequestContexts.h"
#include "TypedText.h"

#include <QRegularExpression>
#include <QTest>
#include <QUuid>

#include <functional>
#include <memory>

using Plugin = PluginRecordingManagement;
using Call = std::function<bool(Plugin &)>;

Q_DECLARE_METATYPE(Call)

/// Requests about NAS servers, and their list.
class NasRegistryTest : public QObject, private NasServers
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
};

void NasRegistryTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    setUp();
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

QTEST_GUILESS_MAIN(NasRegistryTest)
#include "tst_nas_registry.moc"
