#include "broker/BrokerRoles.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {
QString errorOf(const QByteArray &text)
{
    try {
        BrokerRoles::parse(text, u"FILE"_s);
    } catch (const RolesError &error) {
        return error.text();
    }
    return u"none"_s;
}
} // namespace

/// A station's own table of roles.
class BrokerRolesTest : public QObject
{
    Q_OBJECT

private slots:
    void withoutATableEverybodyIsAnOperator();
    void usersHaveTheirRoles();
    void whoIsNotNamedIsNobody();
    void badTablesAreRefused_data();
    void badTablesAreRefused();
    void theExampleIsSound();
};

void BrokerRolesTest::withoutATableEverybodyIsAnOperator()
{
    QCOMPARE(BrokerRoles().of(u"alice"_s), BrokerRole::Operator);
    QCOMPARE(BrokerRoles().of({}), BrokerRole::Operator);
}

void BrokerRolesTest::usersHaveTheirRoles()
{
    const BrokerRoles roles =
        BrokerRoles::parse("# who\n\n alice=operator\r\nvictor = viewer\na = b = operator\n* = viewer\n", {});
    QCOMPARE(roles.of(u"alice"_s), BrokerRole::Operator);
    QCOMPARE(roles.of(u"victor"_s), BrokerRole::Viewer);
    QCOMPARE(roles.of(u"a = b"_s), BrokerRole::Operator);
    QCOMPARE(roles.of(u"Alice"_s), BrokerRole::Viewer);
    QCOMPARE(roles.of({}), BrokerRole::Viewer);
}

void BrokerRolesTest::whoIsNotNamedIsNobody()
{
    const BrokerRoles roles = BrokerRoles::parse("alice = operator", {});
    QCOMPARE(roles.of(u"eve"_s), BrokerRole::Nobody);
    QCOMPARE(roles.of({}), BrokerRole::Nobody);
    QCOMPARE(roles.of(u"*"_s), BrokerRole::Nobody);
    QCOMPARE(BrokerRoles::parse("", {}).of(u"alice"_s), BrokerRole::Nobody);
}

void BrokerRolesTest::badTablesAreRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("error");
    QTest::newRow("no sign") << QByteArray("\nalice operator") << u"FILE:2: expected USER"_s;
    QTest::newRow("no user") << QByteArray("= viewer") << u"FILE:1: expected USER"_s;
    QTest::newRow("user that cannot be") << QByteArray("a/b = viewer") << u"FILE:1: expected USER"_s;
    QTest::newRow("role") << QByteArray("alice = Operator") << u"FILE:1: the role \"Operator\" is not known"_s;
    QTest::newRow("twice") << QByteArray("a = viewer\na = operator") << u"FILE:2: a stands here twice"_s;
    QTest::newRow("others twice") << QByteArray("* = viewer\n* = viewer") << u"FILE:2: * stands here twice"_s;
}

void BrokerRolesTest::badTablesAreRefused()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, error);
    QVERIFY2(errorOf(text).startsWith(error), qPrintable(errorOf(text)));
    QVERIFY_THROWS_EXCEPTION(RolesError, BrokerRoles::read(u"/nonexistent"_s));
}

void BrokerRolesTest::theExampleIsSound()
{
    const BrokerRoles roles = BrokerRoles::read(QStringLiteral(SOURCE_DIR "/share/broker/roles"));
    QCOMPARE(roles.of(u"alice"_s), BrokerRole::Operator);
    QCOMPARE(roles.of(u"victor"_s), BrokerRole::Viewer);
    QCOMPARE(roles.of(u"north"_s), BrokerRole::Nobody);
}

QTEST_APPLESS_MAIN(BrokerRolesTest)
#include "tst_broker_roles.moc"
