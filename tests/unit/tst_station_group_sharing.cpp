#include "GroupStation.h"
#include "StationData.h"
#include "groups/GroupCommands.h"
#include "groups/LocalPaths.h"
#include "service/Edits.h"

#include <QRegularExpression>
#include <QTest>
#include <QThread>

/// One database of recording groups, and all who have to do with it.
class StationGroupSharingTest : public QObject, private GroupStation
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void everythingIsThereForTheNextStation();
    void twoStationsOnOneDatabaseTakeTurns();
    void twoStationsAtOnceReserveNoMoreThanThereIs();
    void aDatabaseThatCannotBeOpenedIsAFailure();
    void whoeverAsksIsToldOfEveryEdit();
};

void StationGroupSharingTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    setUp();
}

void StationGroupSharingTest::cleanup()
{
    tearDown();
}

void StationGroupSharingTest::everythingIsThereForTheNextStation()
{
    add(groupMap(QStringLiteral("a"), {pathMap(path(QStringLiteral("disk/a")), 1024)},
                 {memberMap(QStringLiteral("Yard"), 2, true, true)}, true, 9));
    const QString before = state();
    m_station.reset();
    m_station = makeStation();
    QCOMPARE(state(), before);
}

void StationGroupSharingTest::twoStationsOnOneDatabaseTakeTurns()
{
    const std::unique_ptr<StationClient> other = makeStation();
    QVariantMap request = pathMap(path(QStringLiteral("disk/a")), 6 * 1024);
    request.insert(QStringLiteral("recordingGroupName"), QStringLiteral("a"));
    QCOMPARE(m_station->ask(QStringLiteral("addRecordingGroup"), request).returnCode, QStringLiteral("0"));
    QCOMPARE(other->ask(QStringLiteral("addRecordingGroup"), request).returnCode,
             QStringLiteral("RecordingGroupNameInUse"));
    request.insert(QStringLiteral("recordingGroupName"), QStringLiteral("b"));
    QCOMPARE(other->ask(QStringLiteral("addRecordingGroup"), request).returnCode,
             QStringLiteral("ReservedSpaceExceedsVolume"));
    request.insert(QStringLiteral("reserveSpace"), 4 * 1024);
    QCOMPARE(other->ask(QStringLiteral("addRecordingGroup"), request).returnCode, QStringLiteral("0"));
    QCOMPARE(m_station->ask(QStringLiteral("getRecordingGroup")).data.toList().size(), 2);
}

void StationGroupSharingTest::twoStationsAtOnceReserveNoMoreThanThereIs()
{
    // Each asks for 1 GB at a time, until the disk of 10 GB is spoken for.
    const auto fill = [this](const QString &name, QStringList &codes) {
        const std::unique_ptr<StationClient> station = makeStation();
        for (int number = 0; number < 12; ++number) {
            QVariantMap request = pathMap(path(QStringLiteral("disk/a")), 1024);
            request.insert(QStringLiteral("recordingGroupName"), name + QString::number(number));
            codes.append(station->ask(QStringLiteral("addRecordingGroup"), request).returnCode);
        }
    };
    QStringList codes;
    QStringList otherCodes;
    const std::unique_ptr<QThread> other(QThread::create([&] { fill(QStringLiteral("other "), otherCodes); }));
    other->start();
    fill(QStringLiteral("one "), codes);
    QVERIFY(other->wait());
    codes += otherCodes;
    QCOMPARE(codes.count(QStringLiteral("0")), 10);
    QCOMPARE(codes.count(QStringLiteral("ReservedSpaceExceedsVolume")), 14);
    QCOMPARE(m_station->ask(QStringLiteral("getRecordingGroup")).data.toList().size(), 10);
}

void StationGroupSharingTest::whoeverAsksIsToldOfEveryEdit()
{
    const FakeVolumes volumes({{m_folder->path(), QStringLiteral("Disk"), 1 << 30, 1 << 30, false, false}});
    const LocalPaths paths(volumes);
    StationData data(path(QStringLiteral("data")));
    QStringList log;
    CommandTable table;
    Edits edits({data, {}, {}, {}});
    GroupCommands commands(data, {&paths, nullptr, nullptr}, {}, {[&log] { log.append(QStringLiteral("changed")); }});
    commands.enterInto(table);
    QVariant id;
    const auto ask = [&](const char *command, const QVariantMap &request) {
        const QString name = QString::fromLatin1(command);
        const auto handler = table.value(name);
        const Answer answer = [&](const StationReply &part) {
            log.append(part.returnCode);
            id = part.data.toMap().value(QStringLiteral("recordingGroupID"), id);
        };
        if (const auto *edit = std::get_if<EditHandler>(&handler))
            edits.carryOut({name, request}, *edit, answer);
        else
            std::get<CommandHandler>(handler)(request, answer);
        return std::exchange(log, {}).join(u' ');
    };
    const QVariantMap group = groupMap(QStringLiteral("a"), {pathMap(path(QStringLiteral("disk/a")))});
    QCOMPARE(ask("addRecordingGroupWithCompleteInfo", group), QStringLiteral("0 changed"));
    const QString made = id.toString();
    QCOMPARE(ask("addRecordingGroupWithCompleteInfo", group), QStringLiteral("RecordingGroupNameInUse"));
    QVariantMap other = pathMap(path(QStringLiteral("disk/b")));
    other.insert(QStringLiteral("recordingGroupName"), QStringLiteral("b"));
    QCOMPARE(ask("addRecordingGroup", other), QStringLiteral("0 changed"));
    other.insert(idMap(made));
    QCOMPARE(ask("addPathToRecordingGroup", other), QStringLiteral("0 changed"));
    QCOMPARE(ask("addPathToRecordingGroup", other), QStringLiteral("PathInGroup"));
    QCOMPARE(ask("updateRecordingGroup", idMap(made)), QStringLiteral("0 changed"));
    QCOMPARE(ask("updateRecordingGroup", idMap(unknownId)), QStringLiteral("RecordingGroupNotFound"));
    QCOMPARE(ask("retrieveRecordingGroupTreeModel", ownTree()), QStringLiteral("0"));
    const QStringList twice{made, made};
    const QString disk = path(QStringLiteral("disk/b"));
    QCOMPARE(ask("removePathFromRecordingGroup",
                 {{QStringLiteral("recordingGroupIDList"), twice},
                  {QStringLiteral("recordingGroupPathList"), QStringList{disk, disk}}}),
             QStringLiteral("0 changed PathNotInGroup"));
    QCOMPARE(ask("removeRecordingGroup", {{QStringLiteral("recordingGroupIDList"), twice}}),
             QStringLiteral("0 changed RecordingGroupNotFound"));
}

void StationGroupSharingTest::aDatabaseThatCannotBeOpenedIsAFailure()
{
    m_station.reset();
    QVERIFY(QDir(path(QStringLiteral("data"))).removeRecursively());
    QVERIFY(makeFile(path(QStringLiteral("data")), 1));
    m_station = makeStation();
    QCOMPARE(m_station->text(QStringLiteral("getRecordingGroup")), QStringLiteral("DatabaseFailed invalid"));
    QVERIFY(QFile::remove(path(QStringLiteral("data"))));
    QCOMPARE(m_station->text(QStringLiteral("getRecordingGroup")), QStringLiteral("0 QVariantList []"));
}

QTEST_GUILESS_MAIN(StationGroupSharingTest)
#include "tst_station_group_sharing.moc"
