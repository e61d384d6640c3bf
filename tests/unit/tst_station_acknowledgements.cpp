#include "RecordedSite.h"
#include "ServerVocabulary.h"
#include "StationCall.h"
#include "StationVocabulary.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

/// Alarms that somebody has seen: who, when and with what note, as long as the alarm lasts and among those that are
/// over.
class StationAcknowledgementsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void itIsToldWithTheAlarm();
    void itSurvivesARestart();
    void itEndsWithTheAlarm();
    void itCanBeWithdrawnAndReplaced();
    void refusals_data();
    void refusals();
    void aPendingOneCannotBe();
    void itTakesEffectOnce();
    void aDatabaseThatTakesNothing();

private:
    void start();
    void loseDisk();
    StationReply acknowledge(const QVariantMap &data, const QString &id = {});
    StationReply acknowledgeDisk(const QString &note) { return acknowledge(about(note)); }
    QVariantMap about(const QString &note) const;
    StationReply ask(const QString &command, const QVariant &data = {}) const
    {
        return StationCall(*m_station, command, data).reply();
    }
    QVariantMap alarm() const
    {
        return ask(u"station.listAlarms"_s).data.toMap().value(u"alarms"_s).toList().value(0).toMap();
    }
    QVariantList past() const { return ask(u"station.listPastAlarms"_s).data.toList(); }
    /// "time by note"; empty where it is not acknowledged.
    static QString text(const QVariantMap &alarm)
    {
        if (!alarm.contains(u"acknowledgedAt"_s))
            return alarm.contains(u"acknowledgedBy"_s) || alarm.contains(u"note"_s) ? u"half"_s : QString();
        return QStringList{alarm.value(u"acknowledgedAt"_s).toString(), alarm.value(u"acknowledgedBy"_s).toString(),
                           alarm.value(u"note"_s).toString()}
            .join(u' ');
    }

    std::unique_ptr<RecordedSite> m_site;
    QDateTime m_now;
    std::unique_ptr<Station> m_station;
    QList<QVariantMap> m_told; // events
};

void StationAcknowledgementsTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_site = std::make_unique<RecordedSite>();
    m_site->addGroup(u"Doors"_s, {m_site->makePath(u"rec"_s)});
    m_now = QDateTime::fromString(QStringLiteral("2026-03-20T12:00:00Z"), Qt::ISODate);
}

void StationAcknowledgementsTest::cleanup()
{
    m_station.reset();
    m_site.reset();
}

void StationAcknowledgementsTest::start()
{
    m_station.reset();
    m_told.clear();
    StationSettings settings = m_site->settings(m_now.date());
    settings.records.now = [this] { return m_now; };
    m_station = std::make_unique<Station>(std::move(settings));
    bool isKnown = false;
    connect(m_station.get(), &Station::eventRaised, this, [this, &isKnown](const StationEvent &event) {
        isKnown = isKnown || event.name == ServerEvent::VolumeChanged;
        if (event.name == StationEventName::AlarmsChanged)
            m_told.append(event.data.toMap());
    });
    QTRY_VERIFY(isKnown);
    m_station->disconnect(this);
    connect(m_station.get(), &Station::eventRaised, this, [this](const StationEvent &event) {
        if (event.name == StationEventName::AlarmsChanged)
            m_told.append(event.data.toMap());
    });
}

void StationAcknowledgementsTest::loseDisk()
{
    m_site->unmountDisk();
    QTRY_COMPARE(alarm().value(u"kind"_s).toString(), u"VolumeGone"_s);
}

QVariantMap StationAcknowledgementsTest::about(const QString &note) const
{
    return {{u"kind"_s, u"VolumeGone"_s}, {u"subject"_s, m_site->disk()}, {u"note"_s, note}};
}

StationReply StationAcknowledgementsTest::acknowledge(const QVariantMap &data, const QString &id)
{
    StationReply reply;
    m_station->handle({u"station.acknowledgeAlarm"_s, data, id, u"console"_s, u"mia"_s},
                      [&reply](const StationReply &part) { reply = part; });
    return reply;
}

void StationAcknowledgementsTest::itIsToldWithTheAlarm()
{
    start();
    loseDisk();
    QCOMPARE(text(alarm()), QString());
    m_told.clear();
    QCOMPARE(acknowledgeDisk(u"disk ordered"_s).returnCode, u"0"_s);
    QCOMPARE(text(alarm()), u"2026-03-20T12:00:00.000Z mia disk ordered"_s);
    QCOMPARE(m_told.size(), 1);
    QCOMPARE(text(m_told.constFirst().value(u"alarms"_s).toList().value(0).toMap()), text(alarm()));
    QCOMPARE(alarm().value(u"severity"_s).toString(), u"error"_s);
    const QVariantMap entry = ask(u"station.listActivity"_s).data.toList().value(0).toMap();
    QCOMPARE(entry.value(u"command"_s).toString(), u"station.acknowledgeAlarm"_s);
    QCOMPARE(entry.value(u"subject"_s).toString(), u"VolumeGone "_s + m_site->disk());
    QCOMPARE(entry.value(u"user"_s).toString(), u"mia"_s);
}

void StationAcknowledgementsTest::itSurvivesARestart()
{
    start();
    loseDisk();
    QCOMPARE(acknowledgeDisk(u"disk ordered"_s).returnCode, u"0"_s);
    const QString before = text(alarm());
    m_now = m_now.addDays(1);
    start();
    QTRY_COMPARE(text(alarm()), before);
}

void StationAcknowledgementsTest::itEndsWithTheAlarm()
{
    start();
    loseDisk();
    QCOMPARE(acknowledgeDisk(u"disk ordered"_s).returnCode, u"0"_s);
    const QString before = text(alarm());
    m_site->setFree(1);
    QTRY_COMPARE(alarm(), QVariantMap());
    QTRY_COMPARE(past().size(), 1);
    QCOMPARE(text(past().constFirst().toMap()), before);
    loseDisk();
    QCOMPARE(text(alarm()), QString());
    QCOMPARE(text(past().constFirst().toMap()), before);
}

void StationAcknowledgementsTest::itCanBeWithdrawnAndReplaced()
{
    start();
    loseDisk();
    const QVariantMap disk{{u"kind"_s, u"VolumeGone"_s}, {u"subject"_s, m_site->disk()}};
    QCOMPARE(ask(u"station.withdrawAcknowledgement"_s, disk).returnCode, u"AlarmNotAcknowledged"_s);
    QCOMPARE(acknowledge(disk).returnCode, u"0"_s); // without a note
    QCOMPARE(text(alarm()), u"2026-03-20T12:00:00.000Z mia "_s);
    m_now = m_now.addSecs(60);
    QCOMPARE(acknowledgeDisk(u"disk ordered"_s).returnCode, u"0"_s);
    QCOMPARE(text(alarm()), u"2026-03-20T12:01:00.000Z mia disk ordered"_s);
    QCOMPARE(ask(u"station.withdrawAcknowledgement"_s, disk).returnCode, u"0"_s);
    QCOMPARE(text(alarm()), QString());
    start();
    QTRY_COMPARE(alarm().value(u"kind"_s).toString(), u"VolumeGone"_s);
    QCOMPARE(text(alarm()), QString());
}

void StationAcknowledgementsTest::refusals_data()
{
    QTest::addColumn<QVariantMap>("changed");
    QTest::addColumn<QString>("code");
    QTest::newRow("kind") << QVariantMap{{u"kind"_s, u"VolumeNotAnswering"_s}} << u"AlarmNotFound"_s;
    QTest::newRow("subject") << QVariantMap{{u"subject"_s, u"/nowhere"_s}} << u"AlarmNotFound"_s;
    QTest::newRow("long note") << QVariantMap{{u"note"_s, QString(1001, u'x')}} << u"NoteRefused"_s;
    QTest::newRow("note of another type") << QVariantMap{{u"note"_s, 7}} << u"BadRequest"_s;
    QTest::newRow("subject of another type") << QVariantMap{{u"subject"_s, 7}} << u"BadRequest"_s;
}

void StationAcknowledgementsTest::refusals()
{
    QFETCH(const QVariantMap, changed);
    QFETCH(const QString, code);
    start();
    loseDisk();
    QVariantMap data = about(QString(1000, u'x'));
    data.insert(changed);
    QCOMPARE(acknowledge(data).returnCode, code);
    QCOMPARE(text(alarm()), QString());
}

void StationAcknowledgementsTest::aPendingOneCannotBe()
{
    start();
    QVariantMap pending;
    const auto isCounting = [this, &pending] {
        m_station->handle({ServerCommand::reloadStorageUsageInfo, {}}, {});
        QCoreApplication::sendPostedEvents();
        pending = ask(u"station.listAlarms"_s).data.toMap().value(u"pending"_s).toList().value(0).toMap();
        return !pending.isEmpty();
    };
    QTRY_VERIFY(isCounting());
    const QVariantMap counting{{u"kind"_s, pending.value(u"kind"_s)}, {u"subject"_s, pending.value(u"subject"_s)}};
    QCOMPARE(acknowledge(counting).returnCode, u"AlarmNotFound"_s);
}

void StationAcknowledgementsTest::itTakesEffectOnce()
{
    start();
    loseDisk();
    QCOMPARE(acknowledge(about(u"one"_s), u"id-1"_s).returnCode, u"0"_s);
    m_now = m_now.addSecs(60);
    QCOMPARE(acknowledge(about(u"one"_s), u"id-1"_s).returnCode, u"0"_s);
    QCOMPARE(text(alarm()), u"2026-03-20T12:00:00.000Z mia one"_s);
    QCOMPARE(acknowledge(about(u"two"_s), u"id-1"_s).returnCode, u"RequestIdInUse"_s);
    QCOMPARE(text(alarm()), u"2026-03-20T12:00:00.000Z mia one"_s);
}

void StationAcknowledgementsTest::aDatabaseThatTakesNothing()
{
    start();
    loseDisk();
    QCOMPARE(text(alarm()), QString());
    Database database(m_site->dataFolder());
    database.run(u"CREATE TRIGGER refuse BEFORE UPDATE ON alarm BEGIN SELECT RAISE(FAIL, 'refused'); END"_s);
    const QString code = acknowledgeDisk(u"disk ordered"_s).returnCode;
    QVERIFY2(code.startsWith(u"Database"_s), qPrintable(code));
    database.run(u"DROP TRIGGER refuse"_s);
    const auto diskText = [this] {
        const QVariantList alarms = ask(u"station.listAlarms"_s).data.toMap().value(u"alarms"_s).toList();
        for (const QVariant &value : alarms) {
            if (value.toMap().value(u"kind"_s) == u"VolumeGone"_s)
                return text(value.toMap());
        }
        return u"none"_s;
    };
    QCOMPARE(diskText(), QString());
    QCOMPARE(acknowledgeDisk(u"disk ordered"_s).returnCode, u"0"_s);
    QCOMPARE(diskText(), u"2026-03-20T12:00:00.000Z mia disk ordered"_s);
}

QTEST_GUILESS_MAIN(StationAcknowledgementsTest)
#include "tst_station_acknowledgements.moc"
