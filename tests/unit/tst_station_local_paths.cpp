#include "FakeVolumes.h"
#include "StationVocabulary.h"
#include "groups/FolderNames.h"
#include "groups/LocalPaths.h"
#include "groups/PathText.h"
#include "groups/WriteTrial.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
/// Whatever is asked for lies on one volume, even what the kernel makes up.
class EveryPath : public VolumeSource
{
public:
    QList<Volume> volumes() const override { return {m_all}; }
    std::optional<Volume> volumeHolding(const QString &) const override { return m_all; }

private:
    Volume m_all{QStringLiteral("/"), QStringLiteral("All"), 4096, 4096, false, false};
};

QString text(const PathFacts &facts)
{
    return QStringList{facts.returnCode, facts.reason, facts.volume, QString::number(facts.bytesTotal), facts.folder}
        .join(u'|');
}
} // namespace

/// Folders as places for recordings: how they are written, and whether they can be written to.
class StationLocalPathsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void pathsAreWrittenInOneWay_data();
    void pathsAreWrittenInOneWay();
    void namesBecomeFolders_data();
    void namesBecomeFolders();
    void namesWithoutFolder_data();
    void namesWithoutFolder();
    void newFoldersAreFree();

    void aFolderThatCanBeWritten();
    void aLinkLeadsToItsFolder();
    void aPathIsRefused_data();
    void aPathIsRefused();
    void aReadOnlyVolumeIsNotTried();
    void aFolderIsTriedAndNotJudgedByItsBits();
    void aFolderThatTakesNoFiles_data();
    void aFolderThatTakesNoFiles();
    void aFileThatCannotBeFilledLeavesNothing();
    void aTrialHasNoName();
    void aTrialWithANameLeavesNothing();
    void aFolderThatKeepsItsFiles();
    void bytesAreCounted();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    QStringList everything() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<FakeVolumes> m_volumes;
    std::unique_ptr<LocalPaths> m_paths;
};

void StationLocalPathsTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_folder = std::make_unique<QTemporaryDir>();
    for (const char *name : {"disk/a", "disk/b/c", "elsewhere", "archive"})
        QVERIFY(QDir().mkpath(path(QString::fromLatin1(name))));
    QFile file(path(QStringLiteral("disk/file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    m_volumes = std::make_unique<FakeVolumes>(QList<Volume>{
        {path(QStringLiteral("disk")), QStringLiteral("Disk"), 8192, 100, false, false},
        {path(QStringLiteral("disk/b")), QStringLiteral("Inner"), 4096, 100, false, false},
        {path(QStringLiteral("archive")), QStringLiteral("Archive"), 2048, 100, false, true},
    });
    m_paths = std::make_unique<LocalPaths>(*m_volumes);
}

void StationLocalPathsTest::cleanup()
{
    m_paths.reset();
    m_volumes.reset();
    m_folder.reset();
}

QStringList StationLocalPathsTest::everything() const
{
    QStringList names;
    for (const char *folder : {"disk", "disk/a", "disk/b", "disk/b/c", "elsewhere", "archive"})
        names += QDir(path(QString::fromLatin1(folder)))
                     .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    return names;
}

void StationLocalPathsTest::pathsAreWrittenInOneWay_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("kept");
    const auto row = [](const char *given, const char *kept) {
        QTest::newRow(given) << QString::fromLatin1(given) << QString::fromLatin1(kept);
    };
    row("/srv/rec", "/srv/rec");
    row("/srv/rec/", "/srv/rec");
    row("\\srv\\rec\\\\", "/srv/rec");
    row("/srv//rec", "/srv/rec");
    row("/", "/");
    row("//", "/");
    row("///srv", "/srv");
    row("//nas/rec", "//nas/rec");
    row("\\\\nas\\rec\\a\\", "//nas/rec/a");
    row("//nas//rec/", "//nas/rec");
    row("smb://nas/rec/a", "//nas/rec/a");
    row("SMB:\\\\nas\\rec\\", "//nas/rec");
    row("smb:///rec", "smb:/rec");
    row("smb:/nas/rec", "smb:/nas/rec");
    row("srv/rec/", "srv/rec");
    row("", "");
}

void StationLocalPathsTest::pathsAreWrittenInOneWay()
{
    QFETCH(QString, given);
    QFETCH(QString, kept);
    QCOMPARE(keptPath(given), kept);
    QCOMPARE(keptPath(kept), kept);
}

void StationLocalPathsTest::namesBecomeFolders_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("folder");
    QTest::newRow("plain") << QStringLiteral("Höfe Süd 1") << QStringLiteral("Höfe Süd 1");
    QTest::newRow("slash") << QStringLiteral("a/b\\c") << QStringLiteral("a%2Fb%5Cc");
    QTest::newRow("percent") << QStringLiteral("a%2Fb") << QStringLiteral("a%252Fb");
    QTest::newRow("up") << QStringLiteral("..") << QStringLiteral("%2E%2E");
    QTest::newRow("here") << QStringLiteral(".") << QStringLiteral("%2E");
    QTest::newRow("hidden") << QStringLiteral(".a.b.") << QStringLiteral("%2Ea.b%2E");
    QTest::newRow("a space behind") << QStringLiteral(" a b ") << QStringLiteral(" a b%20");
    QTest::newRow("refused on a share") << QStringLiteral(":*?\"<>|") << QStringLiteral("%3A%2A%3F%22%3C%3E%7C");
    QTest::newRow("control characters") << QStringLiteral("a\n\x7f") << QStringLiteral("a%0A%7F");
    QTest::newRow("the longest") << QString(240, u'a') << QString(240, u'a');
}

void StationLocalPathsTest::namesBecomeFolders()
{
    QFETCH(QString, name);
    QFETCH(QString, folder);
    QCOMPARE(folderName(name), folder);
    QVERIFY(QDir(path(QStringLiteral("disk"))).mkdir(folder));
}

void StationLocalPathsTest::namesWithoutFolder_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("too long") << QString(241, u'a');
    QTest::newRow("too long once it is written") << QString(81, u'%');
    QTest::newRow("a NUL") << QString(QChar(0));
    QTest::newRow("half a surrogate pair") << QString(QChar(0xdc00));
}

void StationLocalPathsTest::namesWithoutFolder()
{
    QFETCH(QString, name);
    QCOMPARE(folderName(name), QString());
}

void StationLocalPathsTest::newFoldersAreFree()
{
    QList<RecordingGroup> groups;
    QStringList folders;
    for (const char *name : {"Yard", "yard", "Yard-2", "Yard", "a/b", "a%2Fb"}) {
        RecordingGroup group;
        group.folder = newGroupFolder(QString::fromLatin1(name), groups);
        groups.append(group);
        folders.append(group.folder);
    }
    QCOMPARE(folders, QString::fromLatin1("Yard yard-2 Yard-2-2 Yard-3 a%2Fb a%252Fb").split(u' '));
}

void StationLocalPathsTest::aFolderThatCanBeWritten()
{
    const QStringList before = everything();
    const QString inner = path(QStringLiteral("disk/b/c"));
    const QString expected = QStringLiteral("0||%1|4096|%2").arg(path(QStringLiteral("disk/b")), inner);
    QCOMPARE(text(m_paths->look(inner)), expected);
    QCOMPARE(text(m_paths->volumeOf(inner)), expected);
    QCOMPARE(everything(), before);
}

void StationLocalPathsTest::aLinkLeadsToItsFolder()
{
    QVERIFY(QFile::link(path(QStringLiteral("disk/b/c")), path(QStringLiteral("disk/a/link"))));
    QVERIFY(QFile::link(path(QStringLiteral("elsewhere")), path(QStringLiteral("disk/a/out"))));
    QCOMPARE(text(m_paths->look(path(QStringLiteral("disk/a/link")))),
             QStringLiteral("0||%1|4096|%2").arg(path(QStringLiteral("disk/b")), path(QStringLiteral("disk/b/c"))));
    QCOMPARE(m_paths->look(path(QStringLiteral("disk/a/out"))).returnCode, QStringLiteral("OutsideVolumes"));
}

void StationLocalPathsTest::aPathIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("answer");
    QTest::newRow("missing") << QStringLiteral("disk/none") << QStringLiteral("DirectoryNotFound||||");
    QTest::newRow("a file") << QStringLiteral("disk/file") << QStringLiteral("NotADirectory||||");
    QTest::newRow("below a file") << QStringLiteral("disk/file/a") << QStringLiteral("NotADirectory||||");
    QTest::newRow("elsewhere") << QStringLiteral("elsewhere") << QStringLiteral("OutsideVolumes||||");
    QTest::newRow("a long name") << QStringLiteral("disk/") + QString(300, u'a') << QStringLiteral("NameRefused||||");
    QTest::newRow("a NUL") << QStringLiteral("disk/a") + QChar(0) << QStringLiteral("NameRefused||||");
}

void StationLocalPathsTest::aPathIsRefused()
{
    QFETCH(QString, name);
    QFETCH(QString, answer);
    QCOMPARE(text(m_paths->look(path(name))).replace(QStringLiteral("|0|"), QStringLiteral("||")), answer);
    QCOMPARE(text(m_paths->volumeOf(path(name))), text(m_paths->look(path(name))));
}

void StationLocalPathsTest::aReadOnlyVolumeIsNotTried()
{
    const QString archive = path(QStringLiteral("archive"));
    QCOMPARE(text(m_paths->look(archive)), QStringLiteral("PathNotWritable|VolumeReadOnly||0|"));
    QCOMPARE(text(m_paths->volumeOf(archive)), QStringLiteral("0||%1|2048|%1").arg(archive));
}

void StationLocalPathsTest::aFolderIsTriedAndNotJudgedByItsBits()
{
    const QString folder = path(QStringLiteral("disk/a"));
    QVERIFY(chmod(QFile::encodeName(folder).constData(), 0555) == 0);
    const bool isRoot = geteuid() == 0; // whom no permission stops
    QCOMPARE(m_paths->look(folder).returnCode, isRoot ? QStringLiteral("0") : QStringLiteral("PathNotWritable"));
    if (!isRoot)
        return;
    for (const char *parent : {"", "disk"})
        QVERIFY(chmod(QFile::encodeName(path(QString::fromLatin1(parent))).constData(), 0755) == 0);
    QVERIFY(seteuid(1) == 0);
    const PathFacts facts = m_paths->look(folder);
    QVERIFY(seteuid(0) == 0);
    QCOMPARE(text(facts), QStringLiteral("PathNotWritable|PermissionDenied||0|"));
}

void StationLocalPathsTest::aFolderThatTakesNoFiles_data()
{
    QTest::addColumn<QString>("folder");
    // File systems of the kernel, which take no new file from anybody, root included.
    QTest::newRow("process") << QStringLiteral("/proc/self");
    QTest::newRow("kernel") << QStringLiteral("/proc/sys");
}

void StationLocalPathsTest::aFolderThatTakesNoFiles()
{
    QFETCH(QString, folder);
    const EveryPath volumes;
    const PathFacts facts = LocalPaths(volumes).look(folder);
    QCOMPARE(facts.returnCode, QStringLiteral("PathNotWritable"));
    const QStringList reasons{StationReturnCode::CannotCreate, StationReturnCode::PermissionDenied,
                              StationReturnCode::VolumeReadOnly};
    QVERIFY2(reasons.contains(facts.reason), qPrintable(facts.reason));
    QCOMPARE(m_paths->look(folder).returnCode, QStringLiteral("OutsideVolumes"));
}

void StationLocalPathsTest::aFileThatCannotBeFilledLeavesNothing()
{
    const QStringList before = everything();
    rlimit limit{};
    QVERIFY(getrlimit(RLIMIT_FSIZE, &limit) == 0);
    const rlimit tight{1024, limit.rlim_max}; // bytes of a file, even for root
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    QVERIFY(setrlimit(RLIMIT_FSIZE, &tight) == 0);
    const PathFacts facts = m_paths->look(path(QStringLiteral("disk/a")));
    const bool isReset = setrlimit(RLIMIT_FSIZE, &limit) == 0;
    std::signal(SIGXFSZ, handler);
    QVERIFY(isReset);
    QCOMPARE(text(facts), QStringLiteral("PathNotWritable|CannotCreate||0|"));
    QCOMPARE(everything(), before);
}

/// A process that is killed at a bad moment would leave what has a name.
void StationLocalPathsTest::aTrialHasNoName()
{
    const QString folder = path(QStringLiteral("disk/a"));
    const int nameless = open(QFile::encodeName(folder).constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    if (nameless < 0)
        QSKIP("the file system of the temporary folder cannot do without names");
    close(nameless);
    const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    QVERIFY(inotify_add_watch(watch, QFile::encodeName(folder).constData(), IN_CREATE | IN_DELETE) >= 0);
    QCOMPARE(m_paths->look(folder).returnCode, QStringLiteral("0"));
    alignas(inotify_event) char events[4096];
    QVERIFY(read(watch, events, sizeof events) < 0);
    QCOMPARE(WriteTrial::tryNamed(folder.toStdString()), 0);
    QVERIFY(read(watch, events, sizeof events) > 0); // it would have been seen
    close(watch);
}

void StationLocalPathsTest::aTrialWithANameLeavesNothing()
{
    const QStringList before = everything();
    QCOMPARE(WriteTrial::tryNamed(path(QStringLiteral("disk/a")).toStdString()), 0);
    QCOMPARE(WriteTrial::tryNamed(path(QStringLiteral("disk/none")).toStdString()), ENOENT);
    QCOMPARE(WriteTrial::tryFolder(path(QStringLiteral("disk/none")).toStdString()), ENOENT);
    QCOMPARE(WriteTrial::tryFolder(path(QStringLiteral("disk/file")).toStdString()), ENOTDIR);
    QCOMPARE(everything(), before);
}

void StationLocalPathsTest::aFolderThatKeepsItsFiles()
{
    const QString folder = path(QStringLiteral("disk/a"));
    const QStringList before = everything();
    const int file = open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    int flags = 0;
    QVERIFY(file >= 0);
    const bool isKnown = ioctl(file, FS_IOC_GETFLAGS, &flags) == 0;
    const int appendOnly = flags | FS_APPEND_FL;
    if (!isKnown || ioctl(file, FS_IOC_SETFLAGS, &appendOnly) != 0) {
        close(file);
        QSKIP("only root, on a file system that knows the flag, can make a folder that keeps its files");
    }
    const PathFacts facts = m_paths->look(folder);
    const int named = WriteTrial::tryNamed(folder.toStdString());
    const bool isReset = ioctl(file, FS_IOC_SETFLAGS, &flags) == 0;
    close(file);
    QVERIFY(isReset);
    QCOMPARE(text(facts), QStringLiteral("PathNotWritable|PermissionDenied||0|"));
    QCOMPARE(named, EPERM);
    QCOMPARE(everything(), before);
}

void StationLocalPathsTest::bytesAreCounted()
{
    const auto make = [](const QString &name, qint64 size) {
        QFile file(name);
        return file.open(QIODevice::WriteOnly) && file.resize(size);
    };
    const QString folder = path(QStringLiteral("disk/b"));
    QVERIFY(make(folder + QStringLiteral("/.hidden"), 1));
    QVERIFY(make(folder + QStringLiteral("/c/1"), 20));
    QVERIFY(make(path(QStringLiteral("elsewhere/1")), 300));
    QVERIFY(QFile::link(path(QStringLiteral("elsewhere")), folder + QStringLiteral("/folder")));
    QVERIFY(QFile::link(path(QStringLiteral("elsewhere/1")), folder + QStringLiteral("/file")));
    QVERIFY(QFile::link(folder, path(QStringLiteral("disk/link"))));
    QVERIFY(mkfifo(QFile::encodeName(folder + QStringLiteral("/pipe")).constData(), 0600) == 0);
    QCOMPARE(m_paths->bytesBelow(folder), 21);
    QCOMPARE(m_paths->bytesBelow(path(QStringLiteral("disk/link"))), 0);
    QCOMPARE(m_paths->bytesBelow(path(QStringLiteral("disk/none"))), 0);
    QCOMPARE(m_paths->bytesBelow(path(QStringLiteral("disk/file"))), 0);
}

QTEST_GUILESS_MAIN(StationLocalPathsTest)
#include "tst_station_local_paths.moc"
