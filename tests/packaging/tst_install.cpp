#include "../integration/ToolRun.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

namespace {
const QString version = QStringLiteral(VERSION);
const QString lib = QStringLiteral(LIB_DIR);

QString textOf(const QString &file)
{
    QFile source(file);
    return source.open(QIODevice::ReadOnly) ? QString::fromUtf8(source.readAll()) : QString();
}

/// What the expression captures in the file; empty where it does not match.
QString found(const QString &file, const char *expression)
{
    return QRegularExpression(expression, QRegularExpression::MultilineOption).match(textOf(file)).captured(1);
}

QStringList filesBelow(const QString &folder)
{
    QStringList files;
    QDirIterator all(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (all.hasNext())
        files.append(QDir(folder).relativeFilePath(all.next()));
    files.sort();
    return files;
}

Run install(const QString &prefix, const QStringList &arguments = {})
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(CMAKE),
                  QStringList{"--install", BUILD_FOLDER, "--config", CONFIGURATION, "--prefix", prefix} + arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAll()), {}};
}

QStringList manualFiles(const QString &program, const QString &section)
{
    return {"share/bash-completion/completions/" + program, "share/fish/vendor_completions.d/" + program + ".fish",
            "share/man/man" + section + '/' + program + '.' + section, "share/zsh/site-functions/_" + program};
}
} // namespace

/// Each component installs its files and no other's, and all of them tell the same version.
class InstallTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();

    void componentHasItsFiles_data();
    void componentHasItsFiles();
    void clientHasEveryHeaderAndNoEmbeddedStation();
    void withoutAComponentAllButTheTraceLogIsInstalled();
    void aConfigurationIsNotReplaced();
    void unitNamesThePrefix();
    void everythingTellsOneVersion_data();
    void everythingTellsOneVersion();
    void programsLoadTheirOwnTraceLibrary();
    void desktopFileNamesWhatIsInstalled();

private:
    QString installed(const QString &file) const { return m_prefix.filePath(file); }

    QTemporaryDir m_prefix; // all but the trace log
};

void InstallTest::initTestCase()
{
    QVERIFY(m_prefix.isValid());
    const Run run = install(m_prefix.path());
    QVERIFY2(run.exitCode == 0, qPrintable(run.output));
}

void InstallTest::componentHasItsFiles_data()
{
    QTest::addColumn<QStringList>("files");
    const QString include = "include/recordingmanagement/";
    const QString package = lib + "/cmake/RecordingManagement/RecordingManagement";
    const QString types = lib + "/qt6/qml/com/meridon/pluginrecordingmanagement/";
    const QString plugins = lib + "/qt6/plugins/recordingmanagement/";
    QStringList plugin{include + "framework/ConfigBase.h",
                       include + "framework/FrameworkWrapperBase.h",
                       include + "framework/PluginBase.h",
                       include + "interface/Enumerations.h",
                       include + "interface/Roles.h",
                       include + "interface/Version.h",
                       package + "-plugin.cmake",
                       package + "Config.cmake",
                       package + "ConfigVersion.cmake",
                       lib + "/pkgconfig/recording-management-plugin.pc",
                       plugins + "PluginRecordingManagement.version",
                       plugins + "libPluginRecordingManagement.so",
                       types + "plugins.qmltypes",
                       types + "qmldir"};
    QTest::newRow("plugin") << plugin;
    QTest::newRow("station") << QStringList{"bin/recording-stationd",
                                            "etc/recording-station/recording-stationd.conf",
                                            "lib/systemd/system/recording-stationd.service",
                                            "lib/sysusers.d/recording-station.conf",
                                            "share/recording-station/broker/access",
                                            "share/recording-station/broker/certificates",
                                            "share/recording-station/broker/mosquitto.conf",
                                            "share/recording-station/broker/roles"}
            + manualFiles("recording-stationd", "8");
    QTest::newRow("tools") << QStringList{"bin/recording-console",
                                          "bin/recordingctl",
                                          lib + "/recordingmanagement/tracelog.so",
                                          "share/applications/com.meridon.RecordingConsole.desktop",
                                          "share/icons/hicolor/scalable/apps/com.meridon.RecordingConsole.svg",
                                          "share/metainfo/com.meridon.RecordingConsole.metainfo.xml"}
            + manualFiles("recording-console", "1") + manualFiles("recordingctl", "1");
    QTest::newRow("tracelog") << QStringList{lib + "/libZarnLogUtl.so"};
}

void InstallTest::componentHasItsFiles()
{
    QFETCH(QStringList, files);
    const QTemporaryDir prefix;
    const Run run = install(prefix.path(), {"--component", QTest::currentDataTag()});
    QVERIFY2(run.exitCode == 0, qPrintable(run.output));
    QStringList here;
    for (const QString &file : filesBelow(prefix.path())) {
        if (!file.contains("/RecordingManagement-plugin-")) // one for each way of building
            here.append(file);
    }
    files.sort();
    QCOMPARE(here.join('\n'), files.join('\n'));
}

void InstallTest::clientHasEveryHeaderAndNoEmbeddedStation()
{
    const QTemporaryDir prefix;
    const Run run = install(prefix.path(), {"--component", "client"});
    QVERIFY2(run.exitCode == 0, qPrintable(run.output));
    const QStringList here = filesBelow(prefix.path());
    QCOMPARE(here.filter("embedded"), QStringList());
    QVERIFY(here.contains(lib + "/librecording-host.a"));
    for (const QString &folder : {QString("host"), QString("protocol")}) {
        const QString source = QStringLiteral(SOURCE_DIR) + '/' + folder;
        for (const QString &file : filesBelow(source)) {
            if (!file.endsWith(".h") || file.startsWith("embedded/"))
                continue;
            const QString target = "include/recordingmanagement/" + QString(folder == "host" ? "client/" : "protocol/");
            QVERIFY2(here.contains(target + file), qPrintable(file));
        }
    }
}

void InstallTest::withoutAComponentAllButTheTraceLogIsInstalled()
{
    QStringList all = filesBelow(m_prefix.path());
    QCOMPARE(all.filter("libZarnLogUtl"), QStringList());
    for (const char *component : {"plugin", "client", "station", "tools"}) {
        const QTemporaryDir prefix;
        QCOMPARE(install(prefix.path(), {"--component", component}).exitCode, 0);
        for (const QString &file : filesBelow(prefix.path()))
            QVERIFY2(all.removeOne(file), qPrintable(file));
    }
    QCOMPARE(all, QStringList());
}

void InstallTest::aConfigurationIsNotReplaced()
{
    const QTemporaryDir prefix;
    const QString name = prefix.filePath("etc/recording-station/recording-stationd.conf");
    QVERIFY(QDir().mkpath(QFileInfo(name).path()));
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("station-name = North\n") > 0);
    file.close();
    QCOMPARE(install(prefix.path(), {"--component", "station"}).exitCode, 0);
    QCOMPARE(textOf(name), QString("station-name = North\n"));
}

void InstallTest::unitNamesThePrefix()
{
    const QString unit = textOf(installed("lib/systemd/system/recording-stationd.service"));
    QVERIFY2(unit.contains("ExecStart=" + installed("bin/recording-stationd") + " --config "
                           + installed("etc/recording-station/recording-stationd.conf")),
             qPrintable(unit));
    QVERIFY(!unit.contains('@' + QString("RECORDING")));
    QVERIFY2(unit.contains("ExecReload=/bin/sh "), "a bare system has no program kill");
}

void InstallTest::everythingTellsOneVersion_data()
{
    QTest::addColumn<QString>("told");
    const QString source = QStringLiteral(SOURCE_DIR);
    QTest::newRow("CMake") << found(source + "/CMakeLists.txt", "^project\\(recording-management VERSION (\\S+) ");
    // "## 0.1.0 (unreleased)", and of a release its day.
    QTest::newRow("CHANGELOG") << found(source + "/CHANGELOG.md",
                                        "\\A# Changes\\n\\n## (\\S+) \\((?:unreleased|\\d{4}-\\d\\d-\\d\\d)\\)$");
    for (const char *program : {"recordingctl", "recording-console", "recording-stationd"}) {
        QProcess process;
        process.start(installed(QString("bin/") + program), {"--version"});
        const Run run = finished(process);
        const bool isItsName = run.output.startsWith(QString(program) + ' ');
        QTest::newRow(program) << (isItsName ? run.output.section(' ', 1).trimmed() : run.output + run.errors);
    }
    QTest::newRow("file beside the plug-in")
        << textOf(installed(lib + "/qt6/plugins/recordingmanagement/PluginRecordingManagement.version")).trimmed();
    QTest::newRow("header") << found(installed("include/recordingmanagement/interface/Version.h"),
                                     "RECORDING_MANAGEMENT_VERSION \"(.*)\"$");
    QTest::newRow("CMake package") << found(
        installed(lib + "/cmake/RecordingManagement/RecordingManagementConfigVersion.cmake"),
        "^set\\(PACKAGE_VERSION \"(.*)\"\\)$");
    for (const char *name : {"plugin", "client"})
        QTest::addRow("pkg-config, %s", name)
            << found(installed(lib + "/pkgconfig/recording-management-" + name + ".pc"), "^Version: (.*)$");
    QTest::newRow("manual") << found(installed("share/man/man1/recordingctl.1"),
                                     "^\\.TH RECORDINGCTL 1 \"\" \"recording-management (.*)\" ");
}

void InstallTest::everythingTellsOneVersion()
{
    QFETCH(QString, told);
    QCOMPARE(told, version);
}

void InstallTest::programsLoadTheirOwnTraceLibrary()
{
    const QTemporaryDir folder;
    const QStringList refused{"call", "addNASServer", "", "--data", folder.path(), "--timeout", "20"};
    const QString program = installed("bin/recordingctl");
    const Run withIt = run(refused, {}, program);
    QCOMPARE(withIt.exitCode, 1);
    QVERIFY2(withIt.errors.contains("host is empty"), qPrintable(withIt.errors));

    QVERIFY(QFile::rename(installed(lib + "/recordingmanagement/tracelog.so"), installed("tracelog.so")));
    const Run without = run(refused, {}, program);
    QVERIFY(QFile::rename(installed("tracelog.so"), installed(lib + "/recordingmanagement/tracelog.so")));
    QCOMPARE(without.exitCode, 1);
    QVERIFY2(!without.errors.contains("host is empty"), qPrintable(without.errors));
}

void InstallTest::desktopFileNamesWhatIsInstalled()
{
    const QString desktop = installed("share/applications/com.meridon.RecordingConsole.desktop");
    QVERIFY(QFileInfo(installed("bin/" + found(desktop, "^Exec=(.*)$"))).isExecutable());
    QVERIFY(QFile::exists(installed("share/icons/hicolor/scalable/apps/" + found(desktop, "^Icon=(.*)$") + ".svg")));
    const QString metainfo = installed("share/metainfo/com.meridon.RecordingConsole.metainfo.xml");
    QCOMPARE(found(metainfo, "<launchable type=\"desktop-id\">(.*)</launchable>"), QFileInfo(desktop).fileName());
}

QTEST_GUILESS_MAIN(InstallTest)
#include "tst_install.moc"
