#include "../integration/ToolRun.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace {
const QString cmake = QStringLiteral(CMAKE);
const QString lib = QStringLiteral(LIB_DIR);

/// Runs @p program to its end; the output is both of its channels.
Run ran(const QString &program, const QStringList &arguments, const QStringList &variables = {})
{
    QProcess process;
    QProcessEnvironment environment = quietEnvironment();
    for (const QString &variable : variables)
        environment.insert(variable.section('=', 0, 0), variable.section('=', 1));
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(280'000) || process.exitStatus() != QProcess::NormalExit)
        return {-1, program + " did not end: " + process.readAll(), {}};
    return {process.exitCode(), QString::fromUtf8(process.readAll()), {}};
}

bool copyFolder(const QString &from, const QString &to)
{
    QDirIterator files(from, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = files.next();
        const QString target = to + '/' + QDir(from).relativeFilePath(file);
        if (!QDir().mkpath(QFileInfo(target).path()) || !QFile::copy(file, target))
            return false;
    }
    return true;
}
} // namespace

/// Projects outside the tree build against what is installed, and run.
class ConsumersTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();

    void pluginIsUsedAsAFile();
    void pagesUseThePlugin();
    void clientTalksToAStation();
    void clientReachesStationsBehindABroker();
    void pkgConfigTellsTheSame();
    void componentsThatAreMissingAreTold();
    void otherVersionsAreRefused();
    void theTreeIsASubproject();

private:
    QString source(const QString &project) const { return m_folder.filePath("consumers/" + project); }
    QString binary(const QString &project) const { return m_folder.filePath(project + ".build"); }
    Run configured(const QString &project, const QStringList &arguments = {}) const;
    Run built(const QString &project) const;
    QString pluginFolder() const { return m_folder.filePath("prefix/" + lib + "/qt6/plugins/recordingmanagement"); }

    QTemporaryDir m_folder;
};

#define COMPARE_RUN(run, expected)                                                                                     \
    do {                                                                                                               \
        const Run outcome = (run);                                                                                     \
        QVERIFY2(outcome.exitCode == (expected), qPrintable(outcome.output));                                          \
    } while (false)

void ConsumersTest::initTestCase()
{
    QVERIFY(m_folder.isValid());
    for (const char *component : {"plugin", "client"})
        COMPARE_RUN(ran(cmake,
                        {"--install", BUILD_FOLDER, "--config", BUILD_TYPE, "--component", component, "--prefix",
                         m_folder.filePath("prefix")}),
                    0);
    QVERIFY(copyFolder(QStringLiteral(CONSUMERS), m_folder.filePath("consumers")));
}

Run ConsumersTest::configured(const QString &project, const QStringList &arguments) const
{
    return ran(cmake,
               QStringList{"-S", source(project), "-B", binary(project), "-G", "Ninja",
                           "-DCMAKE_CXX_COMPILER=" + QStringLiteral(COMPILER), "-DCMAKE_BUILD_TYPE=Debug",
                           "-DCMAKE_PREFIX_PATH=" + m_folder.filePath("prefix")}
                   + arguments);
}

Run ConsumersTest::built(const QString &project) const
{
    const Run run = configured(project);
    return run.exitCode == 0 ? ran(cmake, {"--build", binary(project)}) : run;
}

void ConsumersTest::pluginIsUsedAsAFile()
{
    COMPARE_RUN(built("plugin"), 0);
    const Run run = ran(binary("plugin") + "/consumer", {});
    QFile version(pluginFolder() + "/PluginRecordingManagement.version");
    QVERIFY(version.open(QIODevice::ReadOnly));
    QCOMPARE(run.output, QString::fromUtf8(version.readAll()).trimmed() + " /mnt/video 2 1\n");
    QCOMPARE(run.exitCode, 0);
}

void ConsumersTest::pagesUseThePlugin()
{
    const Run build = built("qml"); // with qmllint over its page
    QVERIFY2(build.exitCode == 0 && !build.output.contains("Warning: "), qPrintable(build.output));
    const Run run = ran(binary("qml") + "/consumer", {});
    QCOMPARE(run.output, QString("added\n"));
    QCOMPARE(run.exitCode, 0);
}

void ConsumersTest::clientTalksToAStation()
{
    COMPARE_RUN(built("client"), 0);
    const QString data = m_folder.filePath("data");
    const Run run = ran(binary("client") + "/consumer", {pluginFolder(), data});
    QCOMPARE(run.output, QString("System\n"));
    QCOMPARE(run.exitCode, 0);
    QVERIFY(waitForStationEnd(data));
}

void ConsumersTest::clientReachesStationsBehindABroker()
{
    COMPARE_RUN(built("mqtt"), 0);
    const auto answer = [this](const QString &url) {
        return ran(binary("mqtt") + "/consumer", {pluginFolder(), url}).output;
    };
    const QString data = m_folder.filePath("mqtt-data");
    const QString volumes = answer("local:" + data);
    QVERIFY2(QRegularExpression("^[1-9][0-9]* volumes\n$").match(volumes).hasMatch(), qPrintable(volumes));
    QVERIFY(waitForStationEnd(data));
    const QString noStation = answer("mqtts://localhost");
    QVERIFY2(noStation.contains("names no station"), qPrintable(noStation));

    QFile page(QStringLiteral(SOURCE_DIR "/docs/host.md"));
    QFile client(source("mqtt") + "/main.cpp");
    QVERIFY(page.open(QIODevice::ReadOnly) && client.open(QIODevice::ReadOnly));
    QVERIFY2(page.readAll().contains("```cpp\n" + client.readAll() + "```\n"), "the page has another client");
}

void ConsumersTest::pkgConfigTellsTheSame()
{
    const QStringList path{"PKG_CONFIG_PATH=" + m_folder.filePath("prefix/" + lib + "/pkgconfig")};
    const Run flags = ran("pkg-config", {"--cflags", "--libs", "recording-management-mqtt"}, path);
    QVERIFY2(flags.exitCode == 0, qPrintable(flags.output));
    const QString program = m_folder.filePath("pkg-config-consumer");
    const QStringList arguments = QStringList{"-std=c++20", "-fPIC", source("client") + "/main.cpp", "-o", program}
        + flags.output.simplified().split(' ');
    COMPARE_RUN(ran(QStringLiteral(COMPILER), arguments), 0);
    const QString data = m_folder.filePath("pkg-config-data");
    QCOMPARE(ran(program, {pluginFolder(), data}).output, QString("System\n"));
    QVERIFY(waitForStationEnd(data));
    QCOMPARE(QDir::cleanPath(
                 ran("pkg-config", {"--variable=plugindir", "recording-management-plugin"}, path).output.trimmed()),
             pluginFolder());
}

void ConsumersTest::componentsThatAreMissingAreTold()
{
    const QString targets =
        m_folder.filePath("prefix/" + lib + "/cmake/RecordingManagement/RecordingManagement-client.cmake");
    QVERIFY(QFile::rename(targets, targets + ".away"));
    const Run run = ran(cmake,
                        {"-S", source("client"), "-B", m_folder.filePath("missing.build"),
                         "-DCMAKE_PREFIX_PATH=" + m_folder.filePath("prefix")});
    QVERIFY(QFile::rename(targets + ".away", targets));
    QVERIFY(run.exitCode != 0);
    QVERIFY2(run.output.contains("The component \"client\""), qPrintable(run.output));
}

void ConsumersTest::otherVersionsAreRefused()
{
    QVERIFY(QDir().mkpath(source("newer")));
    QFile project(source("newer") + "/CMakeLists.txt");
    QVERIFY(project.open(QIODevice::WriteOnly)
            && project.write("cmake_minimum_required(VERSION 3.22)\nproject(newer LANGUAGES CXX)\n"
                             "find_package(RecordingManagement 99 REQUIRED COMPONENTS plugin)\n")
                > 0);
    project.close();
    const Run run = configured("newer");
    QVERIFY(run.exitCode != 0);
    QVERIFY2(run.output.contains("99"), qPrintable(run.output));
}

void ConsumersTest::theTreeIsASubproject()
{
    const QString built = binary("subproject");
    COMPARE_RUN(configured("subproject", {"-DRECORDING_SOURCE=" + QStringLiteral(SOURCE_DIR)}), 0);
    const Run build = ran(cmake, {"--build", built});
    QVERIFY2(build.exitCode == 0, qPrintable(build.output));
    QVERIFY2(!build.output.contains("PluginRecordingManagement_Req"), qPrintable(build.output)); // nobody links it

    QProcess ctest;
    ctest.setWorkingDirectory(built);
    ctest.start(QFileInfo(cmake).path() + "/ctest", {"--show-only"});
    const Run tests = finished(ctest);
    QVERIFY2(tests.output.contains("Total Tests: 1\n"), qPrintable(tests.output + tests.errors));

    const QString prefix = m_folder.filePath("subproject.prefix");
    COMPARE_RUN(ran(cmake, {"--install", built, "--prefix", prefix}), 0);
    QStringList files;
    QDirIterator all(prefix, QDir::Files, QDirIterator::Subdirectories);
    while (all.hasNext())
        files.append(QDir(prefix).relativeFilePath(all.next()));
    QCOMPARE(files, QStringList("bin/consumer"));
}

QTEST_GUILESS_MAIN(ConsumersTest)
#include "tst_consumers.moc"
