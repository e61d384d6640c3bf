#include "smb/SmbPath.h"

#include <QTest>

/// Places on SMB servers, as operators write them.
class SmbPathTest : public QObject
{
    Q_OBJECT

private slots:
    void pathsAreRead_data();
    void pathsAreRead();
    void otherTextIsRefused_data();
    void otherTextIsRefused();
    void hostsAreRead_data();
    void hostsAreRead();
    void hostsAreComparedWithoutCapitals();
    void aNameIsEscapedBehindItsFolder();
};

void SmbPathTest::pathsAreRead_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("url");
    const auto row = [](const char *name, const char *path, const char *text, const char *url) {
        QTest::newRow(name) << QString::fromUtf8(path) << QString::fromUtf8(text) << QByteArray(url);
    };
    row("backslashes", R"(\\nas\video\cam 1)", "//nas/video/cam 1", "smb://nas/video/cam%201");
    row("slashes", "//nas/video/cam1", "//nas/video/cam1", "smb://nas/video/cam1");
    row("an address", "smb://nas/video/cam1", "//nas/video/cam1", "smb://nas/video/cam1");
    row("an address in capitals", "SMB://nas/video", "//nas/video", "smb://nas/video");
    row("mixed separators", R"(\\nas/video\a/b)", "//nas/video/a/b", "smb://nas/video/a/b");
    row("a port", "//nas:1445/video", "//nas:1445/video", "smb://nas:1445/video");
    row("the usual port", "//nas:445/video", "//nas/video", "smb://nas/video");
    row("a server", "//nas", "//nas", "smb://nas/");
    row("a server with a slash", R"(\\nas\)", "//nas", "smb://nas/");
    row("separators at the end and in a row", "//nas/video//a///", "//nas/video/a", "smb://nas/video/a");
    row("an IPv4 address", "//192.168.0.7/video", "//192.168.0.7/video", "smb://192.168.0.7/video");
    row("umlauts", "//nas/Süd/Größe", "//nas/Süd/Größe", "smb://nas/S%C3%BCd/Gr%C3%B6%C3%9Fe");
    row("Chinese", "//nas/录像/摄像机", "//nas/录像/摄像机",
        "smb://nas/%E5%BD%95%E5%83%8F/%E6%91%84%E5%83%8F%E6%9C%BA");
    row("what has a meaning in an address", "//nas/a%20b/c#d&e@f;g=h+i", "//nas/a%20b/c#d&e@f;g=h+i",
        "smb://nas/a%2520b/c%23d%26e%40f%3Bg%3Dh%2Bi");
    row("a dot", "//nas/video/./a", "//nas/video/a", "smb://nas/video/a");
    row("up a folder", "//nas/video/a/../b", "//nas/video/b", "smb://nas/video/b");
    row("up to the server", "//nas/video/..", "//nas", "smb://nas/");
    row("up and no further", "//nas/video/../../../other", "//nas/other", "smb://nas/other");
    row("three dots are a name", "//nas/video/...", "//nas/video/...", "smb://nas/video/...");
}

void SmbPathTest::pathsAreRead()
{
    QFETCH(QString, path);
    const std::optional<SmbPath> read = SmbPath::parse(path);
    QVERIFY(read);
    QTEST(read->text(), "text");
    QTEST(read->url(), "url");
    const std::optional<SmbPath> again = SmbPath::parse(read->text());
    QVERIFY(again);
    QCOMPARE(again->text(), read->text());
}

void SmbPathTest::otherTextIsRefused_data()
{
    QTest::addColumn<QString>("path");
    for (const char *path : {"",
                             "/",
                             "//",
                             R"(\\)",
                             "///video",
                             "/mnt/video",
                             "nas/video",
                             "http://nas/video",
                             "smb:nas/video",
                             "smb://",
                             "//nas:0/video",
                             "//nas:65536/video",
                             "//nas:/video",
                             "//nas:x/video",
                             "//user@nas/video",
                             "//user:password@nas/video",
                             "//WORKGROUP;user@nas/v",
                             "//nas video/a",
                             "//.nas/video",
                             "//nas./video",
                             "//-nas/video",
                             "//[::1]/video",
                             "//nas/video/a:b",
                             "//nas/video/a*b",
                             "//nas/video/a?b",
                             "//nas/vi<deo",
                             "//nas/video/a\nb",
                             "//nas/video/a|b"})
        QTest::newRow(*path ? path : "empty") << QString::fromUtf8(path);
    QTest::newRow("a NUL") << QStringLiteral("//nas/video/a") + QChar(u'\0') + u'b';
}

void SmbPathTest::otherTextIsRefused()
{
    QFETCH(QString, path);
    QVERIFY(!SmbPath::parse(path));
}

void SmbPathTest::hostsAreRead_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<QString>("text");
    QTest::newRow("a name") << QStringLiteral("nas-1.local") << QStringLiteral("//nas-1.local");
    QTest::newRow("one letter") << QStringLiteral("n") << QStringLiteral("//n");
    QTest::newRow("underscores") << QStringLiteral("_nas_") << QStringLiteral("//_nas_");
    QTest::newRow("a port") << QStringLiteral("nas:65535") << QStringLiteral("//nas:65535");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("a share") << QStringLiteral("nas/video") << QString();
    QTest::newRow("backslashes") << QStringLiteral("\\\\nas") << QString();
    QTest::newRow("a blank") << QStringLiteral("nas ") << QString();
    QTest::newRow("a line end") << QStringLiteral("nas\n") << QString();
}

void SmbPathTest::hostsAreRead()
{
    QFETCH(QString, host);
    QFETCH(QString, text);
    const std::optional<SmbPath> read = SmbPath::parseHost(host);
    QCOMPARE(read.has_value(), !text.isEmpty());
    if (read)
        QCOMPARE(read->text(), text);
}

void SmbPathTest::hostsAreComparedWithoutCapitals()
{
    const SmbPath registered = *SmbPath::parseHost(QStringLiteral("NAS-1"));
    QVERIFY(registered.isOnHostOf(*SmbPath::parse(QStringLiteral("//nas-1:445/video"))));
    QVERIFY(!registered.isOnHostOf(*SmbPath::parse(QStringLiteral("//nas-1:1445/video"))));
    QVERIFY(!registered.isOnHostOf(*SmbPath::parse(QStringLiteral("//nas-10/video"))));
}

void SmbPathTest::aNameIsEscapedBehindItsFolder()
{
    const SmbPath folder = *SmbPath::parse(QStringLiteral("//nas/my video"));
    QCOMPARE(folder.urlOf(QStringLiteral("a b%")), QByteArray("smb://nas/my%20video/a%20b%25"));
}

QTEST_APPLESS_MAIN(SmbPathTest)
#include "tst_smb_path.moc"
