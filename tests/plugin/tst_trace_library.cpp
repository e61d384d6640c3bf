#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString noFolder = QStringLiteral("/nonexistent");
const QString complete = QStringLiteral(FAKE_TRACE_COMPLETE);
const QString withoutExport = QStringLiteral(FAKE_TRACE_WITHOUT_EXPORT);

// How a line of the trace names its place: 0 and 55 are numbers that filters know; any other must be the line of the
// source that writes it.
QString placeOf(const QString &path, int line)
{
    const QString name = path.section('/', -1);
    if (line == 0 || (line == 55 && name == "PluginRecordingManagement_Req.cpp"))
        return QStringLiteral("%1:%2").arg(name).arg(line);
    QFile source(QDir(QStringLiteral(BUILD_FOLDER)).filePath(path)); // compilers' caches make it relative
    if (!source.open(QIODevice::ReadOnly))
        return QStringLiteral("no file %1").arg(path);
    const QString code = QString::fromUtf8(source.readAll()).split('\n').value(line - 1);
    if (code.contains("TraceScope scope("))
        return name + ":scope";
    return code.contains("TRACE_ERROR(") ? name + ":error" : QStringLiteral("%1:%2").arg(name).arg(line);
}

} // namespace

/// What the built plug-in asks of the client's trace library, and that it works the same whatever the library lacks.
/// The library is loaded once in a process, so each case is a process of its own.
class TraceLibraryTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void libraryIsAskedBeforeAnyObjectExists();
    void linesOfASession();
    void onlyTheSixFunctionsAreTraced();
    void withoutRegistrationTheModuleIsZero();
    void suppressedLinesAreNotFormatted();
    void everyLackIsOnlySilence_data();
    void everyLackIsOnlySilence();
    void memoryRunningOutIsALineOfItsOwn();
    void unloadingLetsTheLibraryGo();

private:
    struct Run
    {
        QStringList seen; // what the client saw of the plug-in
        QStringList trace; // what the trace library saw, by stage
    };
    Run run(const QString &mode, const QString &folder, const QString &lacks = {}, bool suppress = false);

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TraceLibraryTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

TraceLibraryTest::Run TraceLibraryTest::run(const QString &mode, const QString &folder, const QString &lacks,
                                            bool suppress)
{
    const QString path = m_folder->filePath("trace");
    QFile::remove(path);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LD_LIBRARY_PATH", folder);
    environment.insert("FAKE_TRACE_FILE", path);
    environment.insert("FAKE_TRACE_LACKS", lacks);
    environment.insert("FAKE_TRACE_FILTER", suppress ? "1" : "0");
    QProcess probe;
    probe.setProcessEnvironment(environment);
    probe.start(QStringLiteral(TRACE_PROBE), {mode});
    const bool finished = probe.waitForFinished();
    const QString errors = QString::fromUtf8(probe.readAllStandardError());
    if (!finished || probe.exitStatus() != QProcess::NormalExit || probe.exitCode() != 0 || !errors.isEmpty())
        return {{QStringLiteral("failed (%1): %2").arg(probe.exitCode()).arg(errors)}, {}};

    static const QRegularExpression asked("^ask handle=own level=([0-9a-f]+) zero=0 line=(\\d+) file=(.*)$");
    Run result;
    result.seen = QString::fromUtf8(probe.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return result;
    QString stage;
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        if (line.startsWith("stage ")) {
            stage = line.mid(6);
            continue;
        }
        const auto match = asked.match(line);
        const QString text = match.hasMatch()
            ? QStringLiteral("ask %1 %2").arg(match.captured(1), placeOf(match.captured(3), match.captured(2).toInt()))
            : line;
        result.trace.append(stage + ": " + text);
    }
    return result;
}

void TraceLibraryTest::libraryIsAskedBeforeAnyObjectExists()
{
    const QStringList expected{
        "load: loaded",
        "load: object zero=0 result=null",
        "load: register handle=own length=19 name=RecordingManagement number=0",
    };
    QCOMPARE(run("session", complete).trace.mid(0, 3), expected);
}

void TraceLibraryTest::linesOfASession()
{
    const auto scope = [](const QString &stage, const QString &function, const QStringList &inside = {}) {
        const QString name = "PluginRecordingManagement::" + function;
        QStringList lines{
            stage + ": ask 12305 PluginRecordingManagement.cpp:scope",
            stage + ": write handle=own format=[%s, Enter] text=[" + name + ", Enter]",
        };
        lines += inside;
        lines << stage + ": ask 12305 PluginRecordingManagement.cpp:0"
              << stage + ": write handle=own format=[%s, Leave] text=[" + name + ", Leave]";
        return lines;
    };
    const auto error = [](const QString &stage, const QString &place, const QString &format, const QString &text) {
        return QStringList{
            stage + ": ask 12302 " + place,
            stage + ": write handle=own format=[" + format + "] text=[PluginRecordingManagement::" + text + "]",
        };
    };
    const auto sendFailed = [&error](const QString &stage) {
        return error(stage, "PluginRecordingManagement_Req.cpp:55", "%s, Send command failed.",
                     "sendRequestToServer, Send command failed.");
    };

    QStringList expected;
    expected << scope("initialise", "Init") << sendFailed("refused")
             << error("invalid", "PluginRecordingManagement_Req.cpp:error", "%s, host is empty",
                      "addNASServer, host is empty")
             << sendFailed("connected") << sendFailed("connected") << sendFailed("connected")
             << scope("reply", "CommandProcessor")
             << scope("refusal", "CommandProcessor",
                      error("refusal", "PluginRecordingManagement_Res.cpp:error",
                            "%s, Get recording group failed, returnCode = %s",
                            "handleGetRecordingGroup, Get recording group failed, returnCode = 12"))
             << scope("replyEx", "CommandProcessorEx") << scope("event", "EventProcessor")
             << scope("eventEx", "EventProcessorEx") << scope("destroy", "~PluginRecordingManagement")
             << "destroy: unloaded";
    QCOMPARE(run("session", complete).trace.mid(3), expected);
}

void TraceLibraryTest::onlyTheSixFunctionsAreTraced()
{
    static const QRegularExpression entered("text=\\[PluginRecordingManagement::(.*), Enter\\]");
    QStringList functions;
    for (const QString &line : run("session", complete).trace) {
        const auto match = entered.match(line);
        if (match.hasMatch())
            functions.append(match.captured(1));
    }
    functions.removeDuplicates();
    QCOMPARE(functions,
             QStringList({"Init", "CommandProcessor", "CommandProcessorEx", "EventProcessor", "EventProcessorEx",
                          "~PluginRecordingManagement"}));
}

void TraceLibraryTest::withoutRegistrationTheModuleIsZero()
{
    const QStringList trace = run("session", complete, "RegisterModule").trace;
    QVERIFY(trace.filter("register").isEmpty());
    QCOMPARE(trace.filter("initialise: ask").value(0),
             QStringLiteral("initialise: ask 5 PluginRecordingManagement.cpp:scope"));
    QCOMPARE(trace.filter("refused: ask"), QStringList{"refused: ask 2 PluginRecordingManagement_Req.cpp:55"});
    QVERIFY(!trace.filter("refused: write").isEmpty());
}

void TraceLibraryTest::suppressedLinesAreNotFormatted()
{
    const QStringList written = run("session", complete).trace;
    const QStringList muted = run("session", complete, {}, true).trace;
    QVERIFY(!written.filter(": write").isEmpty());
    QVERIFY(muted.filter(": write").isEmpty());
    QCOMPARE(muted.filter(": ask"), written.filter(": ask")); // errors, too, are asked for and suppressed
}

void TraceLibraryTest::everyLackIsOnlySilence_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("lacks");
    QTest::addColumn<QStringList>("loading"); // what the library saw at first
    QTest::addColumn<bool>("asked");
    const QString loaded = "load: loaded";
    const QString object = "load: object zero=0 result=null";
    const QString registered = "load: register handle=own length=19 name=RecordingManagement number=0";
    QTest::newRow("no library") << noFolder << QString() << QStringList{} << false;
    QTest::newRow("no export") << withoutExport << QString() << QStringList{loaded} << false;
    QTest::newRow("no object") << complete << "object" << QStringList{loaded, object} << false;
    QTest::newRow("null handle") << complete << "handle"
                                 << QStringList{loaded, object, QString(registered).replace("own", "null")} << false;
    QTest::newRow("null RegisterModule") << complete << "RegisterModule" << QStringList{loaded, object} << true;
    QTest::newRow("null ShouldLog") << complete << "ShouldLog" << QStringList{loaded, object, registered} << false;
    QTest::newRow("null WriteFormatted") << complete << "WriteFormatted" << QStringList{loaded, object, registered}
                                         << true;
}

void TraceLibraryTest::everyLackIsOnlySilence()
{
    QFETCH(QString, folder);
    QFETCH(QString, lacks);
    QFETCH(QStringList, loading);
    QFETCH(bool, asked);
    const QStringList expected{
        "initialise | true |  | ",
        "queries | true |  | ",
        "accepted | true | getVolume | ",
        "refused | false | getVolume | ",
        "invalid | false |  | ",
        "connected |  | GetNasServers getRecordingGroup reloadStorageUsageInfo | recordingGroupRetrievedChanged()",
        "reply |  |  | getVolumeResponded(true)",
        "refusal |  |  | ",
        "replyEx |  |  | ",
        "event |  |  | volumeInfoChanged()",
        "eventEx |  |  | ",
    };
    const Run result = run("session", folder, lacks);
    QCOMPARE(result.seen, expected);
    QCOMPARE(result.trace.filter("load: "), loading);
    QCOMPARE(!result.trace.filter(": ask").isEmpty(), asked);
    QCOMPARE(result.trace.filter(": write").isEmpty(), lacks != "RegisterModule");
    QCOMPARE(run("session", complete).seen, expected);
}

void TraceLibraryTest::memoryRunningOutIsALineOfItsOwn()
{
    const struct
    {
        const char *text;
        int line;
    } failures[] = {
        {"Create volume model failed", 23},     {"Create recording group model failed", 31},
        {"Create NAS server model failed", 39}, {"Create NAS server dir model failed", 47},
        {"Create server dir model failed", 55},
    };
    QStringList trace;
    QStringList seen;
    for (const auto &failure : failures) {
        const QString stage = QStringLiteral("model %1: ").arg(seen.size() + 1);
        seen.append(QStringLiteral("initialised 0, volume model %1").arg(seen.isEmpty() ? 0 : 1));
        trace << QStringLiteral("%1ask 12302 PluginRecordingManagement.cpp:%2").arg(stage).arg(failure.line)
              << QStringLiteral("%1write handle=own format=[%2] text=[%2]").arg(stage, failure.text);
    }
    const Run result = run("memory", complete);
    QCOMPARE(result.seen, seen);
    static const QRegularExpression errors("^model .*(12302|failed)");
    QCOMPARE(result.trace.filter(errors), trace);
}

void TraceLibraryTest::unloadingLetsTheLibraryGo()
{
    const Run result = run("unload", complete);
    QCOMPARE(result.seen, QStringList({"loaded 1, trace library mapped 1", "unloaded 1, trace library mapped 0"}));
    QCOMPARE(result.trace.value(result.trace.size() - 1), QStringLiteral("unload: unloaded"));
    QCOMPARE(run("unload", noFolder).seen,
             QStringList({"loaded 1, trace library mapped 0", "unloaded 1, trace library mapped 0"}));
}

QTEST_GUILESS_MAIN(TraceLibraryTest)
#include "tst_trace_library.moc"
