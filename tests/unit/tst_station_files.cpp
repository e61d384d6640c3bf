#include "LocalEndpoint.h"
#include "files/FileName.h"
#include "files/PrivateFolder.h"
#include "usage/FolderReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
mode_t modeOf(const QString &path)
{
    struct stat facts = {};
    return lstat(QFile::encodeName(path).constData(), &facts) == 0 ? facts.st_mode & 07777 : 0;
}

/// Sets the process's mask as long as it lives.
class Mask
{
public:
    explicit Mask(mode_t mask)
        : m_before(umask(mask))
    {
    }
    ~Mask() { umask(m_before); }
    Mask(const Mask &) = delete;
    Mask &operator=(const Mask &) = delete;

private:
    mode_t m_before;
};

/// Sets a variable of the environment as long as it lives; removes it where there is no value.
class Variable
{
public:
    Variable(const char *name, const QByteArray &value)
        : m_name(name)
        , m_wasSet(qEnvironmentVariableIsSet(name))
        , m_before(qgetenv(name))
    {
        set(!value.isNull(), value);
    }
    ~Variable() { set(m_wasSet, m_before); }
    Variable(const Variable &) = delete;
    Variable &operator=(const Variable &) = delete;

private:
    void set(bool isSet, const QByteArray &value) const
    {
        if (isSet)
            qputenv(m_name, value);
        else
            qunsetenv(m_name);
    }

    const char *m_name;
    bool m_wasSet;
    QByteArray m_before;
};
} // namespace

/// Where the station's files lie, whose they are, and what they are called.
class StationFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }
    void cleanup() { removeTree(m_folder->path()); } // Qt leaves what has no name for it

    void theDefaultFolder_data();
    void theDefaultFolder();

    void foldersAndFilesAreForTheUserAlone_data();
    void foldersAndFilesAreForTheUserAlone();
    void aFolderThatIsThereStaysAsItIs();
    void plantedLinksAreNotFollowed();
    void nothingIsReplaced();
    void aTreeIsRemovedButNotWhatItsLinksLeadTo();

    void namesComeBack_data();
    void namesComeBack();
    void differentNamesAreDifferentTexts();
    void filesWithOddNamesCountEach();

private:
    QString path(const char *name) const { return m_folder->filePath(QString::fromLatin1(name)); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void StationFilesTest::theDefaultFolder_data()
{
    QTest::addColumn<QByteArray>("dataHome");
    QTest::addColumn<QByteArray>("home");
    QTest::addColumn<QString>("folder");
    QTest::newRow("home") << QByteArray() << QByteArray("/home/a")
                          << QStringLiteral("/home/a/.local/share/recording-station");
    QTest::newRow("data home") << QByteArray("/srv/data") << QByteArray("/home/a")
                               << QStringLiteral("/srv/data/recording-station");
    QTest::newRow("empty data home") << QByteArray("") << QByteArray("/home/a")
                                     << QStringLiteral("/home/a/.local/share/recording-station");
    QTest::newRow("relative data home") << QByteArray("data") << QByteArray("/home/a")
                                        << QStringLiteral("/home/a/.local/share/recording-station");
    QTest::newRow("no home") << QByteArray() << QByteArray() << QString();
    QTest::newRow("empty home") << QByteArray() << QByteArray("") << QString();
    QTest::newRow("no home, relative data home") << QByteArray("data") << QByteArray() << QString();
    QTest::newRow("no home, data home") << QByteArray("/srv/data") << QByteArray()
                                        << QStringLiteral("/srv/data/recording-station");
}

void StationFilesTest::theDefaultFolder()
{
    QFETCH(QByteArray, dataHome);
    QFETCH(QByteArray, home);
    QFETCH(QString, folder);
    const Variable setDataHome("XDG_DATA_HOME", dataHome);
    const Variable setHome("HOME", home);
    QCOMPARE(defaultStationFolder(), folder);
}

void StationFilesTest::foldersAndFilesAreForTheUserAlone_data()
{
    QTest::addColumn<uint>("mask");
    QTest::newRow("none") << 0U;
    QTest::newRow("usual") << 0022U;
    QTest::newRow("more than useful") << 0177U;
}

void StationFilesTest::foldersAndFilesAreForTheUserAlone()
{
    QFETCH(uint, mask);
    QVERIFY(QDir().mkpath(path("parent")));
    const Mask set(mask);
    QVERIFY(PrivateFolder::make(path("parent/data")));
    QCOMPARE(modeOf(path("parent/data")), 0700U);
    const PrivateFolder data(path("parent/data"));
    QVERIFY(data.isOpen());
    QVERIFY(data.folder(QStringLiteral("a")).isOpen());
    QCOMPARE(modeOf(path("parent/data/a")), 0700U);
    QVERIFY(data.folder(QStringLiteral("a")).newFile(QStringLiteral("file")).isOpen());
    QCOMPARE(modeOf(path("parent/data/a/file")), 0600U);
}

void StationFilesTest::aFolderThatIsThereStaysAsItIs()
{
    QVERIFY(QDir().mkpath(path("data")));
    QCOMPARE(chmod(QFile::encodeName(path("data")).constData(), 0750), 0);
    QVERIFY(PrivateFolder::make(path("data")));
    QVERIFY(PrivateFolder::make(path("data/")));
    QCOMPARE(modeOf(path("data")), 0750U);
    QFile file(path("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(!PrivateFolder::make(path("file")));
    QVERIFY(!PrivateFolder::make(QString()));
}

void StationFilesTest::plantedLinksAreNotFollowed()
{
    QVERIFY(QDir().mkpath(path("data")));
    QVERIFY(QDir().mkpath(path("target")));
    QVERIFY(QFile::link(path("target"), path("data/folder")));
    QVERIFY(QFile::link(path("target/file"), path("data/file")));
    QVERIFY(QFile::link(path("data"), path("link")));
    const PrivateFolder data(path("data"));
    QVERIFY(!data.folder(QStringLiteral("folder")).isOpen());
    QVERIFY(!data.newFile(QStringLiteral("file")).isOpen());
    QVERIFY(!PrivateFolder(path("link")).isOpen());
    QVERIFY(QDir(path("target")).isEmpty());
}

void StationFilesTest::nothingIsReplaced()
{
    QVERIFY(QDir().mkpath(path("new")));
    QVERIFY(QDir().mkpath(path("folder")));
    QVERIFY(QFile::link(path("missing"), path("dangling")));
    const PrivateFolder folder(m_folder->path());
    QVERIFY(!folder.rename(QStringLiteral("new"), QStringLiteral("folder")));
    QVERIFY(!folder.rename(QStringLiteral("new"), QStringLiteral("dangling")));
    QVERIFY(folder.rename(QStringLiteral("new"), QStringLiteral("free")));
    QVERIFY(QFileInfo(path("free")).isDir() && QFileInfo(path("dangling")).isSymLink());
    QVERIFY(isNameTaken(path("dangling")) && isNameTaken(path("free")) && !isNameTaken(path("new")));
}

void StationFilesTest::aTreeIsRemovedButNotWhatItsLinksLeadTo()
{
    QVERIFY(QDir().mkpath(path("tree/a/b")));
    QVERIFY(QDir().mkpath(path("target/kept")));
    QVERIFY(QFile::link(path("target"), path("tree/a/link")));
    removeTree(path("tree"));
    QVERIFY(!QFileInfo::exists(path("tree")));
    QVERIFY(QFile::link(path("target"), path("tree")));
    removeTree(path("tree"));
    QVERIFY(!isNameTaken(path("tree")));
    QVERIFY(QFileInfo(path("target/kept")).isDir());
}

void StationFilesTest::namesComeBack_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("plain") << QByteArray("00-00.rec");
    QTest::newRow("letters") << QByteArray("caf\xc3\xa9 \xe5\xaf\x86 \xf0\x9f\x93\xb7");
    QTest::newRow("another coding") << QByteArray("caf\xe9");
    QTest::newRow("cut off") << QByteArray("a\xe5\xaf");
    QTest::newRow("bytes alone") << QByteArray("\xff\xfe\x80");
    QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbf"
                                                   "a");
    QTest::newRow("half of a pair") << QByteArray("\xed\xa0\x80");
    QTest::newRow("too long a form") << QByteArray("\xc0\xaf");
    QTest::newRow("replacement character") << QByteArray("\xef\xbf\xbd");
    QTest::newRow("the characters that stand for bytes") << QByteArray("\xf4\x8f\xbe\x80\xf4\x8f\xbf\xbf");
}

void StationFilesTest::namesComeBack()
{
    QFETCH(QByteArray, name);
    const QString text = decodedName(name.constData());
    QCOMPARE(encodedName(text), name);
    QCOMPARE(QString::fromUtf8(text.toUtf8()), text); // as the database keeps it
    QCOMPARE(encodedName(QStringLiteral("/srv/ä/") + text), "/srv/ä/" + name);
}

void StationFilesTest::differentNamesAreDifferentTexts()
{
    QSet<QString> texts;
    for (int first = 1; first < 256; ++first) {
        const char name[] = {'a', static_cast<char>(first), '\0'};
        texts.insert(decodedName(name));
    }
    QCOMPARE(texts.size(), 255);
}

void StationFilesTest::filesWithOddNamesCountEach()
{
    const QByteArray folder = QFile::encodeName(m_folder->path());
    for (const char *name : {"/a\xe9", "/a\xe8", "/plain"}) {
        const OpenFile file(open((folder + name).constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
        if (!file.isOpen() && errno == EILSEQ)
            QSKIP("this file system takes no such names");
        QCOMPARE(ftruncate(file.get(), 7), 0);
    }
    const RecordedFiles files = readFiles(m_folder->path());
    QCOMPARE(files.result, ReadResult::Done);
    QCOMPARE(files.sizes.size(), 3);
    for (auto file = files.sizes.cbegin(); file != files.sizes.cend(); ++file)
        QCOMPARE(fileSize(m_folder->path() + u'/' + file.key()), 7);
}

QTEST_GUILESS_MAIN(StationFilesTest)
#include "tst_station_files.moc"
