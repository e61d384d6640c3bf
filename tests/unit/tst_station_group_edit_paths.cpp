#include "GroupEditing.h"

#include <QRegularExpression>
#include <QTest>

using namespace GroupEditing;

/// The rules of a group's paths.
class StationGroupEditPathsTest : public QObject, private Edits
{
    Q_OBJECT

private slots:
    void init();

    void pathsAreKeptInOneWay();
    void aPathIsRefused_data();
    void aPathIsRefused();
    void aPathComesOnce();
    void aLinkToAPathOfTheGroupIsThatPath();
    void networkPathsNeedSomebodyWhoKnowsThem();
    void aPathIsChanged();
    void aPathThatChangesItsKindIsLookedAt();
    void pathsAreRemoved();
};

void StationGroupEditPathsTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    setUp();
}

void StationGroupEditPathsTest::pathsAreKeptInOneWay()
{
    const QList<NewPath> paths{
        newPath("\\a\\\\b//", 2048), newPath("/a/", 0), {QStringLiteral("\\\\nas\\rec\\"), host, 1024, true}};
    QCOMPARE(errors(group("1"), [&](GroupEdit &edit) { edit.addPaths(add, paths); }), QStringList());
    QCOMPARE(text(m_after.paths), QStringLiteral("/a/b 0 2048 0, /a 0 0 0, //nas/rec 1 1024 1"));
    QCOMPARE(m_local.looked(), QString::fromLatin1("/a/b /a").split(u' '));
    QCOMPARE(m_nas.looked(), QStringList{QStringLiteral("//nas/rec")});
}

void StationGroupEditPathsTest::aPathIsRefused_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("answer");
    QTest::newRow("relative") << QStringLiteral("a/b") << local << QStringLiteral("PathNotAbsolute");
    QTest::newRow("empty") << QString() << local << QStringLiteral("PathNotAbsolute");
    QTest::newRow("missing") << QStringLiteral("/none") << local << QStringLiteral("DirectoryNotFound");
    QTest::newRow("a file") << QStringLiteral("/file") << local << QStringLiteral("NotADirectory");
    QTest::newRow("outside") << QStringLiteral("/proc") << local << QStringLiteral("OutsideVolumes");
    QTest::newRow("locked") << QStringLiteral("/locked") << local << QStringLiteral("PathNotWritable|PermissionDenied");
    QTest::newRow("up") << QStringLiteral("/a/../a/b") << local << QStringLiteral("NameRefused");
    QTest::newRow("here") << QStringLiteral("/a/.") << local << QStringLiteral("NameRefused");
    QTest::newRow("a share as local") << QStringLiteral("\\\\nas\\rec") << local << QStringLiteral("PathTypeRefused");
    QTest::newRow("local as a share") << QStringLiteral("/a/b") << host << QStringLiteral("PathTypeRefused");
    QTest::newRow("local as a domain's") << QStringLiteral("/a/b") << domain << QStringLiteral("PathTypeRefused");
    QTest::newRow("a host alone") << QStringLiteral("//nas/") << host << QStringLiteral("PathTypeRefused");
    QTest::newRow("a share, up") << QStringLiteral("//nas/rec/../b") << host << QStringLiteral("NameRefused");
    QTest::newRow("no kind") << QStringLiteral("/a") << 3 << QStringLiteral("PathTypeRefused");
    QTest::newRow("less than a kind") << QStringLiteral("/a") << -1 << QStringLiteral("PathTypeRefused");
}

void StationGroupEditPathsTest::aPathIsRefused()
{
    QFETCH(QString, path);
    QFETCH(int, kind);
    QFETCH(QString, answer);
    const QStringList found = errors(group("1"), [&](GroupEdit &edit) {
        edit.addPaths(add, {{path, kind, 0, false}});
    });
    QCOMPARE(found, QStringList{QStringLiteral("added|0|%1|%2").arg(path, answer)});
}

void StationGroupEditPathsTest::aPathComesOnce()
{
    const RecordingGroup before = group("1", {localPath("/a")});
    const QList<NewPath> paths{newPath("/a/"), newPath("/a/b"), newPath("\\a\\b", 512)};
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.addPaths(add, paths); }),
             (QStringList{QStringLiteral("added|0|/a/|PathInGroup"), QStringLiteral("added|2|\\a\\b|PathInGroup")}));
    m_site.groups = {group("1"), group("2", {localPath("/a")})};
    QCOMPARE(errors(group("1"), [&](GroupEdit &edit) { edit.addPaths(add, {newPath("/a")}); }), QStringList());
}

void StationGroupEditPathsTest::aLinkToAPathOfTheGroupIsThatPath()
{
    m_local.add(QStringLiteral("/real"), QStringLiteral("/"), 4096, QStringLiteral("/real"));
    m_local.add(QStringLiteral("/link"), QStringLiteral("/"), 4096, QStringLiteral("/real"));
    const RecordingGroup before = group("1", {localPath("/real")});
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.addPaths(add, {newPath("/link")}); }),
             QStringList{QStringLiteral("added|0|/link|PathInGroup")});
    QCOMPARE(errors(group("1"),
                    [&](GroupEdit &edit) {
                        edit.addPaths(add, {newPath("/link"), newPath("/real")});
                    }),
             QStringList{QStringLiteral("added|1|/real|PathInGroup")});
}

void StationGroupEditPathsTest::networkPathsNeedSomebodyWhoKnowsThem()
{
    m_site.paths = {&m_local, nullptr, nullptr};
    const QList<NewPath> paths{newPath("//nas/rec", 0, host), newPath("//nas/rec/b", 0, domain)};
    QCOMPARE(errors(group("1"), [&](GroupEdit &edit) { edit.addPaths(add, paths); }),
             (QStringList{QStringLiteral("added|0|//nas/rec|NasServerNotFound"),
                          QStringLiteral("added|1|//nas/rec/b|NasServerNotFound")}));
}

void StationGroupEditPathsTest::aPathIsChanged()
{
    const RecordingGroup before = group("1", {localPath("/a", 1024), localPath("/gone", 2048)});
    const QList<PathChange> changes{{QStringLiteral("/gone/"), local, {}, true}, reserveOf("\\a", 3072)};
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.changePaths(set, changes); }), QStringList());
    QCOMPARE(text(m_after.paths), QStringLiteral("/a 0 3072 0, /gone 0 2048 1"));
    QCOMPARE(m_local.looked(), QStringList());
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.changePaths(set, {reserveOf("/a/b", 0)}); }),
             QStringList{QStringLiteral("set|0|/a/b|PathNotInGroup")});
}

void StationGroupEditPathsTest::aPathThatChangesItsKindIsLookedAt()
{
    const RecordingGroup before =
        group("1", {localPath("/a"), {QStringLiteral("//nas/rec"), PathKind::NetHost, 4096, false}});
    const auto kindOf = [](const char *path, int kind) { return PathChange{QString::fromLatin1(path), kind, {}, {}}; };
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.changePaths(set, {kindOf("//nas/rec", domain)}); }),
             QStringList());
    QCOMPARE(text(m_after.paths), QStringLiteral("/a 0 0 0, //nas/rec 2 4096 0"));
    QCOMPARE(m_nas.looked(), QStringList{QStringLiteral("//nas/rec")});
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.changePaths(set, {kindOf("/a", host)}); }),
             QStringList{QStringLiteral("set|0|/a|PathTypeRefused")});
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.changePaths(set, {kindOf("/a", 7)}); }),
             QStringList{QStringLiteral("set|0|/a|PathTypeRefused")});
}

void StationGroupEditPathsTest::pathsAreRemoved()
{
    const RecordingGroup before = group("1", {localPath("/a"), localPath("/gone")});
    const QStringList removed{QStringLiteral("\\gone\\"), QStringLiteral("/gone"), QStringLiteral("/a")};
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.removePaths(rm, removed); }),
             QStringList{QStringLiteral("removed|1|/gone|PathNotInGroup")});
    QVERIFY(m_after.paths.isEmpty());
}

QTEST_GUILESS_MAIN(StationGroupEditPathsTest)
#include "tst_station_group_edit_paths.moc"
