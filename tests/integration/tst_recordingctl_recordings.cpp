#include "FaultyDisk.h"
#include "JsonShape.h"
#include "LocalClient.h"
#include "StationVocabulary.h"
#include "ToolRun.h"
#include "VolumeFolder.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#include <signal.h>

using namespace Qt::StringLiterals;

/// Recordings that belong to no group, by hand.
class TestRecordingctlRecordings : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void anotherGroupGetsThem();
    void whatIsInTheWayIsTold();
    void aMoveThatFailsIsTakenBack();
    void theNameIsAskedFor();
    void aFileThatCannotBeDeleted();
    void aKilledDeletionIsGoneOnWith();
    void anInterruptedDeletionStops_data();
    void anInterruptedDeletionStops();
    void anotherClientCancelsADeletion();

private:
    Run ctl(const QStringList &arguments, const QByteArray &input = {}) const
    {
        return run(arguments + QStringList{u"--data"_s, folder(u"station"_s)}, input);
    }
    QString folder(const QString &name) const { return m_folder->filePath(name); }
    QString doors() const { return folder(u"a/Doors"_s); }
    void record(const QString &file, qint64 bytes) const;
    void leaveRecordings() const;
    QJsonValue place() const { return ctl({u"recordings-unassigned"_s, u"--json"_s}).reply()["data"][0]; }
    /// The tool with a station inside it, on a faulty disk.
    void start(QProcess &process, const QString &fault, const QStringList &arguments) const;
    QString gate() const { return folder(u"gate"_s); }
    /// A deletion that waits within its second file while gate() is there.
    void startGatedDeletion(QProcess &process, const QStringList &connection) const;
    void startDeletion(QProcess &process, const QString &fault) const
    {
        start(process, fault, {u"recordings-delete"_s, doors(), u"--confirm"_s, u"Doors"_s});
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestRecordingctlRecordings::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_folder = std::make_unique<QTemporaryDir>(onAVolume(u"recordings-XXXXXX"_s));
    QVERIFY(m_folder->isValid());
    QVERIFY(QDir().mkpath(folder(u"a"_s)));
}

/// A sparse file below "a".
void TestRecordingctlRecordings::record(const QString &file, qint64 bytes) const
{
    const QString path = folder(u"a/"_s + file);
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile recording(path);
    QVERIFY(recording.open(QIODevice::WriteOnly) && recording.resize(bytes));
}

/// Of the group Doors: three files of two days.
void TestRecordingctlRecordings::leaveRecordings() const
{
    QCOMPARE(ctl({u"group-add"_s, u"Doors"_s, u"--path"_s, folder(u"a"_s), u"--reserve"_s, u"0"_s}).exitCode, 0);
    record(u"Doors/Gate/2026-03-01/1.rec"_s, 1024);
    record(u"Doors/Gate/2026-03-01/2.rec"_s, 1024);
    record(u"Doors/Gate/2026-03-02/1.rec"_s, 2048);
    QCOMPARE(ctl({u"usage"_s}).exitCode, 0);
    QCOMPARE(ctl({u"group-remove"_s, u"Doors"_s}).exitCode, 0);
}

void TestRecordingctlRecordings::anotherGroupGetsThem()
{
    leaveRecordings();
    const Run listed = ctl({u"recordings-unassigned"_s});
    QCOMPARE(listed.errors, QString());
    QCOMPARE(listed.exitCode, 0);
    const QStringList cells = words(listed.outputLines().value(1));
    QCOMPARE(cells.value(0), doors());
    QCOMPARE(cells.mid(2),
             (QStringList{u"there"_s, u"4.00 KB"_s, u"3"_s, u"2 days"_s, u"2026-03-01"_s, u"2026-03-02"_s, u"Gate"_s}));

    QCOMPARE(ctl({u"group-add"_s, u"Yard"_s, u"--path"_s, folder(u"a"_s), u"--reserve"_s, u"0"_s}).exitCode, 0);
    const Run moved = ctl({u"recordings-assign"_s, doors(), u"Yard"_s});
    QCOMPARE(moved.errors, QString());
    QCOMPARE(moved.output, u"2 folders of days moved to %1\n"_s.arg(folder(u"a/Yard"_s)));
    QVERIFY(QFileInfo::exists(folder(u"a/Yard/Gate/2026-03-02/1.rec"_s)));
    QVERIFY(!QFileInfo::exists(doors()));
    QCOMPARE(ctl({u"recordings-unassigned"_s}).outputLines().size(), 1);
    const Run again = ctl({u"recordings-assign"_s, doors(), u"Yard"_s});
    QCOMPARE(again.exitCode, 1);
    QCOMPARE(again.errors, u"recordingctl: station.assignRecordings: the station refused: PlaceNotFound\n"_s);
}

void TestRecordingctlRecordings::whatIsInTheWayIsTold()
{
    leaveRecordings();
    QCOMPARE(ctl({u"group-add"_s, u"Yard"_s, u"--path"_s, folder(u"a"_s), u"--reserve"_s, u"0"_s}).exitCode, 0);
    record(u"Yard/Gate/2026-03-02/9.rec"_s, 1);
    const Run refused = ctl({u"recordings-assign"_s, doors(), u"Yard"_s});
    QCOMPARE(refused.exitCode, 1);
    QCOMPARE(refused.errorLines(),
             (QStringList{u"recordingctl: station.assignRecordings: the station refused: RecordingsExist"_s,
                          u"recordingctl: place \"%1\": RecordingsExist"_s.arg(folder(u"a/Yard/Gate/2026-03-02"_s))}));
    QVERIFY(QFileInfo::exists(doors() + u"/Gate/2026-03-01/1.rec"_s));
}

void TestRecordingctlRecordings::aMoveThatFailsIsTakenBack()
{
    leaveRecordings();
    QCOMPARE(ctl({u"group-add"_s, u"Yard"_s, u"--path"_s, folder(u"a"_s), u"--reserve"_s, u"0"_s}).exitCode, 0);
    QProcess process;
    start(process, u"EIO.rename="_s + doors() + u"/Gate/2026-03-02"_s, {u"recordings-assign"_s, doors(), u"Yard"_s});
    const Run failed = finished(process);
    QCOMPARE(befallenCalls(folder(u"log"_s)), QStringList{u"rename %1/Gate/2026-03-02"_s.arg(doors())});
    QCOMPARE(failed.exitCode, 1);
    QCOMPARE(failed.reply()["returnCode"], QJsonValue("CannotMove"));
    for (const QString &file : {u"2026-03-01/1.rec"_s, u"2026-03-01/2.rec"_s, u"2026-03-02/1.rec"_s})
        QVERIFY(QFileInfo::exists(doors() + u"/Gate/"_s + file));
    QVERIFY(!QFileInfo::exists(folder(u"a/Yard"_s)));
    QCOMPARE(place()["recordedFiles"], QJsonValue(3));
}

void TestRecordingctlRecordings::theNameIsAskedFor()
{
    leaveRecordings();
    for (const QByteArray &input : {QByteArray(), QByteArray("doors\n")}) {
        const Run refused = ctl({u"recordings-delete"_s, doors()}, input);
        QCOMPARE(refused.exitCode, 1);
        QVERIFY2(refused.errorLines().value(0).endsWith(u"4.00 KB, 2 days, 3 files? Type the name of the folder:"_s),
                 qPrintable(refused.errors));
        QCOMPARE(refused.errorLines().value(1),
                 u"recordingctl: station.deleteRecordings: the station refused: ConfirmationRefused"_s);
    }
    QVERIFY(QFileInfo::exists(doors() + u"/Gate/2026-03-02/1.rec"_s));
    const Run deleted = ctl({u"recordings-delete"_s, doors()}, "Doors\n");
    QCOMPARE(deleted.exitCode, 0);
    QCOMPARE(deleted.output, u"Deleted: 3 files, 4.00 KB\n"_s);
    QVERIFY(!QFileInfo::exists(doors()));
    QVERIFY(QFileInfo::exists(folder(u"a"_s)));
}

void TestRecordingctlRecordings::start(QProcess &process, const QString &fault, const QStringList &arguments) const
{
    QProcessEnvironment environment = quietEnvironment();
    setDiskFaults(environment, {fault}, folder(u"log"_s));
    process.setProcessEnvironment(environment);
    process.start(RECORDINGCTL,
                  arguments + QStringList{u"--json"_s, u"--connect"_s, u"embedded:"_s + folder(u"station"_s)});
}

void TestRecordingctlRecordings::aFileThatCannotBeDeleted()
{
    leaveRecordings();
    QProcess process;
    startDeletion(process, u"EIO.unlink="_s + doors() + u"/Gate/2026-03-01/2.rec"_s);
    const Run left = finished(process);
    QCOMPARE(befallenCalls(folder(u"log"_s)), QStringList{u"unlink %1/Gate/2026-03-01/2.rec"_s.arg(doors())});
    QCOMPARE(left.exitCode, 1);
    QCOMPARE(left.reply()["returnCode"], QJsonValue("RecordingsLeft"));
    const QJsonValue data = left.reply()["data"];
    QCOMPARE(data["deletedFiles"], QJsonValue(2));
    QCOMPARE(data["leftFiles"], QJsonValue(1));
    QCOMPARE(data["leftBytes"], QJsonValue(1024));
    QCOMPARE(data["left"].toArray(),
             (QJsonArray{QJsonObject{{"path", doors() + u"/Gate/2026-03-01/2.rec"_s}, {"reason", "CannotDelete"}}}));
    QCOMPARE(placeholder(left.json()), QString());
    const QJsonValue rest = place();
    QCOMPARE(rest["recordedFiles"], QJsonValue(1));
    QCOMPARE(rest["deletion"]["code"], QJsonValue("RecordingsLeft"));
}

void TestRecordingctlRecordings::aKilledDeletionIsGoneOnWith()
{
    leaveRecordings();
    QProcess process;
    startDeletion(process, u"hang.unlink="_s + doors() + u"/Gate/2026-03-02"_s);
    QTRY_VERIFY_WITH_TIMEOUT(!befallenCalls(folder(u"log"_s)).isEmpty(), 20'000);
    process.kill();
    QVERIFY(process.waitForFinished());
    QVERIFY(waitForStationEnd(folder(u"station"_s)));

    const Run told = ctl({u"recordings-unassigned"_s});
    QCOMPARE(told.exitCode, 0);
    QVERIFY2(told.outputLines().value(1).endsWith(u"Gate     cut off"_s), qPrintable(told.output));
    const QJsonValue rest = place();
    QCOMPARE(rest["recordedFiles"], QJsonValue(1));
    QCOMPARE(rest["recordedBytes"], QJsonValue(2048));
    QCOMPARE(rest["deletion"]["isRunning"], QJsonValue(false));
    QVERIFY(rest["deletion"]["endedAt"].isNull() && rest["deletion"]["code"].isNull());
    QCOMPARE(typeMismatch(rest["deletion"]["begunAt"], "time"), QString());

    const Run deleted = ctl({u"recordings-delete"_s, doors(), u"--confirm"_s, u"Doors"_s});
    QCOMPARE(deleted.exitCode, 0);
    QCOMPARE(deleted.output, u"Deleted: 1 files, 2.00 KB\n"_s);
    QVERIFY(!QFileInfo::exists(doors()));
    QCOMPARE(ctl({u"recordings-unassigned"_s}).outputLines().size(), 1);
}

void TestRecordingctlRecordings::startGatedDeletion(QProcess &process, const QStringList &connection) const
{
    QVERIFY(QFile(gate()).open(QIODevice::WriteOnly));
    QProcessEnvironment environment = quietEnvironment();
    setDiskFaults(environment, {u"wait.unlink="_s + doors() + u"/Gate/2026-03-01/2.rec"_s}, folder(u"log"_s), gate());
    process.setProcessEnvironment(environment);
    process.start(RECORDINGCTL,
                  QStringList{u"recordings-delete"_s, doors(), u"--confirm"_s, u"Doors"_s, u"--json"_s} + connection);
    QTRY_VERIFY_WITH_TIMEOUT(!befallenCalls(folder(u"log"_s)).isEmpty(), 20'000);
}

void TestRecordingctlRecordings::anInterruptedDeletionStops_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
}

void TestRecordingctlRecordings::anInterruptedDeletionStops()
{
    QFETCH(const int, number);
    leaveRecordings();
    QProcess process;
    startGatedDeletion(process, {u"--connect"_s, u"embedded:"_s + folder(u"station"_s)});
    kill(static_cast<pid_t>(process.processId()), number);
    QByteArray errors;
    QTRY_VERIFY_WITH_TIMEOUT((errors += process.readAllStandardError()).endsWith('\n'), 20'000);
    QCOMPARE(errors, "recordingctl: interrupted: the station stops the deletion before its next file\n");
    QVERIFY(QFile::remove(gate()));
    const Run ended = finished(process);
    QCOMPARE(ended.exitCode, 1);
    QCOMPARE(ended.errors, u"recordingctl: the deletion in %1 ended with DeletionCancelled\n"_s.arg(doors()));
    QCOMPARE(ended.reply()["returnCode"], QJsonValue("DeletionCancelled"));
    QCOMPARE(ended.reply()["data"]["deletedFiles"], QJsonValue(2)); // the one under way is through
    QVERIFY(ended.reply()["data"]["leftFiles"].isNull());
    QVERIFY(!QFileInfo::exists(doors() + u"/Gate/2026-03-01/2.rec"_s));
    QVERIFY(QFileInfo::exists(doors() + u"/Gate/2026-03-02/1.rec"_s));
    const QJsonValue rest = place();
    QCOMPARE(rest["recordedFiles"], QJsonValue(1));
    QCOMPARE(rest["deletion"]["code"], QJsonValue("DeletionCancelled"));
}

void TestRecordingctlRecordings::anotherClientCancelsADeletion()
{
    leaveRecordings();
    QProcess process;
    startGatedDeletion(process, {u"--data"_s, folder(u"station"_s)});
    {
        LocalClient other(folder(u"station"_s));
        const QVariantMap place{{StationKey::place, doors()}};
        other.send(StationCommandName::cancelDeletion, QVariantMap{{StationKey::place, folder(u"a"_s)}});
        other.send(StationCommandName::cancelDeletion, place);
        QTRY_COMPARE(other.codes(), (QStringList{u"NoDeletion"_s, u"0"_s}));
        QVERIFY(QFile::remove(gate()));
        QTRY_COMPARE(other.lastData.value(StationEventName::DeletionProgress).toMap().value(StationKey::returnCode),
                     QVariant(u"DeletionCancelled"_s));
        other.send(StationCommandName::cancelDeletion, place);
        QTRY_COMPARE(other.codes().value(2), u"NoDeletion"_s);
    }
    QTRY_COMPARE_WITH_TIMEOUT(process.state(), QProcess::NotRunning, 20'000);
    QCOMPARE(process.exitCode(), 1);
    const QJsonValue told = QJsonDocument::fromJson(process.readAllStandardOutput()).object();
    QCOMPARE(told["returnCode"], QJsonValue("DeletionCancelled"));
    QCOMPARE(told["data"]["deletedFiles"], QJsonValue(2));
    QVERIFY(waitForStationEnd(folder(u"station"_s)));
    QCOMPARE(place()["recordedFiles"], QJsonValue(1));
}

QTEST_GUILESS_MAIN(TestRecordingctlRecordings)
#include "tst_recordingctl_recordings.moc"
