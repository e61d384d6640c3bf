#include "StationStorage.h"
#include "UnassignedRecordingsModel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

#include <chrono>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace {
QVariantMap place(const QString &path, const QString &folder, qint64 bytes, const QVariantMap &more = {})
{
    QVariantMap map{{u"place"_s, folder.isEmpty() ? path : path + u'/' + folder},
                    {u"path"_s, path},
                    {u"folder"_s, folder},
                    {u"kind"_s, u"local"_s},
                    {u"volumePath"_s, u"/mnt/disk"_s},
                    {u"volumeName"_s, u"Disk"_s},
                    {u"state"_s, u"there"_s},
                    {u"recordedBytes"_s, bytes},
                    {u"recordedFiles"_s, bytes < 0 ? -1 : 3},
                    {u"recordedDays"_s, bytes < 0 ? -1 : 2},
                    {u"counted"_s, bytes >= 0}};
    map.insert(more);
    return map;
}

QVariantMap progress(const QString &place, qint64 done, qint64 bytes, const QVariantMap &more = {{u"running"_s, true}})
{
    QVariantMap map{{u"place"_s, place}, {u"done"_s, done}, {u"total"_s, 3}, {u"deletedBytes"_s, bytes}};
    map.insert(more);
    return map;
}

const QString doors = u"/a/Doors"_s;
const QString listing = u"station.listUnassignedRecordings"_s;
const QString deletion = u"station.deleteRecordings"_s;
const QString progressEvent = u"station.DeletionProgress"_s;
} // namespace

/// What the console knows of recordings of no group, and what it asks for.
class UnassignedRecordingsTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<StationStorage> m_storage;
    std::unique_ptr<UnassignedRecordingsModel> m_recordings;
    std::unique_ptr<QSignalSpy> m_requests;

    /// The commands that were sent since the last call.
    QStringList takeRequests()
    {
        QStringList commands;
        for (const QVariantList &request : std::as_const(*m_requests))
            commands.append(request.constFirst().toString());
        m_requests->clear();
        return commands;
    }
    void listed(const QVariantList &places, const QString &code = u"0"_s)
    {
        m_recordings->takeReply(listing, {}, code, places);
    }
    QStringList rows() const
    {
        QStringList rows;
        for (int row = 0; row < m_recordings->rowCount(); ++row)
            rows.append(m_recordings->index(row).data(UnassignedRecordingsModel::Place).toString());
        return rows;
    }
    QVariant value(const QString &role) const { return m_recordings->valueOf(doors, role); }
    RecordingsDeletion &running() const { return *m_recordings->deletion(); }

private slots:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(u".*"_s));
        m_requests.reset();
        m_recordings.reset();
        m_storage = std::make_unique<StationStorage>();
        m_recordings = std::make_unique<UnassignedRecordingsModel>(*m_storage);
        m_requests = std::make_unique<QSignalSpy>(m_recordings.get(), &UnassignedRecordingsModel::requested);
    }

    void itAsksWhileSomebodyWatches()
    {
        m_recordings->setConnected(true);
        m_recordings->noteEvent(u"VolumeChanged"_s, {});
        QCOMPARE(takeRequests(), QStringList());
        m_recordings->setWatched(true);
        QCOMPARE(takeRequests(), QStringList(listing));
        QVERIFY(m_recordings->isLoading() && !m_recordings->isKnown());
        m_recordings->noteEvent(u"VolumeChanged"_s, {});
        m_recordings->noteEvent(u"station.ActivityAdded"_s, {});
        QCOMPARE(takeRequests(), QStringList()); // one at a time
        listed({});
        QVERIFY(m_recordings->isKnown());
        QCOMPARE(takeRequests(), QStringList(listing)); // and once more for both
        listed({});
        QCOMPARE(takeRequests(), QStringList());
        m_recordings->noteEvent(u"station.AlarmsChanged"_s, {});
        QCOMPARE(takeRequests(), QStringList());
        m_recordings->noteEvent(u"station.ActivityAdded"_s, {});
        QCOMPARE(takeRequests(), QStringList(listing));
    }

    void whatIsNotCountedIsAskedForAgain_data()
    {
        QTest::addColumn<QVariantMap>("more");
        QTest::addColumn<bool>("again");
        QTest::newRow("counted") << QVariantMap() << false;
        QTest::newRow("not counted") << QVariantMap{{u"counted"_s, false}} << true;
        QTest::newRow("gone") << QVariantMap{{u"counted"_s, false}, {u"state"_s, u"gone"_s}} << false;
        QTest::newRow("NAS") << QVariantMap{{u"counted"_s, false}, {u"kind"_s, u"NAS"_s}} << false;
        QTest::newRow("deleted") << QVariantMap{{u"deletion"_s, QVariantMap{{u"returnCode"_s, u"0"_s}}}} << true;
    }
    void whatIsNotCountedIsAskedForAgain()
    {
        QFETCH(const QVariantMap, more);
        QFETCH(const bool, again);
        m_recordings->setPause(std::chrono::milliseconds(0));
        m_recordings->setConnected(true);
        m_recordings->setWatched(true);
        takeRequests();
        listed({place(u"/a"_s, u"Doors"_s, 1, more)});
        QCOMPARE(takeRequests(), QStringList());
        QCoreApplication::processEvents();
        if (again)
            QTRY_VERIFY(!m_requests->isEmpty());
        QCOMPARE(takeRequests(), again ? QStringList(listing) : QStringList());
        m_recordings->setWatched(false);
        listed({place(u"/a"_s, u"Doors"_s, 1, more)});
        QCoreApplication::processEvents();
        QCOMPARE(takeRequests(), QStringList());
    }

    void aNewConnectionAsksAnew()
    {
        m_recordings->setWatched(true);
        QCOMPARE(takeRequests(), QStringList());
        m_recordings->setConnected(true);
        QCOMPARE(takeRequests(), QStringList(listing));
        m_recordings->setConnected(false);
        listed({place(u"/a"_s, u"Doors"_s, 5)}, u"StationLost"_s);
        QVERIFY(!m_recordings->isLoading());
        m_recordings->setConnected(true);
        QCOMPARE(takeRequests(), QStringList(listing));
        listed({place(u"/a"_s, u"Doors"_s, 5)});
        QCOMPARE(rows(), QStringList(doors));
    }

    void aFailureIsSaidAndRowsStay()
    {
        m_recordings->setConnected(true);
        m_recordings->refresh();
        listed({place(u"/a"_s, u"Doors"_s, 5)});
        m_recordings->refresh();
        listed({}, u"DatabaseBusy"_s);
        QCOMPARE(m_recordings->failure(), u"Another program keeps the station's database locked."_s);
        QCOMPARE(rows(), QStringList(doors));
        m_recordings->refresh();
        listed({});
        QCOMPARE(m_recordings->failure(), QString());
        QCOMPARE(rows(), QStringList());
    }

    void whatIsNotKnownIsNoSum()
    {
        m_recordings->setConnected(true);
        listed({place(u"/a"_s, u"Doors"_s, 500), place(u"/a"_s, u"Yard"_s, -1), place(u"/b"_s, u"Doors"_s, 0)});
        QCOMPARE(m_recordings->recordedBytes(), 500.0);
        QCOMPARE(m_recordings->unknownCount(), 1);
        QCOMPARE(m_recordings->valueOf(u"/a/Yard"_s, u"recordedBytes"_s), QVariant(-1.0));
        QCOMPARE(m_recordings->valueOf(u"/a/Yard"_s, u"recordedDays"_s), QVariant(-1.0));
        QCOMPARE(m_recordings->valueOf(u"/a/Yard"_s, u"editable"_s), QVariant(false));
        QCOMPARE(m_recordings->valueOf(u"/a/None"_s, u"editable"_s), QVariant());
    }

    void rowsStayAndAreMoved()
    {
        const QAbstractItemModelTester tester(m_recordings.get(),
                                              QAbstractItemModelTester::FailureReportingMode::QtTest);
        m_recordings->setConnected(true);
        listed({place(u"/a"_s, u"Doors"_s, 1), place(u"/b"_s, u"Yard"_s, 2), place(u"/c"_s, u"Gate"_s, 3)});
        const QPersistentModelIndex gate = m_recordings->index(2);
        const QSignalSpy changes(m_recordings.get(), &QAbstractItemModel::dataChanged);
        listed({place(u"/c"_s, u"Gate"_s, 4), place(u"/a"_s, u"Doors"_s, 1), place(u"/d"_s, u"Hall"_s, 5)});
        QCOMPARE(rows(), QStringList({u"/c/Gate"_s, doors, u"/d/Hall"_s}));
        QCOMPARE(gate.row(), 0);
        QCOMPARE(gate.data(UnassignedRecordingsModel::RecordedBytes), QVariant(4.0));
        QCOMPARE(changes.size(), 1);
    }

    void whereTheyAre_data()
    {
        QTest::addColumn<QVariantMap>("more");
        QTest::addColumn<int>("standing");
        QTest::addColumn<bool>("editable");
        const auto state = [](const char *word) { return QVariantMap{{u"state"_s, QString::fromLatin1(word)}}; };
        QTest::newRow("there") << state("there") << int(UnassignedRecordingsModel::There) << true;
        QTest::newRow("readOnly") << state("readOnly") << int(UnassignedRecordingsModel::ReadOnly) << false;
        QTest::newRow("gone") << state("gone") << int(UnassignedRecordingsModel::Gone) << false;
        QTest::newRow("notAnswering") << state("notAnswering") << int(UnassignedRecordingsModel::NotAnswering) << false;
        QTest::newRow("unknown") << state("unknown") << int(UnassignedRecordingsModel::NotLookedAt) << true;
        QTest::newRow("NAS") << QVariantMap{{u"kind"_s, u"NAS"_s}, {u"state"_s, u"unknown"_s}}
                             << int(UnassignedRecordingsModel::OnNas) << false;
        QTest::newRow("deleting") << QVariantMap{{u"deletion"_s, QVariantMap{{u"running"_s, true}}}}
                                  << int(UnassignedRecordingsModel::There) << false;
    }
    void whereTheyAre()
    {
        QFETCH(const QVariantMap, more);
        m_recordings->setConnected(true);
        listed({place(u"/a"_s, u"Doors"_s, 1, more)});
        QTEST(value(u"location"_s).toInt(), "standing");
        QTEST(value(u"editable"_s).toBool(), "editable");
    }

    void theNameToBeTyped()
    {
        m_recordings->setConnected(true);
        listed({place(u"/a"_s, u"Doors"_s, 1), place(u"/mnt/backup area"_s, QString(), 1)});
        QCOMPARE(value(u"confirmation"_s), QVariant(u"Doors"_s));
        QCOMPARE(m_recordings->valueOf(u"/mnt/backup area"_s, u"confirmation"_s), QVariant(u"backup area"_s));
    }

    void anEarlierDeletionIsTold_data()
    {
        QTest::addColumn<QVariantMap>("deletion");
        QTest::addColumn<QString>("words");
        QTest::newRow("cut off") << QVariantMap{{u"running"_s, false}} << u"The station ended while it deleted here."_s;
        QTest::newRow("left") << QVariantMap{{u"running"_s, false}, {u"returnCode"_s, u"RecordingsLeft"_s}}
                              << u"Last deletion: Some recordings could not be deleted."_s;
        QTest::newRow("running") << QVariantMap{{u"running"_s, true}} << QString();
        QTest::newRow("done") << QVariantMap{{u"running"_s, false}, {u"returnCode"_s, u"0"_s}}
                              << u"Deleted; the station has to count again what is here."_s;
    }
    void anEarlierDeletionIsTold()
    {
        QFETCH(const QVariantMap, deletion);
        m_recordings->setConnected(true);
        listed({place(u"/a"_s, u"Doors"_s, 1, {{u"deletion"_s, deletion}})});
        QTEST(value(u"lastDeletion"_s).toString(), "words");
    }

    void groupsOfTheVolumeCanTakeThem()
    {
        const auto group = [](const QString &id, const QString &name, const QStringList &paths) {
            return QVariantMap{{u"recordingGroupID"_s, id}, {u"recordingGroupName"_s, name}, {u"paths"_s, paths}};
        };
        const auto volume = [](const QString &path, const QString &kind, const QVariantList &groups) {
            return QVariantMap{{u"volumePath"_s, path}, {u"kind"_s, kind}, {u"groups"_s, groups}};
        };
        m_recordings->setConnected(true);
        listed({place(u"/a"_s, u"Doors"_s, 1)});
        QCOMPARE(m_recordings->takersOf(doors), QVariantList());
        m_storage->take(
            {volume(u"/mnt/disk"_s, u"local"_s,
                    {group(u"1"_s, u"Yard"_s, {u"/b"_s, u"/c"_s}), group(u"2"_s, u"Gate"_s, {u"/b"_s, u"/a"_s})}),
             volume(u"/mnt/disk"_s, u"NAS"_s, {group(u"3"_s, u"Far"_s, {u"/a"_s})}),
             volume(u"/"_s, u"local"_s, {group(u"4"_s, u"Root"_s, {u"/a"_s})})});
        QStringList takers;
        const QVariantList found = m_recordings->takersOf(doors);
        for (const QVariant &taker : found)
            takers.append(taker.toMap()[u"name"_s].toString() + u' ' + taker.toMap()[u"path"_s].toString());
        QCOMPARE(takers, QStringList({u"Gate /a"_s, u"Yard /b"_s}));
        QCOMPARE(m_recordings->takersOf(u"/a/None"_s), QVariantList());
    }

    void aRefusedAssignmentSaysWhatIsInTheWay()
    {
        m_recordings->setConnected(true);
        const QSignalSpy assigned(m_recordings.get(), &UnassignedRecordingsModel::assigned);
        m_recordings->assign(doors, u"7"_s);
        const QVariantMap request = m_requests->constFirst().at(1).toMap();
        QCOMPARE(request, (QVariantMap{{u"place"_s, doors}, {u"recordingGroupID"_s, u"7"_s}}));
        m_recordings->takeReply(
            u"station.assignRecordings"_s, request, u"RecordingsExist"_s,
            QVariantMap{{u"errorAction"_s, QVariantList{QVariantMap{{u"value"_s, u"/b/Gate/2026-03-01"_s}}}}});
        QCOMPARE(assigned.constFirst(),
                 QVariantList({doors, u"The group has recordings of the same days already: nothing was moved."_s,
                               QStringList(u"/b/Gate/2026-03-01"_s), QString()}));
        m_recordings->takeReply(u"station.assignRecordings"_s, request, u"NoAnswer"_s, {});
        QCOMPARE(assigned.constLast().at(1).toString(),
                 u"The station did not answer in time. The change may take effect all the same."_s);
    }

    void aDeletionIsFollowed()
    {
        m_recordings->setConnected(true);
        const QSignalSpy answered(m_recordings.get(), &UnassignedRecordingsModel::deletionAnswered);
        m_recordings->takeReply(deletion, {{u"place"_s, doors}}, u"PlaceInUse"_s, {});
        QCOMPARE(answered.constFirst().at(1).toString(), u"A recording group or the backup area uses this folder."_s);
        QVERIFY(!running().isRunning());
        m_recordings->takeReply(deletion, {{u"place"_s, doors}}, u"0"_s,
                                QVariantMap{{u"place"_s, doors}, {u"recordedFiles"_s, 3}, {u"recordedBytes"_s, 400}});
        QCOMPARE(answered.constLast().at(1).toString(), QString());
        QVERIFY(running().isRunning());
        QCOMPARE(running().bytes(), 400.0);
        QCOMPARE(running().deletedBytes(), 0.0);
        m_recordings->noteEvent(progressEvent, progress(doors, 1, 100));
        QCOMPARE(running().deletedBytes(), 100.0);
        QCOMPARE(running().files(), 3.0);
        QCOMPARE(running().bytes(), 400.0);
        running().forget();
        QCOMPARE(running().place(), doors); // it runs
        m_recordings->noteEvent(
            progressEvent,
            progress(doors, 2, 300,
                     {{u"running"_s, false},
                      {u"returnCode"_s, u"RecordingsLeft"_s},
                      {u"leftFiles"_s, 1},
                      {u"leftBytes"_s, 100},
                      {u"leftEntries"_s, 2},
                      {u"left"_s,
                       QVariantList{QVariantMap{{u"path"_s, u"/a/Doors/x"_s}, {u"reason"_s, u"CannotDelete"_s}}}}}));
        QVERIFY(!running().isRunning());
        QCOMPARE(running().outcome(), RecordingsDeletion::Incomplete);
        QCOMPARE(running().leftFiles(), 1.0);
        QCOMPARE(running().left(), QStringList(u"/a/Doors/x: The disk refuses to delete it."_s));
        running().forget();
        QCOMPARE(running().place(), QString());
        QCOMPARE(running().outcome(), RecordingsDeletion::Open);
    }

    void whatAnotherClientDeletesIsFollowed()
    {
        m_recordings->setConnected(true);
        m_recordings->setWatched(true);
        takeRequests();
        listed({place(u"/a"_s, u"Doors"_s, 400, {{u"deletion"_s, QVariantMap{{u"running"_s, true}}}})});
        QVERIFY(running().isRunning());
        QCOMPARE(running().place(), doors);
        QCOMPARE(running().bytes(), 400.0);
        QCOMPARE(running().deletedBytes(), -1.0); // not 0: nobody said so
        m_recordings->noteEvent(progressEvent, progress(doors, 1, 100));
        QCOMPARE(running().bytes(), 400.0);
        m_recordings->noteEvent(progressEvent, progress(u"/b/Yard"_s, 1, 100));
        QCOMPARE(running().place(), u"/b/Yard"_s);
        QCOMPARE(running().bytes(), -1.0);
    }

    void anEndThatWasNotHeard_data()
    {
        QTest::addColumn<QVariantList>("places");
        QTest::addColumn<int>("outcome");
        QTest::addColumn<QString>("code");
        const auto told = [](const QVariantMap &deletion) {
            return QVariantList{place(u"/a"_s, u"Doors"_s, 1, {{u"deletion"_s, deletion}})};
        };
        QTest::newRow("gone") << QVariantList() << int(RecordingsDeletion::Unheard) << u"StationLost"_s;
        QTest::newRow("cut off") << told({{u"running"_s, false}}) << int(RecordingsDeletion::Failed)
                                 << u"StationStopping"_s;
        QTest::newRow("cancelled") << told({{u"running"_s, false}, {u"returnCode"_s, u"DeletionCancelled"_s}})
                                   << int(RecordingsDeletion::Cancelled) << u"DeletionCancelled"_s;
        QTest::newRow("goes on") << told({{u"running"_s, true}}) << int(RecordingsDeletion::Open) << QString();
    }
    void anEndThatWasNotHeard()
    {
        QFETCH(const QVariantList, places);
        m_recordings->setConnected(true);
        m_recordings->noteEvent(progressEvent, progress(doors, 1, 100));
        takeRequests();
        m_recordings->setConnected(false);
        QVERIFY(running().isRunning());
        m_recordings->setConnected(true);
        QCOMPARE(takeRequests(), QStringList(listing)); // although nobody watches
        listed(places);
        QTEST(int(running().outcome()), "outcome");
        QTEST(running().returnCode(), "code");
        QCOMPARE(running().deletedBytes(), running().isRunning() ? 100.0 : -1.0);
    }

    void itCanBeToldToStop()
    {
        m_recordings->setConnected(true);
        m_recordings->cancelDeletion();
        QCOMPARE(takeRequests(), QStringList()); // there is none
        m_recordings->noteEvent(progressEvent, progress(doors, 1, 100));
        m_recordings->cancelDeletion();
        m_recordings->cancelDeletion();
        QCOMPARE(m_requests->size(), 1);
        QCOMPARE(m_requests->constFirst(),
                 QVariantList({u"station.cancelDeletion"_s, QVariantMap{{u"place"_s, doors}}}));
        QVERIFY(running().isCancelling());
        m_recordings->takeReply(u"station.cancelDeletion"_s, {{u"place"_s, doors}}, u"NoAnswer"_s, {});
        QVERIFY(!running().isCancelling());
        QCOMPARE(running().cancelFailure(), u"The station did not answer in time."_s);
        m_recordings->cancelDeletion();
        QCOMPARE(running().cancelFailure(), QString());
        m_recordings->noteEvent(
            progressEvent, progress(doors, 2, 200, {{u"running"_s, false}, {u"returnCode"_s, u"DeletionCancelled"_s}}));
        QVERIFY(!running().isCancelling());
        m_recordings->takeReply(u"station.cancelDeletion"_s, {{u"place"_s, doors}}, u"NoDeletion"_s, {});
        QCOMPARE(running().cancelFailure(), QString()); // it has ended
        QCOMPARE(running().outcome(), RecordingsDeletion::Cancelled);
    }
};

QTEST_GUILESS_MAIN(UnassignedRecordingsTest)
#include "tst_unassigned_recordings.moc"
