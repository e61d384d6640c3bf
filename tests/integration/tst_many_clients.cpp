#include "LocalClient.h"
#include "ToolRun.h"
#include "VolumeFolder.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {
constexpr int patience = 40'000; // milliseconds
constexpr int tools = 10;

/// How often everything is done; RECORDING_TEST_ROUNDS asks for more.
int roundCount()
{
    bool isSet = false;
    const int count = qEnvironmentVariableIntValue("RECORDING_TEST_ROUNDS", &isSet);
    return isSet ? count : 1;
}

/// A console without a window, and the lines that it printed.
class Console
{
public:
    Console(const QString &folder, const QString &timeout)
    {
        m_process.setProcessEnvironment(quietEnvironment());
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QStringLiteral(CONSOLE_CLIENT), {u"local:"_s + folder, timeout});
    }
    Console(const Console &) = delete;
    Console &operator=(const Console &) = delete;
    ~Console()
    {
        tell(u"quit"_s);
        m_process.waitForFinished(patience);
    }

    void tell(const QString &line) { m_process.write(line.toUtf8() + '\n'); }

    QStringList lines(const QString &beginning)
    {
        m_output += QString::fromUtf8(m_process.readAllStandardOutput());
        return m_output.left(m_output.lastIndexOf(u'\n')).split(u'\n').filter(QRegularExpression(u'^' + beginning));
    }
    /// The names of the groups that its page shows.
    QStringList groups() { return lines(u"groups"_s).value(lines(u"groups"_s).size() - 1).split(u' ').mid(1); }

private:
    QProcess m_process;
    QString m_output;
};
} // namespace

/// Two consoles and ten tools at once, all of them editing, while their station is killed or stands still.
class ManyClientsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void everybodyIsAnsweredWhileTheStationIsKilled();
    void everybodyIsAnsweredWhileTheStationStandsStill();

private:
    QString data() const { return m_folder->filePath(u"station"_s); }
    QString recordings() const { return QFileInfo(m_folder->filePath(u"rec"_s)).canonicalFilePath(); }
    void startConsoles(const QString &timeout);
    void startTools(const QString &round, const QString &timeout);
    bool isAnyToolDone() const;
    void judgeTools(const QString &round);
    QStringList listedGroups() const;
    void everybodySeesTheSame();

    std::unique_ptr<QTemporaryDir> m_folder;
    std::vector<std::unique_ptr<Console>> m_consoles;
    std::vector<std::unique_ptr<QProcess>> m_tools;
    QStringList m_done; // groups that are there for certain
    QStringList m_open; // groups that may be there
};

void ManyClientsTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_folder = std::make_unique<QTemporaryDir>(onAVolume(u"clients-XXXXXX"_s));
    QVERIFY(m_folder->isValid());
    QVERIFY(QDir().mkpath(m_folder->filePath(u"rec"_s)));
    m_done.clear();
    m_open.clear();
}

void ManyClientsTest::cleanup()
{
    if (const pid_t station = stationProcess(data()))
        ::kill(station, SIGCONT);
    m_consoles.clear();
    m_tools.clear();
    QTRY_VERIFY_WITH_TIMEOUT(isFolderFree(data()), patience);
    m_folder.reset();
}

void ManyClientsTest::startConsoles(const QString &timeout)
{
    for (int number = 0; number < 2; ++number)
        m_consoles.push_back(std::make_unique<Console>(data(), timeout));
    for (const auto &console : m_consoles)
        QTRY_VERIFY_WITH_TIMEOUT(!console->lines(u"groups"_s).isEmpty(), patience);
}

void ManyClientsTest::startTools(const QString &round, const QString &timeout)
{
    m_tools.clear();
    for (int number = 0; number < tools; ++number) {
        auto tool = std::make_unique<QProcess>();
        tool->setProcessEnvironment(quietEnvironment());
        tool->start(RECORDINGCTL,
                    {u"group-add"_s, u"%1-tool%2"_s.arg(round).arg(number), u"--path"_s, recordings(), u"--data"_s,
                     data(), u"--timeout"_s, timeout});
        m_tools.push_back(std::move(tool));
    }
}

bool ManyClientsTest::isAnyToolDone() const
{
    return std::any_of(m_tools.cbegin(), m_tools.cend(),
                       [](const auto &tool) { return tool->state() == QProcess::NotRunning; });
}

/// Each ends by itself: it is done, or says that nobody answered, and whether the edit may take effect.
void ManyClientsTest::judgeTools(const QString &round)
{
    static const QRegularExpression sentence(
        u"^recordingctl: .*(no answer within [\\d.]+ s|the station was lost before it answered"
        "|the station cannot be reached|the station ended before it was done)"_s);
    for (int number = 0; number < tools; ++number) {
        QProcess &tool = *m_tools.at(static_cast<std::size_t>(number));
        QTRY_COMPARE_WITH_TIMEOUT(tool.state(), QProcess::NotRunning, patience);
        QCOMPARE(tool.exitStatus(), QProcess::NormalExit);
        const QString errors = QString::fromUtf8(tool.readAllStandardError());
        const QString name = u"%1-tool%2"_s.arg(round).arg(number);
        if (tool.exitCode() == 0) {
            QCOMPARE(errors, QString());
            m_done.append(name);
            continue;
        }
        QVERIFY2(tool.exitCode() == 3, qPrintable(u"%1: %2"_s.arg(tool.exitCode()).arg(errors)));
        QVERIFY2(sentence.match(errors).hasMatch(), qPrintable(errors));
        if (errors.contains(u"it may take effect all the same"_s))
            m_open.append(name);
    }
}

QStringList ManyClientsTest::listedGroups() const
{
    QProcess tool;
    tool.setProcessEnvironment(quietEnvironment());
    tool.start(RECORDINGCTL, {u"groups"_s, u"--json"_s, u"--data"_s, data()});
    const Run run = finished(tool);
    QStringList names;
    const QJsonArray groups = run.reply()["data"].toArray();
    for (const QJsonValue &group : groups)
        names.append(group["name"].toString());
    names.sort();
    return run.exitCode == 0 ? names : QStringList{u"exit code %1"_s.arg(run.exitCode)};
}

/// What was acknowledged is there once, and nothing that nobody asked for.
void ManyClientsTest::everybodySeesTheSame()
{
    QStringList groups;
    const auto isSame = [this, &groups] { // what nobody waited for may take effect yet
        groups = listedGroups();
        return std::all_of(m_consoles.cbegin(), m_consoles.cend(),
                           [&groups](const auto &console) { return console->groups() == groups; });
    };
    QTRY_VERIFY_WITH_TIMEOUT(isSame(), patience);
    for (const QString &name : std::as_const(m_done))
        QVERIFY2(groups.count(name) == 1, qPrintable(name + u": "_s + groups.join(u' ')));
    for (const QString &name : std::as_const(groups)) {
        QVERIFY2(groups.count(name) == 1, qPrintable(name));
        QVERIFY2(m_done.contains(name) || m_open.contains(name), qPrintable(name));
    }
}

void ManyClientsTest::everybodyIsAnsweredWhileTheStationIsKilled()
{
    startConsoles(u"60000"_s);
    const int rounds = roundCount();
    for (int number = 0; number < rounds; ++number) {
        const QString round = u"r%1"_s.arg(number);
        startTools(round, u"60"_s);
        QTRY_VERIFY_WITH_TIMEOUT(isAnyToolDone(), patience); // the others are somewhere on their way
        for (std::size_t console = 0; console < m_consoles.size(); ++console)
            m_consoles[console]->tell(u"add %1-console%2 %3"_s.arg(round).arg(console).arg(recordings()));
        if (const pid_t station = stationProcess(data()))
            ::kill(station, SIGKILL);
        judgeTools(round);
        if (QTest::currentTestFailed())
            return;
        for (std::size_t console = 0; console < m_consoles.size(); ++console) {
            const QString name = u"%1-console%2"_s.arg(round).arg(console);
            QTRY_COMPARE_WITH_TIMEOUT(m_consoles[console]->lines(u"answer"_s).size(), number + 1, patience);
            const QString answer = m_consoles[console]->lines(u"answer"_s).constLast();
            QVERIFY2(answer == u"answer 0" || answer == u"answer StationLost", qPrintable(answer));
            (answer == u"answer 0" ? m_done : m_open).append(name);
        }
        if (QTest::currentTestFailed())
            return;
        everybodySeesTheSame();
    }
    qInfo("%lld edits were done, of %lld it was open", static_cast<long long>(m_done.size()),
          static_cast<long long>(m_open.size()));
}

void ManyClientsTest::everybodyIsAnsweredWhileTheStationStandsStill()
{
    startConsoles(u"1000"_s);
    const int rounds = roundCount();
    for (int number = 0; number < rounds; ++number) {
        const QString round = u"r%1"_s.arg(number);
        startTools(round, u"3"_s);
        QTRY_VERIFY_WITH_TIMEOUT(isAnyToolDone(), patience);
        const pid_t station = stationProcess(data());
        QVERIFY(station > 0);
        ::kill(station, SIGSTOP);
        for (std::size_t console = 0; console < m_consoles.size(); ++console)
            m_consoles[console]->tell(u"add %1-console%2 %3"_s.arg(round).arg(console).arg(recordings()));
        judgeTools(round);
        if (QTest::currentTestFailed())
            return;
        for (std::size_t console = 0; console < m_consoles.size(); ++console) {
            QTRY_COMPARE_WITH_TIMEOUT(m_consoles[console]->lines(u"answer"_s).size(), number + 1, patience);
            QCOMPARE(m_consoles[console]->lines(u"answer"_s).constLast(), u"answer NoAnswer"_s);
            QCOMPARE(m_consoles[console]->lines(u"late"_s).size(), number);
        }
        ::kill(station, SIGCONT);
        for (std::size_t console = 0; console < m_consoles.size(); ++console) { // the outcome comes all the same
            const QString name = u"%1-console%2"_s.arg(round).arg(console);
            QTRY_COMPARE_WITH_TIMEOUT(m_consoles[console]->lines(u"late"_s).size(), number + 1, patience);
            QCOMPARE(m_consoles[console]->lines(u"late"_s).constLast(), u"late %1 0"_s.arg(name));
            m_done.append(name);
        }
        if (QTest::currentTestFailed())
            return;
        everybodySeesTheSame();
        QCOMPARE(stationProcess(data()), station);
    }
    qInfo("%lld edits were done, of %lld it was open", static_cast<long long>(m_done.size()),
          static_cast<long long>(m_open.size()));
}

QTEST_GUILESS_MAIN(ManyClientsTest)
#include "tst_many_clients.moc"
