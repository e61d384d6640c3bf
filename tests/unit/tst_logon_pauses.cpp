#include "nas/LogonPauses.h"

#include <QTest>

using namespace std::chrono_literals;

/// How long refused accounts are left alone.
class LogonPausesTest : public QObject
{
    Q_OBJECT

private slots:
    void thePauseGrows();
    void aTryInThePauseMakesItNoLonger();
    void successEndsIt();
    void silenceSaysNothing();
    void eachAccountHasItsOwn_data();
    void eachAccountHasItsOwn();

private:
    const QString refused = QStringLiteral("LogonNASServerFaled");
    const SmbPath nas = *SmbPath::parse(QStringLiteral("//nas/video"));
    const SmbLogon account{QStringLiteral("Host"), QStringLiteral("camera"), QStringLiteral("secret")};

    qint64 left(const LogonPauses &pauses) const
    {
        const std::optional<QDateTime> end = pauses.end(nas, account);
        return end ? QDateTime::currentDateTimeUtc().msecsTo(*end) : 0;
    }
};

void LogonPausesTest::thePauseGrows()
{
    LogonPauses pauses(100ms, 300ms);
    QVERIFY(!pauses.end(nas, account));
    for (const int milliseconds : {100, 200, 300, 300}) {
        pauses.note(nas, account, refused);
        const qint64 pause = left(pauses);
        QVERIFY2(pause > milliseconds - 90 && pause <= milliseconds, qPrintable(QString::number(pause)));
        QTRY_VERIFY(!pauses.end(nas, account));
    }
}

void LogonPausesTest::aTryInThePauseMakesItNoLonger()
{
    LogonPauses pauses;
    for (int i = 0; i < 5; ++i) {
        pauses.note(nas, account, refused);
        QVERIFY(left(pauses) > 50'000 && left(pauses) <= 60'000);
    }
}

void LogonPausesTest::successEndsIt()
{
    LogonPauses pauses;
    for (const char *code : {"0", "GetNasCapacityFailed", "PathNotWritable"}) {
        pauses.note(nas, account, refused);
        QVERIFY(pauses.end(nas, account));
        QVERIFY(pauses.wasRefused(nas, account, 15s));
        pauses.note(nas, account, QString::fromLatin1(code));
        QVERIFY(!pauses.end(nas, account));
        QVERIFY(!pauses.wasRefused(nas, account, 15s));
    }
}

void LogonPausesTest::silenceSaysNothing()
{
    LogonPauses pauses;
    pauses.note(nas, account, QStringLiteral("NasServerNotResponding"));
    QVERIFY(!pauses.end(nas, account));
    pauses.note(nas, account, refused);
    pauses.note(nas, account, QStringLiteral("NasServerNotResponding"));
    QVERIFY(pauses.end(nas, account));
}

void LogonPausesTest::eachAccountHasItsOwn_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<QString>("domain");
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("password");
    QTest::addColumn<bool>("isSame");
    const QString host = QStringLiteral("//nas/video");
    const QString own = QStringLiteral("Host");
    const QString user = QStringLiteral("camera");
    const QString secret = QStringLiteral("secret");
    QTest::newRow("the same") << host << own << user << secret << true;
    QTest::newRow("another share, other capitals") << QStringLiteral("//NAS:445/x/y") << own << user << secret << true;
    QTest::newRow("another port") << QStringLiteral("//nas:1445/video") << own << user << secret << false;
    QTest::newRow("another domain") << host << QStringLiteral("OFFICE") << user << secret << false;
    QTest::newRow("another user") << host << own << QStringLiteral("viewer") << secret << false;
    QTest::newRow("another password") << host << own << user << QStringLiteral("new") << false;
}

void LogonPausesTest::eachAccountHasItsOwn()
{
    QFETCH(QString, place);
    QFETCH(QString, domain);
    QFETCH(QString, user);
    QFETCH(QString, password);
    LogonPauses pauses;
    pauses.note(nas, account, refused);
    QTEST(pauses.end(*SmbPath::parse(place), {domain, user, password}).has_value(), "isSame");
}

QTEST_APPLESS_MAIN(LogonPausesTest)
#include "tst_logon_pauses.moc"
