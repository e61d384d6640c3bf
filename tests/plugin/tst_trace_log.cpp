#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace {

QStringList linesOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
}

// The lines without their times.
QStringList withoutTimes(const QStringList &lines)
{
    static const QRegularExpression time("^\\d{4}-\\d{2}-\\d{2}T\\d{2}:\\d{2}:\\d{2}\\.\\d{3}[+-]\\d{2}:\\d{2} ");
    QStringList rest;
    for (QString line : lines)
        rest.append(line.contains(time) ? line.remove(time) : "no time: " + line);
    return rest;
}

} // namespace

/// The stand-in for the trace library: what it writes, where to, and what it makes of its variables. They are read once
/// in a process, so each case is a process of its own.
class TraceLogTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void exportsTwoEntries();
    void modulesAreNumberedFromOne();
    void levelDecidesWhatIsWritten_data();
    void levelDecidesWhatIsWritten();
    void receiverGetsErrorsWhateverTheLevelIs_data();
    void receiverGetsErrorsWhateverTheLevelIs();
    void lineHasTimeLevelModuleAndText();
    void linesGoToStandardErrorWhenNoFileIsNamed();
    void textOfAnyLengthIsOneLine();
    void filesRotateAndTheOldestGoes();
    void aLogGoesOnWhereTheLastOneEnded();
    void badValueIsToldOnceAndTheDefaultUsed_data();
    void badValueIsToldOnceAndTheDefaultUsed();
    void unwritableFileMeansStandardError();

private:
    struct Run
    {
        int exitCode;
        QStringList output;
        QStringList errors;
    };
    Run run(const QStringList &arguments, const QMap<QString, QString> &variables);
    QString path(const QString &name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TraceLogTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

TraceLogTest::Run TraceLogTest::run(const QStringList &arguments, const QMap<QString, QString> &variables)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"LEVEL", "FILE", "MAX_BYTES", "FILES"})
        environment.remove(QStringLiteral("RECORDING_TRACE_%1").arg(name));
    for (auto variable = variables.begin(); variable != variables.end(); ++variable)
        environment.insert("RECORDING_TRACE_" + variable.key(), variable.value());
    QProcess client;
    client.setProcessEnvironment(environment);
    client.start(QStringLiteral(TRACE_LOG_CLIENT), QStringList{QStringLiteral(TRACE_LIBRARY)} + arguments);
    if (!client.waitForFinished() || client.exitStatus() != QProcess::NormalExit)
        return {-1, {}, {client.errorString()}};
    return {client.exitCode(), QString::fromUtf8(client.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts),
            QString::fromUtf8(client.readAllStandardError()).split('\n', Qt::SkipEmptyParts)};
}

void TraceLogTest::exportsTwoEntries()
{
    QProcess nm;
    nm.start("nm", {"-D", "--defined-only", "--format=just-symbols", QStringLiteral(TRACE_LIBRARY)});
    QVERIFY(nm.waitForFinished());
    QStringList symbols = QString::fromUtf8(nm.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    symbols = symbols.filter(QRegularExpression("^(?!__(asan|odr|start|stop))"));
    symbols.sort();
    QCOMPARE(symbols, QStringList({"LogTrace_GetGlobalObject", "RecordingTrace_SetErrorReceiver"}));
    QCOMPARE(QFileInfo(QStringLiteral(TRACE_LIBRARY)).fileName(), QStringLiteral("libZarnLogUtl.so"));
}

void TraceLogTest::modulesAreNumberedFromOne()
{
    const Run result = run({"Recording", "Playback", "Recording"}, {});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.output, QStringList({"Recording is 1", "Playback is 2", "Recording is 1"}));
    QCOMPARE(result.errors, QStringList{});
}

void TraceLogTest::levelDecidesWhatIsWritten_data()
{
    QTest::addColumn<QStringList>("output");
    QTest::newRow("") << QStringList{"2 written", "5 suppressed"};
    QTest::newRow("error") << QStringList{"2 written", "5 suppressed"};
    QTest::newRow("trace") << QStringList{"2 written", "5 written"};
    QTest::newRow("off") << QStringList{"2 suppressed", "5 suppressed"};
}

void TraceLogTest::levelDecidesWhatIsWritten()
{
    const Run result = run({"2:broken", "5:Enter"}, {{"LEVEL", QTest::currentDataTag()}, {"FILE", path("log")}});
    QCOMPARE(result.exitCode, 0);
    QTEST(result.output, "output");
    QCOMPARE(linesOf(path("log")).size(), result.output.filter("written").size());
}

void TraceLogTest::receiverGetsErrorsWhateverTheLevelIs_data()
{
    QTest::addColumn<QStringList>("written"); // to the file
    QTest::newRow("off") << QStringList{};
    QTest::newRow("error") << QStringList{"before", "first second", "after"};
    QTest::newRow("trace") << QStringList{"before", "first second", "Enter", "after"};
}

void TraceLogTest::receiverGetsErrorsWhateverTheLevelIs()
{
    QFETCH(const QStringList, written);
    const Run result = run({"Recording", "2:before", "receive:", "2:first\nsecond", "5:Enter", "ignore:", "2:after"},
                           {{"LEVEL", QTest::currentDataTag()}, {"FILE", path("log")}});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.output.filter("received"), QStringList{"received: Recording, client, first second"});
    QStringList texts;
    for (const QString &line : linesOf(path("log")))
        texts.append(line.section("client, ", 1));
    QCOMPARE(texts, written);
    QCOMPARE(result.errors, QStringList{});
}

void TraceLogTest::lineHasTimeLevelModuleAndText()
{
    const Run result = run({"2:before", "Recording", "2:broken", "5:Enter", "Playback", "2:late"},
                           {{"LEVEL", "trace"}, {"FILE", path("new/folder/log")}});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(withoutTimes(linesOf(path("new/folder/log"))),
             QStringList({"error (no module): client, before", "error Recording: client, broken",
                          "trace Recording: client, Enter", "error Playback: client, late"}));
    QCOMPARE(result.errors, QStringList{});
}

void TraceLogTest::linesGoToStandardErrorWhenNoFileIsNamed()
{
    const Run result = run({"Recording", "2:broken"}, {});
    QCOMPARE(withoutTimes(result.errors), QStringList{"error Recording: client, broken"});
}

void TraceLogTest::textOfAnyLengthIsOneLine()
{
    const QString text = QString(70000, 'x') + "\nsecond\tline";
    const Run result = run({"Recording", "2:" + text, "2:{} %s"}, {{"FILE", path("log")}});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(withoutTimes(linesOf(path("log"))),
             QStringList({"error Recording: client, " + QString(70000, 'x') + " second line",
                          "error Recording: client, {} %s"}));
}

void TraceLogTest::filesRotateAndTheOldestGoes()
{
    QStringList arguments{"Recording"};
    for (int i = 0; i < 100; ++i)
        arguments.append(QStringLiteral("2:line %1").arg(i));
    QCOMPARE(run(arguments, {{"FILE", path("trace.log")}, {"MAX_BYTES", "1024"}, {"FILES", "3"}}).exitCode, 0);

    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList({"trace.1.log", "trace.2.log", "trace.log"}));
    for (const char *name : {"trace.1.log", "trace.2.log", "trace.log"})
        QVERIFY(QFileInfo(path(name)).size() <= 1024);
    QStringList kept = linesOf(path("trace.2.log")) + linesOf(path("trace.1.log")) + linesOf(path("trace.log"));
    kept = withoutTimes(kept);
    QVERIFY(kept.size() > 20);
    for (int i = 0; i < kept.size(); ++i) // the newest ones, without a gap
        QCOMPARE(kept[i], QStringLiteral("error Recording: client, line %1").arg(100 - kept.size() + i));
}

void TraceLogTest::aLogGoesOnWhereTheLastOneEnded()
{
    run({"Recording", "2:first"}, {{"FILE", path("log")}});
    run({"Recording", "2:second"}, {{"FILE", path("log")}});
    QCOMPARE(withoutTimes(linesOf(path("log"))),
             QStringList({"error Recording: client, first", "error Recording: client, second"}));
}

void TraceLogTest::badValueIsToldOnceAndTheDefaultUsed_data()
{
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("complaint");
    const QString level = "expected error, trace or off; using error";
    const QString bytes = "expected a number from 1024 to 1099511627776; using 10485760";
    const QString files = "expected a number from 1 to 1000; using 5";
    QTest::newRow("a level of another name") << "LEVEL"
                                             << "loud" << level;
    QTest::newRow("a level in capitals") << "LEVEL"
                                         << "ERROR" << level;
    QTest::newRow("no number of bytes") << "MAX_BYTES"
                                        << "10M" << bytes;
    QTest::newRow("too few bytes") << "MAX_BYTES"
                                   << "1023" << bytes;
    QTest::newRow("too many bytes") << "MAX_BYTES"
                                    << "1099511627777" << bytes;
    QTest::newRow("more bytes than numbers go") << "MAX_BYTES"
                                                << "99999999999999999999999" << bytes;
    QTest::newRow("no files") << "FILES"
                              << "0" << files;
    QTest::newRow("negative files") << "FILES"
                                    << "-1" << files;
}

void TraceLogTest::badValueIsToldOnceAndTheDefaultUsed()
{
    QFETCH(QString, variable);
    QFETCH(QString, value);
    QFETCH(QString, complaint);
    const Run result = run({"2:broken", "5:Enter"}, {{"FILE", path("log")}, {variable, value}});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(
        result.errors,
        QStringList{QStringLiteral("libZarnLogUtl: RECORDING_TRACE_%1 is \"%2\", %3").arg(variable, value, complaint)});
    QCOMPARE(result.output, QStringList({"2 written", "5 suppressed"}));
    QCOMPARE(linesOf(path("log")).size(), 1);
}

void TraceLogTest::unwritableFileMeansStandardError()
{
    const Run result = run({"Recording", "2:broken", "2:again"}, {{"FILE", m_folder->path()}}); // a folder
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.errors.size(), 3);
    QVERIFY2(result.errors[0].startsWith("libZarnLogUtl: cannot write to RECORDING_TRACE_FILE \"" + m_folder->path()),
             qPrintable(result.errors[0]));
    QVERIFY(result.errors[0].endsWith("using standard error"));
    QCOMPARE(withoutTimes(result.errors.mid(1)),
             QStringList({"error Recording: client, broken", "error Recording: client, again"}));
}

QTEST_GUILESS_MAIN(TraceLogTest)
#include "tst_trace_log.moc"
