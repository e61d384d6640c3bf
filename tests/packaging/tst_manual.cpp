#include "../integration/ToolRun.h"
#include "CommandForms.h"
#include "Completions.h"
#include "ManualPage.h"
#include "ProgramHelp.h"

#include <QFile>
#include <QSet>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace {
const QString folder = QStringLiteral(MANUAL_FOLDER);

QString textOf(const QString &name)
{
    QFile file(folder + '/' + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// Whatever looks like a long option in @p text.
QSet<QString> longOptions(const QString &text)
{
    static const QRegularExpression option("(?<![\\w-])--[a-z][a-z-]*[a-z]");
    QSet<QString> found;
    for (const QRegularExpressionMatch &match : option.globalMatch(text))
        found.insert(match.captured());
    return found;
}

/// A page without what says how it looks.
QString plainPage(const QString &name)
{
    static const QRegularExpression font("\\\\f[BIR]");
    return textOf(name).remove(font).replace("\\-", "-");
}

QString printed(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral(BIN_FOLDER) + '/' + program, arguments);
    return finished(process).output;
}

/// What @p shell, which runs @p script, offers; lines.
QStringList offered(const QString &shell, const QStringList &arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", "/nonexistent");
    process.setProcessEnvironment(environment);
    process.start(shell, arguments);
    const Run run = finished(process);
    if (run.exitCode != 0 || !run.errors.isEmpty())
        return {QString("%1 ended with %2: %3").arg(shell).arg(run.exitCode).arg(run.errors)};
    QStringList lines = run.outputLines();
    lines.sort();
    return lines;
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

QStringList optionsOf(const QString &command)
{
    QStringList names;
    for (const OptionForm &option : optionForms()) {
        if (takesOption(*commandForm(command), option))
            names.append(QString("--") + option.name);
    }
    return names;
}
} // namespace

/// Man pages and completions say what the programs say with --help, no less and no more.
class ManualTest : public QObject
{
    Q_OBJECT
private slots:
    void pageHasTheOptionsOfTheHelp_data();
    void pageHasTheOptionsOfTheHelp();
    void pageHasEveryCommand();
    void textIsShownAsItStands();
    void aHelpOfAnotherFormIsNoHelp();
    void bashOffers_data();
    void bashOffers();
    void zshOffersEverything();
    void fishOffers_data();
    void fishOffers();
};

void ManualTest::pageHasTheOptionsOfTheHelp_data()
{
    QTest::addColumn<QString>("page");
    QTest::newRow("recordingctl") << "recordingctl.1";
    QTest::newRow("recording-console") << "recording-console.1";
    QTest::newRow("recording-stationd") << "recording-stationd.8";
}

void ManualTest::pageHasTheOptionsOfTheHelp()
{
    QFETCH(QString, page);
    const QString program = QTest::currentDataTag();
    QString help = printed(program, {"--help"});
    if (program == "recordingctl") {
        for (const QString &command : commandNames())
            help += printed(program, {command, "--help"});
    }
    QVERIFY(help.contains("--help"));
    QCOMPARE(longOptions(plainPage(page)), longOptions(help));
}

void ManualTest::pageHasEveryCommand()
{
    const QString text = plainPage("recordingctl.1");
    for (const QString &name : commandNames()) {
        const CommandForm &form = *commandForm(name);
        QVERIFY2(text.contains("\n.TP\n" + name), qPrintable(name));
        QVERIFY2(text.contains(QLatin1String(form.what)), form.what);
    }
}

void ManualTest::textIsShownAsItStands()
{
    const ProgramHelp help{"program", {{{"--dir"}, "DIR", ".hidden C:\\new, a-b"}}, {}};
    QCOMPARE(manualPage("@VERSION@\n@OPTIONS@\n@COMMANDS@\n", help, "1.2.3"),
             QString("1.2.3\n.TP\n\\fB\\-\\-dir\\fR \\fIDIR\\fR\n\\&.hidden C:\\enew, a\\-b\n"));
}

void ManualTest::aHelpOfAnotherFormIsNoHelp()
{
    QVERIFY(helpFromText("program", "program does a thing\n").options.isEmpty());
}

void ManualTest::bashOffers_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QStringList>("offered");
    QTest::newRow("commands") << "recordingctl"
                              << "group-" << commandNames().filter(QRegularExpression("^group-"));
    QTest::newRow("all commands") << "recordingctl"
                                  << "" << commandNames() + QStringList{"--help", "--version", "-h", "-v"};
    QTest::newRow("options") << "recordingctl"
                             << "usage --" << optionsOf("usage") + QStringList{"--help"};
    QTest::newRow("options of an edit") << "recordingctl"
                                        << "forecast group-add Yard --"
                                        << optionsOf("group-add") + QStringList{"--help"};
    QTest::newRow("edits of a forecast") << "recordingctl"
                                         << "forecast group-p"
                                         << QStringList{"group-path-add", "group-path-remove", "group-path-set"};
    QTest::newRow("behind an option before the command") << "recordingctl"
                                                         << "--data /srv vol" << QStringList{"volumes"};
    QTest::newRow("files") << "recordingctl"
                           << "usage --data /et" << QStringList{"/etc"};
    QTest::newRow("files of a command") << "recordingctl"
                                        << "folders /et" << QStringList{"/etc"};
    QTest::newRow("what nobody knows") << "recordingctl"
                                       << "usage --timeout 1" << QStringList{};
    QTest::newRow("console") << "recording-console"
                             << "--scr" << QStringList{"--screenshot", "--screenshots"};
    QTest::newRow("station") << "recording-stationd"
                             << "--c" << QStringList{"--check", "--config"};
}

void ManualTest::bashOffers()
{
    QFETCH(QString, program);
    QFETCH(QString, typed);
    QFETCH(QStringList, offered);
    const QString script = R"(source "$1"; shift
COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); COMPREPLY=()
"_${1//-/_}" "$1" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD-1]}"
((${#COMPREPLY[@]} == 0)) || printf '%s\n' "${COMPREPLY[@]}")";
    QCOMPARE(::offered("bash",
                       QStringList{"-c", script, "bash", folder + '/' + program + ".bash", program} + typed.split(' ')),
             sorted(offered));
}

void ManualTest::zshOffersEverything()
{
    if (QStandardPaths::findExecutable("zsh").isEmpty())
        QSKIP("zsh is not installed");
    // What the functions of its completion system are called with.
    const QString script =
        R"(_arguments() { print -rl -- "$@"; [[ -z $next ]] || { state=$next words=($command) next=; } }
_describe() { print -rl -- ${(P)2}; }
_files() { }
command=$2 next=$3
source $1)";
    const auto called = [&](const QString &program, const QString &command, const QString &state) {
        return offered("zsh", {"-f", "-c", script, "zsh", folder + "/_" + program, command, state}).join('\n');
    };
    const QString commands = called("recordingctl", "", "command");
    for (const QString &name : commandNames())
        QVERIFY2(commands.contains(QRegularExpression("^" + name + ":", QRegularExpression::MultilineOption)),
                 qPrintable(name + " in " + commands));
    for (const QString &name : commandNames()) {
        const QString options = called("recordingctl", name, "argument");
        for (const QString &option : optionsOf(name))
            QVERIFY2(options.contains('*' + option + '['), qPrintable(name + ' ' + option + " in " + options));
    }
    QVERIFY(called("recording-console", "", "").contains("*--screenshot[Write a picture (PNG) of the page"));
    QVERIFY(called("recording-stationd", "", "").contains("*--check["));
}

void ManualTest::fishOffers_data()
{
    bashOffers_data();
}

void ManualTest::fishOffers()
{
    QFETCH(QString, program);
    QFETCH(QString, typed);
    QFETCH(QStringList, offered);
    if (QStandardPaths::findExecutable("fish").isEmpty())
        QSKIP("fish is not installed");
    if (typed.isEmpty() || offered.contains("/etc"))
        QSKIP("fish adds files and words of its own");
    const QTemporaryDir home;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", home.path());
    environment.insert("XDG_CONFIG_HOME", home.path());
    environment.insert("XDG_DATA_HOME", home.path());
    process.setProcessEnvironment(environment);
    process.start("fish",
                  {"--private", "-c", "source $argv[1]; complete -C \"$argv[2]\"", folder + '/' + program + ".fish",
                   program + ' ' + typed});
    const Run run = finished(process);
    QCOMPARE(run.errors, QString());
    QStringList names;
    for (const QString &line : run.outputLines())
        names.append(line.section('\t', 0, 0)); // behind it the description
    for (const QString &name : offered)
        QVERIFY2(names.contains(name), qPrintable(name + " in " + names.join(' ')));
}

QTEST_GUILESS_MAIN(ManualTest)
#include "tst_manual.moc"
