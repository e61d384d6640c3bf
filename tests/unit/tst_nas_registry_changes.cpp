#include "NasServers.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

/// What replies to updates and removals of NAS servers do.
class NasRegistryChangesTest : public QObject, private NasServers
{
    Q_OBJECT

private slots:
    void init();

    void updateChangesTheFirstMatchingRow();
    void updateOfAnUnknownServer();
    void refusedUpdateChangesNothing();
    void updateWithoutContext();
    void updateSurvivesTheEndOfItsRow();
    void removeTakesTheFirstMatchingRow();
    void removeReplies_data();
    void removeReplies();
    void repliesMayComeWhileTheyAreAskedFor();
};

void NasRegistryChangesTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    setUp();
}

void NasRegistryChangesTest::updateChangesTheFirstMatchingRow()
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

void NasRegistryChangesTest::updateOfAnUnknownServer()
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

void NasRegistryChangesTest::refusedUpdateChangesNothing()
{
    fill({server("7", "b")});
    m_plugin->updateNASServer("7", "h", "d", "u", "p");
    reply("UpdateNASServer", "LogonNASServerFaled", {}, sentContext());
    QCOMPARE(rows(), QStringList{"7 | b | D | U | P"});
    QCOMPARE(m_log->take(), QStringList{"updateNASServerResponsed(LogonFailed, \"7\") with 7 | b"});
}

void NasRegistryChangesTest::updateWithoutContext()
{
    fill({server("7", "b")});
    reply("UpdateNASServer", "0");
    QCOMPARE(m_log->take(), QStringList{"updateNASServerResponsed(NonError, \"\") with 7 | b"});
}

void NasRegistryChangesTest::updateSurvivesTheEndOfItsRow()
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

void NasRegistryChangesTest::removeTakesTheFirstMatchingRow()
{
    fill({server("1", "a"), server("7", "b"), server("7", "c")});
    m_plugin->removeNASServer("7");
    reply("RemoveNASServer", "0", {}, sentContext());
    QCOMPARE(m_log->take(), QStringList{"removeNASServerResponsed(true) with 1 | a;7 | c"});
    QVERIFY(isFreed(sentContext()));
}

void NasRegistryChangesTest::removeReplies_data()
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

void NasRegistryChangesTest::removeReplies()
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

void NasRegistryChangesTest::repliesMayComeWhileTheyAreAskedFor()
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

QTEST_GUILESS_MAIN(NasRegistryChangesTest)
#include "tst_nas_registry_changes.moc"
