#include "ServiceStation.h"

#include "Loopback.h"
#include "StationData.h"
#include "groups/CameraCommands.h"
#include "nas/NasStore.h"
#include "service/ActivityStore.h"
#include "service/Edits.h"

#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QTest>
#include <QThread>

#include <functional>

using namespace Qt::StringLiterals;

namespace {
const QString unknownId = u"{00000000-0000-0000-0000-000000000000}"_s;

QVariantMap nasServer(const QString &host, const QString &password = u"secret-of-nobody"_s)
{
    return {{FieldKey::host, host},
            {FieldKey::logonDomain, u"Host"_s},
            {FieldKey::userName, u"op"_s},
            {FieldKey::password, password},
            {FieldKey::relayPath, QString()}};
}
} // namespace

/// An edit takes effect once and is answered alike, however often it is delivered and to whichever station on the same
/// data.
class StationOnceTest : public QObject, private ServiceStation
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { tearDown(); }

    void everyDeliveryIsAnsweredAlike_data();
    void everyDeliveryIsAnsweredAlike();
    void aSampleSiteIsMadeOnce();
    void aSampleSiteThatCannotBeKeptLeavesNoFiles();
    void withoutAnIdEachIsAnEditOfItsOwn();
    void otherDataUnderTheIdIsRefused();
    void aPasswordIsNotPartOfTheRequest();
    void longIdsAreRefused();
    void anIdIsForgottenAfterADay();
    void anEditUnderWayIsAnsweredWithTheFirst();
    void anotherEditUnderAnIdThatIsUnderWayIsRefused();
    void aDuplicateOfAnEditThatTakesEffectLater();
    void whatWasCutInHalfGoesOn();
    void aRefusedPartInTheMiddleIsKept();
    void twoStationsAtOnceDoItOnce();
    void anotherStationsOutcomeIsTheAnswer();
    void effectAndOutcomeAreKeptTogether();
    void aDatabaseThatTakesNothingStillAnswers_data();
    void aDatabaseThatTakesNothingStillAnswers();
    void aRefusalThatCannotBeKeptIsJudgedAgain();
    void aLargeRefusalIsJudgedAgain();
    void noPasswordIsKept();

private:
    using Request = std::function<QVariant(StationOnceTest &)>;
    QString knownGroup() { return addGroup(u"Doors"_s); }
};

void StationOnceTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    setUp();
}

void StationOnceTest::everyDeliveryIsAnsweredAlike_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<Request>("request");
    QTest::addColumn<QString>("code");
    const auto path = [](StationOnceTest &test) { return pathMap(test.path("disk/a"), 1024); };

    QTest::newRow("a group") << ServerCommand::addRecordingGroup << Request([path](StationOnceTest &test) {
        QVariantMap map = path(test);
        map.insert(FieldKey::recordingGroupName, u"Yard"_s);
        return map;
    }) << u"0"_s;
    QTest::newRow("a group with everything")
        << ServerCommand::addRecordingGroupWithCompleteInfo
        << Request([path](StationOnceTest &test) { return groupMap(u"Yard"_s, {path(test)}); }) << u"0"_s;
    QTest::newRow("a path") << ServerCommand::addPathToRecordingGroup << Request([](StationOnceTest &test) {
        QDir().mkpath(test.path("disk/c"));
        QVariantMap map = pathMap(test.path("disk/c"));
        map.insert(FieldKey::recordingGroupID, test.knownGroup());
        return map;
    }) << u"0"_s;
    QTest::newRow("a path removed") << ServerCommand::removePathFromRecordingGroup
                                    << Request([](StationOnceTest &test) {
                                           return QVariantMap{
                                               {FieldKey::recordingGroupIDList, QStringList{test.knownGroup()}},
                                               {FieldKey::recordingGroupPathList, QStringList{test.path("disk/b")}}};
                                       })
                                    << u"0"_s;
    QTest::newRow("an update") << ServerCommand::updateRecordingGroup << Request([](StationOnceTest &test) {
        return updateMap(test.knownGroup(), {{FieldKey::updateRmPathList, QStringList{test.path("disk/b")}}});
    }) << u"0"_s;
    QTest::newRow("groups removed") << ServerCommand::removeRecordingGroup << Request([](StationOnceTest &test) {
        return QVariantMap{{FieldKey::recordingGroupIDList, QStringList{test.knownGroup(), test.addGroup(u"Gate"_s)}}};
    }) << u"0"_s;
    QTest::newRow("a camera") << StationCommandName::addCamera
                              << Request([](StationOnceTest &) { return camera(u"Gate"_s); }) << u"0"_s;
    QTest::newRow("a camera removed") << StationCommandName::removeCamera << Request([](StationOnceTest &test) {
        test.ask(StationCommandName::addCamera, camera(u"Gate"_s));
        return QVariantMap{{FieldKey::camName, u"Gate"_s}};
    }) << u"0"_s;
    QTest::newRow("a NAS server removed") << ServerCommand::RemoveNASServer << Request([](StationOnceTest &test) {
        Database database(test.path("data"));
        NasStore(database).insert({u"{7}"_s, u"nas-1"_s, u"Host"_s, u"op"_s, "sealed"});
        return QVariantMap{{StationKey::id, u"{7}"_s}, {FieldKey::relayPath, QString()}};
    }) << u"0"_s;
    QTest::newRow("a folder") << ServerCommand::createDirectory
                              << Request([](StationOnceTest &test) { return test.path("disk/new"); }) << u"0"_s;

    QTest::newRow("no group: bad data") << ServerCommand::addRecordingGroup
                                        << Request([](StationOnceTest &) { return QVariantMap(); }) << u"BadRequest"_s;
    QTest::newRow("no group: errors") << ServerCommand::addRecordingGroupWithCompleteInfo
                                      << Request([](StationOnceTest &) {
                                             return groupMap(u"Yard"_s, {pathMap(u"nowhere"_s, 5)});
                                         })
                                      << u"PathNotAbsolute"_s;
    QTest::newRow("no update") << ServerCommand::updateRecordingGroup
                               << Request([](StationOnceTest &) { return updateMap(unknownId, {}); })
                               << u"RecordingGroupNotFound"_s;
    QTest::newRow("no camera") << StationCommandName::removeCamera << Request([](StationOnceTest &) {
        return QVariantMap{{FieldKey::camName, u"Gate"_s}};
    }) << u"CameraNotFound"_s;
    QTest::newRow("no NAS server") << ServerCommand::AddNasServer
                                   << Request([](StationOnceTest &) { return nasServer(u"no host"_s); })
                                   << u"NasHostRefused"_s;
    QTest::newRow("no NAS server to change") << ServerCommand::UpdateNASServer << Request([](StationOnceTest &) {
        QVariantMap map = nasServer(u"nas-1"_s);
        map.insert(StationKey::id, u"{7}"_s);
        return map;
    }) << u"NasServerNotFound"_s;
    QTest::newRow("no folder") << ServerCommand::createDirectory
                               << Request([](StationOnceTest &test) { return test.path("disk/a"); })
                               << u"DirectoryExists"_s;
}

void StationOnceTest::everyDeliveryIsAnsweredAlike()
{
    QFETCH(QString, command);
    QFETCH(Request, request);
    QFETCH(QString, code);
    const QVariant data = request(*this);
    const qsizetype entries = activity().size();
    const QString first = deliver(u"id 1"_s, command, data);
    QVERIFY2(first.startsWith(code + u' '), qPrintable(first));
    const QString after = state();
    const qsizetype entriesAfter = activity().size();
    QVERIFY(entriesAfter > entries);

    QCOMPARE(deliver(u"id 1"_s, command, data), first);
    restart(); // as after an answer that never arrived
    QCOMPARE(deliver(u"id 1"_s, command, data), first);
    QCOMPARE(state(), after);
    QCOMPARE(activity().size(), entriesAfter);
}

void StationOnceTest::aSampleSiteIsMadeOnce()
{
    const QString first = deliver(u"id"_s, StationCommandName::createSampleSite);
    QVERIFY2(first.startsWith(u"0 "), qPrintable(first));
    const QStringList folders = QDir(path("data")).entryList({u"sample*"_s}, QDir::Dirs);
    QCOMPARE(folders, QStringList{u"sample"_s});
    restart();
    QCOMPARE(deliver(u"id"_s, StationCommandName::createSampleSite), first);
    QCOMPARE(QDir(path("data")).entryList({u"sample*"_s}, QDir::Dirs), folders);
    QCOMPARE(deliver(u"another"_s, StationCommandName::createSampleSite), u"SiteNotEmpty invalid"_s);
}

void StationOnceTest::aSampleSiteThatCannotBeKeptLeavesNoFiles()
{
    ask(StationCommandName::listCameras);
    runBeside("CREATE TRIGGER cut BEFORE INSERT ON recording_group BEGIN SELECT RAISE(ABORT, 'cut'); END");
    QCOMPARE(deliver(u"id"_s, StationCommandName::createSampleSite), u"DatabaseFailed invalid"_s);
    QCOMPARE(QDir(path("data")).entryList({u"sample*"_s}, QDir::Dirs), QStringList());
    runBeside("DROP TRIGGER cut");
    QVERIFY(deliver(u"id"_s, StationCommandName::createSampleSite).startsWith(u"0 "));
}

void StationOnceTest::withoutAnIdEachIsAnEditOfItsOwn()
{
    QCOMPARE(deliver({}, StationCommandName::addCamera, camera(u"Gate"_s)), u"0 invalid"_s);
    QCOMPARE(deliver({}, StationCommandName::addCamera, camera(u"Gate"_s)), u"CameraExists invalid"_s);
    QCOMPARE(valueBeside("SELECT count(*) FROM edit_request").toInt(), 0);
}

void StationOnceTest::otherDataUnderTheIdIsRefused()
{
    QCOMPARE(deliver(u"id"_s, StationCommandName::addCamera, camera(u"Gate"_s)), u"0 invalid"_s);
    for (int run = 0; run < 2; ++run) {
        QCOMPARE(deliver(u"id"_s, StationCommandName::addCamera, camera(u"Yard"_s)), u"RequestIdInUse invalid"_s);
        QCOMPARE(deliver(u"id"_s, StationCommandName::removeCamera, camera(u"Gate"_s)), u"RequestIdInUse invalid"_s);
        QCOMPARE(deliver(u"id"_s, StationCommandName::addCamera, camera(u"Gate"_s)), u"0 invalid"_s);
        restart();
    }
    QCOMPARE(ask(StationCommandName::listCameras).data.toList().size(), 1);
    QCOMPARE(activity().constFirst().toMap().value(StationKey::returnCode).toString(), u"RequestIdInUse"_s);
}

void StationOnceTest::aPasswordIsNotPartOfTheRequest()
{
    const QString first = deliver(u"id"_s, ServerCommand::AddNasServer, nasServer(u"no host"_s, u"one"_s));
    QCOMPARE(first, u"NasHostRefused invalid"_s);
    QCOMPARE(deliver(u"id"_s, ServerCommand::AddNasServer, nasServer(u"no host"_s, u"two"_s)), first);
    QCOMPARE(deliver(u"id"_s, ServerCommand::AddNasServer, nasServer(u"nor that"_s, u"one"_s)),
             u"RequestIdInUse invalid"_s);
}

void StationOnceTest::longIdsAreRefused()
{
    const QString longest(Edit::mostIdBytes, u'x');
    QCOMPARE(deliver(longest, StationCommandName::addCamera, camera(u"Gate"_s)), u"0 invalid"_s);
    QCOMPARE(deliver(longest, StationCommandName::addCamera, camera(u"Gate"_s)), u"0 invalid"_s);
    const QString tooLong = QString(Edit::mostIdBytes - 1, u'x') + u'\u00e4'; // two bytes
    QCOMPARE(deliver(tooLong, StationCommandName::addCamera, camera(u"Yard"_s)), u"BadRequest invalid"_s);
    QCOMPARE(ask(StationCommandName::listCameras).data.toList().size(), 1);
}

void StationOnceTest::anIdIsForgottenAfterADay()
{
    QCOMPARE(deliver(u"id"_s, StationCommandName::addCamera, camera(u"Gate"_s)), u"0 invalid"_s);
    m_now = m_now.addSecs(23 * 60 * 60);
    restart();
    QCoreApplication::processEvents();
    QCOMPARE(deliver(u"id"_s, StationCommandName::addCamera, camera(u"Gate"_s)), u"0 invalid"_s);
    m_now = m_now.addSecs(2 * 60 * 60);
    QCOMPARE(deliver(u"id"_s, StationCommandName::addCamera, camera(u"Gate"_s)), u"CameraExists invalid"_s);
    QCOMPARE(deliver(u"id"_s, StationCommandName::addCamera, camera(u"Gate"_s)), u"CameraExists invalid"_s);
    m_now = m_now.addSecs(25 * 60 * 60);
    QCOMPARE(valueBeside("SELECT count(*) FROM edit_reply").toInt(), 1);
    restart();
    QTRY_COMPARE(valueBeside("SELECT count(*) FROM edit_request").toInt(), 0);
    QCOMPARE(valueBeside("SELECT count(*) FROM edit_reply").toInt(), 0);
}

void StationOnceTest::anEditUnderWayIsAnsweredWithTheFirst()
{
    const SilentServer silent; // never answers
    m_station.reset();
    const QVariantMap request = nasServer(u"127.0.0.1:%1"_s.arg(silent.port()));
    m_station = makeStation();
    const StationCommand command{ServerCommand::AddNasServer, request, u"id"_s};
    const EditDelivery first(*m_station, command);
    const EditDelivery second(*m_station, command);
    QVERIFY(!first.isAnswered() && !second.isAnswered());
    QTRY_VERIFY_WITH_TIMEOUT(second.isAnswered(), 20000);
    QCOMPARE(first.text(), u"NasServerNotResponding invalid"_s);
    QCOMPARE(second.text(), first.text());
    QCOMPARE(activity().size(), 1);
    const EditDelivery third(*m_station, command);
    QCOMPARE(third.text(), first.text()); // at once: nobody was asked again
}

void StationOnceTest::anotherEditUnderAnIdThatIsUnderWayIsRefused()
{
    const SilentServer silent;
    const QVariantMap request = nasServer(u"127.0.0.1:%1"_s.arg(silent.port()));
    const EditDelivery first(*m_station, {ServerCommand::AddNasServer, request, u"id"_s});
    QVERIFY(!first.isAnswered());
    QCOMPARE(deliver(u"id"_s, StationCommandName::addCamera, camera(u"Gate"_s)), u"RequestIdInUse invalid"_s);
    QVERIFY(!first.isAnswered());
    QTRY_VERIFY_WITH_TIMEOUT(first.isAnswered(), 20000);
    QCOMPARE(deliver(u"id"_s, ServerCommand::AddNasServer, request), first.text());
}

void StationOnceTest::aDuplicateOfAnEditThatTakesEffectLater()
{
    m_station.reset();
    StationData data(path("data"));
    QStringList log;
    Edits edits({data, {}, [&log](const Activity &entry) { log.append(u"activity "_s + entry.returnCode); }, {}});
    std::shared_ptr<Edit> later;
    int times = 0;
    const EditHandler handler = [&](const std::shared_ptr<Edit> &edit) {
        later = edit;
        ++times;
    };
    const auto answerAs = [&log](const QString &name) {
        return [&log, name](const StationReply &part) {
            log.append(name + u' ' + part.returnCode + (part.finish ? u""_s : u" ..."_s));
        };
    };
    const StationCommand command{u"an edit"_s, 5, u"id"_s};
    const auto commit = [&](bool isLast) {
        Database &database = data.database();
        Transaction transaction(database);
        later->commit(transaction, {ReturnCode::Success, 1, isLast});
    };
    edits.carryOut(command, handler, answerAs(u"first"_s));
    edits.carryOut(command, handler, answerAs(u"second"_s));
    QCOMPARE(log, QStringList());
    commit(false);
    QCOMPARE(std::exchange(log, {}), (QStringList{u"first 0 ..."_s, u"second 0 ..."_s, u"activity 0"_s}));
    edits.carryOut(command, handler, answerAs(u"third"_s)); // gets what was given at once
    QCOMPARE(std::exchange(log, {}), (QStringList{u"third 0 ..."_s}));
    commit(true);
    QCOMPARE(std::exchange(log, {}), (QStringList{u"first 0"_s, u"second 0"_s, u"third 0"_s, u"activity 0"_s}));
    edits.carryOut(command, handler, answerAs(u"fourth"_s));
    QCOMPARE(std::exchange(log, {}), (QStringList{u"fourth 0 ..."_s, u"fourth 0"_s}));
    QCOMPARE(times, 1);
}

void StationOnceTest::whatWasCutInHalfGoesOn()
{
    QStringList ids;
    for (const QString &name : {u"a"_s, u"b"_s, u"c"_s})
        ids.append(addGroup(name));
    const QVariantMap request{{FieldKey::recordingGroupIDList, ids}};
    runBeside("CREATE TRIGGER cut BEFORE DELETE ON recording_group WHEN old.name = 'b' "
              "BEGIN SELECT RAISE(ABORT, 'cut'); END");
    const QString cut = deliver(u"id"_s, ServerCommand::removeRecordingGroup, request);
    QCOMPARE(cut.count(u'\n'), 1);
    QVERIFY2(cut.endsWith(u"DatabaseFailed invalid"), qPrintable(cut));
    const QString firstPart = cut.section(u'\n', 0, 0);
    QCOMPARE(ask(ServerCommand::getRecordingGroup).data.toList().size(), 2);

    restart();
    runBeside("DROP TRIGGER cut");
    const QString whole = deliver(u"id"_s, ServerCommand::removeRecordingGroup, request);
    const QStringList parts = whole.split(u'\n');
    QCOMPARE(parts.size(), 3);
    QCOMPARE(parts.at(0), firstPart);
    for (const QString &part : parts)
        QVERIFY2(part.startsWith(u"0 "), qPrintable(part));
    QCOMPARE(ask(ServerCommand::getRecordingGroup).data.toList().size(), 0);
    restart();
    QCOMPARE(deliver(u"id"_s, ServerCommand::removeRecordingGroup, request), whole);
}

void StationOnceTest::aRefusedPartInTheMiddleIsKept()
{
    const QStringList ids{addGroup(u"a"_s), unknownId, addGroup(u"c"_s), unknownId};
    const QVariantMap request{{FieldKey::recordingGroupIDList, ids}};
    const QString first = deliver(u"id"_s, ServerCommand::removeRecordingGroup, request);
    QCOMPARE(first.split(u'\n').size(), 4);
    QCOMPARE(first.count(u"RecordingGroupNotFound"_s), 2);
    restart();
    QCOMPARE(deliver(u"id"_s, ServerCommand::removeRecordingGroup, request), first);
    QCOMPARE(valueBeside("SELECT group_concat(part, ' ') FROM edit_reply").toString(), u"0 1 2 3"_s);
}

void StationOnceTest::twoStationsAtOnceDoItOnce()
{
    constexpr int count = 40;
    m_station.reset();
    const auto run = [this](QStringList &answers) {
        const std::unique_ptr<Station> station = makeStation();
        for (int number = 0; number < count; ++number) {
            QVariantMap request = pathMap(path("disk/a"));
            request.insert(FieldKey::recordingGroupName, u"Group %1"_s.arg(number));
            const StationCommand command{ServerCommand::addRecordingGroup, request, u"id %1"_s.arg(number)};
            answers.append(EditDelivery(*station, command).text());
        }
    };
    QStringList answers;
    QStringList otherAnswers;
    const std::unique_ptr<QThread> other(QThread::create([&] { run(otherAnswers); }));
    other->start();
    run(answers);
    QVERIFY(other->wait());
    m_station = makeStation();
    QCOMPARE(ask(ServerCommand::getRecordingGroup).data.toList().size(), count);
    QCOMPARE(answers, otherAnswers);
    for (const QString &answer : std::as_const(answers))
        QVERIFY2(answer.startsWith(u"0 "), qPrintable(answer));
}

void StationOnceTest::anotherStationsOutcomeIsTheAnswer()
{
    // Both have looked for the id before either knew it.
    m_station.reset();
    StationData data(path("data"));
    StationData otherData(path("data"));
    Edits edits({data, {}, {}, {}});
    Edits otherEdits({otherData, {}, {}, {}});
    QHash<StationData *, std::shared_ptr<Edit>> running;
    QStringList log;
    const StationCommand command{u"an edit"_s, {}, u"id"_s};
    const auto begin = [&](Edits &by, StationData &on, const QString &name) {
        by.carryOut(
            command, [&running, &on](const std::shared_ptr<Edit> &edit) { running.insert(&on, edit); },
            [&log, name](const StationReply &part) {
                log.append(name + u' ' + part.returnCode + part.data.toString());
            });
    };
    begin(edits, data, u"one"_s);
    begin(otherEdits, otherData, u"other"_s);
    const auto commit = [](Edit &edit, StationData &on, const QString &cameraName) {
        edit.attempt([&] {
            Database &database = on.database();
            Transaction transaction(database);
            database.run(u"INSERT INTO camera (name, streams) VALUES (?, 1)"_s, {cameraName});
            edit.commit(transaction, lastPart(ReturnCode::Success, cameraName));
        });
    };
    commit(*running.value(&data), data, u"first"_s);
    commit(*running.value(&otherData), otherData, u"second"_s);
    QCOMPARE(log, (QStringList{u"one 0first"_s, u"other 0first"_s}));
    QCOMPARE(valueBeside("SELECT group_concat(name) FROM camera").toString(), u"first"_s);
}

void StationOnceTest::effectAndOutcomeAreKeptTogether()
{
    ask(StationCommandName::listCameras);
    for (const char *table : {"edit_reply", "activity"}) {
        runBeside(qPrintable(u"CREATE TRIGGER cut BEFORE INSERT ON %1 BEGIN SELECT RAISE(ABORT, 'cut'); END"_s.arg(
            QLatin1String(table))));
        QCOMPARE(deliver(u"id"_s, StationCommandName::addCamera, camera(u"Gate"_s)), u"DatabaseFailed invalid"_s);
        QCOMPARE(ask(StationCommandName::listCameras).data.toList().size(), 0);
        runBeside("DROP TRIGGER cut");
    }
    QCOMPARE(deliver(u"id"_s, StationCommandName::addCamera, camera(u"Gate"_s)), u"0 invalid"_s);
}

void StationOnceTest::aDatabaseThatTakesNothingStillAnswers_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("code");
    QTest::newRow("full") << u"PRAGMA max_page_count = 1"_s << u"DatabaseFull"_s;
    QTest::newRow("read-only") << u"PRAGMA query_only = ON"_s << u"DatabaseReadOnly"_s;
}

/// SQLite itself takes nothing more on this connection, as on a disk that does not.
void StationOnceTest::aDatabaseThatTakesNothingStillAnswers()
{
    QFETCH(QString, statement);
    QFETCH(QString, code);
    m_station.reset();
    StationData data(path("data"));
    CommandTable table;
    CameraCommands commands(data);
    commands.enterInto(table);
    QList<Activity> log;
    Edits edits({data, {}, [&log](const Activity &entry) { log.append(entry); }, {}});
    const auto ask = [&](const QString &id, const QString &name, const QVariantMap &request) {
        QString given;
        edits.carryOut({name, request, id}, std::get<EditHandler>(table.value(name)),
                       [&given](const StationReply &part) { given = part.returnCode; });
        return given;
    };
    QCOMPARE(ask(u"done"_s, StationCommandName::addCamera, camera(u"Gate"_s)), u"0"_s);
    QCOMPARE(ask(u"refused"_s, StationCommandName::addCamera, camera(u"Gate"_s)), u"CameraExists"_s);
    QVERIFY(log.constLast().number > 0);
    data.database().value(statement);
    if (code == u"DatabaseFull"_s) { // what is left in the last page is used up first
        ActivityStore activities(data.database());
        const Activity least{0, QDateTime::currentDateTimeUtc(), {}, {}, {}, {}, {}, 0};
        const auto fill = [&activities, &least] {
            for (;;)
                activities.insert(least);
        };
        QVERIFY_THROWS_EXCEPTION(DatabaseError, fill());
    }

    QCOMPARE(ask(u"done"_s, StationCommandName::addCamera, camera(u"Gate"_s)), u"0"_s);
    QCOMPARE(ask(u"refused"_s, StationCommandName::addCamera, camera(u"Gate"_s)), u"CameraExists"_s);
    QCOMPARE(ask(u"new"_s, StationCommandName::addCamera, camera(u"Yard"_s)), code);
    QCOMPARE(log.constLast().number, 0);
    QCOMPARE(log.constLast().returnCode, code);
    QCOMPARE(ask(u"also new"_s, StationCommandName::addCamera, camera(u" "_s)), u"EmptyCameraName"_s);
    QCOMPARE(log.constLast().returnCode, u"EmptyCameraName"_s);
    QCOMPARE(log.constLast().number, 0);
}

void StationOnceTest::aRefusalThatCannotBeKeptIsJudgedAgain()
{
    ask(StationCommandName::listCameras);
    runBeside("CREATE TRIGGER cut BEFORE INSERT ON edit_request BEGIN SELECT RAISE(ABORT, 'cut'); END");
    const QVariantMap request{{FieldKey::camName, u"Gate"_s}};
    QCOMPARE(deliver(u"id"_s, StationCommandName::removeCamera, request), u"CameraNotFound invalid"_s);
    runBeside("DROP TRIGGER cut");
    QCOMPARE(ask(StationCommandName::addCamera, camera(u"Gate"_s)).returnCode, u"0"_s);
    QCOMPARE(deliver(u"id"_s, StationCommandName::removeCamera, request), u"0 invalid"_s);
}

void StationOnceTest::aLargeRefusalIsJudgedAgain()
{
    const QString longName(100 * 1024, u'x');
    const QVariantMap request = groupMap(longName, {});
    const QString first = deliver(u"id"_s, ServerCommand::addRecordingGroupWithCompleteInfo, request);
    QVERIFY(first.startsWith(u"NameRefused"));
    QCOMPARE(valueBeside("SELECT count(*) FROM edit_request").toInt(), 0);
    QCOMPARE(deliver(u"id"_s, ServerCommand::addRecordingGroupWithCompleteInfo, request), first);
    QVERIFY(activity().constFirst().toMap().value(FieldKey::recordingGroupName).toString().size() <= 4096);
}

void StationOnceTest::noPasswordIsKept()
{
    const QString password = u"Correct-Horse-9"_s;
    QVariantMap update = nasServer(u"nas-1"_s, password);
    update.insert(StationKey::id, u"{7}"_s);
    deliver(u"1"_s, ServerCommand::AddNasServer, nasServer(u"no host"_s, password));
    deliver(u"2"_s, ServerCommand::UpdateNASServer, update);
    for (const QString &name : QDir(path("data")).entryList(QDir::Files)) {
        QFile file(path("data") + u'/' + name);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray content = file.readAll();
        QVERIFY(!content.contains(password.toUtf8()));
        QVERIFY(!content.contains(QByteArray(reinterpret_cast<const char *>(password.utf16()), 2 * password.size())));
    }
    QCOMPARE(activity().size(), 2);
}

Q_DECLARE_METATYPE(std::function<QVariant(StationOnceTest &)>)
QTEST_GUILESS_MAIN(StationOnceTest)
#include "tst_station_once.moc"
