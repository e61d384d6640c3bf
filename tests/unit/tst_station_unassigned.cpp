#include "EditDelivery.h"
#include "UnassignedSite.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

/// Recordings that belong to no group: what the station says of them, and how another group gets them.
class StationUnassignedTest : public QObject, private UnassignedSite
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void whatARemovedGroupLeft();
    void aPathThatWasRemoved();
    void whatIsNotKnownIsNotNothing();
    void aFolderThatIsGone();
    void aStationWithoutDataHasNone();
    void aPlaceOnANasServer();

    void daysAreMoved();
    void daysAreMovedToAnotherPathOfTheVolume();
    void whatIsThereIsNotOverwritten();
    void linksAreNotFollowed();
    void aLinkInTheWayIsNotFollowed();
    void aGroupWithoutPathOnTheVolume();
    void refusals_data();
    void refusals();
    void itTakesEffectOnce();
    void itIsInTheActivity();
};

void StationUnassignedTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    setUp();
}

void StationUnassignedTest::cleanup()
{
    tearDown();
}

void StationUnassignedTest::whatARemovedGroupLeft()
{
    addGroup(u"Yard"_s, {m_path});
    RecordedSite::write(day(1), u"1.rec"_s, 100 * mb);
    RecordedSite::write(day(1), u"2.rec"_s, 10 * mb);
    RecordedSite::write(day(5, u"Door"_s), u"1.rec"_s, 20 * mb);
    RecordedSite::write(RecordedSite::dayFolder(m_path, u"Yard"_s, u"Gate"_s, daysAgo(1)), u"1.rec"_s, mb);
    startWithoutDoors();
    QVariantMap place = countedPlace();
    QVERIFY(QDateTime::fromString(place.take(u"countedAt"_s).toString(), Qt::ISODateWithMs).isValid());
    QCOMPARE(place,
             (QVariantMap{{u"place"_s, doors()},
                          {u"path"_s, m_path},
                          {u"folder"_s, u"Doors"_s},
                          {u"kind"_s, u"local"_s},
                          {u"volumePath"_s, m_site->disk()},
                          {u"volumeName"_s, u"Disk"_s},
                          {u"state"_s, u"there"_s},
                          {u"recordedBytes"_s, 130 * mb},
                          {u"recordedFiles"_s, qint64(3)},
                          {u"recordedDays"_s, qint64(2)},
                          {u"oldestDay"_s, u"2026-03-15"_s},
                          {u"newestDay"_s, u"2026-03-19"_s},
                          {u"cameras"_s, QStringList{u"Door"_s, u"Gate"_s}},
                          {u"counted"_s, true}}));

    QVERIFY(QDir(day(5, u"Door"_s)).removeRecursively());
    QTRY_COMPARE(countedPlace().value(u"cameras"_s).toStringList(), QStringList{u"Gate"_s});
    // A group of that folder finds its recordings there.
    addGroup(u"Doors"_s, {m_path});
    m_station->recordingGroupsChanged();
    QCOMPARE(places(), QVariantList());
}

void StationUnassignedTest::aPathThatWasRemoved()
{
    const QString second = m_site->makePath(u"second"_s);
    RecordedSite::write(RecordedSite::dayFolder(second, u"Doors"_s, u"Gate"_s, daysAgo(1)), u"1.rec"_s, mb);
    RecordedSite::write(day(1), u"1.rec"_s, mb);
    {
        Database database(m_site->dataFolder());
        GroupStore(database).replace(RecordedSite::group(u"Doors"_s, {m_path, second}));
    }
    startStation();
    QTRY_VERIFY(!lastEvent().isEmpty());
    QCOMPARE(places(), QVariantList());
    {
        Database database(m_site->dataFolder());
        GroupStore(database).replace(RecordedSite::group(u"Doors"_s, {m_path}));
    }
    m_station->recordingGroupsChanged();
    QTRY_COMPARE(countedPlace().value(u"place"_s).toString(), second + u"/Doors"_s);
}

void StationUnassignedTest::whatIsNotKnownIsNotNothing()
{
    RecordedSite::write(day(1), u"1.rec"_s, mb);
    removeGroup(u"Doors"_s);
    {
        Database database(m_site->dataFolder());
        database.run(u"INSERT INTO recording_place (path, folder, group_id, volume_path, volume_name)"
                     " VALUES (?, 'Doors', '', '', '')"_s,
                     {m_path});
    }
    startStation();
    const QVariantMap place = places().value(0).toMap(); // before anything was read
    QCOMPARE(place.value(u"place"_s).toString(), doors());
    for (const QString &key : {u"recordedBytes"_s, u"recordedFiles"_s, u"recordedDays"_s})
        QCOMPARE(place.value(key), QVariant(qint64(-1)));
    QVERIFY(!place.contains(u"oldestDay"_s) && !place.contains(u"newestDay"_s) && !place.contains(u"countedAt"_s));
    QCOMPARE(place.value(u"counted"_s), QVariant(false));
    QCOMPARE(remove(doors(), u"Doors"_s).returnCode, u"PlaceNotCounted"_s);
    QTRY_COMPARE(countedPlace().value(u"recordedBytes"_s), QVariant(mb));
}

void StationUnassignedTest::aFolderThatIsGone()
{
    RecordedSite::write(day(1), u"1.rec"_s, mb);
    startWithoutDoors();
    QVERIFY(QDir().rename(m_path, m_site->disk() + u"/away"_s));
    QTRY_COMPARE(places().value(0).toMap().value(u"state"_s).toString(), u"gone"_s);
    const QVariantMap place = places().value(0).toMap();
    QCOMPARE(place.value(u"recordedBytes"_s), QVariant(qint64(-1))); // moved or deleted: nobody knows
    QCOMPARE(place.value(u"counted"_s), QVariant(false));
    QCOMPARE(remove(doors(), u"Doors"_s).returnCode, u"DirectoryNotFound"_s);
    QCOMPARE(assign(doors(), u"Doors"_s).returnCode, u"DirectoryNotFound"_s);
}

void StationUnassignedTest::aStationWithoutDataHasNone()
{
    StationSettings settings = m_site->settings(today);
    settings.dataFolder += u"/new"_s;
    m_station = std::make_unique<Station>(std::move(settings));
    const StationReply reply = ask(u"station.listUnassignedRecordings"_s);
    QCOMPARE(reply.returnCode, u"0"_s);
    QCOMPARE(reply.data, QVariant(QVariantList()));
    QVERIFY(!QDir(m_site->dataFolder() + u"/new"_s).exists());
    QCOMPARE(ask(u"station.listUnassignedRecordings"_s, QVariantMap()).returnCode, u"BadRequest"_s);
}

void StationUnassignedTest::aPlaceOnANasServer()
{
    {
        Database database(m_site->dataFolder());
        database.run(u"INSERT INTO recording_place (number, path, folder, group_id, volume_path, volume_name, is_read,"
                     " read_at) VALUES (77, '//nas/rec/yard', 'Yard', '', '', '', 1, 1700000000)"_s);
        database.run(u"INSERT INTO recorded_day (place, camera, day, files, bytes)"
                     " VALUES (77, 'Gate', '2026-03-01', 3, 12)"_s);
    }
    startStation();
    QTRY_COMPARE(places().value(0).toMap().value(u"recordedBytes"_s), QVariant(qint64(12)));
    const QVariantMap place = places().constFirst().toMap();
    QCOMPARE(place.value(u"place"_s).toString(), u"//nas/rec/yard/Yard"_s);
    QCOMPARE(place.value(u"kind"_s).toString(), u"NAS"_s);
    QCOMPARE(place.value(u"volumePath"_s).toString(), u"//nas/rec"_s);
    QCOMPARE(place.value(u"recordedFiles"_s), QVariant(qint64(3)));
    QCOMPARE(place.value(u"counted"_s), QVariant(false));
    QCOMPARE(place.value(u"countedAt"_s).toString(), u"2023-11-14T22:13:20.000Z"_s);
    QCOMPARE(assign(u"//nas/rec/yard/Yard"_s, u"Doors"_s).returnCode, u"PlaceOnNas"_s);
    QCOMPARE(remove(u"//nas/rec/yard/Yard"_s, u"Yard"_s).returnCode, u"PlaceOnNas"_s);
}

void StationUnassignedTest::daysAreMoved()
{
    addGroup(u"Yard"_s, {m_path});
    RecordedSite::write(day(1), u"1.rec"_s, 100 * mb);
    RecordedSite::write(day(2), u"1.rec"_s, 10 * mb);
    RecordedSite::write(day(2, u"Door"_s), u"1.rec"_s, 3 * mb);
    RecordedSite::write(RecordedSite::dayFolder(m_path, u"Yard"_s, u"Gate"_s, daysAgo(3)), u"1.rec"_s, mb);
    startWithoutDoors();
    const StationReply reply = assign(doors(), u"Yard"_s);
    QCOMPARE(reply.returnCode, u"0"_s);
    QCOMPARE(reply.data.toMap(),
             (QVariantMap{{u"place"_s, doors()},
                          {u"recordingGroupID"_s, u"Yard"_s},
                          {u"path"_s, m_path + u"/Yard"_s},
                          {u"movedDays"_s, qint64(3)}}));
    QCOMPARE(everythingIn(m_path),
             (QStringList{u"Yard/"_s, u"Yard/Door/"_s, u"Yard/Door/2026-03-18/"_s, u"Yard/Door/2026-03-18/1.rec"_s,
                          u"Yard/Gate/"_s, u"Yard/Gate/2026-03-17/"_s, u"Yard/Gate/2026-03-17/1.rec"_s,
                          u"Yard/Gate/2026-03-18/"_s, u"Yard/Gate/2026-03-18/1.rec"_s, u"Yard/Gate/2026-03-19/"_s,
                          u"Yard/Gate/2026-03-19/1.rec"_s}));
    QTRY_COMPARE(places(), QVariantList());
    // Three days of the group: 1 MB, 13 MB and 100 MB.
    QTRY_VERIFY2(lines().startsWith(u"Yard 3 %1 "_s.arg(38 * mb)), qPrintable(lines()));
}

void StationUnassignedTest::daysAreMovedToAnotherPathOfTheVolume()
{
    const QString second = m_site->makePath(u"second"_s);
    addGroup(u"Yard"_s, {second});
    RecordedSite::write(day(1), u"1.rec"_s, mb);
    startWithoutDoors();
    QCOMPARE(assign(doors(), u"Yard"_s).data.toMap().value(u"path"_s).toString(), second + u"/Yard"_s);
    QVERIFY(QFileInfo::exists(second + u"/Yard/Gate/2026-03-19/1.rec"_s));
    QVERIFY(!QFileInfo::exists(doors()));
}

void StationUnassignedTest::whatIsThereIsNotOverwritten()
{
    addGroup(u"Yard"_s, {m_path});
    RecordedSite::write(day(1), u"1.rec"_s, mb);
    RecordedSite::write(day(2), u"1.rec"_s, mb);
    RecordedSite::write(day(2, u"Door"_s), u"1.rec"_s, mb);
    RecordedSite::write(RecordedSite::dayFolder(m_path, u"Yard"_s, u"Gate"_s, daysAgo(2)), u"2.rec"_s, mb);
    RecordedSite::write(m_path + u"/Yard"_s, u"Door"_s, 7); // a file of a camera's name
    startWithoutDoors();
    const QStringList before = everythingIn(m_path);
    const StationReply reply = assign(doors(), u"Yard"_s);
    QCOMPARE(reply.returnCode, u"RecordingsExist"_s);
    const QVariantList errors = reply.data.toMap().value(u"errorAction"_s).toList();
    QStringList existing;
    for (const QVariant &error : errors) {
        QCOMPARE(error.toMap().value(u"element"_s).toString(), u"place"_s);
        QCOMPARE(error.toMap().value(u"returnCode"_s).toString(), u"RecordingsExist"_s);
        existing.append(error.toMap().value(u"value"_s).toString());
    }
    QCOMPARE(existing, (QStringList{m_path + u"/Yard/Door"_s, m_path + u"/Yard/Gate/2026-03-18"_s}));
    QCOMPARE(everythingIn(m_path), before);
}

void StationUnassignedTest::linksAreNotFollowed()
{
    const QString elsewhere = m_site->makePath(u"elsewhere"_s);
    RecordedSite::write(elsewhere + u"/2026-03-01"_s, u"1.rec"_s, mb);
    addGroup(u"Yard"_s, {m_path});
    RecordedSite::write(day(1), u"1.rec"_s, mb);
    QVERIFY(QFile::link(elsewhere, doors() + u"/Linked"_s));
    QVERIFY(QFile::link(elsewhere + u"/2026-03-01"_s, doors() + u"/Gate/2026-03-01"_s));
    startWithoutDoors();
    QCOMPARE(assign(doors(), u"Yard"_s).data.toMap().value(u"movedDays"_s), QVariant(qint64(1)));
    QCOMPARE(everythingIn(doors()), (QStringList{u"Gate/"_s, u"Gate/2026-03-01"_s, u"Linked"_s}));
    QVERIFY(QFileInfo::exists(elsewhere + u"/2026-03-01/1.rec"_s));
}

void StationUnassignedTest::aLinkInTheWayIsNotFollowed()
{
    const QString elsewhere = m_site->makePath(u"elsewhere"_s);
    addGroup(u"Yard"_s, {m_path});
    RecordedSite::write(day(1), u"1.rec"_s, mb);
    QVERIFY(QDir().mkpath(m_path + u"/Yard"_s));
    QVERIFY(QFile::link(elsewhere, m_path + u"/Yard/Gate"_s));
    startWithoutDoors();
    QCOMPARE(assign(doors(), u"Yard"_s).returnCode, u"RecordingsExist"_s);
    QCOMPARE(everythingIn(elsewhere), QStringList());
    QVERIFY(QFileInfo::exists(day(1) + u"/1.rec"_s));
    // Neither is one in the place of the group's folder.
    QVERIFY(QDir(m_path + u"/Yard"_s).removeRecursively());
    QVERIFY(QFile::link(elsewhere, m_path + u"/Yard"_s));
    QCOMPARE(assign(doors(), u"Yard"_s).returnCode, u"RecordingsExist"_s);
    QCOMPARE(everythingIn(elsewhere), QStringList());
}

void StationUnassignedTest::aGroupWithoutPathOnTheVolume()
{
    const QTemporaryDir memory(u"/dev/shm/unassigned-XXXXXX"_s);
    QVERIFY(memory.isValid());
    addGroup(u"Yard"_s, {memory.path()});
    addGroup(u"Court"_s, {});
    RecordedSite::write(day(1), u"1.rec"_s, mb);
    startWithoutDoors();
    QCOMPARE(assign(doors(), u"Yard"_s).returnCode, u"NoPathOnVolume"_s);
    QCOMPARE(assign(doors(), u"Court"_s).returnCode, u"NoPathOnVolume"_s);
    QVERIFY(QFileInfo::exists(day(1) + u"/1.rec"_s));
    QCOMPARE(everythingIn(memory.path()), QStringList());
}

void StationUnassignedTest::refusals_data()
{
    QTest::addColumn<QVariantMap>("data");
    QTest::addColumn<QString>("code");
    QTest::newRow("no place") << QVariantMap{{u"recordingGroupID"_s, u"Yard"_s}} << u"BadRequest"_s;
    QTest::newRow("no group") << QVariantMap{{u"place"_s, u"Doors"_s}} << u"BadRequest"_s;
    QTest::newRow("unknown place") << QVariantMap{{u"place"_s, u"/nowhere"_s}, {u"recordingGroupID"_s, u"Yard"_s}}
                                   << u"PlaceNotFound"_s;
    QTest::newRow("a group's own") << QVariantMap{{u"place"_s, u"Yard"_s}, {u"recordingGroupID"_s, u"Yard"_s}}
                                   << u"PlaceInUse"_s;
    QTest::newRow("unknown group") << QVariantMap{{u"place"_s, u"Doors"_s}, {u"recordingGroupID"_s, u"Court"_s}}
                                   << u"RecordingGroupNotFound"_s;
}

/// Names without a slash stand for folders below the path.
void StationUnassignedTest::refusals()
{
    QFETCH(QVariantMap, data);
    QFETCH(const QString, code);
    addGroup(u"Yard"_s, {m_path});
    RecordedSite::write(day(1), u"1.rec"_s, mb);
    startWithoutDoors();
    const QString place = data.value(u"place"_s).toString();
    if (!place.isEmpty() && !place.startsWith(u'/'))
        data.insert(u"place"_s, m_path + u'/' + place);
    QCOMPARE(ask(u"station.assignRecordings"_s, data).returnCode, code);
    QVERIFY(QFileInfo::exists(day(1) + u"/1.rec"_s));
}

void StationUnassignedTest::itTakesEffectOnce()
{
    addGroup(u"Yard"_s, {m_path});
    RecordedSite::write(day(1), u"1.rec"_s, mb);
    startWithoutDoors();
    const StationCommand command{u"station.assignRecordings"_s,
                                 QVariantMap{{u"place"_s, doors()}, {u"recordingGroupID"_s, u"Yard"_s}}, u"id-1"_s};
    const EditDelivery first(*m_station, command);
    QTRY_VERIFY(first.isAnswered());
    const EditDelivery second(*m_station, command);
    QTRY_VERIFY(second.isAnswered());
    QCOMPARE(first.parts().constLast().returnCode, u"0"_s);
    QCOMPARE(second.text(), first.text());
}

void StationUnassignedTest::itIsInTheActivity()
{
    addGroup(u"Yard"_s, {m_path});
    RecordedSite::write(day(1), u"1.rec"_s, mb);
    startWithoutDoors();
    QCOMPARE(assign(doors(), u"Yard"_s).returnCode, u"0"_s);
    const QVariantMap entry = ask(u"station.listActivity"_s).data.toList().value(0).toMap();
    QCOMPARE(entry.value(u"command"_s).toString(), u"station.assignRecordings"_s);
    QCOMPARE(entry.value(u"recordingGroupName"_s).toString(), u"Yard"_s);
    QCOMPARE(entry.value(u"subject"_s).toString(), doors());
    QCOMPARE(entry.value(u"returnCode"_s).toString(), u"0"_s);
}

QTEST_GUILESS_MAIN(StationUnassignedTest)
#include "tst_station_unassigned.moc"
