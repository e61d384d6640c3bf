#include "LocalEndpoint.h"
#include "MessageStream.h"
#include "NotifySocket.h"
#include "nas/NasStore.h"
#include "nas/PasswordVault.h"
#include "store/Database.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <functional>
#include <memory>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {
/// A client that says who it is and is told of the station, or is sent away.
class Client
{
public:
    explicit Client(const QString &folder)
    {
        m_socket.connectToServer(stationSocketPaths(folder).constFirst());
        m_socket.write(framedMessage(Hello{protocolVersion, u"test"_s, u"1"_s}));
    }

    /// "name relay-path", the code of the goodbye, or nothing yet.
    QString answer()
    {
        m_stream.append(m_socket.readAll());
        if (const auto message = m_stream.next()) {
            if (const auto *const welcome = std::get_if<Welcome>(&*message))
                m_answer = welcome->name + u' ' + welcome->relayPath;
            else if (const auto *const goodbye = std::get_if<Goodbye>(&*message))
                m_answer = goodbye->code;
        }
        return m_answer;
    }

private:
    QLocalSocket m_socket;
    MessageStream m_stream;
    QString m_answer;
};

/// Names, sizes, modes and times of all that is in a folder.
QStringList stateOf(const QString &folder)
{
    QStringList state;
    const QFileInfoList files = QDir(folder).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System);
    for (const QFileInfo &file : files)
        state.append(u"%1 %2 %3 %4"_s.arg(file.fileName(), QString::number(file.size()),
                                          QString::number(static_cast<uint>(file.permissions()), 16),
                                          file.lastModified().toString(Qt::ISODateWithMs)));
    return state;
}
} // namespace

/// The station as a service: its configuration, signals, service manager, log and --check.
class StationdTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void wrongConfigurationIsRefused_data();
    void wrongConfigurationIsRefused();
    void configurationIsUsed();
    void theCommandLinesFolderHolds();
    void aServiceTakesNoFolderInUse();
    void aSignalReadsTheFileAgain();
    void aWrongFileChangesNothing();
    void theManagerHearsHowItGoes();
    void linesBearTheirLevel();
    void aSoundFolderIsSound();
    void aFolderInUseIsCheckedToo();
    void aFolderThatWasNotClosedIsChecked();
    void checkNamesWhatIsBroken_data();
    void checkNamesWhatIsBroken();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    QString data() const { return path(u"data"_s); }
    QString config() const { return path(u"station.conf"_s); }
    void writeConfig(const QByteArray &text) const;
    void start(const QStringList &arguments, const QStringList &environment = {});
    QString errors();
    int finish();
    int end();
    QStringList check(const QStringList &more = {});
    void makeServer(const QString &keyFile) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<QProcess> m_process;
    QString m_errors;
    int m_exitCode = -1;
};

void StationdTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_errors.clear();
}

void StationdTest::cleanup()
{
    if (m_process && m_process->state() != QProcess::NotRunning) {
        ::kill(static_cast<pid_t>(m_process->processId()), SIGCONT);
        m_process->kill();
        m_process->waitForFinished();
    }
    m_process.reset();
}

void StationdTest::writeConfig(const QByteArray &text) const
{
    QFile file(config());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(text), text.size());
}

void StationdTest::start(const QStringList &arguments, const QStringList &environment)
{
    m_process = std::make_unique<QProcess>();
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {u"NOTIFY_SOCKET"_s, u"WATCHDOG_USEC"_s, u"WATCHDOG_PID"_s, u"INVOCATION_ID"_s,
                                u"JOURNAL_STREAM"_s, u"STATE_DIRECTORY"_s, u"CREDENTIALS_DIRECTORY"_s})
        variables.remove(name);
    for (const QString &variable : environment)
        variables.insert(variable.section(u'=', 0, 0), variable.section(u'=', 1));
    m_process->setProcessEnvironment(variables);
    m_process->start(QStringLiteral(STATIOND), arguments);
    QVERIFY(m_process->waitForStarted());
}

QString StationdTest::errors()
{
    m_errors += QString::fromUtf8(m_process->readAllStandardError());
    return m_errors;
}

/// The exit code; -1 where it did not end by itself.
int StationdTest::finish()
{
    // Meanwhile clients of this test hear the goodbye, and the service manager reads.
    const bool isOver = QTest::qWaitFor([this] { return m_process->state() == QProcess::NotRunning; }, 30'000);
    return isOver && m_process->exitStatus() == QProcess::NormalExit ? m_process->exitCode() : -1;
}

int StationdTest::end()
{
    m_process->terminate();
    return finish();
}

/// The lines of --check.
QStringList StationdTest::check(const QStringList &more)
{
    auto running = std::move(m_process);
    start(QStringList{u"--check"_s, u"--data"_s, data()} + more);
    m_exitCode = finish();
    const QString output = QString::fromUtf8(m_process->readAllStandardOutput());
    m_process = std::move(running);
    return output.split(u'\n', Qt::SkipEmptyParts);
}

/// A sound folder with a NAS server.
void StationdTest::makeServer(const QString &keyFile) const
{
    Database database(data());
    const PasswordVault vault(keyFile, PasswordVault::WhenMissing::Create);
    NasStore(database).insert({u"{1}"_s, u"nas.test"_s, u"Host"_s, u"anna"_s, vault.encrypted(u"secret"_s)});
}

void StationdTest::wrongConfigurationIsRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("error");
    QTest::newRow("bad value") << QByteArray("# mine\nclient-limit = many")
                               << u":2: client-limit is \"many\", expected a whole number of clients from 1 to 10000"_s;
    QTest::newRow("twice") << QByteArray("station-id = a\nstation-id = a")
                           << u":2: station-id is set twice, first in line 1; expected one setting"_s;
}

void StationdTest::wrongConfigurationIsRefused()
{
    QFETCH(const QByteArray, text);
    QFETCH(const QString, error);
    writeConfig(text);
    start({u"--config"_s, config(), u"--data"_s, data()});
    QCOMPARE(finish(), 2);
    QCOMPARE(errors(), u"recording-stationd: "_s + config() + error + u'\n');
    QVERIFY(!QFile::exists(data()));
}

void StationdTest::configurationIsUsed()
{
    writeConfig("station-name = North\nstation-id = relay-7\nclient-limit = 1\ndata-folder = "
                + QFile::encodeName(data()));
    start({u"--config"_s, config()});
    QTRY_VERIFY(QFile::exists(stationSocketPaths(data()).constFirst()));
    Client first(data());
    QTRY_COMPARE(first.answer(), u"North relay-7"_s);
    Client second(data());
    QTRY_COMPARE(second.answer(), GoodbyeCode::TooManyClients);
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(end(), 0);
    QVERIFY(clock.elapsed() < 5000);
}

void StationdTest::theCommandLinesFolderHolds()
{
    writeConfig("data-folder = " + QFile::encodeName(path(u"other"_s)));
    start({u"--config"_s, config(), u"--data"_s, data()});
    QTRY_VERIFY(QFile::exists(stationSocketPaths(data()).constFirst()));
    QCOMPARE(end(), 0);
    QVERIFY(!QFile::exists(path(u"other"_s)));
}

void StationdTest::aServiceTakesNoFolderInUse()
{
    start({u"--data"_s, data()});
    QTRY_VERIFY(QFile::exists(stationSocketPaths(data()).constFirst()));
    const auto first = std::move(m_process);
    start({u"--data"_s, data()});
    QCOMPARE(finish(), 1);
    QVERIFY2(errors().contains(u"is in use by recording-stationd (process %1)"_s.arg(first->processId())),
             qPrintable(errors()));
    first->terminate();
    QVERIFY(first->waitForFinished());
}

void StationdTest::aSignalReadsTheFileAgain()
{
    writeConfig("station-name = North\nnas-time-limit = 3\n");
    start({u"--config"_s, config(), u"--data"_s, data()});
    QTRY_VERIFY(QFile::exists(stationSocketPaths(data()).constFirst()));
    writeConfig("station-name = South\nnas-time-limit = 4\nclient-limit = 7\nstation-id = relay-9\n");
    ::kill(static_cast<pid_t>(m_process->processId()), SIGHUP);
    QTRY_VERIFY(errors().contains(u"client-limit is 7 now"_s));
    QCOMPARE(errors().split(u'\n', Qt::SkipEmptyParts),
             QStringList({u"recording.service: station-name is South now"_s,
                          u"recording.service: station-id waits for the next start to become relay-9"_s,
                          u"recording.service: nas-time-limit waits for the next start to become 4"_s,
                          u"recording.service: client-limit is 7 now"_s}));
    Client client(data());
    QTRY_COMPARE(client.answer(), u"South "_s);
    QCOMPARE(end(), 0);
}

void StationdTest::aWrongFileChangesNothing()
{
    writeConfig("station-name = North\n");
    start({u"--config"_s, config(), u"--data"_s, data()});
    QTRY_VERIFY(QFile::exists(stationSocketPaths(data()).constFirst()));
    writeConfig("station-name = South\nclient-limit = none\n");
    ::kill(static_cast<pid_t>(m_process->processId()), SIGHUP);
    QTRY_VERIFY(errors().contains(config() + u":2: client-limit is \"none\""_s));
    QVERIFY(errors().contains(u"The configuration stays as it is"_s));
    Client client(data());
    QTRY_COMPARE(client.answer(), u"North "_s);
    QCOMPARE(end(), 0);
}

void StationdTest::theManagerHearsHowItGoes()
{
    NotifySocket manager(path(u"notify"_s));
    QVERIFY(manager.isBound());
    writeConfig("");
    start({u"--config"_s, config(), u"--data"_s, data()},
          {u"NOTIFY_SOCKET="_s + path(u"notify"_s), u"WATCHDOG_USEC=200000"_s});
    QTRY_VERIFY(manager.lines().contains(u"WATCHDOG=1"_s));
    QCOMPARE(manager.lines().mid(0, 2), QStringList({u"READY=1"_s, u"STATUS=Serving 0 clients"_s}));
    QVERIFY(QFile::exists(stationSocketPaths(data()).constFirst()));
    Client client(data());
    QTRY_VERIFY(manager.lines().contains(u"STATUS=Serving 1 client"_s));
    ::kill(static_cast<pid_t>(m_process->processId()), SIGHUP);
    QTRY_COMPARE(manager.lines().count(u"READY=1"_s), 2);
    const qsizetype reloading = manager.lines().indexOf(u"RELOADING=1"_s);
    QVERIFY(reloading > 0 && reloading < manager.lines().lastIndexOf(u"READY=1"_s));
    QVERIFY(!manager.lines().contains(u"STOPPING=1"_s));
    QCOMPARE(end(), 0);
    QVERIFY(manager.lines().contains(u"STOPPING=1"_s));
}

void StationdTest::linesBearTheirLevel()
{
    writeConfig("station-name = North\n");
    start({u"--config"_s, config(), u"--data"_s, data()}, {u"INVOCATION_ID=1"_s});
    QTRY_VERIFY(QFile::exists(stationSocketPaths(data()).constFirst()));
    writeConfig("station-name = South\nstation-id = x\n");
    ::kill(static_cast<pid_t>(m_process->processId()), SIGHUP);
    QTRY_VERIFY(errors().contains(u"waits for the next start"_s));
    writeConfig("wrong\n");
    ::kill(static_cast<pid_t>(m_process->processId()), SIGHUP);
    QTRY_VERIFY(errors().contains(u"stays as it is"_s));
    QCOMPARE(end(), 0);
    static const QRegularExpression levels(u"^<(\\d)>recording\\.service: .+$"_s);
    QStringList found;
    for (const QString &line : errors().split(u'\n', Qt::SkipEmptyParts))
        found.append(levels.match(line).captured(1));
    QCOMPARE(found, QStringList({u"6"_s, u"4"_s, u"3"_s}));
    m_errors.clear();
    start({u"--config"_s, config()}, {u"JOURNAL_STREAM=1:2"_s});
    QCOMPARE(finish(), 2);
    QVERIFY2(errors().startsWith(u"<3>recording-stationd: "_s), qPrintable(errors()));
}

void StationdTest::aSoundFolderIsSound()
{
    makeServer(path(u"data/nas.key"_s));
    const QStringList before = stateOf(data());
    writeConfig("client-limit = 5\n");
    const QStringList lines = check({u"--config"_s, config()});
    QVERIFY2(m_exitCode == 0, qPrintable(lines.join(u'\n')));
    QCOMPARE(lines.size(), 7);
    for (const QString &line : lines)
        QVERIFY2(line.startsWith(u"ok: "_s), qPrintable(line));
    QVERIFY(lines.last().contains(u"opens the passwords of all 1 NAS servers"_s));
    QCOMPARE(stateOf(data()), before);
}

void StationdTest::aFolderInUseIsCheckedToo()
{
    makeServer(path(u"data/nas.key"_s));
    start({u"--data"_s, data()});
    QTRY_VERIFY(QFile::exists(stationSocketPaths(data()).constFirst()));
    const qint64 station = m_process->processId();
    const QStringList lines = check();
    QVERIFY2(m_exitCode == 0, qPrintable(lines.join(u'\n')));
    QVERIFY(
        lines.join(u'\n').contains(u"in use by recording-stationd (process %1), which takes clients"_s.arg(station)));
    QCOMPARE(end(), 0);
}

/// Killed in the middle of its work: nothing is brought into the database, and no file is made beside it.
void StationdTest::aFolderThatWasNotClosedIsChecked()
{
    makeServer(path(u"data/nas.key"_s));
    auto writer = std::make_unique<Database>(data());
    writer->run(u"INSERT INTO camera (name, streams) VALUES ('Gate', 1)"_s);
    QVERIFY(QDir().mkpath(path(u"copy"_s)));
    for (const QString &name : {u"station.db"_s, u"station.db-wal"_s, u"station-data"_s, u"nas.key"_s})
        QVERIFY(QFile::copy(data() + u'/' + name, path(u"copy/"_s) + name));
    writer.reset();
    QVERIFY(QDir(data()).removeRecursively());
    QVERIFY(QDir().rename(path(u"copy"_s), data()));
    QCOMPARE(chmod(QFile::encodeName(data()).constData(), 0700), 0);
    QVERIFY(QFileInfo(data() + u"/station.db-wal"_s).size() > 0);
    const QStringList before = stateOf(data());
    const QStringList lines = check();
    QVERIFY2(m_exitCode == 0, qPrintable(lines.join(u'\n')));
    QCOMPARE(stateOf(data()), before);
}

void StationdTest::checkNamesWhatIsBroken_data()
{
    QTest::addColumn<std::function<void()>>("damage");
    QTest::addColumn<QString>("text");
    const auto file = [this](const QString &name) { return QFile::encodeName(data() + u'/' + name); };
    const auto row = [](const char *name, std::function<void()> damage, const QString &text) {
        QTest::newRow(name) << std::move(damage) << text;
    };
    row(
        "no folder", [this] { QVERIFY(QDir(data()).removeRecursively()); }, u"is not there; mount its disk"_s);
    row(
        "mode of the folder", [this] { QCOMPARE(chmod(QFile::encodeName(data()).constData(), 0750), 0); },
        u"its mode is 0750, expected 0700; chmod 0700"_s);
    row(
        "mode of the database", [file] { QCOMPARE(chmod(file(u"station.db"_s).constData(), 0644), 0); },
        u"is open to other users; chmod 0600"_s);
    row(
        "owner of the folder",
        [this] {
            if (geteuid() != 0)
                QSKIP("another user's folder can only be made as root");
            QCOMPARE(chown(QFile::encodeName(data()).constData(), 65534, 65534), 0);
        },
        u"and this runs as root; run it as"_s);
    row(
        "no database", [file] { QCOMPARE(unlink(file(u"station.db"_s).constData()), 0); },
        u"is missing. Put it back"_s);
    row(
        "damaged database", [file] { QCOMPARE(truncate(file(u"station.db"_s).constData(), 20000), 0); },
        u"is damaged ("_s);
    row(
        "newer database",
        [this] {
            Database database(data());
            database.run(u"PRAGMA user_version = 99"_s);
        },
        u"was written by a newer version"_s);
    row(
        "no key", [file] { QCOMPARE(unlink(file(u"nas.key"_s).constData()), 0); }, u"nas.key is lost"_s);
    row(
        "mode of the key", [file] { QCOMPARE(chmod(file(u"nas.key"_s).constData(), 0644), 0); },
        u"may be read by others: its mode is 0644"_s);
    row(
        "another key",
        [file] {
            QCOMPARE(unlink(file(u"nas.key"_s).constData()), 0);
            const PasswordVault other(QFile::decodeName(file(u"nas.key"_s)), PasswordVault::WhenMissing::Create);
        },
        u"the password of anna on the NAS server nas.test"_s);
}

void StationdTest::checkNamesWhatIsBroken()
{
    QFETCH(const std::function<void()>, damage);
    QFETCH(const QString, text);
    makeServer(path(u"data/nas.key"_s));
    damage();
    const QStringList before = stateOf(data());
    const QStringList lines = check();
    QCOMPARE(m_exitCode, 1);
    const QStringList broken = lines.filter(QRegularExpression(u"^broken: "_s));
    QVERIFY2(broken.join(u'\n').contains(text), qPrintable(lines.join(u'\n')));
    QCOMPARE(stateOf(data()), before);
}

QTEST_GUILESS_MAIN(StationdTest)
#include "tst_stationd.moc"
