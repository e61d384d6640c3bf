#include "Directories.h"
#include "FakeVolumes.h"
#include "Station.h"
#include "StationCall.h"
#include "disk/DiskVisit.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace {
/// Lets the process act without root's privileges as long as it lives: root is stopped by no permission.
class WithoutPrivileges
{
public:
    WithoutPrivileges()
        : m_user(geteuid())
    {
        if (m_user == 0 && seteuid(1) != 0)
            qFatal("cannot act as another user");
    }
    WithoutPrivileges(const WithoutPrivileges &) = delete;
    WithoutPrivileges &operator=(const WithoutPrivileges &) = delete;
    ~WithoutPrivileges()
    {
        if (seteuid(m_user) != 0)
            qFatal("cannot act as the first user again");
    }

private:
    uid_t m_user;
};

bool setMode(const QString &path, mode_t mode)
{
    return chmod(QFile::encodeName(path).constData(), mode) == 0;
}

FolderList listed(const QString &path)
{
    DiskVisit everywhere;
    return listFolders(path, everywhere);
}

bool makeFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly);
}
} // namespace

/// Listing and making folders on a real file system.
class StationDirectoriesTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void dataOfTheWrongTypeIsRefused_data();
    void dataOfTheWrongTypeIsRefused();

    void foldersAreListedByName();
    void foldersBehindLinksAreListed();
    void hiddenFoldersAreLeftOut();
    void namesThatNoCommandCanCarryAreLeftOut();
    void anEmptyFolderIsAnEmptyList();
    void aListedFolderCanBeListed();
    void theBasePathIsEchoed_data();
    void theBasePathIsEchoed();
    void theEmptyBasePathListsTheVolumes();
    void listingIsRefused_data();
    void listingIsRefused();
    void anUnreadableFolderIsNoEmptyList();

    void aFolderIsMade_data();
    void aFolderIsMade();
    void aFolderIsMadeBehindALink();
    void makingIsRefused_data();
    void makingIsRefused();
    void aFolderThatMayNotBeWrittenIsRefused();
    void aFolderThatMayNotBeEnteredIsRefused();
    void aReadOnlyVolumeIsRefused();
    void aLinkOutOfTheVolumesIsRefused();
    void systemErrorsHaveTheirWords_data();
    void systemErrorsHaveTheirWords();

private:
    StationReply ask(const QString &name, const QVariant &data);
    QString path(const QString &name) const { return m_folder->path() + u'/' + name; }
    QStringList everything() const;

    std::unique_ptr<QTemporaryDir> m_folder; // a volume of the station
    std::unique_ptr<QTemporaryDir> m_elsewhere; // not one
    std::unique_ptr<Station> m_station;
};

void StationDirectoriesTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_folder = std::make_unique<QTemporaryDir>();
    m_elsewhere = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    QVERIFY(m_elsewhere->isValid());
    QVERIFY(setMode(m_folder->path(), 0755));
    m_station = std::make_unique<Station>(
        StationSettings{{},
                        {},
                        std::make_unique<FakeVolumes>(QList<Volume>{
                            {m_folder->path(), QStringLiteral("Recordings"), 4096, 2048, false, false},
                            {path(QStringLiteral("read-only")), QStringLiteral("Archive"), 4096, 2048, false, true},
                        })});
}

void StationDirectoriesTest::cleanup()
{
    m_station.reset();
    m_folder.reset();
    m_elsewhere.reset();
}

StationReply StationDirectoriesTest::ask(const QString &name, const QVariant &data)
{
    const StationCall call(*m_station, name, data);
    const StationReply reply = call.reply();
    return call.parts().size() == 1 ? reply : StationReply{QStringLiteral("not one part"), {}};
}

/// Every file and folder below the two folders, hidden ones and links too.
QStringList StationDirectoriesTest::everything() const
{
    QStringList paths;
    for (const QString &folder : {m_folder->path(), m_elsewhere->path()}) {
        QDirIterator entry(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                           QDirIterator::Subdirectories);
        while (entry.hasNext())
            paths.append(entry.next());
    }
    paths.sort();
    return paths;
}

void StationDirectoriesTest::dataOfTheWrongTypeIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("data");
    for (const char *name : {"getServerDir", "createDirectory"}) {
        QTest::addRow("%s, nothing", name) << QString::fromLatin1(name) << QVariant();
        QTest::addRow("%s, a map", name) << QString::fromLatin1(name)
                                         << QVariant(QVariantMap{{QStringLiteral("basePath"), QStringLiteral("/")}});
        QTest::addRow("%s, a number", name) << QString::fromLatin1(name) << QVariant(7);
        QTest::addRow("%s, bytes", name) << QString::fromLatin1(name) << QVariant(QByteArray("/"));
        QTest::addRow("%s, a list", name) << QString::fromLatin1(name) << QVariant(QStringList{QStringLiteral("/")});
    }
}

void StationDirectoriesTest::dataOfTheWrongTypeIsRefused()
{
    QFETCH(QString, name);
    QFETCH(QVariant, data);
    const QStringList before = everything();
    const StationReply reply = ask(name, data);
    QCOMPARE(reply.returnCode, QStringLiteral("BadRequest"));
    QVERIFY(!reply.data.isValid());
    QCOMPARE(everything(), before);
}

// Listing. ------------------------------------------------------------------------------------------------------------

void StationDirectoriesTest::foldersAreListedByName()
{
    const QStringList sorted{
        QStringLiteral("2026-01-02"),   QStringLiteral("Archive"), QStringLiteral("archive"),
        QStringLiteral("cam2"),         QStringLiteral("cam10"),   QStringLiteral("two words"),
        QStringLiteral("Übergabe Süd"), QStringLiteral("录像"),
    };
    for (auto name = sorted.rbegin(); name != sorted.rend(); ++name)
        QVERIFY(QDir().mkdir(path(*name)));
    QVERIFY(makeFile(path(QStringLiteral("a file"))));
    QVERIFY(QDir().mkpath(path(QStringLiteral("cam2/below"))));

    const StationReply reply = ask(QStringLiteral("getServerDir"), m_folder->path());
    QCOMPARE(reply.returnCode, QStringLiteral("0"));
    QCOMPARE(reply.data,
             QVariant(QVariantMap{{QStringLiteral("basePath"), m_folder->path()},
                                  {QStringLiteral("dirFolderList"), sorted}}));
    QCOMPARE(reply.data.toMap().value(QStringLiteral("dirFolderList")).metaType(), QMetaType::fromType<QStringList>());
}

void StationDirectoriesTest::foldersBehindLinksAreListed()
{
    QVERIFY(makeFile(m_elsewhere->filePath(QStringLiteral("file"))));
    QVERIFY(QFile::link(m_elsewhere->path(), path(QStringLiteral("to a folder"))));
    QVERIFY(QFile::link(m_elsewhere->filePath(QStringLiteral("file")), path(QStringLiteral("to a file"))));
    QVERIFY(QFile::link(path(QStringLiteral("nothing")), path(QStringLiteral("to nothing"))));
    QVERIFY(QFile::link(path(QStringLiteral("itself")), path(QStringLiteral("itself"))));
    QCOMPARE(listed(m_folder->path()).returnCode, QStringLiteral("0"));
    QCOMPARE(listed(m_folder->path()).names, QStringList{QStringLiteral("to a folder")});
}

void StationDirectoriesTest::hiddenFoldersAreLeftOut()
{
    QVERIFY(QDir().mkdir(path(QStringLiteral(".hidden"))));
    QVERIFY(QDir().mkdir(path(QStringLiteral("a.b"))));
    QCOMPARE(listed(m_folder->path()).names, QStringList{QStringLiteral("a.b")});
}

void StationDirectoriesTest::namesThatNoCommandCanCarryAreLeftOut()
{
    const QByteArray folder = QFile::encodeName(m_folder->path());
    const QByteArray latin1 = folder + "/K\xFChe";
    const QByteArray backslash = folder + "/a\\b";
    QCOMPARE(mkdir(latin1.constData(), 0755), 0);
    QCOMPARE(mkdir(backslash.constData(), 0755), 0);
    QVERIFY(QDir().mkdir(path(QStringLiteral("Kühe"))));
    const FolderList folders = listed(m_folder->path());
    QCOMPARE(rmdir(latin1.constData()), 0); // QTemporaryDir cannot name it either
    QCOMPARE(folders.returnCode, QStringLiteral("0"));
    QCOMPARE(folders.names, QStringList{QStringLiteral("Kühe")});
}

void StationDirectoriesTest::anEmptyFolderIsAnEmptyList()
{
    const StationReply reply = ask(QStringLiteral("getServerDir"), m_folder->path());
    QCOMPARE(reply.returnCode, QStringLiteral("0"));
    QCOMPARE(reply.data,
             QVariant(QVariantMap{{QStringLiteral("basePath"), m_folder->path()},
                                  {QStringLiteral("dirFolderList"), QStringList()}}));
}

void StationDirectoriesTest::aListedFolderCanBeListed()
{
    QVERIFY(QDir().mkpath(path(QStringLiteral("Süd/录 像/cam 1"))));
    QString folder = m_folder->path();
    for (const QString &name : {QStringLiteral("Süd"), QStringLiteral("录 像"), QStringLiteral("cam 1")}) {
        const FolderList folders = listed(folder);
        QCOMPARE(folders.names, QStringList{name});
        folder += u'/' + folders.names.front();
    }
    QCOMPARE(listed(folder).returnCode, QStringLiteral("0"));
}

void StationDirectoriesTest::theBasePathIsEchoed_data()
{
    QTest::addColumn<QString>("asked");
    QTest::addColumn<QString>("echoed");
    QTest::newRow("as asked") << QStringLiteral("/sub") << QStringLiteral("/sub");
    QTest::newRow("slash behind") << QStringLiteral("/sub/") << QStringLiteral("/sub/");
    QTest::newRow("two slashes") << QStringLiteral("//sub") << QStringLiteral("//sub");
    QTest::newRow("up and down") << QStringLiteral("/sub/../sub") << QStringLiteral("/sub/../sub");
    QTest::newRow("backslashes") << QStringLiteral("\\sub\\") << QStringLiteral("/sub/");
}

void StationDirectoriesTest::theBasePathIsEchoed()
{
    QFETCH(QString, asked);
    QFETCH(QString, echoed);
    QVERIFY(QDir().mkpath(path(QStringLiteral("sub/inside"))));
    const StationReply reply = ask(QStringLiteral("getServerDir"), m_folder->path() + asked);
    QCOMPARE(reply.returnCode, QStringLiteral("0"));
    QCOMPARE(reply.data.toMap().value(QStringLiteral("basePath")).toString(), m_folder->path() + echoed);
    QCOMPARE(reply.data.toMap().value(QStringLiteral("dirFolderList")).toStringList(),
             QStringList{QStringLiteral("inside")});
}

void StationDirectoriesTest::theEmptyBasePathListsTheVolumes()
{
    const StationReply reply = ask(QStringLiteral("getServerDir"), QString());
    QCOMPARE(reply.returnCode, QStringLiteral("0"));
    const QStringList roots{m_folder->path(), path(QStringLiteral("read-only"))};
    QCOMPARE(reply.data,
             QVariant(QVariantMap{{QStringLiteral("basePath"), QString()}, {QStringLiteral("dirFolderList"), roots}}));
}

void StationDirectoriesTest::listingIsRefused_data()
{
    QTest::addColumn<QString>("below"); // of the volume, or a path of its own
    QTest::addColumn<QString>("returnCode");
    QTest::newRow("missing") << QStringLiteral("/missing") << QStringLiteral("DirectoryNotFound");
    QTest::newRow("missing parent") << QStringLiteral("/missing/a") << QStringLiteral("DirectoryNotFound");
    QTest::newRow("a link to nothing") << QStringLiteral("/dangling") << QStringLiteral("DirectoryNotFound");
    QTest::newRow("a link to itself") << QStringLiteral("/loop") << QStringLiteral("DirectoryNotFound");
    QTest::newRow("a file") << QStringLiteral("/file") << QStringLiteral("NotADirectory");
    QTest::newRow("below a file") << QStringLiteral("/file/a") << QStringLiteral("NotADirectory");
    QTest::newRow("a long name") << u'/' + QString(256, u'n') << QStringLiteral("NameRefused");
    QTest::newRow("NUL") << QStringLiteral("/a\0b") << QStringLiteral("NameRefused");
    QTest::newRow("half a character") << u'/' + QString(QChar(0xD800)) << QStringLiteral("NameRefused");
    QTest::newRow("relative") << QStringLiteral("sub") << QStringLiteral("PathNotAbsolute");
    QTest::newRow("a dot") << QStringLiteral(".") << QStringLiteral("PathNotAbsolute");
    QTest::newRow("a drive") << QStringLiteral("D:\\Rec") << QStringLiteral("PathNotAbsolute");
}

void StationDirectoriesTest::listingIsRefused()
{
    QFETCH(QString, below);
    QFETCH(QString, returnCode);
    QVERIFY(makeFile(path(QStringLiteral("file"))));
    QVERIFY(QFile::link(path(QStringLiteral("missing")), path(QStringLiteral("dangling"))));
    QVERIFY(QFile::link(path(QStringLiteral("loop")), path(QStringLiteral("loop"))));
    const StationReply reply =
        ask(QStringLiteral("getServerDir"), below.startsWith(u'/') ? m_folder->path() + below : below);
    QCOMPARE(reply.returnCode, returnCode);
    QVERIFY(!reply.data.isValid());
}

void StationDirectoriesTest::anUnreadableFolderIsNoEmptyList()
{
    QVERIFY(QDir().mkpath(path(QStringLiteral("closed/inside"))));
    QVERIFY(setMode(path(QStringLiteral("closed")), 0311));
    StationReply reply;
    {
        const WithoutPrivileges user;
        reply = ask(QStringLiteral("getServerDir"), path(QStringLiteral("closed")));
    }
    QVERIFY(setMode(path(QStringLiteral("closed")), 0755));
    QCOMPARE(reply.returnCode, QStringLiteral("DirectoryNotReadable"));
    QVERIFY(!reply.data.isValid());
}

// Making. -------------------------------------------------------------------------------------------------------------

void StationDirectoriesTest::aFolderIsMade_data()
{
    QTest::addColumn<QString>("below");
    QTest::addColumn<QString>("made");
    QTest::newRow("one") << QStringLiteral("/new") << QStringLiteral("new");
    QTest::newRow("with parents") << QStringLiteral("/a/b/c") << QStringLiteral("a/b/c");
    QTest::newRow("backslashes") << QStringLiteral("\\a\\b") << QStringLiteral("a/b");
    QTest::newRow("blanks") << QStringLiteral("/ two  words ") << QStringLiteral(" two  words ");
    QTest::newRow("umlauts") << QStringLiteral("/Übergabe") << QStringLiteral("Übergabe");
    QTest::newRow("Chinese") << QStringLiteral("/录像/一") << QStringLiteral("录像/一");
    QTest::newRow("beyond 16 bits") << QStringLiteral("/cam 🎥") << QStringLiteral("cam 🎥");
    QTest::newRow("dots in names") << QStringLiteral("/.hidden/...") << QStringLiteral(".hidden/...");
    QTest::newRow("255 bytes") << u'/' + QString(255, u'n') << QString(255, u'n');
}

void StationDirectoriesTest::aFolderIsMade()
{
    QFETCH(QString, below);
    QFETCH(QString, made);
    const StationReply reply = ask(QStringLiteral("createDirectory"), m_folder->path() + below);
    QCOMPARE(reply.returnCode, QStringLiteral("0"));
    QVERIFY(!reply.data.isValid());
    QVERIFY(QFileInfo(path(made)).isDir());
    QCOMPARE(everything().size(), made.count(u'/') + 1);
    QCOMPARE(ask(QStringLiteral("createDirectory"), m_folder->path() + below).returnCode,
             QStringLiteral("DirectoryExists"));
}

void StationDirectoriesTest::aFolderIsMadeBehindALink()
{
    QVERIFY(QDir().mkdir(path(QStringLiteral("inside"))));
    QVERIFY(QFile::link(path(QStringLiteral("inside")), m_elsewhere->filePath(QStringLiteral("way in"))));
    QCOMPARE(ask(QStringLiteral("createDirectory"), m_elsewhere->filePath(QStringLiteral("way in/new"))).returnCode,
             QStringLiteral("0"));
    QVERIFY(QFileInfo(path(QStringLiteral("inside/new"))).isDir());
}

void StationDirectoriesTest::makingIsRefused_data()
{
    QTest::addColumn<QString>("asked"); // "%1" is the volume, "%2" a folder on none
    QTest::addColumn<QString>("returnCode");

    QTest::newRow("empty") << QStringLiteral("") << QStringLiteral("EmptyName");
    QTest::newRow("root") << QStringLiteral("/") << QStringLiteral("EmptyName");
    QTest::newRow("empty last name") << QStringLiteral("%1/new/") << QStringLiteral("EmptyName");
    QTest::newRow("empty name in between") << QStringLiteral("%1//new") << QStringLiteral("EmptyName");
    QTest::newRow("a share of another machine") << QStringLiteral("\\\\nas\\rec") << QStringLiteral("EmptyName");
    QTest::newRow("relative") << QStringLiteral("new") << QStringLiteral("PathNotAbsolute");
    QTest::newRow("a drive") << QStringLiteral("D:\\Rec") << QStringLiteral("PathNotAbsolute");
    QTest::newRow("blanks only") << QStringLiteral("  ") << QStringLiteral("PathNotAbsolute");

    QTest::newRow("outside") << QStringLiteral("%2/new") << QStringLiteral("OutsideVolumes");
    QTest::newRow("outside, with parents") << QStringLiteral("%2/a/b/c") << QStringLiteral("OutsideVolumes");
    QTest::newRow("outside, beside the volume") << QStringLiteral("%1-beside/new") << QStringLiteral("OutsideVolumes");

    QTest::newRow("a folder") << QStringLiteral("%1/folder") << QStringLiteral("DirectoryExists");
    QTest::newRow("the volume itself") << QStringLiteral("%1") << QStringLiteral("DirectoryExists");
    QTest::newRow("a link to a folder") << QStringLiteral("%1/link") << QStringLiteral("DirectoryExists");
    QTest::newRow("a file") << QStringLiteral("%1/file") << QStringLiteral("FileExists");
    QTest::newRow("a link to nothing") << QStringLiteral("%1/dangling") << QStringLiteral("FileExists");
    QTest::newRow("below a file") << QStringLiteral("%1/file/new") << QStringLiteral("NotADirectory");
    QTest::newRow("far below a file") << QStringLiteral("%1/folder/../file/a/b") << QStringLiteral("NameRefused");
    QTest::newRow("below a link to nothing") << QStringLiteral("%1/dangling/a/b") << QStringLiteral("NotADirectory");
    QTest::newRow("below a link to itself") << QStringLiteral("%1/loop/new") << QStringLiteral("NotADirectory");

    QTest::newRow("a dot") << QStringLiteral("%1/a/.") << QStringLiteral("NameRefused");
    QTest::newRow("two dots") << QStringLiteral("%1/a/../b") << QStringLiteral("NameRefused");
    QTest::newRow("two dots out of the volume") << QStringLiteral("%1/../new") << QStringLiteral("NameRefused");
    QTest::newRow("NUL") << QStringLiteral("%1/a\0b") << QStringLiteral("NameRefused");
    QTest::newRow("NUL in a parent") << QStringLiteral("%1/a\0b/new") << QStringLiteral("NameRefused");
    QTest::newRow("half a character") << QStringLiteral("%1/a/") + QChar(0xDC00) << QStringLiteral("NameRefused");
    QTest::newRow("256 bytes") << QStringLiteral("%1/") + QString(256, u'n') << QStringLiteral("NameRefused");
    QTest::newRow("256 bytes in 128 letters")
        << QStringLiteral("%1/") + QString(128, u'ä') << QStringLiteral("NameRefused");
    QTest::newRow("a long name behind new parents")
        << QStringLiteral("%1/a/b/c/") + QString(256, u'n') << QStringLiteral("NameRefused");
    QTest::newRow("a long name behind an old and a new parent")
        << QStringLiteral("%1/folder/b/") + QString(256, u'n') + QStringLiteral("/d") << QStringLiteral("NameRefused");
    QTest::newRow("a long path") << QStringLiteral("%1") + QStringLiteral("/abcdefghi").repeated(500)
                                 << QStringLiteral("NameRefused");
}

void StationDirectoriesTest::makingIsRefused()
{
    QFETCH(QString, asked);
    QFETCH(QString, returnCode);
    QVERIFY(QDir().mkdir(path(QStringLiteral("folder"))));
    QVERIFY(makeFile(path(QStringLiteral("file"))));
    QVERIFY(QFile::link(path(QStringLiteral("folder")), path(QStringLiteral("link"))));
    QVERIFY(QFile::link(path(QStringLiteral("missing")), path(QStringLiteral("dangling"))));
    QVERIFY(QFile::link(path(QStringLiteral("loop")), path(QStringLiteral("loop"))));
    const QStringList before = everything();
    asked.replace(QStringLiteral("%1"), m_folder->path()).replace(QStringLiteral("%2"), m_elsewhere->path());
    const StationReply reply = ask(QStringLiteral("createDirectory"), asked);
    QCOMPARE(reply.returnCode, returnCode);
    QVERIFY(!reply.data.isValid());
    QCOMPARE(everything(), before);
    QVERIFY(!QFileInfo::exists(m_folder->path() + QStringLiteral("-beside")));
}

void StationDirectoriesTest::aFolderThatMayNotBeWrittenIsRefused()
{
    QVERIFY(QDir().mkdir(path(QStringLiteral("locked"))));
    QVERIFY(setMode(path(QStringLiteral("locked")), 0555));
    StationReply reply;
    {
        const WithoutPrivileges user;
        reply = ask(QStringLiteral("createDirectory"), path(QStringLiteral("locked/a/b")));
    }
    QCOMPARE(reply.returnCode, QStringLiteral("PermissionDenied"));
    QCOMPARE(everything(), QStringList{path(QStringLiteral("locked"))});
}

void StationDirectoriesTest::aFolderThatMayNotBeEnteredIsRefused()
{
    QVERIFY(QDir().mkdir(path(QStringLiteral("closed"))));
    QVERIFY(setMode(path(QStringLiteral("closed")), 0));
    StationReply reply;
    {
        const WithoutPrivileges user;
        reply = ask(QStringLiteral("createDirectory"), path(QStringLiteral("closed/new")));
    }
    QVERIFY(setMode(path(QStringLiteral("closed")), 0755));
    QCOMPARE(reply.returnCode, QStringLiteral("PermissionDenied"));
    QCOMPARE(everything(), QStringList{path(QStringLiteral("closed"))});
}

void StationDirectoriesTest::aReadOnlyVolumeIsRefused()
{
    QVERIFY(QDir().mkdir(path(QStringLiteral("read-only"))));
    QCOMPARE(ask(QStringLiteral("createDirectory"), path(QStringLiteral("read-only/a/b"))).returnCode,
             QStringLiteral("VolumeReadOnly"));
    QCOMPARE(everything(), QStringList{path(QStringLiteral("read-only"))});
}

void StationDirectoriesTest::aLinkOutOfTheVolumesIsRefused()
{
    QVERIFY(QFile::link(m_elsewhere->path(), path(QStringLiteral("way out"))));
    QCOMPARE(ask(QStringLiteral("createDirectory"), path(QStringLiteral("way out/a/b"))).returnCode,
             QStringLiteral("OutsideVolumes"));
    QCOMPARE(everything(), QStringList{path(QStringLiteral("way out"))});
}

void StationDirectoriesTest::systemErrorsHaveTheirWords_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("returnCode");
    QTest::newRow("no space") << ENOSPC << QStringLiteral("VolumeFull");
    QTest::newRow("no quota") << EDQUOT << QStringLiteral("VolumeFull");
    QTest::newRow("read-only") << EROFS << QStringLiteral("VolumeReadOnly");
    QTest::newRow("access") << EACCES << QStringLiteral("PermissionDenied");
    QTest::newRow("permission") << EPERM << QStringLiteral("PermissionDenied");
    QTest::newRow("long name") << ENAMETOOLONG << QStringLiteral("NameRefused");
    QTest::newRow("character the file system lacks") << EINVAL << QStringLiteral("NameRefused");
    QTest::newRow("bytes that are no text") << EILSEQ << QStringLiteral("NameRefused");
    QTest::newRow("in the way") << EEXIST << QStringLiteral("FileExists");
    QTest::newRow("no folder") << ENOTDIR << QStringLiteral("NotADirectory");
    QTest::newRow("broken disk") << EIO << QStringLiteral("CannotCreate");
    QTest::newRow("too many folders") << EMLINK << QStringLiteral("CannotCreate");
    QTest::newRow("parent taken away") << ENOENT << QStringLiteral("CannotCreate");
}

void StationDirectoriesTest::systemErrorsHaveTheirWords()
{
    QFETCH(int, error);
    QFETCH(QString, returnCode);
    QCOMPARE(createFailure(std::error_code(error, std::system_category())), returnCode);
}

QTEST_GUILESS_MAIN(StationDirectoriesTest)
#include "tst_station_directories.moc"
