#include "GroupEditing.h"

#include <QRegularExpression>
#include <QTest>

#include <limits>

using namespace GroupEditing;

/// The rules of edits, without a disk and without a database: settings and members, and an edit as a whole.
class StationGroupEditTest : public QObject, private Edits
{
    Q_OBJECT

private slots:
    void init();

    void namesAreChecked_data();
    void namesAreChecked();
    void theReservedTimeIsChecked_data();
    void theReservedTimeIsChecked();
    void nodeIdsAreASet();
    void membersAreChecked_data();
    void membersAreChecked();
    void membersAreRemoved_data();
    void membersAreRemoved();
    void removalMakesRoom();
    void aGroupWithMembersNeedsAPath_data();
    void aGroupWithMembersNeedsAPath();
    void allErrorsAreFoundInOrder();
};

void StationGroupEditTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    setUp();
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
