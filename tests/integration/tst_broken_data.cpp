#include "FaultyDisk.h"
#include "ToolRun.h"
#include "VolumeFolder.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

/// What a script sees of a station that something is wrong with: no exit code 0, words, and what can be read is read.
class BrokenDataTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aSiteInOrderIsFine();
    void aBrokenDatabaseEndsEveryCommand_data();
    void aBrokenDatabaseEndsEveryCommand();
    void aDamagedTableIsNoGoodAnswer();
    void aGroupThatLostItsPathsIsNamed();
    void aDiskThatTakesNothingIsRead_data();
    void aDiskThatTakesNothingIsRead();
    void aFullDiskLetsNothingBegin();
    void aDiskWithErrorsIsNotFine();
    void aGoneFolderIsNamed();
    void anUnreadableFolderIsNamed();
    void aFolderThatHangsIsUnknown();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    QString database() const { return path(u"data/station.db"_s); }
    Run ctl(const QStringList &arguments, const QStringList &faults = {}) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {
void runAlone(const QString &file, const QString &statement)
{
    const QString name = u"alone"_s;
    {
        QSqlDatabase connection = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        connection.setDatabaseName(file);
        QVERIFY(connection.open() && QSqlQuery(connection).exec(statement));
        connection.close();
    }
    QSqlDatabase::removeDatabase(name);
}

/// Of the table @p table in @p file.
int rootPage(const QString &file, const QString &table)
{
    const QString name = u"pages"_s;
    int page = 0;
    {
        QSqlDatabase connection = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        connection.setDatabaseName(file);
        QSqlQuery query(connection);
        if (connection.open() && query.exec(u"SELECT rootpage FROM sqlite_schema WHERE name = '%1'"_s.arg(table))
            && query.next())
            page = query.value(0).toInt();
        query.finish();
        connection.close();
    }
    QSqlDatabase::removeDatabase(name);
    return page;
}

void truncateTo(const QString &file, qint64 size)
{
    QFile opened(file);
    QVERIFY(opened.resize(size));
}
} // namespace

/// A group with recordings of two days, which were counted.
void BrokenDataTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>(onAVolume(u"broken-data-XXXXXX"_s));
    QVERIFY(QDir().mkpath(path(u"disk"_s)));
    QCOMPARE(ctl({u"group-add"_s, u"Doors"_s, u"--path"_s, path(u"disk"_s)}).errors, QString());
    for (const int ago : {1, 2}) {
        const QString day = path(u"disk/Doors/Gate/"_s) + QDate::currentDate().addDays(-ago).toString(Qt::ISODate);
        QVERIFY(QDir().mkpath(day));
        QFile file(day + u"/0001.rec"_s);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(4096));
    }
    QCOMPARE(ctl({u"usage"_s}).exitCode, 0);
}

Run BrokenDataTest::ctl(const QStringList &arguments, const QStringList &faults) const
{
    QProcess process;
    QProcessEnvironment environment = quietEnvironment();
    if (!faults.isEmpty())
        setDiskFaults(environment, faults, path(u"log"_s));
    process.setProcessEnvironment(environment);
    process.start(RECORDINGCTL, arguments + QStringList{u"--data"_s, path(u"data"_s)});
    const Run run = finished(process);
    return waitForStationEnd(path(u"data"_s)) ? run : Run();
}

void BrokenDataTest::aSiteInOrderIsFine()
{
    const Run usage = ctl({u"usage"_s});
    QCOMPARE(usage.exitCode, 0);
    QCOMPARE(words(usage.outputLines().value(1)).mid(0, 2), QStringList({u"Doors"_s, u"2 days"_s}));
    const Run alarms = ctl({u"alarms"_s});
    QCOMPARE(alarms.exitCode, 0);
    QCOMPARE(alarms.outputLines().size(), 1);
    QCOMPARE(alarms.errors, QString());
}

void BrokenDataTest::aBrokenDatabaseEndsEveryCommand_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<std::function<void()>>("damage");
    QTest::newRow("missing") << u"DatabaseMissing"_s << std::function([this] { QVERIFY(QFile::remove(database())); });
    QTest::newRow("empty") << u"DatabaseDamaged"_s << std::function([this] { truncateTo(database(), 0); });
    QTest::newRow("truncated") << u"DatabaseDamaged"_s << std::function([this] { truncateTo(database(), 20000); });
    QTest::newRow("newer") << u"DatabaseNewer"_s
                           << std::function([this] { runAlone(database(), u"PRAGMA user_version = 99"_s); });
    QTest::newRow("of an odd version") << u"DatabaseDamaged"_s << std::function([this] {
        runAlone(database(), u"PRAGMA user_version = -1"_s);
    });
}

void BrokenDataTest::aBrokenDatabaseEndsEveryCommand()
{
    QFETCH(const QString, code);
    QFETCH(const std::function<void()>, damage);
    damage();
    for (const QString &command : {u"usage"_s, u"alarms"_s, u"groups"_s, u"cameras"_s, u"nas"_s, u"tree"_s}) {
        const Run run = ctl({command});
        QVERIFY2(run.exitCode == 1, qPrintable(command));
        QVERIFY2(run.errors.contains(u"the station refused: "_s + code), qPrintable(command + u": "_s + run.errors));
        QVERIFY2(run.errors.contains(database()), qPrintable(command + u": "_s + run.errors));
    }
    const QJsonObject json = ctl({u"usage"_s, u"--json"_s}).json();
    QCOMPARE(json.value(u"returnCode"_s).toString(), code);
}

void BrokenDataTest::aDamagedTableIsNoGoodAnswer()
{
    QFile file(database());
    constexpr int pageSize = 4096;
    const int page = rootPage(database(), u"recorded_day"_s);
    QVERIFY(file.open(QIODevice::ReadWrite) && file.seek((page - 1) * pageSize));
    QCOMPARE(file.write(QByteArray(pageSize, '\xa5')), pageSize);
    file.close();
    qsizetype told = 0;
    for (const QString &command : {u"usage"_s, u"alarms"_s}) {
        const Run run = ctl({command});
        QCOMPARE(run.exitCode, 1);
        told += run.errors.count(u"is damaged"_s);
    }
    QCOMPARE(told, 2); // once each
}

void BrokenDataTest::aGroupThatLostItsPathsIsNamed()
{
    QCOMPARE(ctl({u"camera-add"_s, u"Yard"_s}).exitCode, 0);
    QCOMPARE(ctl({u"group-update"_s, u"Doors"_s, u"--add-member"_s, u"Yard"_s}).errors, QString());
    runAlone(database(), u"DELETE FROM group_path"_s);
    for (const QString &command : {u"usage"_s, u"alarms"_s}) {
        const Run run = ctl({command});
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.errors.contains(u"The recording group Doors has cameras and no path"_s), qPrintable(run.errors));
    }
}

void BrokenDataTest::aDiskThatTakesNothingIsRead_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("words");
    QTest::newRow("full") << u"ENOSPC"_s << u"DatabaseFull"_s << u"disk of the station's data is full"_s;
    QTest::newRow("read-only") << u"EROFS"_s << u"DatabaseReadOnly"_s << u"disk of the station's data is read-only"_s;
}

void BrokenDataTest::aDiskThatTakesNothingIsRead()
{
    QFETCH(const QString, fault);
    QFETCH(const QString, code);
    QFETCH(const QString, words);
    const QStringList faults{fault + u'=' + path(u"data"_s)};
    const Run usage = ctl({u"usage"_s}, faults);
    QVERIFY(!befallenCalls(path(u"log"_s)).isEmpty());
    QCOMPARE(usage.exitCode, 1);
    QVERIFY2(usage.errors.contains(words), qPrintable(usage.errors));
    QVERIFY2(usage.outputLines().value(1).startsWith(u"Doors"_s) && usage.output.contains(u"2 days"_s),
             qPrintable(usage.output));
    const QJsonObject json = ctl({u"usage"_s, u"--json"_s}, faults).json();
    QCOMPARE(json[u"returnCode"_s].toString(), code);
    QCOMPARE(json[u"data"_s][0][u"recordedDays"_s].toInt(), 2);
    QVERIFY2(json[u"error"_s][u"message"_s].toString().contains(words), qPrintable(usage.errors));
    const Run alarms = ctl({u"alarms"_s}, faults);
    QCOMPARE(alarms.exitCode, 1);
    QVERIFY2(alarms.output.contains(words), qPrintable(alarms.output));
    const Run groups = ctl({u"groups"_s}, faults);
    QCOMPARE(groups.exitCode, 0);
    QCOMPARE(groups.outputLines().size(), 2);
    const Run edit = ctl({u"camera-add"_s, u"Yard"_s}, faults);
    QCOMPARE(edit.exitCode, 1);
    QVERIFY2(edit.errors.contains(code), qPrintable(edit.errors));
    QCOMPARE(ctl({u"cameras"_s}).outputLines().size(), 1); // none
    QCOMPARE(ctl({u"alarms"_s}).exitCode, 0); // it passed
}

void BrokenDataTest::aFullDiskLetsNothingBegin()
{
    const QString fresh = path(u"fresh"_s);
    QVERIFY(QDir().mkpath(fresh));
    QProcess process;
    QProcessEnvironment environment = quietEnvironment();
    setDiskFaults(environment, {u"ENOSPC="_s + fresh}, path(u"log"_s));
    process.setProcessEnvironment(environment);
    process.start(RECORDINGCTL, {u"cameras"_s, u"--data"_s, fresh});
    const Run run = finished(process);
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.errors.contains(u"DatabaseFull"_s), qPrintable(run.errors));
    QVERIFY(!QFile::exists(fresh + u"/station.db"_s));
}

void BrokenDataTest::aDiskWithErrorsIsNotFine()
{
    for (const QString &command : {u"usage"_s, u"alarms"_s, u"groups"_s}) {
        const Run run = ctl({command}, {u"EIO="_s + path(u"data"_s)});
        QVERIFY2(run.exitCode > 0, qPrintable(command + run.output + run.errors));
        QVERIFY2(run.errors.contains(path(u"data"_s)), qPrintable(run.errors));
    }
}

void BrokenDataTest::aGoneFolderIsNamed()
{
    QVERIFY(QDir(path(u"disk"_s)).removeRecursively());
    for (const QString &command : {u"usage"_s, u"alarms"_s}) {
        const Run run = ctl({command});
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(
            run.errors.contains(u"The folder %1 is not there; recording groups on it: Doors."_s.arg(path(u"disk"_s))),
            qPrintable(run.errors));
    }
}

void BrokenDataTest::anUnreadableFolderIsNamed()
{
    const QString folder = path(u"disk/Doors/Gate"_s);
    for (const QString &command : {u"usage"_s, u"alarms"_s}) {
        const Run run = ctl({command}, {u"EIO.readdir="_s + folder});
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.errors.contains(u"The recordings in "_s + folder), qPrintable(run.errors));
    }
}

void BrokenDataTest::aFolderThatHangsIsUnknown()
{
    const QString folder = path(u"disk/Doors/Gate"_s);
    for (const QString &command : {u"usage"_s, u"alarms"_s}) {
        const Run run = ctl({command, u"--timeout"_s, u"2"_s}, {u"hang.readdir="_s + folder});
        QCOMPARE(run.exitCode, 3);
        QVERIFY2(run.errors.contains(u"recordingctl: unknown, asked since "_s), qPrintable(run.errors));
    }
    const Run json = ctl({u"usage"_s, u"--json"_s, u"--timeout"_s, u"2"_s}, {u"hang.readdir="_s + folder});
    QCOMPARE(json.exitCode, 3);
    const QJsonObject reply = json.json();
    QCOMPARE(reply.keys(), QStringList({u"command"_s, u"data"_s, u"returnCode"_s, u"unknown"_s}));
    QCOMPARE(reply[u"returnCode"_s].toString(), u"NotKnownYet"_s);
    const QJsonObject unknown = reply[u"unknown"_s][0].toObject();
    QCOMPARE(unknown.keys(), QStringList({u"kind"_s, u"since"_s, u"subject"_s, u"text"_s}));
    QVERIFY2(json.errors.contains(unknown[u"text"_s].toString()), qPrintable(json.output));
    QVERIFY2(unknown[u"since"_s].toString().endsWith(u'Z'), qPrintable(json.output));
}

QTEST_GUILESS_MAIN(BrokenDataTest)
#include "tst_broken_data.moc"
