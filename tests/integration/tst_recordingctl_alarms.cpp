#include "JsonShape.h"
#include "ToolRun.h"
#include "VolumeFolder.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

/// Alarms that somebody has seen, by hand.
class TestRecordingctlAlarms : public QObject
{
    Q_OBJECT
private slots:
    void init() { QTest::failOnWarning(QRegularExpression(u".*"_s)); }

    void anAcknowledgedAlarmIsStillOne();
    void wrongUse();

private:
    Run ctl(const QStringList &arguments) const
    {
        return run(arguments + QStringList{u"--data"_s, folder(u"station"_s)});
    }
    QString folder(const QString &name) const { return m_folder.filePath(name); }

    QTemporaryDir m_folder{onAVolume(u"alarms-XXXXXX"_s)};
};

void TestRecordingctlAlarms::anAcknowledgedAlarmIsStillOne()
{
    const QString path = folder(u"a"_s);
    QVERIFY(QDir().mkpath(path));
    QCOMPARE(ctl({u"group-add"_s, u"Yard"_s, u"--path"_s, path, u"--reserve"_s, u"0"_s}).exitCode, 0);
    QCOMPARE(ctl({u"alarms"_s}).exitCode, 0);
    QVERIFY(QDir().rename(path, folder(u"away"_s)));
    const Run before = ctl({u"alarms"_s});
    QCOMPARE(before.exitCode, 1);
    QVERIFY2(!before.output.contains(u"Acknowledged"_s), qPrintable(before.output));

    const Run acknowledged = ctl({u"alarm-acknowledge"_s, u"VolumeGone"_s, path, u"--note"_s, u"disk ordered"_s});
    QCOMPARE(acknowledged.errors, QString());
    QCOMPARE(acknowledged.exitCode, 0);
    const Run after = ctl({u"alarms"_s});
    QCOMPARE(after.exitCode, 1);
    QCOMPARE(after.errors, before.errors);
    QVERIFY2(after.output.contains(u"Acknowledged"_s) && after.output.contains(u"disk ordered"_s),
             qPrintable(after.output));
    const QJsonValue alarm = ctl({u"alarms"_s, u"--json"_s}).reply()["data"][0];
    QCOMPARE(alarm["kind"], QJsonValue("VolumeGone"));
    QCOMPARE(alarm["note"], QJsonValue("disk ordered"));
    QCOMPARE(typeMismatch(alarm["acknowledgedAt"], "time"), QString());
    QCOMPARE(typeMismatch(alarm["acknowledgedBy"], "text"), QString());

    QCOMPARE(ctl({u"alarm-acknowledge"_s, u"VolumeGone"_s, path, u"--withdraw"_s}).exitCode, 0);
    QVERIFY(ctl({u"alarms"_s, u"--json"_s}).reply()["data"][0]["acknowledgedAt"].isNull());
    QCOMPARE(ctl({u"alarm-acknowledge"_s, u"VolumeGone"_s, path, u"--note"_s, u"disk came"_s}).exitCode, 0);
    QVERIFY(QDir().rename(folder(u"away"_s), path));
    QCOMPARE(ctl({u"alarms"_s}).exitCode, 0);
    const Run past = ctl({u"alarms"_s, u"--past"_s, u"--limit"_s, u"1"_s});
    QCOMPARE(past.exitCode, 0);
    QVERIFY2(past.outputLines().value(1).contains(u"disk came"_s), qPrintable(past.output));

    QVERIFY(QDir().rename(path, folder(u"away"_s))); // another alarm
    QVERIFY(ctl({u"alarms"_s, u"--json"_s}).reply()["data"][0]["acknowledgedAt"].isNull());
}

void TestRecordingctlAlarms::wrongUse()
{
    QCOMPARE(ctl({u"alarms"_s, u"--limit"_s, u"1"_s}).exitCode, 2);
    QCOMPARE(ctl({u"alarm-acknowledge"_s, u"VolumeGone"_s, u"/a"_s, u"--withdraw"_s, u"--note"_s, u"x"_s}).exitCode, 2);
    QCOMPARE(ctl({u"alarm-acknowledge"_s, u"VolumeGone"_s}).exitCode, 2);
    const Run unknown = ctl({u"alarm-acknowledge"_s, u"VolumeGone"_s, u"/nowhere"_s});
    QCOMPARE(unknown.exitCode, 1);
    QCOMPARE(unknown.errors, u"recordingctl: station.acknowledgeAlarm: the station refused: AlarmNotFound\n"_s);
}

QTEST_GUILESS_MAIN(TestRecordingctlAlarms)
#include "tst_recordingctl_alarms.moc"
