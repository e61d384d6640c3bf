#include "FakePaths.h"
#include "groups/GroupEdit.h"

#include <QRegularExpression>
#include <QTest>

#include <functional>
#include <limits>

namespace {
const QString rm = QStringLiteral("removed");
const QString add = QStringLiteral("added");
const QString set = QStringLiteral("set");
const QString members = QStringLiteral("members");
constexpr int local = 0;
constexpr int host = 1;
constexpr int domain = 2;

/// "element/index/value/code[/reason]", one for each error.
QStringList texts(const QList<EditError> &errors)
{
    QStringList list;
    for (const EditError &error : errors) {
        QStringList parts{error.element, QString::number(error.index), error.value, error.returnCode};
        if (!error.reason.isEmpty())
            parts.append(error.reason);
        list.append(parts.join(u'|'));
    }
    return list;
}

QString text(const QList<GroupPath> &paths)
{
    QStringList list;
    for (const GroupPath &path : paths) {
        list.append(QStringLiteral("%1 %2 %3 %4")
                        .arg(path.path)
                        .arg(static_cast<int>(path.kind))
                        .arg(path.reservedMegabytes)
                        .arg(path.isRecovery));
    }
    return list.join(QStringLiteral(", "));
}

QString text(const QList<GroupMember> &list)
{
    QStringList texts;
    for (const GroupMember &member : list) {
        texts.append(QStringLiteral("%1 %2 %3 %4")
                         .arg(member.camera)
                         .arg(member.stream)
                         .arg(member.timeShift)
                         .arg(member.seamless));
    }
    return texts.join(QStringLiteral(", "));
}

NewPath newPath(const char *path, qint64 reserved = 0, int kind = local)
{
    return {QString::fromLatin1(path), kind, reserved, false};
}

PathChange reserveOf(const char *path, qint64 megabytes)
{
    return {QString::fromLatin1(path), {}, megabytes, {}};
}

GroupMember member(const char *camera, int stream = 0)
{
    return {QString::fromLatin1(camera), stream, false, false};
}

GroupSettings name(const QString &text)
{
    GroupSettings settings;
    settings.name = text;
    return settings;
}

GroupSettings reservedTime(std::optional<bool> enabled, std::optional<int> minutes)
{
    GroupSettings settings;
    settings.isReservedTimeEnabled = enabled;
    settings.reservedMinutes = minutes;
    return settings;
}

RecordingGroup group(const char *id, const QList<GroupPath> &paths = {})
{
    RecordingGroup made;
    made.id = QString::fromLatin1(id);
    made.name = QStringLiteral("Group ") + made.id;
    made.folder = made.name;
    made.paths = paths;
    return made;
}

GroupPath localPath(const char *path, qint64 reserved = 0)
{
    return {QString::fromLatin1(path), PathKind::Local, reserved, false};
}
} // namespace

/// The rules of edits, without a disk and without a database.
class StationGroupEditTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void namesAreChecked_data();
    void namesAreChecked();
    void theReservedTimeIsChecked_data();
    void theReservedTimeIsChecked();
    void nodeIdsAreASet();
    void pathsAreKeptInOneWay();
    void aPathIsRefused_data();
    void aPathIsRefused();
    void aPathComesOnce();
    void aLinkToAPathOfTheGroupIsThatPath();
    void networkPathsNeedSomebodyWhoKnowsThem();
    void reservesAreChecked_data();
    void reservesAreChecked();
    void reservesOfAllGroupsAreAddedUp_data();
    void reservesOfAllGroupsAreAddedUp();
    void aPathWhoseVolumeIsGoneDoesNotCount();
    void anOvercommittedVolumeStopsOnlyWhatReservesMore();
    void hugeReservesDoNotOverflow();
    void reservesOnTheNetworkAreAddedUp();
    void whatAnEditIsNotAboutIsNotAsked();
    void aPathIsChanged();
    void aPathThatChangesItsKindIsLookedAt();
    void membersAreChecked_data();
    void membersAreChecked();
    void membersAreRemoved_data();
    void membersAreRemoved();
    void removalMakesRoom();
    void pathsAreRemoved();
    void aGroupWithMembersNeedsAPath_data();
    void aGroupWithMembersNeedsAPath();
    void allErrorsAreFoundInOrder();

private:
    /// What finish() tells after @p steps on @p before.
    QStringList errors(const RecordingGroup &before, const std::function<void(GroupEdit &)> &steps);

    FakePaths m_local;
    FakePaths m_nas;
    GroupSite m_site;
    RecordingGroup m_after;
};

void StationGroupEditTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_local = {};
    m_nas = {};
    m_local.add(QStringLiteral("/a"), QStringLiteral("/"), 10 * 1024);
    m_local.add(QStringLiteral("/a/b"), QStringLiteral("/"), 10 * 1024);
    m_local.add(QStringLiteral("/mnt/c"), QStringLiteral("/mnt"), 4 * 1024);
    m_local.refuse(QStringLiteral("/file"), StationReturnCode::NotADirectory);
    m_local.refuse(QStringLiteral("/proc"), StationReturnCode::OutsideVolumes);
    m_local.refuse(QStringLiteral("/locked"), StationReturnCode::PathNotWritable, StationReturnCode::PermissionDenied);
    m_nas.add(QStringLiteral("//nas/rec"), QStringLiteral("//nas/rec"), 4 * 1024);
    m_nas.add(QStringLiteral("//nas/rec/b"), QStringLiteral("//nas/rec"), 4 * 1024);
    m_site = {{group("1"), group("2")},
              {{QStringLiteral("Gate"), 1}, {QStringLiteral("Yard"), 3}},
              {&m_local, &m_nas, &m_nas}};
}

QStringList StationGroupEditTest::errors(const RecordingGroup &before, const std::function<void(GroupEdit &)> &steps)
{
    GroupEdit edit(before, m_site);
    steps(edit);
    const QStringList list = texts(edit.finish());
    m_after = edit.group();
    return list;
}

void StationGroupEditTest::namesAreChecked_data()
{
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<QString>("returnCode");
    QTest::newRow("a name") << QStringLiteral("Höfe/Süd") << QString();
    QTest::newRow("its own") << QStringLiteral("Group 1") << QString();
    QTest::newRow("other capitals") << QStringLiteral("GROUP 2") << QString();
    QTest::newRow("240 bytes") << QString(120, QChar(0xe4)) << QString();
    QTest::newRow("empty") << QString() << QStringLiteral("EmptyRecordingGroupName");
    QTest::newRow("blank") << QStringLiteral(" \t") << QStringLiteral("EmptyRecordingGroupName");
    QTest::newRow("of another group") << QStringLiteral("Group 2") << QStringLiteral("RecordingGroupNameInUse");
    QTest::newRow("241 bytes") << QString(120, QChar(0xe4)) + u'a' << QStringLiteral("NameRefused");
    QTest::newRow("a NUL") << QString(QChar(0)) + u'a' << QStringLiteral("NameRefused");
    QTest::newRow("half a surrogate pair") << QString(QChar(0xd800)) << QStringLiteral("NameRefused");
}

void StationGroupEditTest::namesAreChecked()
{
    QFETCH(QString, wanted);
    QFETCH(QString, returnCode);
    const QStringList found = errors(group("1"), [&](GroupEdit &edit) { edit.change(name(wanted)); });
    QCOMPARE(found,
             returnCode.isEmpty() ? QStringList()
                                  : QStringList{QStringLiteral("recordingGroupName|-1|%1|%2").arg(wanted, returnCode)});
    if (returnCode.isEmpty())
        QCOMPARE(m_after.name, wanted);
    QCOMPARE(m_after.folder, QStringLiteral("Group 1"));
}

void StationGroupEditTest::theReservedTimeIsChecked_data()
{
    using Flag = std::optional<bool>;
    using Minutes = std::optional<int>;
    QTest::addColumn<Flag>("enabled");
    QTest::addColumn<Minutes>("minutes");
    QTest::addColumn<QString>("result"); // enabled minutes, or the value that is refused
    // The group has 30 minutes that do not apply.
    QTest::newRow("nothing") << Flag() << Minutes() << QStringLiteral("0 30");
    QTest::newRow("it applies") << Flag(true) << Minutes() << QStringLiteral("1 30");
    QTest::newRow("one minute") << Flag(true) << Minutes(1) << QStringLiteral("1 1");
    QTest::newRow("the most") << Flag(true) << Minutes(std::numeric_limits<int>::max())
                              << QStringLiteral("1 2147483647");
    QTest::newRow("none, not applied") << Flag(false) << Minutes(0) << QStringLiteral("0 0");
    QTest::newRow("none, still not applied") << Flag() << Minutes(-5) << QStringLiteral("0 -5");
    QTest::newRow("none, applied") << Flag(true) << Minutes(0) << QStringLiteral("refused 0");
    QTest::newRow("less than none, applied") << Flag(true) << Minutes(-5) << QStringLiteral("refused -5");
}

void StationGroupEditTest::theReservedTimeIsChecked()
{
    QFETCH(std::optional<bool>, enabled);
    QFETCH(std::optional<int>, minutes);
    QFETCH(QString, result);
    RecordingGroup before = group("1");
    before.reservedMinutes = 30;
    const QStringList found = errors(before, [&](GroupEdit &edit) { edit.change(reservedTime(enabled, minutes)); });
    if (result.startsWith(QStringLiteral("refused "))) {
        QCOMPARE(
            found,
            QStringList{
                QStringLiteral("recordingGroupReservedTime|-1|%1|ReservedTimeRefused").arg(result.section(u' ', 1))});
    } else {
        QCOMPARE(found, QStringList());
        QCOMPARE(QStringLiteral("%1 %2").arg(m_after.isReservedTimeEnabled).arg(m_after.reservedMinutes), result);
    }
}

void StationGroupEditTest::nodeIdsAreASet()
{
    GroupSettings settings;
    settings.nodeIds = QString::fromLatin1("z a z").split(u' ');
    QCOMPARE(errors(group("1"), [&](GroupEdit &edit) { edit.change(settings); }), QStringList());
    QCOMPARE(m_after.nodeIds, QString::fromLatin1("z a").split(u' '));
}

void StationGroupEditTest::pathsAreKeptInOneWay()
{
    const QList<NewPath> paths{
        newPath("\\a\\\\b//", 2048), newPath("/a/", 0), {QStringLiteral("\\\\nas\\rec\\"), host, 1024, true}};
    QCOMPARE(errors(group("1"), [&](GroupEdit &edit) { edit.addPaths(add, paths); }), QStringList());
    QCOMPARE(text(m_after.paths), QStringLiteral("/a/b 0 2048 0, /a 0 0 0, //nas/rec 1 1024 1"));
    QCOMPARE(m_local.looked(), QString::fromLatin1("/a/b /a").split(u' '));
    QCOMPARE(m_nas.looked(), QStringList{QStringLiteral("//nas/rec")});
}

void StationGroupEditTest::aPathIsRefused_data()
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

void StationGroupEditTest::aPathIsRefused()
{
    QFETCH(QString, path);
    QFETCH(int, kind);
    QFETCH(QString, answer);
    const QStringList found = errors(group("1"), [&](GroupEdit &edit) {
        edit.addPaths(add, {{path, kind, 0, false}});
    });
    QCOMPARE(found, QStringList{QStringLiteral("added|0|%1|%2").arg(path, answer)});
}

void StationGroupEditTest::aPathComesOnce()
{
    const RecordingGroup before = group("1", {localPath("/a")});
    const QList<NewPath> paths{newPath("/a/"), newPath("/a/b"), newPath("\\a\\b", 512)};
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.addPaths(add, paths); }),
             (QStringList{QStringLiteral("added|0|/a/|PathInGroup"), QStringLiteral("added|2|\\a\\b|PathInGroup")}));
    m_site.groups = {group("1"), group("2", {localPath("/a")})};
    QCOMPARE(errors(group("1"), [&](GroupEdit &edit) { edit.addPaths(add, {newPath("/a")}); }), QStringList());
}

void StationGroupEditTest::aLinkToAPathOfTheGroupIsThatPath()
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

void StationGroupEditTest::networkPathsNeedSomebodyWhoKnowsThem()
{
    m_site.paths = {&m_local, nullptr, nullptr};
    const QList<NewPath> paths{newPath("//nas/rec", 0, host), newPath("//nas/rec/b", 0, domain)};
    QCOMPARE(errors(group("1"), [&](GroupEdit &edit) { edit.addPaths(add, paths); }),
             (QStringList{QStringLiteral("added|0|//nas/rec|NasServerNotFound"),
                          QStringLiteral("added|1|//nas/rec/b|NasServerNotFound")}));
}

void StationGroupEditTest::reservesAreChecked_data()
{
    QTest::addColumn<qint64>("megabytes");
    QTest::addColumn<bool>("isTaken");
    for (const qint64 taken : {0, 1024, 10240})
        QTest::addRow("%lld", static_cast<long long>(taken)) << taken << true;
    for (const qint64 refused : {Q_INT64_C(-1024), Q_INT64_C(-1), Q_INT64_C(1), Q_INT64_C(1000), Q_INT64_C(1025),
                                 std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max()})
        QTest::addRow("%lld", static_cast<long long>(refused)) << refused << false;
}

void StationGroupEditTest::reservesAreChecked()
{
    QFETCH(qint64, megabytes);
    QFETCH(bool, isTaken);
    QCOMPARE(errors(group("1"), [&](GroupEdit &edit) { edit.addPaths(add, {newPath("/a", megabytes)}); }),
             isTaken ? QStringList() : QStringList{QStringLiteral("added|0|/a|ReservedSpaceRefused")});
    const RecordingGroup before = group("1", {localPath("/a")});
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.changePaths(set, {reserveOf("/a", megabytes)}); }),
             isTaken ? QStringList() : QStringList{QStringLiteral("set|0|/a|ReservedSpaceRefused")});
}

void StationGroupEditTest::reservesOfAllGroupsAreAddedUp_data()
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

void StationGroupEditTest::reservesOfAllGroupsAreAddedUp()
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

void StationGroupEditTest::aPathWhoseVolumeIsGoneDoesNotCount()
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

void StationGroupEditTest::anOvercommittedVolumeStopsOnlyWhatReservesMore()
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

void StationGroupEditTest::hugeReservesDoNotOverflow()
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
void StationGroupEditTest::whatAnEditIsNotAboutIsNotAsked()
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

void StationGroupEditTest::reservesOnTheNetworkAreAddedUp()
{
    m_site.groups = {group("1"), group("2", {{QStringLiteral("//nas/rec"), PathKind::NetDomain, 3072, false}})};
    QCOMPARE(errors(group("1"), [&](GroupEdit &edit) { edit.addPaths(add, {newPath("//nas/rec/b", 1024, host)}); }),
             QStringList());
    QCOMPARE(errors(group("1"), [&](GroupEdit &edit) { edit.addPaths(add, {newPath("//nas/rec/b", 2048, host)}); }),
             QStringList{QStringLiteral("added|0|//nas/rec/b|ReservedSpaceExceedsVolume")});
}

void StationGroupEditTest::aPathIsChanged()
{
    const RecordingGroup before = group("1", {localPath("/a", 1024), localPath("/gone", 2048)});
    const QList<PathChange> changes{{QStringLiteral("/gone/"), local, {}, true}, reserveOf("\\a", 3072)};
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.changePaths(set, changes); }), QStringList());
    QCOMPARE(text(m_after.paths), QStringLiteral("/a 0 3072 0, /gone 0 2048 1"));
    QCOMPARE(m_local.looked(), QStringList());
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.changePaths(set, {reserveOf("/a/b", 0)}); }),
             QStringList{QStringLiteral("set|0|/a/b|PathNotInGroup")});
}

void StationGroupEditTest::aPathThatChangesItsKindIsLookedAt()
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

void StationGroupEditTest::membersAreChecked_data()
{
    QTest::addColumn<QString>("camera");
    QTest::addColumn<int>("stream");
    QTest::addColumn<QString>("returnCode");
    QTest::newRow("the last stream") << QStringLiteral("Yard") << 2 << QString();
    QTest::newRow("one more") << QStringLiteral("Yard") << 3 << QStringLiteral("StreamNotFound");
    QTest::newRow("below the first") << QStringLiteral("Yard") << -1 << QStringLiteral("StreamNotFound");
    QTest::newRow("in the group") << QStringLiteral("Gate") << 0 << QStringLiteral("CameraInGroup");
    QTest::newRow("other capitals") << QStringLiteral("gate") << 0 << QStringLiteral("CameraNotFound");
    QTest::newRow("no name") << QString() << 0 << QStringLiteral("CameraNotFound");
}

void StationGroupEditTest::membersAreChecked()
{
    QFETCH(QString, camera);
    QFETCH(int, stream);
    QFETCH(QString, returnCode);
    RecordingGroup before = group("1", {localPath("/a")});
    before.members = {member("Gate")};
    const QList<GroupMember> added{{camera, stream, true, false}};
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.addMembers(members, added); }),
             returnCode.isEmpty() ? QStringList()
                                  : QStringList{QStringLiteral("members|0|%1|%2").arg(camera, returnCode)});
    if (returnCode.isEmpty())
        QCOMPARE(text(m_after.members), QStringLiteral("Gate 0 0 0, Yard 2 1 0"));
}

void StationGroupEditTest::membersAreRemoved_data()
{
    using Removals = QList<MemberRemoval>;
    const QString yard = QStringLiteral("Yard");
    QTest::addColumn<Removals>("removals");
    QTest::addColumn<QStringList>("refused");
    QTest::addColumn<QString>("left");
    QTest::newRow("one stream") << Removals{{yard, 1}} << QStringList() << QStringLiteral("Yard 0 0 0, Gate 0 0 0");
    QTest::newRow("every stream") << Removals{{yard, {}}} << QStringList() << QStringLiteral("Gate 0 0 0");
    QTest::newRow("another stream") << Removals{{yard, 2}}
                                    << QStringList{QStringLiteral("members|0|Yard|CameraNotInGroup")} << QString();
    QTest::newRow("twice") << Removals{{yard, {}}, {yard, 0}}
                           << QStringList{QStringLiteral("members|1|Yard|CameraNotInGroup")} << QString();
}

void StationGroupEditTest::membersAreRemoved()
{
    QFETCH(QList<MemberRemoval>, removals);
    QFETCH(QStringList, refused);
    QFETCH(QString, left);
    RecordingGroup before = group("1", {localPath("/a")});
    before.members = {member("Yard", 0), member("Gate"), member("Yard", 1)};
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.removeMembers(members, removals); }), refused);
    if (refused.isEmpty())
        QCOMPARE(text(m_after.members), left);
}

void StationGroupEditTest::removalMakesRoom()
{
    RecordingGroup before = group("1", {localPath("/a", 1024)});
    before.members = {member("Gate")};
    const QStringList found = errors(before, [](GroupEdit &edit) {
        edit.removeMembers(rm, {{QStringLiteral("Gate"), 0}});
        edit.addMembers(members, {{QStringLiteral("Gate"), 0, true, true}});
        edit.removePaths(rm, {QStringLiteral("/a")});
        edit.addPaths(add, {newPath("/a", 2048)});
        edit.changePaths(set, {reserveOf("/a", 3072)});
    });
    QCOMPARE(found, QStringList());
    QCOMPARE(text(m_after.members), QStringLiteral("Gate 0 1 1"));
    QCOMPARE(text(m_after.paths), QStringLiteral("/a 0 3072 0"));
}

void StationGroupEditTest::pathsAreRemoved()
{
    const RecordingGroup before = group("1", {localPath("/a"), localPath("/gone")});
    const QStringList removed{QStringLiteral("\\gone\\"), QStringLiteral("/gone"), QStringLiteral("/a")};
    QCOMPARE(errors(before, [&](GroupEdit &edit) { edit.removePaths(rm, removed); }),
             QStringList{QStringLiteral("removed|1|/gone|PathNotInGroup")});
    QVERIFY(m_after.paths.isEmpty());
}

void StationGroupEditTest::aGroupWithMembersNeedsAPath_data()
{
    QTest::addColumn<bool>("hasMember");
    QTest::addColumn<QString>("step");
    QTest::addColumn<QStringList>("refused");
    const QStringList last{QStringLiteral("removed|1|/mnt/c|LastPathOfGroup")};
    QTest::newRow("all paths") << true << QStringLiteral("remove both") << last;
    QTest::newRow("all paths, no members") << false << QStringLiteral("remove both") << QStringList();
    QTest::newRow("one of two") << true << QStringLiteral("remove one") << QStringList();
    QTest::newRow("another instead") << true << QStringLiteral("replace both") << QStringList();
    QTest::newRow("paths and members") << true << QStringLiteral("remove everything") << QStringList();
    QTest::newRow("a member without") << false << QStringLiteral("remove both, add a member") << last;
    QTest::newRow("a new group") << false << QStringLiteral("add members alone")
                                 << QStringList{QStringLiteral("added|-1||LastPathOfGroup")};
}

void StationGroupEditTest::aGroupWithMembersNeedsAPath()
{
    QFETCH(bool, hasMember);
    QFETCH(QString, step);
    QFETCH(QStringList, refused);
    const bool isNew = step == QStringLiteral("add members alone");
    RecordingGroup before = group("1", isNew ? QList<GroupPath>() : QList{localPath("/a"), localPath("/mnt/c")});
    if (hasMember)
        before.members = {member("Gate")};
    const QStringList found = errors(before, [&step](GroupEdit &edit) {
        if (step == QStringLiteral("remove everything"))
            edit.removeMembers(members, {{QStringLiteral("Gate"), {}}});
        if (step.contains(QStringLiteral("add")))
            edit.addMembers(members, {member("Yard")});
        if (step == QStringLiteral("remove one"))
            edit.removePaths(rm, {QStringLiteral("/mnt/c")});
        else if (step.startsWith(QStringLiteral("re")))
            edit.removePaths(rm, {QStringLiteral("/a"), QStringLiteral("/mnt/c")});
        edit.addPaths(add, step.startsWith(QStringLiteral("replace")) ? QList{newPath("/a/b")} : QList<NewPath>());
    });
    QCOMPARE(found, refused);
}

void StationGroupEditTest::allErrorsAreFoundInOrder()
{
    RecordingGroup before = group("1", {localPath("/a")});
    before.members = {member("Gate")};
    const QStringList found = errors(before, [](GroupEdit &edit) {
        edit.removeMembers(QStringLiteral("1"), {{QStringLiteral("Nobody"), {}}});
        edit.addMembers(QStringLiteral("2"), {member("Gate"), member("Yard", 9), member("Nobody")});
        edit.removePaths(QStringLiteral("3"), {QStringLiteral("/x"), QStringLiteral("/a")});
        edit.addPaths(QStringLiteral("4"), {newPath("/mnt/c", 8192), newPath("/none", 7), newPath("/locked")});
        edit.changePaths(QStringLiteral("5"), {reserveOf("/a", 0), reserveOf("/mnt/c", -1)});
        GroupSettings settings = reservedTime(true, 0);
        settings.name = QStringLiteral("Group 2");
        edit.change(settings);
    });
    const QStringList expected{
        QStringLiteral("1|0|Nobody|CameraNotInGroup"),
        QStringLiteral("2|0|Gate|CameraInGroup"),
        QStringLiteral("2|1|Yard|StreamNotFound"),
        QStringLiteral("2|2|Nobody|CameraNotFound"),
        QStringLiteral("3|0|/x|PathNotInGroup"),
        QStringLiteral("4|0|/mnt/c|ReservedSpaceExceedsVolume"),
        QStringLiteral("4|1|/none|DirectoryNotFound"),
        QStringLiteral("4|1|/none|ReservedSpaceRefused"),
        QStringLiteral("4|2|/locked|PathNotWritable|PermissionDenied"),
        QStringLiteral("5|0|/a|PathNotInGroup"),
        QStringLiteral("5|1|/mnt/c|ReservedSpaceRefused"),
        QStringLiteral("recordingGroupName|-1|Group 2|RecordingGroupNameInUse"),
        QStringLiteral("recordingGroupReservedTime|-1|0|ReservedTimeRefused"),
    };
    QCOMPARE(found, expected);
}

QTEST_GUILESS_MAIN(StationGroupEditTest)
#include "tst_station_group_edit.moc"
