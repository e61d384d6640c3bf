#include "ToolRun.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString buildFolder = QStringLiteral(BUILD_FOLDER);
const QString recordingctl = QStringLiteral(RECORDINGCTL);
const QString console = QStringLiteral(CONSOLE);
const QString plugin = QStringLiteral(PLUGIN_FILE);
const QString traceLibrary = QStringLiteral(TRACE_LIBRARY);
const QString minimalHost = QStringLiteral(MINIMAL_HOST);

/// What the loader can load, below @p folder: programs and shared libraries, not the compiler's object files.
QStringList loadableFiles(const QString &folder)
{
    QStringList files;
    QDirIterator all(folder, QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDirIterator::Subdirectories);
    while (all.hasNext()) {
        QFile file(all.next());
        if (!file.fileName().endsWith(".o") && file.open(QIODevice::ReadOnly) && file.read(4) == "\177ELF")
            files.append(file.fileName());
    }
    return files;
}

/// Where the loader looks for the libraries that @p file needs, as it is written there; a line of its own for a file
/// that cannot be read. None for a file that has gone meanwhile, as those of other tests do.
QStringList libraryPath(const QString &file)
{
    static const QRegularExpression line("\\((?:RPATH|RUNPATH)\\)[^\\[]*\\[(.*)\\]$",
                                         QRegularExpression::MultilineOption);
    QProcess readelf;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LC_ALL", "C");
    readelf.setProcessEnvironment(environment);
    readelf.start(QStringLiteral(READELF), {"-d", "-W", file});
    const Run run = finished(readelf);
    if (run.exitCode != 0)
        return QFile::exists(file) ? QStringList("not read: " + run.errors) : QStringList();
    QStringList path;
    for (const QRegularExpressionMatch &match : line.globalMatch(run.output))
        path += match.captured(1).split(':');
    return path;
}

/// What the loader says of the libraries that @p file needs, itself included: "name => where it is", or "not found".
QStringList neededLibraries(const QString &file)
{
    QProcess ldd;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LC_ALL", "C");
    environment.remove("LD_LIBRARY_PATH");
    ldd.setProcessEnvironment(environment);
    ldd.start("ldd", {file});
    return finished(ldd).outputLines();
}

/// Whether the loader looks in @p folder anyway.
bool isDefaultFolder(const QString &folder)
{
    static const QRegularExpression system("^(/usr)?/lib(32|64|x32)?(/[^/]+-linux-[^/]+)?/?$");
    return system.match(folder).hasMatch();
}

/// An empty entry is the current folder, a relative one lies below it.
bool dependsOnTheCurrentFolder(const QString &entry)
{
    static const QRegularExpression fixed("^(/|\\$ORIGIN(/|$)|\\$\\{ORIGIN\\}(/|$))");
    return !fixed.match(entry).hasMatch();
}

/// The entries of @p files that depend on the current folder, each with its file.
QStringList entriesThatDependOnTheCurrentFolder(const QStringList &files)
{
    QStringList found;
    for (const QString &file : files) {
        const QStringList path = libraryPath(file);
        for (const QString &entry : path) {
            if (dependsOnTheCurrentFolder(entry))
                found.append(QStringLiteral("%1: \"%2\"").arg(file, entry));
        }
    }
    found.removeDuplicates();
    return found;
}

} // namespace

/// Where programs and libraries, built and installed, look for the libraries that they need: never in the current
/// folder, where anybody may have put one.
class LibraryPathsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void whichEntriesDependOnTheCurrentFolder_data();
    void whichEntriesDependOnTheCurrentFolder();
    void noBuiltFileLooksInTheCurrentFolder();
    void noInstalledFileLooksInTheCurrentFolder();
    void installedFilesLookWhereTheBuiltOnesDo_data();
    void installedFilesLookWhereTheBuiltOnesDo();
    void nothingLooksBesideItself();
    void installedFilesLookOnlyWhereTheyHaveTo();
    void installedFilesFindWhatTheyNeed();
    void plantedLibrariesAreNotLoaded_data();
    void plantedLibrariesAreNotLoaded();

private:
    QString installed(const QString &builtFile) const { return m_prefix.path() + builtFile.mid(buildFolder.size()); }

    QTemporaryDir m_prefix; // installed to
    QTemporaryDir m_planted; // with libraries that nobody may load
};

void LibraryPathsTest::initTestCase()
{
    QVERIFY(m_prefix.isValid() && m_planted.isValid());
    for (const QStringList &component : {QStringList(), QStringList{"--component", "tracelog"}}) {
        QProcess install;
        install.setProcessChannelMode(QProcess::MergedChannels);
        install.start(QStringLiteral(CMAKE),
                      QStringList{"--install", buildFolder, "--config", CONFIGURATION, "--prefix", m_prefix.path()}
                          + component);
        const Run run = finished(install);
        QVERIFY2(run.exitCode == 0, qPrintable(run.output));
    }
    for (const char *name : {"libZarnLogUtl.so", "libQt6Core.so.6"})
        QVERIFY(QFile::copy(QStringLiteral(PLANTED_LIBRARY), m_planted.filePath(name)));
}

void LibraryPathsTest::whichEntriesDependOnTheCurrentFolder_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<bool>("depends");
    QTest::newRow("empty") << QString() << true;
    QTest::newRow("current folder") << "." << true;
    QTest::newRow("relative") << "lib" << true;
    QTest::newRow("other name") << "$ORIGINAL/lib" << true;
    QTest::newRow("name of the system") << "$LIB" << true;
    QTest::newRow("absolute") << "/opt/qt/lib" << false;
    QTest::newRow("beside the file") << "$ORIGIN" << false;
    QTest::newRow("near the file") << "$ORIGIN/../lib" << false;
    QTest::newRow("in braces") << "${ORIGIN}/../lib" << false;
}

void LibraryPathsTest::whichEntriesDependOnTheCurrentFolder()
{
    QFETCH(QString, entry);
    QFETCH(bool, depends);
    QCOMPARE(dependsOnTheCurrentFolder(entry), depends);
}

void LibraryPathsTest::noBuiltFileLooksInTheCurrentFolder()
{
    const QStringList files = loadableFiles(buildFolder);
    for (const QString &file : {recordingctl, console, plugin, traceLibrary, minimalHost})
        QVERIFY2(files.contains(file), qPrintable(file));
    const QString found = entriesThatDependOnTheCurrentFolder(files).join('\n');
    QVERIFY2(found.isEmpty(), qPrintable(found));
}

void LibraryPathsTest::noInstalledFileLooksInTheCurrentFolder()
{
    const QStringList files = loadableFiles(m_prefix.path());
    for (const QString &file : {recordingctl, console, plugin, traceLibrary})
        QVERIFY2(files.contains(installed(file)), qPrintable(file));
    const QString found = entriesThatDependOnTheCurrentFolder(files).join('\n');
    QVERIFY2(found.isEmpty(), qPrintable(found));
}

void LibraryPathsTest::installedFilesLookWhereTheBuiltOnesDo_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("recordingctl") << recordingctl;
    QTest::newRow("console") << console;
    QTest::newRow("plug-in") << plugin;
    QTest::newRow("trace library") << traceLibrary;
}

void LibraryPathsTest::installedFilesLookWhereTheBuiltOnesDo()
{
    QFETCH(QString, file);
    QCOMPARE(libraryPath(installed(file)), libraryPath(file));
}

void LibraryPathsTest::nothingLooksBesideItself()
{
    const QStringList files = loadableFiles(m_prefix.path()) + QStringList{recordingctl, console, plugin, traceLibrary};
    for (const QString &file : files)
        QVERIFY2(libraryPath(file).filter("ORIGIN").isEmpty(), qPrintable(file));
}

void LibraryPathsTest::installedFilesLookOnlyWhereTheyHaveTo()
{
    const QStringList files = loadableFiles(m_prefix.path());
    QVERIFY(files.size() >= 6);
    for (const QString &file : files) {
        const QString needed = neededLibraries(file).join('\n');
        const QStringList path = libraryPath(file);
        for (const QString &entry : path) {
            const QString text = file + ": " + entry;
            QVERIFY2(!isDefaultFolder(entry), qPrintable(text));
            QVERIFY2(needed.contains(" => " + QDir::cleanPath(entry) + '/'), qPrintable(text));
        }
    }
}

void LibraryPathsTest::installedFilesFindWhatTheyNeed()
{
    const QStringList files = loadableFiles(m_prefix.path());
    for (const QString &file : files) {
        const QStringList needed = neededLibraries(file);
        QVERIFY2(!needed.filter("libc.so").isEmpty(), qPrintable(file));
        QVERIFY2(needed.filter("not found").isEmpty(), qPrintable(file + '\n' + needed.join('\n')));
    }
}

void LibraryPathsTest::plantedLibrariesAreNotLoaded_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("hasTraceLibrary");
    QTest::addColumn<QString>("output"); // some of it
    const QString invokable = "getVolume";
    QTest::newRow("built recordingctl") << recordingctl << QStringList("list") << true << invokable;
    QTest::newRow("installed recordingctl") << installed(recordingctl) << QStringList("list") << true << invokable;
    // The plug-in asks the loader for the trace library itself.
    QTest::newRow("built client") << minimalHost << QStringList(plugin) << true << "/mnt/video";
    QTest::newRow("client of the installed plug-in")
        << minimalHost << QStringList(installed(plugin)) << true << "/mnt/video";
    QTest::newRow("recordingctl without its trace library")
        << installed(recordingctl) << QStringList("list") << false << invokable;
}

void LibraryPathsTest::plantedLibrariesAreNotLoaded()
{
    QFETCH(QString, program);
    QFETCH(QStringList, arguments);
    QFETCH(bool, hasTraceLibrary);
    QFETCH(QString, output);
    if (!hasTraceLibrary)
        QVERIFY(QFile::remove(installed(traceLibrary))
                && QFile::remove(m_prefix.filePath(PROGRAM_LIB_DIR "/tracelog.so")));
    const QStringList planted = QDir(m_planted.path()).entryList(QDir::Files);

    for (const bool isSet : {false, true}) {
        QProcessEnvironment environment = quietEnvironment();
        environment.remove("LD_LIBRARY_PATH");
        if (isSet)
            environment.insert("LD_LIBRARY_PATH", "");
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(m_planted.path());
        process.start(program, arguments);
        const Run run = finished(process);
        QCOMPARE(run.errors, QString());
        QCOMPARE(run.exitCode, 0);
        QVERIFY2(run.output.contains(output), qPrintable(run.output));
        QCOMPARE(QDir(m_planted.path()).entryList(QDir::Files), planted);
    }
}

QTEST_GUILESS_MAIN(LibraryPathsTest)
#include "tst_library_paths.moc"
