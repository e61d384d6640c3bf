#include "GroupForecast.h"
#include "StationAnswers.h"

#include <QJsonDocument>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
QVariantMap figures(const QString &name, int minutes, int recorded, int remaining, qint64 bytesPerDay = 1000)
{
    return {{u"recordingGroupName"_s, name},
            {u"recordingGroupReservedTime"_s, minutes},
            {u"recordedDays"_s, recorded},
            {u"remainingDays"_s, remaining},
            {u"bytesPerDay"_s, bytesPerDay}};
}

QVariantMap group(const QString &id, const QVariantMap &now, const QVariantMap &then)
{
    QVariantMap map{{u"recordingGroupID"_s, id}, {u"then"_s, then}};
    if (!now.isEmpty())
        map.insert(u"now"_s, now);
    return map;
}

QVariantMap forecastOf(const QVariantList &groups)
{
    return {{u"returnCode"_s, u"0"_s}, {u"errors"_s, QVariantList()}, {u"groups"_s, groups}};
}

/// updateRecordingGroup() of {north} that gives it another name.
QVariantList renaming(const QString &name)
{
    const QVariantList none;
    return {u"{north}"_s, none, none, none, none, none, QVariantMap{{u"recordingGroupName"_s, name}}};
}

QString nameIn(const StationAnswers::Call &call)
{
    return call.data[u"data"_s].toMap()[u"updateSetRecordingGroup"_s].toMap()[u"recordingGroupName"_s].toString();
}

constexpr int day = 24 * 60;
} // namespace

/// What the console asks about an edit, and what it makes of the answer.
class ConsoleForecastTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(u".*"_s));
        m_session = std::make_unique<ConsoleSession>();
        m_session->setConnected(true);
        m_station = std::make_unique<StationAnswers>(*m_session);
        m_forecast = std::make_unique<GroupForecast>();
        m_forecast->setSession(m_session.get());
        m_forecast->setMoment(0);
    }
    void cleanup()
    {
        m_forecast.reset();
        m_session.reset();
        m_station.reset();
    }

    void asksForTheEdit();
    void asksForSeveralEdits();
    void severalEditsRefusedInPart();
    void newestEditCounts();
    void sameEditIsAskedOnce();
    void waitsForAMoment();
    void groupsTheWorstFirst();
    void unknownIsNotZero();
    void newGroup();
    void refusalIsTold();
    void failureNeverLooksFine_data();
    void failureNeverLooksFine();
    void connectionGoesAndComes();
    void editsOfOthers();
    void clearedIsForgotten();

private:
    void ask(const QString &name)
    {
        m_forecast->ask(u"updateRecordingGroup"_s, renaming(name));
        QTRY_COMPARE(m_station->calls.size(), 1);
    }
    QVariantMap groupAt(int row) const { return m_forecast->groups().at(row).toMap(); }

    std::unique_ptr<ConsoleSession> m_session;
    std::unique_ptr<StationAnswers> m_station;
    std::unique_ptr<GroupForecast> m_forecast;
};

void ConsoleForecastTest::asksForTheEdit()
{
    QCOMPARE(m_forecast->state(), GroupForecast::Nothing);
    m_forecast->ask(u"updateRecordingGroup"_s, renaming(u"North"_s));
    QCOMPARE(m_forecast->state(), GroupForecast::Pending);
    QTRY_COMPARE(m_station->calls.size(), 1);
    const StationAnswers::Call call = m_station->calls.constFirst();
    QCOMPARE(call.command, u"station.forecast"_s);
    QCOMPARE(call.data[u"command"_s], QVariant(u"updateRecordingGroup"_s));
    const QVariantMap data = call.data[u"data"_s].toMap();
    QCOMPARE(data[u"recordingGroupID"_s], QVariant(u"{north}"_s));
    QCOMPARE(nameIn(call), u"North"_s);
    m_station->answer(
        forecastOf({group(u"{north}"_s, figures(u"N"_s, 14 * day, 10, 18), figures(u"North"_s, 14 * day, 1, 1))}));
    QCOMPARE(m_forecast->state(), GroupForecast::Known);
    QCOMPARE(m_forecast->groups(),
             QVariantList{(QVariantMap{{u"id"_s, u"{north}"_s},
                                       {u"name"_s, u"North"_s},
                                       {u"edited"_s, true},
                                       {u"isNew"_s, false},
                                       {u"daysNow"_s, 28.0},
                                       {u"daysThen"_s, 2.0},
                                       {u"reservedDays"_s, 14.0},
                                       {u"missingNow"_s, 0.0},
                                       {u"missingThen"_s, 12.0},
                                       {u"bytesPerDay"_s, 1000.0}})});
}

void ConsoleForecastTest::asksForSeveralEdits()
{
    QVariantList south = renaming(u"South"_s);
    south[0] = u"{south}"_s;
    m_forecast->askAll(u"updateRecordingGroup"_s, {QVariant(renaming(u"North"_s)), QVariant(south)});
    QTRY_COMPARE(m_station->calls.size(), 1);
    const StationAnswers::Call call = m_station->calls.constFirst();
    QCOMPARE(call.command, u"station.forecast"_s);
    QCOMPARE(call.data[u"command"_s], u"updateRecordingGroup"_s);
    const QVariantList edits = call.data[u"data"_s].toList();
    QCOMPARE(edits.size(), 2);
    QCOMPARE(edits.at(0).toMap()[u"recordingGroupID"_s], u"{north}"_s);
    QCOMPARE(edits.at(1).toMap()[u"recordingGroupID"_s], u"{south}"_s);
    QVariantMap answer = forecastOf({group(u"{other}"_s, figures(u"O"_s, day, 9, 9), figures(u"O"_s, day, 9, 8)),
                                     group(u"{south}"_s, figures(u"S"_s, day, 9, 9), figures(u"South"_s, day, 9, 9)),
                                     group(u"{north}"_s, figures(u"N"_s, day, 9, 9), figures(u"North"_s, day, 9, 9))});
    answer.insert(u"volumes"_s,
                  QVariantList{QVariantMap{{u"volumePath"_s, u"/srv"_s},
                                           {u"volumeName"_s, u"Disk"_s},
                                           {u"size"_s, qint64(1) << 40},
                                           {u"now"_s, QVariantMap{{u"reserveSpace"_s, 1024}}},
                                           {u"then"_s, QVariantMap{{u"reserveSpace"_s, 3072}}}}});
    m_station->answer(answer);
    QCOMPARE(m_forecast->state(), GroupForecast::Known);
    QStringList names;
    for (const QVariant &entry : m_forecast->groups())
        names.append(entry.toMap()[u"name"_s].toString()
                     + (entry.toMap()[u"edited"_s].toBool() ? u" edited"_s : u""_s));
    QCOMPARE(names, (QStringList{u"South edited"_s, u"North edited"_s, u"O"_s}));
    QCOMPARE(m_forecast->volumes().size(), 1);
    const QVariantMap volume = m_forecast->volumes().constFirst().toMap();
    QCOMPARE(volume[u"volumeName"_s], u"Disk"_s);
    QCOMPARE(volume[u"reservedNow"_s].toDouble(), double(qint64(1) << 30));
    QCOMPARE(volume[u"reservedThen"_s].toDouble(), double(qint64(3) << 30));
}

void ConsoleForecastTest::severalEditsRefusedInPart()
{
    m_forecast->askAll(u"updateRecordingGroup"_s, {QVariant(renaming(u"North"_s)), QVariant(renaming(u"South"_s))});
    QTRY_COMPARE(m_station->calls.size(), 1);
    QVariantMap answer = forecastOf({group(u"{north}"_s, figures(u"N"_s, day, 9, 9), figures(u"North"_s, day, 9, 9))});
    answer.insert(u"returnCode"_s, u"PathNotWritable"_s);
    const QVariantList errors{QVariantMap{{u"index"_s, 1}, {u"returnCode"_s, u"PathNotWritable"_s}}};
    answer.insert(u"errors"_s, errors);
    m_station->answer(answer);
    QCOMPARE(m_forecast->state(), GroupForecast::Refused);
    QCOMPARE(m_forecast->errors(), errors);
    QCOMPARE(m_forecast->groups().size(), 1);
}

void ConsoleForecastTest::newestEditCounts()
{
    ask(u"A"_s);
    for (const QString &name : {u"B"_s, u"C"_s})
        m_forecast->ask(u"updateRecordingGroup"_s, renaming(name));
    QSignalSpy changed(m_forecast.get(), &GroupForecast::changed);
    QCoreApplication::processEvents(); // the moment is over
    QCOMPARE(m_station->calls.size(), 1);
    m_station->answer(forecastOf({group(u"{north}"_s, {}, figures(u"A"_s, 0, 1, 1))}));
    QCOMPARE(m_forecast->state(), GroupForecast::Pending);
    QVERIFY(m_forecast->groups().isEmpty());
    QTRY_COMPARE(m_station->calls.size(), 1);
    QCOMPARE(nameIn(m_station->calls.constFirst()), u"C"_s);
    m_station->answer(forecastOf({group(u"{north}"_s, {}, figures(u"C"_s, 0, 1, 1))}));
    QCOMPARE(m_forecast->state(), GroupForecast::Known);
    QCOMPARE(groupAt(0)[u"name"_s], QVariant(u"C"_s));
    m_forecast->ask(u"updateRecordingGroup"_s, renaming(u"D"_s));
    QCOMPARE(m_forecast->state(), GroupForecast::Pending);
    QCOMPARE(groupAt(0)[u"name"_s], QVariant(u"C"_s)); // while the next one is pending
}

void ConsoleForecastTest::sameEditIsAskedOnce()
{
    ask(u"A"_s);
    m_station->answer(forecastOf({}));
    m_forecast->ask(u"updateRecordingGroup"_s, renaming(u"A"_s));
    QCOMPARE(m_forecast->state(), GroupForecast::Known);
    QCoreApplication::processEvents();
    QCOMPARE(m_station->calls.size(), 0);
}

void ConsoleForecastTest::waitsForAMoment()
{
    m_forecast->setMoment(3600 * 1000);
    m_forecast->ask(u"updateRecordingGroup"_s, renaming(u"A"_s));
    QCoreApplication::processEvents();
    QCOMPARE(m_station->calls.size(), 0);
    QCOMPARE(m_forecast->state(), GroupForecast::Pending);
    m_forecast->setMoment(0);
    m_forecast->ask(u"updateRecordingGroup"_s, renaming(u"B"_s));
    QTRY_COMPARE(m_station->calls.size(), 1);
}

void ConsoleForecastTest::groupsTheWorstFirst()
{
    ask(u"North"_s);
    const auto made = [](const QString &id, int before, int after) {
        return group(u'{' + id + u'}', figures(id, 20 * day, before, 0), figures(id, 20 * day, after, 0));
    };
    m_station->answer(forecastOf({made(u"gains"_s, 20, 30), made(u"wasShort"_s, 10, 9), made(u"north"_s, 40, 30),
                                  made(u"falls"_s, 30, 19), made(u"fallsMore"_s, 30, 2)}));
    QStringList names;
    for (const QVariant &entry : m_forecast->groups())
        names.append(entry.toMap()[u"name"_s].toString());
    QCOMPARE(names, (QStringList{u"fallsMore"_s, u"falls"_s, u"wasShort"_s, u"north"_s, u"gains"_s}));
}

void ConsoleForecastTest::unknownIsNotZero()
{
    ask(u"North"_s);
    m_station->answer(
        forecastOf({group(u"{north}"_s, figures(u"N"_s, 14 * day, 10, -1), figures(u"N"_s, 14 * day, -1, 18, -1))}));
    QCOMPARE(groupAt(0)[u"daysNow"_s], QVariant(-1.0));
    QCOMPARE(groupAt(0)[u"daysThen"_s], QVariant(-1.0));
    QCOMPARE(groupAt(0)[u"missingThen"_s], QVariant(-1.0));
    QCOMPARE(groupAt(0)[u"bytesPerDay"_s], QVariant(-1.0));
}

void ConsoleForecastTest::newGroup()
{
    const QVariantMap info{{u"recordingGroupName"_s, u"East"_s}};
    m_forecast->ask(u"addRecordingGroupWithCompleteInfo"_s, {info, QVariantList(), QVariantList()});
    QTRY_COMPARE(m_station->calls.size(), 1);
    m_station->answer(forecastOf({group({}, {}, figures(u"East"_s, day, -1, -1, -1)),
                                  group(u"{north}"_s, figures(u"N"_s, 0, 5, 5), figures(u"N"_s, 0, 5, 1))}));
    QCOMPARE(groupAt(0)[u"edited"_s], QVariant(true));
    QCOMPARE(groupAt(0)[u"isNew"_s], QVariant(true));
    QCOMPARE(groupAt(1)[u"edited"_s], QVariant(false));
    QCOMPARE(groupAt(1)[u"daysThen"_s], QVariant(6.0));
}

void ConsoleForecastTest::refusalIsTold()
{
    ask(u"North"_s);
    const QVariantList errors{QVariantMap{
        {u"element"_s, u"recordingGroupName"_s}, {u"index"_s, -1}, {u"returnCode"_s, u"RecordingGroupNameInUse"_s}}};
    m_station->answer(QVariantMap{{u"returnCode"_s, u"RecordingGroupNameInUse"_s}, {u"errors"_s, errors}});
    QCOMPARE(m_forecast->state(), GroupForecast::Refused);
    QCOMPARE(m_forecast->reason(), u"Another recording group has this name."_s);
    QCOMPARE(m_forecast->errors(), errors);
}

void ConsoleForecastTest::failureNeverLooksFine_data()
{
    QTest::addColumn<QString>("returnCode");
    QTest::addColumn<QVariant>("data");
    QTest::addColumn<QString>("reason");
    QTest::newRow("no answer") << u"NoAnswer"_s << QVariant() << u"The station did not answer in time."_s;
    QTest::newRow("older station") << u"UnknownCommand"_s << QVariant() << u"The station does not know this command."_s;
    QTest::newRow("no map") << u"0"_s << QVariant(7) << u"The station's answer cannot be read."_s;
    QTest::newRow("empty map") << u"0"_s << QVariant(QVariantMap()) << u"The station's answer cannot be read."_s;
}

void ConsoleForecastTest::failureNeverLooksFine()
{
    QFETCH(const QString, returnCode);
    QFETCH(const QVariant, data);
    ask(u"A"_s);
    m_station->answer(forecastOf({group(u"{north}"_s, {}, figures(u"A"_s, 0, 1, 1))}));
    ask(u"B"_s);
    m_station->answer(data, returnCode);
    QCOMPARE(m_forecast->state(), GroupForecast::Failed);
    QTEST(m_forecast->reason(), "reason");
    QVERIFY(m_forecast->groups().isEmpty());
}

void ConsoleForecastTest::connectionGoesAndComes()
{
    ask(u"A"_s);
    m_station->answer(forecastOf({}));
    m_session->setConnected(false);
    QTRY_COMPARE(m_forecast->state(), GroupForecast::Failed);
    QCOMPARE(m_forecast->reason(), u"There is no connection to the station."_s);
    m_session->setConnected(true);
    QTRY_COMPARE(m_station->calls.size(), 1);
    QCOMPARE(m_forecast->state(), GroupForecast::Pending);
}

void ConsoleForecastTest::editsOfOthers()
{
    ask(u"A"_s);
    const auto tell = [this] {
        m_session->noteEvent(u"station.ActivityAdded"_s,
                             QVariantMap{{u"recordingGroupID"_s, u"{cars}"_s}, {u"returnCode"_s, u"0"_s}});
    };
    tell(); // what the answer under way is about may be of before
    m_station->answer(forecastOf({}));
    QCOMPARE(m_forecast->state(), GroupForecast::Pending);
    QTRY_COMPARE(m_station->calls.size(), 1);
    m_station->answer(forecastOf({}));
    QCOMPARE(m_forecast->state(), GroupForecast::Known);
    tell();
    QTRY_COMPARE(m_station->calls.size(), 1);
}

void ConsoleForecastTest::clearedIsForgotten()
{
    ask(u"A"_s);
    m_forecast->clear();
    QCOMPARE(m_forecast->state(), GroupForecast::Nothing);
    m_station->answer(forecastOf({group(u"{north}"_s, {}, figures(u"A"_s, 0, 1, 1))}));
    QCOMPARE(m_forecast->state(), GroupForecast::Nothing);
    QVERIFY(m_forecast->groups().isEmpty());
    m_session->setConnected(false);
    QCOMPARE(m_forecast->state(), GroupForecast::Nothing);
}

QTEST_GUILESS_MAIN(ConsoleForecastTest)
#include "tst_console_forecast.moc"
