#include "GroupEditing.h"

#include <QRegularExpression>
#include <QTest>

#include <limits>

using namespace GroupEditing;

/// The rules of what groups reserve on the volumes.
class StationGroupEditReservesTest : public QObject, private Edits
{
    Q_OBJECT

private slots:
    void init();

    void reservesAreChecked_data();
    void reservesAreChecked();
    void reservesOfAllGroupsAreAddedUp_data();
    void reservesOfAllGroupsAreAddedUp();
    void aPathWhoseVolumeIsGoneDoesNotCount();
    void anOvercommittedVolumeStopsOnlyWhatReservesMore();
    void hugeReservesDoNotOverflow();
    void reservesOnTheNetworkAreAddedUp();
    void whatAnEditIsNotAboutIsNotAsked();
};

void StationGroupEditReservesTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    setUp();
}

void StationGroupEditReservesTest::reservesAreChecked_data()
{
    QTest::addColumn<qint64>("megabytes");
    QTest::addColumn<bool>("isTaken");
    for (const qint64 taken : {0, 1024, 10240})
        QTest::addRow("%lld", static_cast<long long>(taken)) << taken << true;
    for (const qint64 refused : {Q_INT64_C(-1024), Q_INT64_C(-1), Q_INT64_C(1), Q_INT64_C(1000), Q_INT64_C(1025),
                                 std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max()})
        QTest::addRow("%lld", static_cast<long long>(refused)) << refused << false;
}

void StationGroupEditReservesTest::reservesAreChecked()
{
    QFETCH(qint64, megabytes);
    QFETCH(bool, isTaken);
    QCOMPARE(errors(group("1"), [&](GroupEdit &edit) { edit.addPaths(add, {newPath("/a", megabytes)}); }),
             isTaken ? QStringList() : QStringList{QStringLiteral("added|0|/a|ReservedSpaceRefused")});
    const RecordingGroup before = group("1", {localPath("/a")});
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.changePaths(set, {reserveOf("/a", megabytes)}); }),
             isTaken ? QStringList() : QStringList{QStringLiteral("set|0|/a|ReservedSpaceRefused")});
}

void StationGroupEditReservesTest::reservesOfAllGroupsAreAddedUp_data()
{
    QTest::addColumn<qint64>("own"); // of the group's second path, on the same volume
    QTest::addColumn<qint64>("others");
    QTest::addColumn<qint64>("wanted");
    QTest::addColumn<bool>("isTaken");
    QTest::newRow("all of the volume") << Q_INT64_C(0) << Q_INT64_C(0) << Q_INT64_C(10240) << true;
    QTest::newRow("more than it") << Q_INT64_C(0) << Q_INT64_C(0) << Q_INT64_C(11264) << false;
    QTest::newRow("beside others") << Q_INT64_C(0) << Q_INT64_C(6144) << Q_INT64_C(4096) << true;
    QTest::newRow("too much beside others") << Q_INT64_C(0) << Q_INT64_C(6144) << Q_INT64_C(5120) << false;
    QTest::newRow("beside its own and others") << Q_INT64_C(2048) << Q_INT64_C(6144) << Q_INT64_C(2048) << true;
    QTest::newRow("too much beside both") << Q_INT64_C(2048) << Q_INT64_C(6144) << Q_INT64_C(3072) << false;
}

void StationGroupEditReservesTest::reservesOfAllGroupsAreAddedUp()
{
    QFETCH(qint64, own);
    QFETCH(qint64, others);
    QFETCH(qint64, wanted);
    QFETCH(bool, isTaken);
    m_local.add(QStringLiteral("/n"), QStringLiteral("/"), 10 * 1024);
    const RecordingGroup before = group("1", {localPath("/a/b", own)});
    // Half of the others' reserve lies with each of two groups, and what lies on the other volume does not count.
    m_site.groups = {before, group("2", {localPath("/a", others / 2), localPath("/mnt/c", 4096)}),
                     group("3", {localPath("/n", others / 2)})};
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.addPaths(add, {newPath("/a", wanted)}); }),
             isTaken ? QStringList() : QStringList{QStringLiteral("added|0|/a|ReservedSpaceExceedsVolume")});

    const RecordingGroup both = group("1", {localPath("/a/b", own), localPath("/a", 1024)});
    m_site.groups.front() = both;
    QCOMPARE(errors(both, [&](GroupEdit &edit) { edit.changePaths(set, {reserveOf("/a", wanted)}); }),
             isTaken ? QStringList() : QStringList{QStringLiteral("set|0|/a|ReservedSpaceExceedsVolume")});
}

void StationGroupEditReservesTest::aPathWhoseVolumeIsGoneDoesNotCount()
{
    m_site.groups = {group("1"), group("2", {localPath("/unplugged", 10240)})};
    QCOMPARE(errors(group("1"), [&](GroupEdit &edit) { edit.addPaths(add, {newPath("/a", 10240)}); }), QStringList());
    // What the group itself has there can be less, not more.
    const RecordingGroup before = group("1", {localPath("/unplugged", 2048)});
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.changePaths(set, {reserveOf("/unplugged", 1024)}); }),
             QStringList());
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.changePaths(set, {reserveOf("/unplugged", 3072)}); }),
             QStringList{QStringLiteral("set|0|/unplugged|DirectoryNotFound")});
}

void StationGroupEditReservesTest::anOvercommittedVolumeStopsOnlyWhatReservesMore()
{
    const RecordingGroup before = group("1", {localPath("/a", 9216)});
    m_site.groups = {before, group("2", {localPath("/a", 9216)})};
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.change(name(QStringLiteral("new"))); }), QStringList());
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.changePaths(set, {reserveOf("/a", 8192)}); }), QStringList());
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.changePaths(set, {reserveOf("/a", 9216)}); }), QStringList());
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.addPaths(add, {newPath("/a/b", 0)}); }), QStringList());
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.addPaths(add, {newPath("/mnt/c", 1024)}); }), QStringList());
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.addPaths(add, {newPath("/a/b", 1024)}); }),
             QStringList{QStringLiteral("added|0|/a/b|ReservedSpaceExceedsVolume")});
    // What is given back in the same edit counts.
    QCOMPARE(errors(before,
                    [&](GroupEdit &edit) {
                        edit.removePaths(rm, {QStringLiteral("/a")});
                        edit.addPaths(add, {newPath("/a/b", 1024)});
                    }),
             QStringList());
    QCOMPARE(errors(before,
                    [&](GroupEdit &edit) {
                        edit.addPaths(add, {newPath("/a/b", 1024)});
                        edit.changePaths(set, {reserveOf("/a", 0)});
                    }),
             QStringList());
}

void StationGroupEditReservesTest::hugeReservesDoNotOverflow()
{
    constexpr qint64 most = std::numeric_limits<qint64>::max() / 1024 * 1024;
    const QList<NewPath> paths{newPath("/a", most), newPath("/a/b", most)};
    QCOMPARE(errors(group("1"), [&](GroupEdit &edit) { edit.addPaths(add, paths); }),
             (QStringList{QStringLiteral("added|0|/a|ReservedSpaceExceedsVolume"),
                          QStringLiteral("added|1|/a/b|ReservedSpaceExceedsVolume")}));
    m_site.groups = {group("1"), group("2", {localPath("/a", most)}), group("3", {localPath("/a", most)})};
    QCOMPARE(errors(group("1"), [&](GroupEdit &edit) { edit.addPaths(add, {newPath("/a/b", 1024)}); }),
             QStringList{QStringLiteral("added|0|/a/b|ReservedSpaceExceedsVolume")});
}

/// A NAS server may be silent, and would hold up the edit of a group that has nothing to do with it.
void StationGroupEditReservesTest::whatAnEditIsNotAboutIsNotAsked()
{
    m_site.groups = {group("1", {{QStringLiteral("//nas/rec"), PathKind::NetHost, 1024, false}}),
                     group("2", {localPath("/a", 1024)}),
                     group("3", {{QStringLiteral("//silent/rec"), PathKind::NetDomain, 1024, false}})};
    const RecordingGroup nas = m_site.groups.at(0);
    QCOMPARE(errors(nas, [&](GroupEdit &edit) { edit.addPaths(add, {newPath("/a/b", 1024)}); }), QStringList());
    QCOMPARE(m_local.volumesAsked(), (QSet<QString>{QStringLiteral("/a"), QStringLiteral("/a/b")}));
    QCOMPARE(m_nas.volumesAsked(), QSet<QString>());
    QCOMPARE(errors(nas, [&](GroupEdit &edit) { edit.addPaths(add, {newPath("//nas/rec/b", 1024, host)}); }),
             QStringList());
    QCOMPARE(m_nas.volumesAsked(), (QSet<QString>{QStringLiteral("//nas/rec"), QStringLiteral("//nas/rec/b")}));
}

void StationGroupEditReservesTest::reservesOnTheNetworkAreAddedUp()
{
    m_site.groups = {group("1"), group("2", {{QStringLiteral("//nas/rec"), PathKind::NetDomain, 3072, false}})};
    QCOMPARE(errors(group("1"), [&](GroupEdit &edit) { edit.addPaths(add, {newPath("//nas/rec/b", 1024, host)}); }),
             QStringList());
    QCOMPARE(errors(group("1"), [&](GroupEdit &edit) { edit.addPaths(add, {newPath("//nas/rec/b", 2048, host)}); }),
             QStringList{QStringLiteral("added|0|//nas/rec/b|ReservedSpaceExceedsVolume")});
}

QTEST_GUILESS_MAIN(StationGroupEditReservesTest)
#include "tst_station_group_edit_reserves.moc"
