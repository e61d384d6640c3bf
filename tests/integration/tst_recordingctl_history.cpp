#include "ToolRun.h"
#include "groups/GroupStore.h"
#include "history/HistoryStore.h"
#include "store/Database.h"

#include <QDateTime>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {
const QString removedId = u"{11111111-2222-3333-4444-555555555555}"_s;
} // namespace

/// "recordingctl history" as scripts see it, on a station that kept samples.
class RecordingctlHistoryTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aGroupByItsName();
    void aVolumeByItsPath();
    void aRemovedGroupByItsId();
    void jsonHasAllSamples();
    void jsonOfAVolume();
    void wrongUse_data();
    void wrongUse();

private:
    Run ctl(const QStringList &arguments) const
    {
        return run(QStringList{u"history"_s} + arguments + QStringList{u"--data"_s, m_folder->path()});
    }
    static qint64 secondsOf(const QString &time) { return QDateTime::fromString(time, Qt::ISODate).toSecsSinceEpoch(); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void RecordingctlHistoryTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    Database database(m_folder->path());
    RecordingGroup doors;
    doors.id = u"{99999999-2222-3333-4444-555555555555}"_s;
    doors.name = doors.folder = u"Doors"_s;
    GroupStore(database).insert(doors);
    Transaction transaction(database);
    HistoryStore store(database);
    const qint64 first = secondsOf(u"2026-03-01T00:00:00Z"_s);
    for (qint64 hour = 0; hour < 1100; ++hour) {
        UsageSample sample{{HistorySubject::Kind::RecordingGroup, doors.id}};
        sample.figures[UsageSample::RecordedDays] = hour / 24;
        store.insert(HistoryResolution::Hour, first + hour * 3600, sample);
    }
    for (const char *day : {"2026-03-01", "2026-03-02", "2026-03-05"}) {
        const qint64 time = secondsOf(QString::fromLatin1(day) + u"T00:00:00Z"_s);
        UsageSample group{{HistorySubject::Kind::RecordingGroup, doors.id},
                          {3, 5, 1024 * 1024, 4096, 2880, 2048, {}, {}}};
        if (time > first)
            group.figures[UsageSample::RemainingDays].reset();
        UsageSample volume{{HistorySubject::Kind::Volume, u"/srv"_s}};
        volume.figures[UsageSample::RecordedBytes] = 0;
        volume.figures[UsageSample::VolumeBytes] = 4096;
        volume.figures[UsageSample::AvailableBytes] = 1024;
        for (const UsageSample &sample :
             {UsageSample{}, group, volume, UsageSample{{HistorySubject::Kind::RecordingGroup, removedId}}})
            store.insert(HistoryResolution::Day, time, sample);
    }
    transaction.commit();
}

void RecordingctlHistoryTest::aGroupByItsName()
{
    const Run shown = ctl({u"group"_s, u"Doors"_s, u"--until"_s, u"2026-03-06T00:00:00Z"_s});
    QCOMPARE(shown.errors, QString());
    QCOMPARE(shown.exitCode, 0);
    const QStringList lines = shown.outputLines();
    QCOMPARE(lines.size(), 5);
    QCOMPARE(words(lines.at(1)),
             (QStringList{u"2026-03-01T00:00:00Z"_s, u"3 days"_s, u"5 days"_s, u"2 days"_s, u"1.00 MB"_s, u"4.00 KB"_s,
                          u"2.00 GB"_s}));
    QCOMPARE(words(lines.at(2)).at(2), u"unknown"_s);
    QCOMPARE(lines.at(4),
             u"No samples from 2026-03-03T00:00:00Z until 2026-03-05T00:00:00Z: no station was sampling"_s);
}

void RecordingctlHistoryTest::aVolumeByItsPath()
{
    const QStringList range{u"--from"_s, u"2026-03-02T00:00:00Z"_s, u"--until"_s, u"2026-03-03T00:00:00Z"_s};
    const Run shown = ctl(QStringList{u"volume"_s, u"/srv"_s} + range);
    QCOMPARE(shown.exitCode, 0);
    QCOMPARE(shown.outputLines().size(), 2);
    QCOMPARE(words(shown.outputLines().at(1)),
             (QStringList{u"2026-03-02T00:00:00Z"_s, u"4.00 KB"_s, u"1.00 KB"_s, u"0.00 KB"_s}));
    const Run none = ctl({u"volume"_s, u"/none"_s});
    QCOMPARE(none.exitCode, 1);
    QCOMPARE(none.errors, u"recordingctl: station.readHistory: the station refused: NoHistory\n"_s);
}

void RecordingctlHistoryTest::aRemovedGroupByItsId()
{
    const Run shown = ctl({u"group"_s, removedId, u"--until"_s, u"2026-03-02T00:00:00Z"_s});
    QCOMPARE(shown.exitCode, 0);
    QCOMPARE(shown.outputLines().size(), 2);
    const Run unknown = ctl({u"group"_s, u"Yard"_s});
    QCOMPARE(unknown.exitCode, 1);
    QVERIFY2(unknown.errors.contains(u"Yard"_s), qPrintable(unknown.errors));
}

void RecordingctlHistoryTest::jsonHasAllSamples()
{
    const Run shown = ctl({u"group"_s, u"Doors"_s, u"--resolution"_s, u"hour"_s, u"--json"_s});
    QCOMPARE(shown.exitCode, 0);
    const QJsonArray samples = shown.reply()[u"data"_s][u"samples"_s].toArray();
    QCOMPARE(samples.size(), 1100);
    const QJsonObject last{{u"time"_s, u"2026-04-15T19:00:00.000Z"_s},
                           {u"recordedDays"_s, 45},
                           {u"remainingDays"_s, {}},
                           {u"oneDayUsageBytes"_s, {}},
                           {u"recordedBytes"_s, {}},
                           {u"reservedTimeMinutes"_s, {}},
                           {u"reservedSpaceMegabytes"_s, {}}};
    QCOMPARE(samples.last().toObject(), last);
}

void RecordingctlHistoryTest::jsonOfAVolume()
{
    const Run shown = ctl({u"volume"_s, u"/srv"_s, u"--until"_s, u"2026-03-06T00:00:00Z"_s, u"--json"_s});
    QCOMPARE(shown.exitCode, 0);
    const QJsonValue data = shown.reply()[u"data"_s];
    const QJsonObject first{{u"time"_s, u"2026-03-01T00:00:00.000Z"_s},
                            {u"sizeBytes"_s, 4096},
                            {u"availableBytes"_s, 1024},
                            {u"recordedBytes"_s, 0}};
    QCOMPARE(data[u"samples"_s][0].toObject(), first);
    const QJsonObject gap{{u"from"_s, u"2026-03-03T00:00:00.000Z"_s}, {u"until"_s, u"2026-03-05T00:00:00.000Z"_s}};
    QCOMPARE(data[u"gaps"_s].toArray(), QJsonArray{gap});
}

void RecordingctlHistoryTest::wrongUse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("nothing") << QStringList();
    QTest::newRow("another kind") << QStringList{u"camera"_s, u"Gate"_s};
    QTest::newRow("no time") << QStringList{u"group"_s, u"Doors"_s, u"--from"_s, u"yesterday"_s};
    QTest::newRow("another step") << QStringList{u"group"_s, u"Doors"_s, u"--resolution"_s, u"minute"_s};
}

void RecordingctlHistoryTest::wrongUse()
{
    QFETCH(QStringList, arguments);
    const Run shown = ctl(arguments);
    QCOMPARE(shown.exitCode, 2);
    QVERIFY(!shown.errors.isEmpty());
    QCOMPARE(shown.output, QString());
}

QTEST_GUILESS_MAIN(RecordingctlHistoryTest)
#include "tst_recordingctl_history.moc"
