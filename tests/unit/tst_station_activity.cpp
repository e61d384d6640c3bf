#include "ServiceStation.h"

#include "nas/NasStore.h"
#include "service/ActivityStore.h"

#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
/// "command code group subject" of an entry.
QString text(const QVariant &value)
{
    const QVariantMap entry = value.toMap();
    return QStringList{entry.value(StationKey::command).toString(), entry.value(StationKey::returnCode).toString(),
                       entry.value(FieldKey::recordingGroupName).toString(),
                       entry.value(StationKey::subject).toString()}
        .join(u'|');
}

QStringList texts(const QVariantList &entries)
{
    QStringList list;
    for (const QVariant &entry : entries)
        list.append(text(entry));
    return list;
}
} // namespace

/// Who edited what: the log of activity, how it is read, and how long it is kept.
class StationActivityTest : public QObject, private ServiceStation
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { tearDown(); }

    void anEntryTellsWhoDidWhatAndWhen();
    void everyEditHasAnEntry();
    void eachPartOfARemovalHasAnEntry();
    void aPartThatFailsIsAboutItsOwnGroup();
    void refusalsAreEntriesAndQueriesAreNot();
    void aNewGroupThatIsRefusedIsNoOther();
    void longWordsOfASenderAreCut();
    void eventAndAnswer();
    void itIsReadInPages();
    void itIsReadByGroupAndTime();
    void anUnusualRequestIsRefused_data();
    void anUnusualRequestIsRefused();
    void aStationWithoutDataHasNone();
    void whatIsOldIsRemoved();
    void whatIsTooManyIsRemoved();
    void aLockedDatabaseHoldsUpNoRefusal();

private:
    QStringList addCameras(int count);
};

void StationActivityTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    setUp();
}

/// Their entries, the newest first.
QStringList StationActivityTest::addCameras(int count)
{
    QStringList entries;
    for (int number = 1; number <= count; ++number) {
        const QString name = u"Camera %1"_s.arg(number);
        deliver({}, StationCommandName::addCamera, camera(name));
        entries.prepend(u"station.addCamera|0||"_s + name);
    }
    return entries;
}

void StationActivityTest::anEntryTellsWhoDidWhatAndWhen()
{
    m_now = QDateTime::fromString(QStringLiteral("2026-03-20T12:34:56.789Z"), Qt::ISODateWithMs);
    deliver(u"id"_s, StationCommandName::addCamera, camera(u"Gate"_s));
    const QVariantList entries = activity();
    QCOMPARE(entries.size(), 1);
    QVariantMap entry = entries.constFirst().toMap();
    const QVariant duration = entry.take(StationKey::duration);
    QCOMPARE(duration.typeId(), int(QMetaType::LongLong));
    QVERIFY(duration.toLongLong() >= 0 && duration.toLongLong() < 60000);
    const QVariantMap expected{
        {StationKey::number, qint64(1)},
        {StationKey::time, u"2026-03-20T12:34:56.789Z"_s},
        {StationKey::client, u"test"_s},
        {StationKey::user, u"op"_s},
        {StationKey::command, u"station.addCamera"_s},
        {FieldKey::recordingGroupID, QString()},
        {FieldKey::recordingGroupName, QString()},
        {StationKey::subject, u"Gate"_s},
        {StationKey::returnCode, u"0"_s},
    };
    QCOMPARE(entry, expected);
}

void StationActivityTest::everyEditHasAnEntry()
{
    QVariantMap group = pathMap(path("disk/a"));
    group.insert(FieldKey::recordingGroupName, u"Yard"_s);
    deliver({}, ServerCommand::addRecordingGroup, group);
    const QString id = activity().constFirst().toMap().value(FieldKey::recordingGroupID).toString();
    QVERIFY(!id.isEmpty());
    QVariantMap added = pathMap(path("disk/b"));
    added.insert(FieldKey::recordingGroupID, id);
    deliver({}, ServerCommand::addPathToRecordingGroup, added);
    const QVariantMap renamed{
        {FieldKey::updateSetRecordingGroup, QVariantMap{{FieldKey::recordingGroupName, u"Park"_s}}}};
    deliver({}, ServerCommand::updateRecordingGroup, updateMap(id, renamed));
    deliver({}, ServerCommand::removePathFromRecordingGroup,
            QVariantMap{{FieldKey::recordingGroupIDList, QStringList{id}},
                        {FieldKey::recordingGroupPathList, QStringList{path("disk/b")}}});
    deliver({}, ServerCommand::removeRecordingGroup, QVariantMap{{FieldKey::recordingGroupIDList, QStringList{id}}});
    addGroup(u"Doors"_s);
    deliver({}, StationCommandName::addCamera, camera(u"Gate"_s));
    deliver({}, StationCommandName::removeCamera, QVariantMap{{FieldKey::camName, u"Gate"_s}});
    deliver({}, ServerCommand::createDirectory, path("disk/new"));
    {
        Database database(path("data"));
        NasStore(database).insert({u"{7}"_s, u"nas-1"_s, u"Host"_s, u"op"_s, "sealed"});
    }
    deliver({}, ServerCommand::RemoveNASServer,
            QVariantMap{{StationKey::id, u"{7}"_s}, {FieldKey::relayPath, QString()}});
    QVariantMap server{{FieldKey::host, u"no host"_s},
                       {FieldKey::logonDomain, u"Host"_s},
                       {FieldKey::userName, u"op"_s},
                       {FieldKey::password, u"p"_s},
                       {FieldKey::relayPath, QString()}};
    deliver({}, ServerCommand::AddNasServer, server);
    server.insert(StationKey::id, u"{7}"_s);
    deliver({}, ServerCommand::UpdateNASServer, server);
    deliver({}, StationCommandName::createSampleSite);
    QStringList expected{
        u"addRecordingGroup|0|Yard|"_s,
        u"addPathToRecordingGroup|0|Yard|"_s,
        u"updateRecordingGroup|0|Park|"_s,
        u"removePathFromRecordingGroup|0|Park|"_s + path("disk/b"),
        u"removeRecordingGroup|0|Park|"_s,
        u"addRecordingGroupWithCompleteInfo|0|Doors|"_s,
        u"station.addCamera|0||Gate"_s,
        u"station.removeCamera|0||Gate"_s,
        u"createDirectory|0||"_s + path("disk/new"),
        u"RemoveNASServer|0||nas-1"_s,
        u"AddNasServer|NasHostRefused||no host"_s,
        u"UpdateNASServer|NasServerNotFound||no host"_s,
        u"station.createSampleSite|SiteNotEmpty||"_s,
    };
    std::reverse(expected.begin(), expected.end());
    QCOMPARE(texts(activity()), expected);
    const QVariantMap ofGroup{{FieldKey::recordingGroupID, id}};
    QCOMPARE(activity(ofGroup).size(), 5);
}

void StationActivityTest::eachPartOfARemovalHasAnEntry()
{
    const QString a = addGroup(u"a"_s);
    const QString c = addGroup(u"c"_s);
    deliver({}, ServerCommand::removeRecordingGroup,
            QVariantMap{{FieldKey::recordingGroupIDList, QStringList{a, u"nobody"_s, c}}});
    QCOMPARE(texts(activity()).mid(0, 3),
             (QStringList{u"removeRecordingGroup|0|c|"_s, u"removeRecordingGroup|RecordingGroupNotFound||"_s,
                          u"removeRecordingGroup|0|a|"_s}));
    QCOMPARE(activity({{FieldKey::recordingGroupID, u"nobody"_s}}).size(), 1);
}

void StationActivityTest::refusalsAreEntriesAndQueriesAreNot()
{
    deliver({}, StationCommandName::addCamera, camera(u"Gate"_s, 99));
    deliver({}, StationCommandName::addCamera, 5);
    deliver({}, StationCommandName::listCameras);
    deliver({}, StationCommandName::listAlarms);
    deliver({}, u"nonsense"_s);
    QCOMPARE(texts(activity()),
             (QStringList{u"station.addCamera|BadRequest||"_s, u"station.addCamera|BadRequest||Gate"_s}));
}

void StationActivityTest::aPartThatFailsIsAboutItsOwnGroup()
{
    const QStringList ids{addGroup(u"a"_s), addGroup(u"b"_s)};
    QVariantList events;
    connect(m_station.get(), &Station::eventRaised, this, [&events](const StationEvent &event) {
        if (event.name == StationEventName::ActivityAdded)
            events.append(event.data);
    });
    QStringList codes;
    m_station->handle({ServerCommand::removeRecordingGroup, QVariantMap{{FieldKey::recordingGroupIDList, ids}}},
                      [&](const StationReply &part) {
                          if (codes.isEmpty())
                              runBeside("ALTER TABLE camera RENAME TO elsewhere");
                          codes.append(part.returnCode);
                      });
    QCOMPARE(codes, (QStringList{u"0"_s, u"DatabaseFailed"_s}));
    QCOMPARE(texts(events), (QStringList{u"removeRecordingGroup|0|a|"_s, u"removeRecordingGroup|DatabaseFailed||"_s}));
    QCOMPARE(events.constLast().toMap().value(FieldKey::recordingGroupID).toString(), ids.constLast());
}

void StationActivityTest::aNewGroupThatIsRefusedIsNoOther()
{
    const QString id = addGroup(u"Yard"_s);
    const QVariantMap withoutPath{{FieldKey::recordingGroupName, u"Park"_s}, {FieldKey::recordingGroupID, id}};
    deliver({}, ServerCommand::addRecordingGroup, withoutPath);
    QCOMPARE(text(activity().constFirst()), u"addRecordingGroup|BadRequest|Park|"_s);
    QCOMPARE(activity({{FieldKey::recordingGroupID, id}}).size(), 1);
}

void StationActivityTest::longWordsOfASenderAreCut()
{
    const QString word(1000, u'w');
    EditDelivery(
        *m_station,
        {StationCommandName::removeCamera, QVariantMap{{FieldKey::camName, QString(10000, u'c')}}, {}, word, word});
    const QVariantMap entry = activity().constFirst().toMap();
    QCOMPARE(entry.value(StationKey::client).toString().size(), 255);
    QCOMPARE(entry.value(StationKey::user).toString().size(), 255);
    QCOMPARE(entry.value(StationKey::subject).toString().size(), 4096);
}

void StationActivityTest::eventAndAnswer()
{
    QStringList log;
    QVariantList events;
    connect(m_station.get(), &Station::eventRaised, this, [&](const StationEvent &event) {
        if (event.name != StationEventName::ActivityAdded)
            return;
        log.append(u"event"_s);
        events.prepend(event.data);
    });
    for (int times = 0; times < 2; ++times) {
        m_station->handle({StationCommandName::addCamera, camera(u"Gate"_s)},
                          [&log](const StationReply &part) { log.append(part.returnCode); });
    }
    QCOMPARE(log, (QStringList{u"0"_s, u"event"_s, u"CameraExists"_s, u"event"_s}));
    QCOMPARE(events, activity());
}

void StationActivityTest::itIsReadInPages()
{
    const QStringList all = addCameras(105);
    QCOMPARE(texts(activity()), all.mid(0, 100));
    QCOMPARE(texts(activity({{StationKey::limit, 1000}})), all);
    QStringList found;
    QVariantMap request{{StationKey::limit, 50}};
    for (QVariantList page = activity(request); !page.isEmpty(); page = activity(request)) {
        found += texts(page);
        request.insert(StationKey::before, page.constLast().toMap().value(StationKey::number));
    }
    QCOMPARE(found, all);
}

void StationActivityTest::itIsReadByGroupAndTime()
{
    const QDateTime start = m_now;
    for (int hour = 0; hour < 4; ++hour) {
        m_now = start.addSecs(hour * 60 * 60);
        deliver({}, StationCommandName::addCamera, camera(u"Camera %1"_s.arg(hour)));
    }
    const auto subjects = [this](const QVariantMap &request) {
        QStringList list;
        for (const QVariant &entry : activity(request))
            list.append(entry.toMap().value(StationKey::subject).toString().right(1));
        return list.join(u' ');
    };
    QCOMPARE(subjects({{StationKey::from, u"2026-03-20T13:00:00.000Z"_s}}), u"3 2 1"_s);
    QCOMPARE(subjects({{StationKey::until, u"2026-03-20T13:00:00Z"_s}}), u"0"_s);
    QCOMPARE(subjects({{StationKey::from, u"2026-03-20T13:00:00.001Z"_s},
                       {StationKey::until, u"2026-03-20T17:00:00+02:00"_s}}),
             u"2"_s);
    QCOMPARE(subjects({{FieldKey::recordingGroupID, u"nobody"_s}}), QString());
}

void StationActivityTest::anUnusualRequestIsRefused_data()
{
    QTest::addColumn<QVariant>("request");
    QTest::newRow("no map") << QVariant(5);
    QTest::newRow("no limit") << QVariant(QVariantMap{{StationKey::limit, 0}});
    QTest::newRow("a large limit") << QVariant(QVariantMap{{StationKey::limit, 1001}});
    QTest::newRow("a limit in words") << QVariant(QVariantMap{{StationKey::limit, u"all"_s}});
    QTest::newRow("a number that none has") << QVariant(QVariantMap{{StationKey::before, 0}});
    QTest::newRow("a day") << QVariant(QVariantMap{{StationKey::from, u"2026-03-20"_s}});
    QTest::newRow("a local time") << QVariant(QVariantMap{{StationKey::until, u"2026-03-20T12:00:00"_s}});
    QTest::newRow("no time") << QVariant(QVariantMap{{StationKey::from, u"yesterday"_s}});
    QTest::newRow("a group without text") << QVariant(QVariantMap{{FieldKey::recordingGroupID, 7}});
}

void StationActivityTest::anUnusualRequestIsRefused()
{
    QFETCH(QVariant, request);
    QCOMPARE(ask(StationCommandName::listActivity, request).returnCode, u"BadRequest"_s);
}

void StationActivityTest::aStationWithoutDataHasNone()
{
    QCOMPARE(StationClient::replyText(ask(StationCommandName::listActivity)), u"0 QVariantList []"_s);
    QVERIFY(!Database::isIn(path("data")));
}

void StationActivityTest::whatIsOldIsRemoved()
{
    addCameras(3);
    m_now = m_now.addDays(364);
    restart();
    QCoreApplication::processEvents();
    deliver({}, StationCommandName::addCamera, camera(u"Gate"_s));
    QCOMPARE(activity().size(), 4);
    m_now = m_now.addDays(2);
    m_records.pruneInterval = std::chrono::milliseconds(20);
    restart();
    QTRY_COMPARE(texts(activity()), QStringList(u"station.addCamera|0||Gate"_s));
    m_now = m_now.addDays(365);
    QTRY_COMPARE(activity().size(), 0); // without another start
}

void StationActivityTest::whatIsTooManyIsRemoved()
{
    const QStringList all = addCameras(30);
    m_records.mostRows = 10;
    restart();
    QTRY_COMPARE(texts(activity()), all.mid(0, 10));
    {
        Database database(path("data"));
        ActivityStore store(database);
        Transaction transaction(database);
        for (int number = 0; number < 2500; ++number)
            store.insert({0, m_now, {}, {}, u"many"_s, {}, u"0"_s, 0});
        transaction.commit();
    }
    restart(); // more than one round takes
    QTRY_COMPARE(valueBeside("SELECT count(*) FROM activity").toInt(), 10);
}

void StationActivityTest::aLockedDatabaseHoldsUpNoRefusal()
{
    QVariantMap event;
    connect(m_station.get(), &Station::eventRaised, this, [&event](const StationEvent &raised) {
        if (raised.name == StationEventName::ActivityAdded)
            event = raised.data.toMap();
    });
    addCameras(1);
    QVERIFY(event.contains(StationKey::number));
    QLoggingCategory::setFilterRules(u"recording.station.info=true"_s);
    {
        Database other(path("data"));
        const Transaction lock(other);
        QElapsedTimer timer;
        timer.start();
        QTest::ignoreMessage(QtInfoMsg, QRegularExpression(u"updateRecordingGroup: .*lock"_s));
        QTest::ignoreMessage(QtInfoMsg,
                             QRegularExpression(u"not kept.*\"test\".*\"op\" updateRecordingGroup group "
                                                "nobody.*: RecordingGroupNotFound"_s));
        const QVariantMap request = updateMap(u"nobody"_s, {});
        QVERIFY(deliver(u"id"_s, ServerCommand::updateRecordingGroup, request).startsWith(u"RecordingGroupNotFound"));
        QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    }
    QLoggingCategory::setFilterRules({});
    QVERIFY(!event.contains(StationKey::number));
    QCOMPARE(activity().size(), 1);
}

QTEST_GUILESS_MAIN(StationActivityTest)
#include "tst_station_activity.moc"
