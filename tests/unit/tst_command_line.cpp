#include "CommandLine.h"

#include <QRegularExpression>
#include <QTest>

using namespace std::chrono_literals;

class TestCommandLine : public QObject
{
    Q_OBJECT
private slots:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void commandWithArgumentsAndOptions();
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
    QTest::newRow("nothing")
        << QStringList{}
        << "no command; one of list, call, watch, volumes, folders, mkdir was expected (--help says more)";
    QTest::newRow("nearly a command") << QStringList{"volume"}
                                      << "there is no command \"volume\"; did you mean \"volumes\"?";
    QTest::newRow("no command") << QStringList{
        "format"} << "there is no command \"format\"; there are list, call, watch, volumes, folders, mkdir";
    QTest::newRow("call without a name") << QStringList{"call"} << "usage: recordingctl call NAME [ARGUMENT...]";
    QTest::newRow("too many paths") << QStringList{"mkdir", "/a", "/b"} << "usage: recordingctl mkdir PATH";
    QTest::newRow("unknown option") << QStringList{"volumes", "--all"}
                                    << "Unknown option 'all'; put -- before arguments that begin with a dash";
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
