#include "NasServers.h"
#include "RequestContexts.h"

#include <QRegularExpression>
#include <QTest>

#include <memory>

/// What replies to adds of NAS servers do.
class NasRegistryAddsTest : public QObject, private NasServers
{
    Q_OBJECT

private slots:
    void init();

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
    void olderAddMayBeAnsweredWhileANewerIsSent_data();
    void olderAddMayBeAnsweredWhileANewerIsSent();
    void newerAddMayBeSentWhileAnOlderIs();
    void addsMayBeAbandonedWhileOneIsSent();
};

void NasRegistryAddsTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    setUp();
}

void NasRegistryAddsTest::addedServerIsAppended()
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

void NasRegistryAddsTest::addErrorCodes_data()
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

void NasRegistryAddsTest::addErrorCodes()
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

void NasRegistryAddsTest::failedRowOfAnAdd()
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

void NasRegistryAddsTest::repliesToTwoAdds_data()
{
    QTest::addColumn<bool>("inOrder");
    QTest::newRow("in order") << true;
    QTest::newRow("the newer one first") << false;
}

void NasRegistryAddsTest::repliesToTwoAdds()
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

void NasRegistryAddsTest::ignoredAddIsDroppedAndFreed()
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

void NasRegistryAddsTest::addAfterAnIgnoredOneCounts()
{
    m_plugin->addNASServer("first");
    m_plugin->ignoreAddNASServerResponse();
    m_plugin->addNASServer("second");
    reply("AddNasServer", "0", "2", sentContext(1));
    reply("AddNasServer", "0", "1", sentContext(0));
    QCOMPARE(modelText(*m_model, {257, 258}), QStringList{"2 | second"});
}

void NasRegistryAddsTest::refusedAddKeepsTheOlderOneCurrent()
{
    m_plugin->addNASServer("first");
    m_framework.accepts = false;
    QVERIFY(!m_plugin->addNASServer("second"));
    reply("AddNasServer", "0", "1", sentContext(0));
    QCOMPARE(m_log->take(), QStringList{"addNASServerResponded(NonError, \"1\") with 1 | first"});
}

void NasRegistryAddsTest::aSecondReplyToTheSameAddCountsAgain()
{
    m_plugin->addNASServer("h");
    auto again = std::make_unique<AddNASServerContext>(*static_cast<AddNASServerContext *>(sentContext()));
    reply("AddNasServer", "0", "1", sentContext());
    reply("AddNasServer", "0", "2", again.release());
    QCOMPARE(modelText(*m_model, {257, 258}), (QStringList{"1 | h", "2 | h"}));
}

void NasRegistryAddsTest::addWithoutContextIsStale()
{
    reply("AddNasServer", "0", "7");
    m_plugin->ignoreAddNASServerResponse();
    reply("AddNasServer", "NASServerExist");
    QCOMPARE(m_log->take(), QStringList{});
    QCOMPARE(rows(), QStringList{});
}

void NasRegistryAddsTest::addMayBeAnsweredWhileItIsSent()
{
    m_framework.duringSend = [this](const FakeFramework::Sent &sent) {
        watchAllocation(sent.context);
        reply("AddNasServer", "0", "7", sent.context);
    };
    QVERIFY(m_plugin->addNASServer("h"));
    QCOMPARE(m_log->take(), QStringList{"addNASServerResponded(NonError, \"7\") with 7 | h"});
    QVERIFY(isFreed(sentContext()));
}

void NasRegistryAddsTest::olderAddMayBeAnsweredWhileANewerIsSent_data()
{
    QTest::addColumn<bool>("accepted");
    QTest::newRow("the newer is accepted") << true;
    QTest::newRow("the newer is refused") << false;
}

void NasRegistryAddsTest::olderAddMayBeAnsweredWhileANewerIsSent()
{
    QFETCH(bool, accepted);
    QVERIFY(m_plugin->addNASServer("first"));
    m_framework.accepts = accepted;
    m_framework.duringSend = [this](const FakeFramework::Sent &) { reply("AddNasServer", "0", "1", sentContext(0)); };
    QCOMPARE(m_plugin->addNASServer("second"), accepted);
    QCOMPARE(m_log->take(), QStringList{"addNASServerResponded(NonError, \"1\") with 1 | first"});
    QVERIFY(isFreed(sentContext(0)));
    if (accepted)
        reply("AddNasServer", "0", "2", sentContext(1));
    QCOMPARE(modelText(*m_model, {257}), accepted ? (QStringList{"1", "2"}) : QStringList{"1"});
}

void NasRegistryAddsTest::newerAddMayBeSentWhileAnOlderIs()
{
    m_framework.duringSend = [this](const FakeFramework::Sent &) {
        m_framework.duringSend = nullptr;
        QVERIFY(m_plugin->addNASServer("newer"));
    };
    QVERIFY(m_plugin->addNASServer("older"));
    reply("AddNasServer", "0", "1", sentContext(0));
    reply("AddNasServer", "0", "2", sentContext(1));
    QCOMPARE(modelText(*m_model, {257, 258}), QStringList{"2 | newer"});
}

void NasRegistryAddsTest::addsMayBeAbandonedWhileOneIsSent()
{
    QVERIFY(m_plugin->addNASServer("first"));
    m_framework.duringSend = [this](const FakeFramework::Sent &) { m_plugin->ignoreAddNASServerResponse(); };
    QVERIFY(m_plugin->addNASServer("second"));
    reply("AddNasServer", "0", "1", sentContext(0));
    reply("AddNasServer", "0", "2", sentContext(1));
    QCOMPARE(m_log->take(), QStringList{});
    QCOMPARE(rows(), QStringList{});
}

QTEST_GUILESS_MAIN(NasRegistryAddsTest)
#include "tst_nas_registry_adds.moc"
