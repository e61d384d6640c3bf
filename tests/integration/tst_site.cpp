#include "Loopback.h"
#include "ToolRun.h"

#include <QDir>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <csignal>
#include <memory>

using namespace Qt::StringLiterals;

namespace {
/// A value as the shell would read it; the script quotes nothing here.
QProcessEnvironment environmentOf(const QString &file)
{
    QProcessEnvironment environment = quietEnvironment();
    QFile lines(file);
    if (!lines.open(QIODevice::ReadOnly))
        return environment;
    static const QRegularExpression assignment(u"^export (\\w+)=(.*)$"_s, QRegularExpression::MultilineOption);
    auto match = assignment.globalMatch(QString::fromUtf8(lines.readAll()));
    while (match.hasNext()) {
        const QRegularExpressionMatch found = match.next();
        environment.insert(found.captured(1), found.captured(2));
    }
    return environment;
}

Run runIn(const QProcessEnvironment &environment, const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    process.closeWriteChannel();
    return finished(process);
}

/// Processes that name @p folder among their arguments.
QStringList processesOf(const QString &folder)
{
    QStringList found;
    const QStringList numbers = QDir(u"/proc"_s).entryList({u"[1-9]*"_s}, QDir::Dirs);
    for (const QString &number : numbers) {
        QFile arguments(u"/proc/%1/cmdline"_s.arg(number));
        if (arguments.open(QIODevice::ReadOnly) && arguments.readAll().contains(folder.toUtf8()))
            found.append(number);
    }
    return found;
}
} // namespace

/// scripts/site, with the programs as they are built and a real broker.
class SiteTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void clientsReachEveryStation();
    void aSecondStartSaysWhatRuns();
    void aLostStationIsNamed();
    void aBrokerThatRefusesIsNoSiteOfOne();
    void aLostStationOutlivesTheBroker();
    void aStartThatFailsLeavesNothing();
    void aFolderThatIsNoSiteIsLeftAlone();
    void wrongUseIsRefused_data();
    void wrongUseIsRefused();

private:
    Run site(const QStringList &arguments) const
    {
        return runIn(quietEnvironment(), SITE_SCRIPT, arguments + QStringList{u"--folder"_s, m_site});
    }
    Run start(int stations) const
    {
        return site({u"--programs"_s, QFileInfo(QStringLiteral(RECORDINGCTL)).path(), u"--stations"_s,
                     QString::number(stations)});
    }
    Run ctl(const QStringList &arguments, const QString &environment = u"environment"_s) const
    {
        return runIn(environmentOf(m_site + u'/' + environment), RECORDINGCTL, arguments);
    }
    /// Its process, as the site's own list has it.
    int processOf(const QString &name) const
    {
        QFile list(m_site + u"/processes"_s);
        if (!list.open(QIODevice::ReadOnly))
            return 0;
        const QStringList lines = QString::fromUtf8(list.readAll()).split(u'\n');
        for (const QString &line : lines) {
            if (line.section(u' ', 0, 0) == name)
                return line.section(u' ', 1, 1).toInt();
        }
        return 0;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_site;
};

void SiteTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_site = m_folder->filePath(u"site"_s);
}

void SiteTest::cleanup()
{
    if (QFileInfo(m_site + u"/processes"_s).exists())
        site({u"--stop"_s});
    QCOMPARE(processesOf(m_site), QStringList());
    m_folder.reset();
}

void SiteTest::clientsReachEveryStation()
{
    const Run started = start(3);
    QVERIFY2(started.exitCode == 0, qPrintable(started.errors));
    QVERIFY2(started.output.contains(u"station-1 to station-3"_s), qPrintable(started.output));

    const QString url = environmentOf(m_site + u"/environment"_s).value(u"RECORDING_CONNECT"_s);
    QVERIFY2(url.startsWith(u"mqtts://"_s) && url.endsWith(u"/station-1"_s), qPrintable(url));
    QVERIFY(started.output.contains(url));
    for (const QString &station : {u"station-1"_s, u"station-2"_s, u"station-3"_s}) {
        const Run groups = ctl({u"groups"_s, u"--connect"_s, url.section(u'/', 0, -2) + u'/' + station});
        QVERIFY2(groups.exitCode == 0, qPrintable(groups.errors));
        QVERIFY2(groups.output.contains(u"Warehouse"_s), qPrintable(groups.output));
    }
    QCOMPARE(ctl({u"camera-add"_s, u"Gate"_s}).exitCode, 0);
    const Run refused = ctl({u"camera-add"_s, u"Yard"_s}, u"environment-viewer"_s);
    QVERIFY(refused.exitCode != 0);
    QVERIFY2(refused.errors.contains(u"OperatorNeeded"_s), qPrintable(refused.errors));
    QCOMPARE(ctl({u"groups"_s}, u"environment-viewer"_s).exitCode, 0);

    const Run stopped = site({u"--stop"_s});
    QVERIFY2(stopped.exitCode == 0, qPrintable(stopped.errors));
    QVERIFY(!QFileInfo::exists(m_site));
    QCOMPARE(processesOf(m_site), QStringList());
    const Run again = site({u"--stop"_s});
    QCOMPARE(again.exitCode, 0);
    QVERIFY(again.output.startsWith(u"No site runs"_s));
}

void SiteTest::aSecondStartSaysWhatRuns()
{
    QCOMPARE(start(1).exitCode, 0);
    const int station = processOf(u"station-1"_s);
    const Run second = site({});
    QCOMPARE(second.exitCode, 0);
    QVERIFY2(second.output.contains(u"runs already"_s), qPrintable(second.output));
    const Run other = start(2);
    QCOMPARE(other.exitCode, 1);
    QVERIFY2(other.errors.contains(u"a site of 1 station runs"_s), qPrintable(other.errors));
    QCOMPARE(processOf(u"station-1"_s), station);
}

void SiteTest::aLostStationIsNamed()
{
    QCOMPARE(start(2).exitCode, 0);
    QVERIFY(kill(processOf(u"station-2"_s), SIGKILL) == 0);
    QTRY_COMPARE(site({}).exitCode, 1);
    QVERIFY2(site({}).errors.contains(u"station-2"_s), qPrintable(site({}).errors));
    QCOMPARE(site({u"--stop"_s}).exitCode, 0);
    QVERIFY(!QFileInfo::exists(m_site));
}

void SiteTest::aBrokerThatRefusesIsNoSiteOfOne()
{
    QCOMPARE(start(2).exitCode, 0);
    QProcessEnvironment environment = environmentOf(m_site + u"/environment"_s);
    environment.insert(u"RECORDING_BROKER_PASSWORD_FILE"_s, m_site + u"/viewer.password"_s);
    for (const QStringList &command : {QStringList{u"stations"_s}, QStringList{u"usage"_s, u"--all"_s},
                                       QStringList{u"each"_s, u"*"_s, u"--"_s, u"groups"_s}}) {
        const Run refused = runIn(environment, RECORDINGCTL, command);
        QCOMPARE(refused.exitCode, 3);
        QCOMPARE(refused.output, QString());
        QVERIFY2(refused.errors.contains(u"refuses the connection"_s), qPrintable(refused.errors));
    }
    QCOMPARE(ctl({u"each"_s, u"*"_s, u"--"_s, u"groups"_s}).exitCode, 0);
}

void SiteTest::aLostStationOutlivesTheBroker()
{
    QCOMPARE(start(2).exitCode, 0);
    QVERIFY(kill(processOf(u"station-2"_s), SIGKILL) == 0);
    QTRY_VERIFY(ctl({u"stations"_s}).errors.contains(u"station-2: down"_s));
    const int broker = processOf(u"broker"_s);
    QVERIFY(kill(broker, SIGTERM) == 0);
    QTRY_COMPARE(processesOf(m_site + u"/broker.conf"_s), QStringList());
    QProcess again;
    again.setProcessChannelMode(QProcess::MergedChannels);
    again.start(QStandardPaths::findExecutable(u"mosquitto"_s, {u"/usr/sbin"_s, u"/usr/local/sbin"_s, u"/usr/bin"_s}),
                {u"-c"_s, m_site + u"/broker.conf"_s});
    QVERIFY(again.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(ctl({u"stations"_s}).output.contains(u"up "_s), 20'000);
    const Run listed = ctl({u"stations"_s});
    QCOMPARE(listed.exitCode, 1);
    QVERIFY2(listed.errors.contains(u"station-2: down"_s), qPrintable(listed.errors));
    again.terminate();
    QVERIFY(again.waitForFinished());
}

void SiteTest::aStartThatFailsLeavesNothing()
{
    const SilentServer other;
    const Run refused = site(
        {u"--programs"_s, QFileInfo(QStringLiteral(RECORDINGCTL)).path(), u"--port"_s, QString::number(other.port())});
    QCOMPARE(refused.exitCode, 1);
    QVERIFY2(refused.errors.contains(u"something listens on port %1"_s.arg(other.port())), qPrintable(refused.errors));
    QVERIFY(!QFileInfo::exists(m_site));
}

void SiteTest::aFolderThatIsNoSiteIsLeftAlone()
{
    QVERIFY(QDir().mkpath(m_site + u"/precious"_s));
    for (const QStringList &arguments : {QStringList{u"--stop"_s}, QStringList{}}) {
        const Run refused = site(arguments);
        QCOMPARE(refused.exitCode, 1);
        QVERIFY2(refused.errors.contains(u"is no site of yours"_s), qPrintable(refused.errors));
    }
    QVERIFY(QFileInfo::exists(m_site + u"/precious"_s));
}

void SiteTest::wrongUseIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    QTest::newRow("no stations") << QStringList{u"--stations"_s, u"0"_s} << u"expected a number from 1 to 500"_s;
    QTest::newRow("many stations") << QStringList{u"--stations"_s, u"501"_s} << u"expected a number from 1 to 500"_s;
    QTest::newRow("low port") << QStringList{u"--port"_s, u"80"_s} << u"expected a number from 1024 to 65535"_s;
    QTest::newRow("no programs") << QStringList{u"--programs"_s, u"/nowhere"_s} << u"there is no recordingctl"_s;
    QTest::newRow("stop with more") << QStringList{u"--stop"_s, u"--stations"_s, u"2"_s} << u"--stop goes with"_s;
    QTest::newRow("unknown") << QStringList{u"--restart"_s} << u"unknown argument \"--restart\""_s;
}

void SiteTest::wrongUseIsRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    const Run refused = site(arguments);
    QCOMPARE(refused.exitCode, 1);
    QVERIFY2(refused.errors.contains(error), qPrintable(refused.errors));
    QVERIFY(!QFileInfo::exists(m_site));
}

QTEST_GUILESS_MAIN(SiteTest)
#include "tst_site.moc"
