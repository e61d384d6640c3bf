#include "CommandForms.h"
#include "CommandLine.h"
#include "Commands.h"

#include <QRegularExpression>
#include <QTest>

using namespace std::chrono_literals;

class TestCommandLine : public QObject
{
    Q_OBJECT
private slots:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void everyCommandOfTheTableIsCarriedOut();
    void everyOptionOfTheTableExists();
    void commandWithArgumentsAndOptions();
    void optionsOfACommand();
    void dataFolderGoesWithEveryCommand();
    void helpOfACommand();
    void argumentsThatBeginWithADash();
    void helpAndVersionNeedNoCommand_data();
    void helpAndVersionNeedNoCommand();
    void refusesWithOneLine_data();
    void refusesWithOneLine();

private:
    static CommandLine parse(const QStringList &arguments)
    {
        return CommandLine::parse(QStringList{"recordingctl"} + arguments);
    }
};

void TestCommandLine::everyCommandOfTheTableIsCarriedOut()
{
    QCOMPARE(runnableCommands(), commandNames());
}

void TestCommandLine::everyOptionOfTheTableExists()
{
    QStringList known;
    for (const OptionForm &option : optionForms())
        known.append(QLatin1String(option.name));
    for (const QString &name : commandNames()) {
        const CommandForm *form = commandForm(name);
        QVERIFY(form);
        const QStringList used = (QString(form->needs) + ' ' + form->takes).split(' ', Qt::SkipEmptyParts);
        for (const QString &option : used)
            QVERIFY2(known.contains(option), qPrintable(name + ' ' + option));
    }
}

void TestCommandLine::optionsOfACommand()
{
    const CommandLine line = parse({"group-add", "Yard", "--path", "/a", "--path=/b", "--reserve", "4096", "--member",
                                    "Gate:1", "--seamless", "--reserved-time", "0"});
    QCOMPARE(line.error, QString());
    QCOMPARE(line.command, "group-add");
    QCOMPARE(line.arguments, QStringList{"Yard"});
    QCOMPARE(line.values("path"), (QStringList{"/a", "/b"}));
    QCOMPARE(line.value("reserve"), "4096");
    QCOMPARE(line.value("kind", "Local"), "Local");
    QVERIFY(line.has("seamless"));
    QVERIFY(!line.has("time-shift"));
    QCOMPARE(line.values("time-shift"), QStringList{});
}

void TestCommandLine::dataFolderGoesWithEveryCommand()
{
    for (const QString &name : commandNames()) {
        const CommandForm *form = commandForm(name);
        QStringList arguments{name, "--data", "/srv/station"};
        if (name == "forecast")
            arguments.append("group-remove");
        for (qsizetype count = 0; count < form->fewest; ++count)
            arguments.append("x");
        for (const QString &option : neededOptions(*form))
            arguments.append({"--" + option, "x"});
        const CommandLine line = parse(arguments);
        QCOMPARE(line.error, QString());
        QCOMPARE(line.url, "local:/srv/station");
    }
    QCOMPARE(parse({"volumes"}).url, "local:");
}

void TestCommandLine::helpOfACommand()
{
    const QString text = parse({"camera-add", "--help"}).text;
    QVERIFY2(text.startsWith("Usage: recordingctl camera-add NAME [--streams N]\n"), qPrintable(text));
    QVERIFY(text.contains("  --streams N "));
    QVERIFY(!text.contains("--count"));
}

void TestCommandLine::commandWithArgumentsAndOptions()
{
    const CommandLine line = parse({"call", "getServerDir", "/srv", "--json", "--timeout", "0.25"});
    QCOMPARE(line.error, QString());
    QCOMPARE(line.command, "call");
    QCOMPARE(line.arguments, (QStringList{"getServerDir", "/srv"}));
    QVERIFY(line.json);
    QCOMPARE(line.timeout, 250ms);
    QVERIFY(!line.count);

    const CommandLine watching = parse({"watch", "--count", "3"});
    QCOMPARE(watching.error, QString());
    QCOMPARE(watching.count, 3);
    QVERIFY(!watching.timeout);
    QVERIFY(!watching.json);
}

void TestCommandLine::argumentsThatBeginWithADash()
{
    const CommandLine line = parse({"call", "--", "addRecordingGroup", "-a", "-", "--json"});
    QCOMPARE(line.error, QString());
    QCOMPARE(line.arguments, (QStringList{"addRecordingGroup", "-a", "-", "--json"}));
    QVERIFY(!line.json);
    QCOMPARE(parse({"call", "x", "-"}).arguments, (QStringList{"x", "-"})); // a single one needs no --
}

void TestCommandLine::helpAndVersionNeedNoCommand_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("start");
    QTest::newRow("--help") << "--help"
                            << "Usage: recordingctl";
    QTest::newRow("-h") << "-h"
                        << "Usage: recordingctl";
    QTest::newRow("--version") << "--version"
                               << "recordingctl ";
}

void TestCommandLine::helpAndVersionNeedNoCommand()
{
    QFETCH(const QString, option);
    QFETCH(const QString, start);
    const CommandLine line = parse({option});
    QCOMPARE(line.error, QString());
    QVERIFY2(line.text.startsWith(start), qPrintable(line.text));
}

void TestCommandLine::refusesWithOneLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    QTest::newRow("nothing") << QStringList{} << "a command was expected; \"recordingctl --help\" lists them";
    QTest::newRow("nearly a command") << QStringList{"volume"}
                                      << "there is no command \"volume\"; did you mean \"volumes\"?";
    QTest::newRow("no command") << QStringList{"reformat"}
                                << "there is no command \"reformat\"; \"recordingctl --help\" lists them";
    QTest::newRow("help of no command") << QStringList{"reformat", "--help"}
                                        << "there is no command \"reformat\"; \"recordingctl --help\" lists them";
    QTest::newRow("an option that is needed")
        << QStringList{"group-add", "Yard"}
        << "--path is missing; usage: recordingctl group-add NAME --path PATH... [--kind KIND] [--reserve MB] "
           "[--recovery] [--reserved-time MINUTES] [--member CAMERA[:STREAM]...] [--time-shift] [--seamless]";
    QTest::newRow("too few arguments") << QStringList{"group-path-remove", "Yard"}
                                       << "usage: recordingctl group-path-remove GROUP PATH...";
    QTest::newRow("an option twice") << QStringList{"camera-add", "Gate", "--streams", "1", "--streams", "2"}
                                     << "--streams was given more than once";
    QTest::newRow("kind") << QStringList{"group-path-add", "Yard", "/a", "--kind", "Disk"}
                          << "--kind must be Local, NetHost or NetDomain, not \"Disk\"";
    for (const char *value : {"1000", "-1024", "much", ""})
        QTest::addRow("reserve %s", value)
            << QStringList{"group-path-add", "Yard", "/a", QStringLiteral("--reserve=%1").arg(value)}
            << QStringLiteral("--reserve must be a multiple of 1024 MB from 0, not \"%1\"").arg(value);
    QTest::newRow("reserved time") << QStringList{"group-update", "Yard", "--reserved-time=-1"}
                                   << "--reserved-time must be a whole number from 0, not \"-1\"";
    QTest::newRow("streams") << QStringList{"camera-add", "Gate", "--streams", "17"}
                             << "--streams must be a whole number from 1 to 16, not \"17\"";
    QTest::newRow("no data folder") << QStringList{"volumes", "--data="} << "--data must be some text, not \"\"";
    QTest::newRow("call without a name") << QStringList{"call"} << "usage: recordingctl call NAME [ARGUMENT...]";
    QTest::newRow("too many paths") << QStringList{"mkdir", "/a", "/b"} << "usage: recordingctl mkdir PATH";
    QTest::newRow("unknown option") << QStringList{"volumes", "--every"}
                                    << "Unknown option 'every'; put -- before arguments that begin with a dash";
    QTest::newRow("a negative number")
        << QStringList{"call", "addRecordingGroup", "a", "/srv", "Local", "-2048"}
        << "\"-2048\" looks like an option; put -- before arguments that begin with a dash";
    QTest::newRow("option without its value")
        << QStringList{"watch", "--count"}
        << "Missing value after '--count'; put -- before arguments that begin with a dash";
    QTest::newRow("option of another command")
        << QStringList{"list", "--timeout", "1"} << "list takes no option --timeout";
    for (const char *value : {"soon", "0", "-1", "inf", "nan", "86401", ""})
        QTest::addRow("timeout %s", value)
            << QStringList{"volumes", QStringLiteral("--timeout=%1").arg(value)}
            << QStringLiteral("--timeout must be a number of seconds from 0.001 to 86400, not \"%1\"").arg(value);
    QTest::newRow("count") << QStringList{"watch", "--count", "0"}
                           << "--count must be a whole number from 1, not \"0\"";
}

void TestCommandLine::refusesWithOneLine()
{
    QFETCH(const QStringList, arguments);
    QTEST(parse(arguments).error, "error");
}

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_command_line.moc"
