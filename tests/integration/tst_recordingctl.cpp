#include "ToolRun.h"
#include "VolumeFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <filesystem>

namespace {

// In KB. The system itself is asked: where the root was changed, Qt knows of no mount that holds it.
qint64 rootSize()
{
    return static_cast<qint64>(std::filesystem::space("/").capacity) / 1024;
}

/// The one of @p rows that is about the volume "/"; none when there are several.
QJsonObject rootIn(const QJsonArray &rows)
{
    QJsonObject root;
    for (const QJsonValue &row : rows) {
        if (row["path"] != QJsonValue("/"))
            continue;
        if (!root.isEmpty())
            return {};
        root = row.toObject();
    }
    return root;
}

} // namespace

class TestRecordingctl : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void listShowsInvokablesAndSignals();
    void listAsJson();
    void callGetVolume();
    void callGetVolumeAsJson();
    void callGetServerDir();
    void queryIsAnsweredFromTheStation();
    void createDirectoryMakesIt();
    void aNameThatIsNoTextIsRefused();
    void aResultThatCannotBeWrittenIsAFailure();
    void createDirectoryRefusedByTheStation();
    void refusalWithoutASignal();
    void refusedByThePlugin();
    void volumesForAnOperator();
    void foldersOnePerLine();
    void foldersOfNothing();
    void mkdirMakesParents();
    void wrongUse_data();
    void wrongUse();
    void noAnswerInTime_data();
    void noAnswerInTime();
    void passwordFromStandardInput();
    void withoutAHomeThereIsNoDataFolder();
    void watchShowsEvents_data();
    void watchShowsEvents();
    void watchEndsByCount();
    void watchEndsByTime();
    void watchMissesItsCount();
    void watchEndsByInterruption_data();
    void watchEndsByInterruption();
    void helpAndVersion();

private:
    QString folder(const QString &name) const { return m_folder.filePath(name); }

    QTemporaryDir m_folder{onAVolume("folder-XXXXXX")};
};

void TestRecordingctl::initTestCase()
{
    QVERIFY(m_folder.isValid());
}

void TestRecordingctl::listShowsInvokablesAndSignals()
{
    const Run list = run({"list"});
    QCOMPARE(list.exitCode, 0);
    QCOMPARE(list.errors, QString());
    for (const char *line : {
             "  QObject*      getVolumeModel()",
             "  bool          getVolume([QString relayPath])",
             "  bool          addRecordingGroup(QString groupName, QString path, RecPathType recPathType, "
             "[qlonglong reserveSpace])",
             "  void          clearRecordingGroupDataList()",
             "  addNASServerResponded(NASServerErrorCode result, QString srvId)",
             "  NASDirFilter: NoDot = 1, NoDotDot = 2, NoDotAndDotDot = 3",
         })
        QVERIFY2(list.outputLines().contains(QLatin1String(line)), line);
    QVERIFY(!list.output.contains("deleteLater"));
}

void TestRecordingctl::listAsJson()
{
    const Run list = run({"list", "--json"});
    QCOMPARE(list.exitCode, 0);
    QList<qsizetype> all;
    for (const char *kind : {"invokables", "signals", "enumerations"})
        all.append(list.reply()["data"][kind].toArray().size());
    QList<qsizetype> shown; // the same in the table
    const QStringList lines = run({"list"}).outputLines();
    for (const QString &line : lines) {
        if (!line.startsWith(' ') && !line.isEmpty())
            shown.append(0);
        else if (!line.isEmpty())
            ++shown.last();
    }
    QCOMPARE(all, shown);
    QCOMPARE(all.size(), 3);
    const QJsonObject first = list.reply()["data"]["invokables"].toArray().at(7).toObject();
    QCOMPARE(first,
             (QJsonObject{{"name", "getVolume"},
                          {"returnType", "bool"},
                          {"parameters",
                           QJsonArray{QJsonObject{{"name", "relayPath"}, {"type", "QString"}, {"optional", true}}}}}));
}

void TestRecordingctl::callGetVolume()
{
    const Run call = run({"call", "getVolume"});
    QCOMPARE(call.exitCode, 0);
    QCOMPARE(call.outputLines().value(0), "getVolumeResponded success: true");
    QCOMPARE(words(call.outputLines().value(1)),
             (QStringList{"idRole", "rootPathRole", "nameRole", "sizeRole", "availableSizeRole", "isSystemRole",
                          "isNASRole"}));
    QVERIFY(call.outputLines().size() > 2);
}

void TestRecordingctl::callGetVolumeAsJson()
{
    const Run call = run({"call", "getVolume", "--json"});
    QCOMPARE(call.exitCode, 0);
    const QJsonObject data = call.reply()["data"].toObject();
    QCOMPARE(call.reply()["returnCode"], QJsonValue("0"));
    QCOMPARE(data["name"], QJsonValue("getVolume"));
    QCOMPARE(data["result"], QJsonValue(true));
    QCOMPARE(
        data["answers"].toArray(),
        (QJsonArray{QJsonObject{{"signal", "getVolumeResponded"}, {"arguments", QJsonObject{{"success", true}}}}}));
    const QJsonObject root = rootIn(data["rows"].toArray());
    QCOMPARE(root["path"], QJsonValue("/"));
    QCOMPARE(root["sizeBytes"].toInteger(), rootSize() * 1024);
}

void TestRecordingctl::callGetServerDir()
{
    QVERIFY(QDir(m_folder.path()).mkpath("browse/cam2"));
    QVERIFY(QDir(m_folder.path()).mkpath("browse/cam10"));
    const Run call = run({"call", "getServerDir", folder("browse")});
    QCOMPARE(call.exitCode, 0);
    QCOMPARE(call.output,
             QStringLiteral("getServerDirResponded path: %1\n"
                            "idRole  nameRole\n"
                            "cam2    cam2\n"
                            "cam10   cam10\n")
                 .arg(folder("browse")));
}

void TestRecordingctl::queryIsAnsweredFromTheStation()
{
    const Run call = run({"call", "getVolumeInfo", "/", ""});
    QCOMPARE(call.exitCode, 0);
    const QJsonObject info = call.json();
    QCOMPARE(info.value("size").toInteger(), rootSize());
    QCOMPARE(info.value("isSystem"), QJsonValue(true));
}

void TestRecordingctl::createDirectoryMakesIt()
{
    const Run call = run({"call", "createDirectory", folder("made")});
    QCOMPARE(call.exitCode, 0);
    QCOMPARE(call.output, "createDirectoryResponded success: true\n");
    QVERIFY(QFileInfo(folder("made")).isDir());
}

void TestRecordingctl::aNameThatIsNoTextIsRefused()
{
    // Through a shell: QProcess hands on text only.
    const Run call =
        run({"-c", "exec '" RECORDINGCTL "' mkdir \"$1/$(printf '\\377')\"", "sh", m_folder.path()}, {}, "/bin/sh");
    QCOMPARE(call.exitCode, 2);
    QCOMPARE(call.errors, "recordingctl: argument 2 is not valid UTF-8\n");
    QVERIFY(!QDir(m_folder.path()).exists(QString(QChar::ReplacementCharacter)));
}

void TestRecordingctl::aResultThatCannotBeWrittenIsAFailure()
{
    const Run call = run({"-c", "exec '" RECORDINGCTL "' list > /dev/full"}, {}, "/bin/sh");
    QCOMPARE(call.exitCode, 2);
    QCOMPARE(call.errors, "recordingctl: standard output could not be written\n");
}

void TestRecordingctl::createDirectoryRefusedByTheStation()
{
    QVERIFY(QDir(m_folder.path()).mkpath("there"));
    const Run call = run({"call", "createDirectory", folder("there")});
    QCOMPARE(call.exitCode, 1);
    QCOMPARE(call.output, "createDirectoryResponded success: false\n");
    QCOMPARE(call.errorLines(), QStringList{"recordingctl: createDirectory: the station refused: DirectoryExists"});
}

void TestRecordingctl::refusalWithoutASignal()
{
    const Run call = run({"call", "getVolume", "relay-of-nobody", "--json"});
    QCOMPARE(call.exitCode, 1);
    QCOMPARE(call.json().value("returnCode"), QJsonValue("UnknownStation"));
    QVERIFY(!call.json().contains("data"));
    QCOMPARE(call.errorLines(), QStringList{"recordingctl: getVolume: the station refused: UnknownStation"});
}

void TestRecordingctl::refusedByThePlugin()
{
    const Run call = run({"call", "addRecordingGroup", "Yard", "/srv", "Local", "1000"});
    QCOMPARE(call.exitCode, 1);
    QCOMPARE(call.output, QString());
    QCOMPARE(call.errors,
             "recordingctl: addRecordingGroup: the plug-in refused and sent nothing: Reserve space must be multiple of "
             "1024\n");
}

void TestRecordingctl::volumesForAnOperator()
{
    const Run volumes = run({"volumes"});
    QCOMPARE(volumes.exitCode, 0);
    QCOMPARE(words(volumes.outputLines().value(0)),
             (QStringList{"Name", "Path", "Size", "Free", "Used", "System", "NAS"}));
    QList<QStringList> roots;
    for (const QString &line : volumes.outputLines().mid(1)) {
        if (words(line).value(1) == "/")
            roots.append(words(line));
    }
    QVERIFY2(roots.size() == 1, qPrintable(volumes.output));
    const QStringList root = roots.front();
    static const QRegularExpression size(QStringLiteral("^\\d+\\.\\d\\d [KMGT]B$"));
    QVERIFY2(size.match(root.value(2)).hasMatch(), qPrintable(root.value(2)));
    QCOMPARE(root.value(5), "yes");
    QCOMPARE(root.value(6), "no");
}

void TestRecordingctl::foldersOnePerLine()
{
    QVERIFY(QDir(m_folder.path()).mkpath("list/a b"));
    QVERIFY(QDir(m_folder.path()).mkpath("list/c"));
    const Run folders = run({"folders", folder("list")});
    QCOMPARE(folders.exitCode, 0);
    QCOMPARE(folders.output, "a b\nc\n");
    QVERIFY(run({"folders"}).outputLines().contains("/"));
}

void TestRecordingctl::foldersOfNothing()
{
    const Run folders = run({"folders", folder("nothing")});
    QCOMPARE(folders.exitCode, 1);
    QCOMPARE(folders.output, QString());
    QCOMPARE(folders.errorLines(), QStringList{"recordingctl: getServerDir: the station refused: DirectoryNotFound"});
}

void TestRecordingctl::mkdirMakesParents()
{
    const Run mkdir = run({"mkdir", folder("one/two/three")});
    QCOMPARE(mkdir.exitCode, 0);
    QCOMPARE(mkdir.output, QString());
    QVERIFY(QFileInfo(folder("one/two/three")).isDir());
}

void TestRecordingctl::wrongUse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    QTest::newRow("nearly a name") << QStringList{"call", "getVolumes"}
                                   << "there is no invokable \"getVolumes\"; did you mean \"getVolume\"? "
                                      "\"recordingctl list\" shows them all";
    QTest::newRow("no name") << QStringList{"call", "reboot"}
                             << "there is no invokable \"reboot\"; \"recordingctl list\" shows them all";
    QTest::newRow("a signal") << QStringList{"call", "volumeInfoChanged"}
                              << "volumeInfoChanged is a signal and cannot be called; \"recordingctl watch\" prints "
                                 "signals";
    QTest::newRow("no arguments") << QStringList{"call", "getServerDir"}
                                  << "getServerDir takes 1 or 2 arguments (basePath, [relayPath]), not 0";
    QTest::newRow("too many") << QStringList{"call", "createDirectory", "/a", "/b"}
                              << "createDirectory takes 1 argument (path), not 2";
    QTest::newRow("takes none") << QStringList{"call", "getRecordingGroup", "x"}
                                << "getRecordingGroup takes no arguments, not 1";
    QTest::newRow("a range") << QStringList{"call", "addNASServer"}
                             << "addNASServer takes 1 to 5 arguments (host, [logonDomain], [userName], [password], "
                                "[relayPath]), not 0";
    QTest::newRow("enumerator") << QStringList{"call", "addRecordingGroup", "Yard", "/srv", "Disk"}
                                << "recPathType must be Local, NetHost or NetDomain (or 0, 1 or 2), not \"Disk\"";
    QTest::newRow("password") << QStringList{"call", "addNASServer", "nas", "Host", "anna", "hunter2"}
                              << "password must not stand on the command line, where everyone on this machine can read "
                                 "it; give - to read it from standard input, or @FILE to read it from a file";
    QTest::newRow("command") << QStringList{"volume"} << "there is no command \"volume\"; did you mean \"volumes\"?";
    QTest::newRow("a name with a line end")
        << QStringList{"call", "a\nb"} << "there is no invokable \"a\\nb\"; \"recordingctl list\" shows them all";
}

void TestRecordingctl::wrongUse()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, error);
    const Run call = run(arguments);
    QCOMPARE(call.exitCode, 2);
    QCOMPARE(call.output, QString());
    QCOMPARE(call.errors, QStringLiteral("recordingctl: %1\n").arg(error));
}

void TestRecordingctl::noAnswerInTime_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("name");
    QTest::newRow("call") << QStringList{"call", "getVolume"} << "getVolume";
    QTest::newRow("call, JSON") << QStringList{"call", "getVolume", "--json"} << "getVolume";
    QTest::newRow("volumes") << QStringList{"volumes"} << "getVolume";
}

void TestRecordingctl::noAnswerInTime()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, name);
    const Run call = run(arguments + QStringList{"--timeout", "0.2"}, {}, HANGING_STATION);
    QCOMPARE(call.exitCode, 3);
    QVERIFY(!call.output.contains("/"));
    QCOMPARE(arguments.contains("--json"), call.reply()["returnCode"] == QJsonValue("NoAnswer"));
    QCOMPARE(call.errorLines(), QStringList{QStringLiteral("recordingctl: %1: no answer within 0.2 s").arg(name)});
}

void TestRecordingctl::passwordFromStandardInput()
{
    const QStringList call{"call", "addNASServer", "nas", "Host", "anna", "-"};
    const Run given = run(call, "s3 cret\n");
    QCOMPARE(given.exitCode, 1); // this station knows no NAS servers: it was asked
    QVERIFY2(given.errorLines().last().startsWith("recordingctl: addNASServer: the station refused: "),
             qPrintable(given.errors));
    QVERIFY(!given.errors.contains("s3 cret"));

    const Run missing = run(call);
    QCOMPARE(missing.exitCode, 2);
    QCOMPARE(missing.errors, "recordingctl: password was to be read from standard input, but no line came\n");
}

void TestRecordingctl::withoutAHomeThereIsNoDataFolder()
{
    const QTemporaryDir folder;
    for (const char *dataHome : {"", "data"}) {
        QProcess process;
        QProcessEnvironment environment = quietEnvironment();
        environment.remove("HOME");
        environment.insert("XDG_DATA_HOME", dataHome);
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(folder.path());
        process.start(RECORDINGCTL, {"volumes"});
        const Run volumes = finished(process);
        QCOMPARE(volumes.exitCode, 2);
        QCOMPARE(volumes.output, QString());
        QCOMPARE(volumes.errors,
                 "recordingctl: There is no folder for the station's data: HOME is not set. Name one: local:DIR.\n");
        process.start(RECORDINGCTL, {"volumes", "--data", folder.filePath("station")});
        QCOMPARE(finished(process).exitCode, 0);
        QVERIFY(waitForStationEnd(folder.filePath("station")));
    }
    QVERIFY(!QFileInfo::exists(folder.filePath("data")));
}

void TestRecordingctl::watchShowsEvents_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QStringList>("parts");
    QTest::newRow("text") << QStringList{}
                          << QStringList{R"(  event   VolumeChanged source= data=[{"recordingGroupID":"1",)",
                                         "  signal  volumeInfoChanged\n",
                                         "  alarm   raised source= kind=VolumeError group= groupId=\n",
                                         "  usage   changed source= group=Yard groupId=1 recordedDays=1 "
                                         "remainingDays=unknown oneDayUsage=unknown reservedTime=4320\n"};
    QTest::newRow("JSON") << QStringList{"--json"}
                          << QStringList{R"({"command":"watch","data":{"kind":"event","name":"VolumeChanged",)",
                                         R"("recordingGroupName":"Yard")",
                                         R"("name":"volumeInfoChanged")",
                                         R"("volumeSizeBytes":null)",
                                         R"({"kind":"alarm","name":"raised",)",
                                         R"("kind":"VolumeError",)",
                                         R"("text":"a volume cannot be reached"}})",
                                         R"({"kind":"usage","name":"changed",)",
                                         R"("oneDayUsageBytes":null,"recordedDays":1,"remainingDays":null,)"};
}

void TestRecordingctl::watchShowsEvents()
{
    QFETCH(const QStringList, options);
    QFETCH(const QStringList, parts);
    QProcess watch;
    watch.start(HANGING_STATION, QStringList{"watch"} + options);
    QString output;
    const auto isComplete = [&] {
        return std::all_of(parts.begin(), parts.end(), [&](const QString &part) { return output.contains(part); });
    };
    while (!isComplete() && watch.waitForReadyRead(10000))
        output += QString::fromUtf8(watch.readAllStandardOutput());
    watch.terminate();
    QVERIFY(watch.waitForFinished());
    QVERIFY2(isComplete(), qPrintable(output));
}

void TestRecordingctl::watchEndsByCount()
{
    const Run watch = run({"watch", "--json", "--count", "4", "--timeout", "60"});
    QCOMPARE(watch.exitCode, 0);
    QCOMPARE(watch.outputLines().size(), 4);
    for (const QString &line : watch.outputLines()) {
        const QJsonObject happening = QJsonDocument::fromJson(line.toUtf8()).object();
        QCOMPARE(happening.keys(), (QStringList{"command", "data", "returnCode"}));
        QCOMPARE(happening["data"].toObject().keys(), (QStringList{"kind", "name", "time", "values"}));
        const QString kind = happening["data"]["kind"].toString();
        QVERIFY2(kind == "signal" || kind == "event", qPrintable(line));
    }
    QVERIFY(watch.output.contains("recordingGroupRetrievedChanged"));
}

void TestRecordingctl::watchEndsByTime()
{
    const Run watch = run({"watch", "--timeout", "0.001"});
    QCOMPARE(watch.exitCode, 0);
}

void TestRecordingctl::watchMissesItsCount()
{
    const Run watch = run({"watch", "--timeout", "0.001", "--count", "1000"});
    QCOMPARE(watch.exitCode, 3);
    static const QRegularExpression error(QStringLiteral("^recordingctl: watch: \\d+ of 1000 lines came in time$"));
    QVERIFY2(error.match(watch.errorLines().last()).hasMatch(), qPrintable(watch.errors));
}

void TestRecordingctl::watchEndsByInterruption_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
}

void TestRecordingctl::watchEndsByInterruption()
{
    QFETCH(const int, number);
    QProcess watch;
    watch.start(RECORDINGCTL, {"watch"});
    QByteArray output;
    while (!output.contains('\n') && watch.waitForReadyRead())
        output += watch.readAllStandardOutput();
    QVERIFY(output.contains("signal  recordingGroupRetrievedChanged"));
    QCOMPARE(::kill(static_cast<pid_t>(watch.processId()), number), 0);
    QVERIFY(watch.waitForFinished());
    QCOMPARE(watch.exitStatus(), QProcess::NormalExit);
    QCOMPARE(watch.exitCode(), 0);
}

void TestRecordingctl::helpAndVersion()
{
    const Run help = run({"--help"});
    QCOMPARE(help.exitCode, 0);
    for (const char *command : {"list", "call", "watch", "volumes", "group-add", "usage", "nas-folders"})
        QVERIFY2(help.output.contains(QStringLiteral("\n  %1").arg(QLatin1String(command))), command);
    const Run version = run({"--version"});
    QCOMPARE(version.exitCode, 0);
    QCOMPARE(version.output, "recordingctl " RECORDING_VERSION "\n");
}

QTEST_GUILESS_MAIN(TestRecordingctl)
#include "tst_recordingctl.moc"
