#include "StationCall.h"
#include "UsageStation.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

/// The days that "station.forecast" tells: those now are what the station tells, those then what it tells after the
/// edit.
class StationForecastDaysTest : public QObject, private UsageStation
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { tearDown(); }

    void reservesMoveFreeSpaceBetweenGroups();
    void aPathMoreIsRoomForMoreDays();
    void aPathLessKeepsTheUsage();
    void otherMembersAreNotForeseen();
    void nothingIsToldOrChanged();

private:
    static constexpr qint64 mb = RecordedSite::megabyte;

    QVariantMap forecast(const QVariantMap &data)
    {
        const StationReply reply =
            StationCall(*m_station, u"station.forecast"_s,
                        QVariantMap{{u"command"_s, u"updateRecordingGroup"_s}, {u"data"_s, data}})
                .reply();
        return reply.data.toMap();
    }
    /// "id recorded remaining perDay" now and then, one for each group.
    static QStringList texts(const QVariantMap &forecast)
    {
        QStringList list;
        for (const QVariant &value : forecast[u"groups"_s].toList()) {
            QStringList parts{value.toMap()[u"recordingGroupID"_s].toString()};
            for (const QString &time : {u"now"_s, u"then"_s}) {
                for (const QString &key : {u"recordedDays"_s, u"remainingDays"_s, u"bytesPerDay"_s})
                    parts.append(value.toMap()[time].toMap()[key].toString());
            }
            list.append(parts.join(u' '));
        }
        return list;
    }
    static QVariantMap reserve(const QString &path, qint64 megabytes)
    {
        return {{u"recordingGroupID"_s, u"Doors"_s},
                {u"updateSetPathList"_s, QVariantList{QVariantMap{{u"path"_s, path}, {u"reserveSpace"_s, megabytes}}}}};
    }
    bool edit(const QVariantMap &data)
    {
        return StationCall(*m_station, u"updateRecordingGroup"_s, data).reply().returnCode == u"0"_s;
    }
    /// "id recorded remaining perDay" of the last event, as a client reckons it.
    QStringList toldNow() const
    {
        QMap<QString, QList<qint64>> sums;
        const QVariantList entries = lastEvent();
        for (const QVariant &value : entries) {
            const QVariantMap entry = value.toMap();
            QList<qint64> &sum = sums[entry[u"recordingGroupID"_s].toString()];
            sum.resize(3);
            sum[0] += qMax<qint64>(0, entry[u"volumeRecordedDays"_s].toLongLong());
            sum[1] += entry[u"volumeAvailableSize"_s].toLongLong();
            sum[2] += qMax<qint64>(0, entry[u"volumeOneDayUsage"_s].toLongLong());
        }
        QStringList list;
        for (auto sum = sums.cbegin(); sum != sums.cend(); ++sum)
            list.append(
                u"%1 %2 %3 %4"_s.arg(sum.key()).arg(sum->at(0)).arg(sum->at(1) / (sum->at(2) / 1024)).arg(sum->at(2)));
        return list;
    }
};

/// Doors and Yard record 10 MB a day each onto a disk with 6000 MB free.
void StationForecastDaysTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    setUp();
    m_site->volumes()->set({m_site->system(), {m_site->disk(), u"Disk"_s, 10000 * mb, 6000 * mb, false, false}});
    const QString second = m_site->makePath(u"second"_s);
    m_site->makePath(u"third"_s);
    m_site->addGroup(u"Yard"_s, {second});
    for (const int ago : {1, 2}) {
        RecordedSite::write(day(ago), u"0001.rec"_s, 10 * mb);
        RecordedSite::write(RecordedSite::dayFolder(second, u"Yard"_s, u"Gate"_s, daysAgo(ago)), u"0001.rec"_s,
                            10 * mb);
    }
    start();
    QTRY_COMPARE(lines(), u"Doors 2 10485760 10240000 3072000 | Yard 2 10485760 10240000 3072000"_s);
}

void StationForecastDaysTest::reservesMoveFreeSpaceBetweenGroups()
{
    const QVariantMap data = reserve(m_path, 2048);
    const QVariantMap told = forecast(data);
    QCOMPARE(texts(told),
             (QStringList{u"Doors 2 300 10485760 2 600 10485760"_s, u"Yard 2 300 10485760 2 0 10485760"_s}));
    QVERIFY(edit(data));
    QTRY_COMPARE(toldNow(), (QStringList{u"Doors 2 600 10485760"_s, u"Yard 2 0 10485760"_s}));
}

/// On another volume: on the same one it would take its part from itself.
void StationForecastDaysTest::aPathMoreIsRoomForMoreDays()
{
    const QString elsewhere =
        QFileInfo(m_site->dataFolder()).path() + u"/elsewhere"_s; // on the system's volume, 500 MB free
    QVERIFY(QDir().mkpath(elsewhere));
    const QVariantMap data{
        {u"recordingGroupID"_s, u"Doors"_s},
        {u"updateAddPathList"_s,
         QVariantList{QVariantMap{{u"path"_s, elsewhere}, {u"pathType"_s, 0}, {u"reserveSpace"_s, 0}}}}};
    const QVariantMap told = forecast(data);
    QCOMPARE(told[u"returnCode"_s], u"0"_s);
    QCOMPARE(texts(told), QStringList{u"Doors 2 300 10485760 2 350 10485760"_s});
    QVERIFY(edit(data));
    QTRY_COMPARE(toldNow(), (QStringList{u"Doors 2 350 10485760"_s, u"Yard 2 300 10485760"_s}));
}

void StationForecastDaysTest::aPathLessKeepsTheUsage()
{
    const QString third = m_site->disk() + u"/third"_s;
    RecordedSite::write(RecordedSite::dayFolder(third, u"Doors"_s, u"Gate"_s, daysAgo(3)), u"0001.rec"_s, 30 * mb);
    {
        Database database(m_site->dataFolder());
        GroupStore(database).replace(RecordedSite::group(u"Doors"_s, {m_path, third}));
    }
    m_station->recordingGroupsChanged();
    QTRY_COMPARE(toldNow(), (QStringList{u"Doors 3 180 17476266"_s, u"Yard 2 300 10485760"_s}));
    const QVariantMap data{{u"recordingGroupID"_s, u"Doors"_s}, {u"updateRmPathList"_s, QStringList{third}}};
    QCOMPARE(texts(forecast(data)), QStringList{u"Doors 3 180 17476266 2 180 17476266"_s});
}

void StationForecastDaysTest::otherMembersAreNotForeseen()
{
    QCOMPARE(StationCall(*m_station, u"station.addCamera"_s, QVariantMap{{u"camName"_s, u"Gate"_s}, {u"streams"_s, 1}})
                 .reply()
                 .returnCode,
             u"0"_s);
    const QVariantMap data{
        {u"recordingGroupID"_s, u"Doors"_s},
        {u"updateAddCameraList"_s, QVariantList{QVariantMap{{u"camName"_s, u"Gate"_s}, {u"streamIndex"_s, 0}}}}};
    QCOMPARE(texts(forecast(data)), QStringList{u"Doors 2 300 10485760 2 -1 -1"_s});
}

void StationForecastDaysTest::nothingIsToldOrChanged()
{
    const auto rows = [this] {
        Database database(m_site->dataFolder());
        QStringList lines;
        for (const char *table : {"recording_group", "group_path", "recording_place", "recorded_day"}) {
            Rows found = database.rows(QStringLiteral("SELECT * FROM %1 ORDER BY number").arg(QLatin1String(table)));
            while (found.next())
                lines.append(
                    u"%1 %2 %3"_s.arg(found.value(0).toString(), found.value(1).toString(), found.value(2).toString()));
        }
        return lines;
    };
    QList<StationEvent> events;
    QTRY_VERIFY(StationCall(*m_station, u"station.listStorage"_s, {})
                    .reply()
                    .data.toList()
                    .constLast()
                    .toMap()[u"counted"_s]
                    .toBool());
    connect(m_station.get(), &Station::eventRaised, this,
            [&events](const StationEvent &event) { events.append(event); });
    const QStringList before = rows();
    const QString figures = lines();
    QVERIFY(!forecast(reserve(m_path, 2048))[u"groups"_s].toList().isEmpty());
    QCOMPARE(events.size(), 0);
    m_events.clear();
    reload(); // is answered by one event, which would come after any other
    QTRY_VERIFY(!m_events.isEmpty());
    QCOMPARE(m_events.size(), 1);
    QCOMPARE(lines(), figures);
    QCOMPARE(rows(), before);
}

QTEST_GUILESS_MAIN(StationForecastDaysTest)
#include "tst_station_forecast_days.moc"
