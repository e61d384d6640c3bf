#include "EachCommand.h"

#include "ClientSession.h"
#include "CommandRun.h"
#include "Interruption.h"
#include "JsonFields.h"
#include "Output.h"
#include "SiteCommands.h"
#include "TextTable.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonDocument>
#include <QProcess>
#include <QRegularExpression>

#include <algorithm>
#include <csignal>
#include <memory>
#include <vector>

#include <sys/prctl.h>
#include <unistd.h>

namespace {

constexpr int defaultParallel = 8;

/// What came of the command for one station.
struct StationOutcome
{
    ListedStation station;
    QString word = QStringLiteral("notBegun"); ///< "done", "refused", "wrongUse", "noAnswer", "notUp", "ended"
    int exitCode = -1; ///< of the command; negative: it has none
    qint64 milliseconds = -1; ///< that it took
    QString output = {};
    QString errors = {};

    bool isDone() const { return word == QStringLiteral("done"); }
};

QString wordOf(int exitCode)
{
    switch (static_cast<ExitCode>(exitCode)) {
    case ExitCode::Done:
        return QStringLiteral("done");
    case ExitCode::Refused:
        return QStringLiteral("refused");
    case ExitCode::WrongUse:
        return QStringLiteral("wrongUse");
    case ExitCode::NoAnswer:
        return QStringLiteral("noAnswer");
    }
    return QStringLiteral("ended");
}

/// Runs the command for one station after the other, as many at a time as allowed.
class EachRun : public QObject
{
    Q_OBJECT
public:
    EachRun(const CommandLine &line, QList<StationOutcome> outcomes)
        : m_line(line)
        , m_outcomes(std::move(outcomes))
        , m_parallel(line.value(QStringLiteral("parallel"), QString::number(defaultParallel)).toInt())
    {
        m_sinceProgress.start();
    }

    void start()
    {
        while (!m_isStopped && m_running < m_parallel && m_next < m_outcomes.size()) {
            StationOutcome &outcome = m_outcomes[m_next];
            if (outcome.station.record.isUp())
                begin(m_next);
            else
                skip(outcome);
            ++m_next;
        }
        if (m_running == 0 && (m_isStopped || m_next == m_outcomes.size()))
            QMetaObject::invokeMethod(this, &EachRun::finished, Qt::QueuedConnection);
    }

    void stop()
    {
        m_isStopped = true;
        printError(QStringLiteral("no more are begun; %1 are still under way").arg(m_running));
        if (m_running == 0)
            emit finished();
    }

    const QList<StationOutcome> &outcomes() const { return m_outcomes; }

signals:
    void finished();

private:
    void skip(StationOutcome &outcome)
    {
        outcome.word = QStringLiteral("notUp");
        const StationState &state = outcome.station.record.presence.state;
        outcome.errors = QStringLiteral("the station is not up")
            + (state.reason.isEmpty() ? QString() : QStringLiteral(": ") + state.reason);
        ++m_ended;
        ++m_failed;
    }

    void begin(qsizetype place)
    {
        auto *const process = new QProcess(this);
        QElapsedTimer clock;
        clock.start();
        connect(process, &QProcess::finished, this,
                [this, process, place, clock](int exitCode, QProcess::ExitStatus status) {
                    end(place, *process, status == QProcess::NormalExit ? exitCode : -1, clock.elapsed());
                });
        connect(process, &QProcess::errorOccurred, this, [this, process, place, clock](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart)
                end(place, *process, -1, clock.elapsed());
        });
        // Ctrl-C in the terminal is for this process; it waits for those that were begun, and they end with it.
        process->setChildProcessModifier([] {
            ::setpgid(0, 0);
            ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        });
        process->setStandardInputFile(QProcess::nullDevice());
        QStringList arguments{QStringLiteral("--connect"), m_line.url};
        const QString id = m_outcomes.at(place).station.id;
        if (!id.isEmpty())
            arguments += {QStringLiteral("--station"), id};
        if (m_line.json)
            arguments += QStringLiteral("--json");
        const QString timeout = QStringLiteral("--timeout");
        const bool hasOwn = std::any_of(m_line.arguments.cbegin(), m_line.arguments.cend(),
                                        [&timeout](const QString &argument) { return argument.startsWith(timeout); });
        if (m_line.has(QStringLiteral("timeout")) && !hasOwn)
            arguments += {timeout, m_line.value(QStringLiteral("timeout"))};
        ++m_running;
        process->start(QCoreApplication::applicationFilePath(), arguments + m_line.arguments.mid(1));
    }

    void end(qsizetype place, QProcess &process, int exitCode, qint64 milliseconds)
    {
        StationOutcome &outcome = m_outcomes[place];
        outcome.exitCode = exitCode;
        outcome.word = wordOf(exitCode);
        outcome.milliseconds = milliseconds;
        outcome.output = QString::fromUtf8(process.readAllStandardOutput());
        outcome.errors = QString::fromUtf8(process.readAllStandardError()).trimmed();
        if (process.error() == QProcess::FailedToStart)
            outcome.errors = process.errorString();
        process.deleteLater();
        --m_running;
        ++m_ended;
        m_failed += outcome.isDone() ? 0 : 1;
        if (!m_line.json && !outcome.output.isEmpty())
            printText(QStringLiteral("== %1\n%2").arg(printable(outcome.station.shownId()), outcome.output));
        tellProgress();
        start();
    }

    void tellProgress()
    {
        constexpr qint64 second = 1000;
        if (m_sinceProgress.elapsed() < second && m_ended < m_outcomes.size())
            return;
        m_sinceProgress.restart();
        printError(QStringLiteral("%1 of %2 stations, %3 not done").arg(m_ended).arg(m_outcomes.size()).arg(m_failed));
    }

    const CommandLine &m_line;
    QList<StationOutcome> m_outcomes;
    int m_parallel;
    qsizetype m_next = 0;
    int m_running = 0;
    int m_ended = 0;
    int m_failed = 0;
    bool m_isStopped = false;
    QElapsedTimer m_sinceProgress;
};

/// What keeps @p command, the words behind the pattern, from being run for each station; empty where nothing does.
QString whyNot(const QStringList &command)
{
    static const QStringList ofTheSite{QStringLiteral("each"), QStringLiteral("stations"), QStringLiteral("watch"),
                                       QStringLiteral("list")};
    const CommandLine line = CommandLine::parse(QStringList{QStringLiteral("recordingctl")} + command);
    if (!line.error.isEmpty())
        return line.error;
    if (!line.text.isEmpty() || ofTheSite.contains(line.command) || line.has(QStringLiteral("all")))
        return QStringLiteral("each takes a command for one station, not \"%1\"").arg(command.join(u' '));
    for (const QString &option :
         {QStringLiteral("connect"), QStringLiteral("data"), QStringLiteral("station"), QStringLiteral("json")}) {
        if (line.has(option))
            return QStringLiteral("each: --%1 stands before the pattern").arg(option);
    }
    if (line.values(QStringLiteral("password")).contains(QStringLiteral("-")))
        return QStringLiteral("each: standard input is not for many stations; --password takes a file: @FILE");
    return {};
}

bool fits(const ListedStation &station, const QRegularExpression &pattern)
{
    return pattern.match(station.id).hasMatch() || pattern.match(station.name()).hasMatch();
}

QString outcomeText(const StationOutcome &outcome)
{
    static const QHash<QString, QString> words{{QStringLiteral("notBegun"), QStringLiteral("not begun")},
                                               {QStringLiteral("wrongUse"), QStringLiteral("wrong use")},
                                               {QStringLiteral("noAnswer"), QStringLiteral("no answer")},
                                               {QStringLiteral("notUp"), QStringLiteral("not up")}};
    return words.value(outcome.word, outcome.word);
}

/// The first line of what the command said, without the tool's name.
QString reasonOf(const StationOutcome &outcome)
{
    QString line = outcome.errors.section(u'\n', 0, 0);
    const QString tool = QStringLiteral("recordingctl: ");
    return line.startsWith(tool) ? line.mid(tool.size()) : line;
}

TextTable outcomeTable(const QList<StationOutcome> &outcomes)
{
    TextTable table({QStringLiteral("Station"), QStringLiteral("Name"), QStringLiteral("Outcome"),
                     QStringLiteral("Took"), QStringLiteral("Why")});
    table.setRightAligned(3);
    for (const StationOutcome &outcome : outcomes) {
        const QString took =
            outcome.milliseconds < 0 ? QStringLiteral("-") : QStringLiteral("%1 ms").arg(outcome.milliseconds);
        table.addRow(
            {outcome.station.shownId(), outcome.station.name(), outcomeText(outcome), took, reasonOf(outcome)});
    }
    return table;
}

QJsonObject outcomeJson(const StationOutcome &outcome)
{
    const QJsonObject reply = QJsonDocument::fromJson(outcome.output.toUtf8()).object();
    return {{QStringLiteral("station"), textJson(outcome.station.id)},
            {QStringLiteral("stationName"), textJson(outcome.station.name())},
            {QStringLiteral("outcome"), outcome.word},
            {QStringLiteral("durationMilliseconds"),
             outcome.milliseconds < 0 ? QJsonValue() : QJsonValue(outcome.milliseconds)},
            {QStringLiteral("message"), textJson(outcome.isDone() ? QString() : reasonOf(outcome))},
            {QStringLiteral("reply"), reply.isEmpty() ? QJsonValue() : QJsonValue(reply)}};
}

} // namespace

ExitCode runForEach(CommandRun &run)
{
    const CommandLine &line = run.line();
    const QString wrong = whyNot(line.arguments.mid(1));
    if (!wrong.isEmpty())
        return run.wrongUse(wrong);
    const QString &text = line.arguments.constFirst();
    // In an id a slash is a character as others are.
    const QRegularExpression pattern(
        QRegularExpression::wildcardToRegularExpression(text).replace(QStringLiteral("[^/]"), QStringLiteral(".")));
    if (!pattern.isValid())
        return run.wrongUse(QStringLiteral("\"%1\" is no pattern: %2").arg(text, pattern.errorString()));
    QList<StationOutcome> outcomes;
    const SiteList site = awaitStations(run, false);
    if (!site.whyIncomplete.isEmpty())
        return run.noAnswer(site.whyIncomplete);
    for (const ListedStation &station : site.stations) {
        if (fits(station, pattern))
            outcomes.append({station});
    }
    if (outcomes.isEmpty())
        return run.refused(ToolErrorCode::NotFound,
                           QStringLiteral("no station fits \"%1\"; there are %2").arg(text).arg(site.stations.size()));
    EachRun each(line, outcomes);
    QEventLoop loop;
    QObject::connect(&each, &EachRun::finished, &loop, &QEventLoop::quit);
    const Interruption interruption([&each] { each.stop(); });
    each.start();
    loop.exec();

    outcomes = each.outcomes();
    run.show({[&outcomes] {
                  QJsonArray array;
                  for (const StationOutcome &outcome : std::as_const(outcomes))
                      array.append(outcomeJson(outcome));
                  return array;
              },
              [&outcomes] { printText(outcomeTable(outcomes).toString()); }});
    const auto done = std::count_if(outcomes.cbegin(), outcomes.cend(),
                                    [](const StationOutcome &outcome) { return outcome.isDone(); });
    if (done == outcomes.size())
        return ExitCode::Done;
    const bool isOnlyUnanswered = std::all_of(outcomes.cbegin(), outcomes.cend(), [](const StationOutcome &outcome) {
        return outcome.isDone() || outcome.word == QStringLiteral("noAnswer")
            || outcome.word == QStringLiteral("notUp");
    });
    const QString words =
        QStringLiteral("%1 of %2 stations are not done").arg(outcomes.size() - done).arg(outcomes.size());
    return isOnlyUnanswered ? run.noAnswer(words) : run.refused(ToolErrorCode::NotAllDone, words);
}

#include "EachCommand.moc"
