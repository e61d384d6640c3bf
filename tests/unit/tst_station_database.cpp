#include "groups/GroupStore.h"
#include "store/Database.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>
#include <thread>
#include <vector>

/// The database under the station: a file that is there or is made, and transactions.
class StationDatabaseTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void theFolderAndTheTablesAreMade();
    void aCommittedTransactionIsThereForTheNext();
    void aTransactionThatIsNotCommittedLeavesNothing();
    void aWrongStatementIsNamed();
    void aDatabaseOfTheFirstVersionIsBroughtUpToDate();
    void twoWhoOpenAtOnceMakeTheTablesOnce();
    void aWriterWaitsForAnother();
    void aDatabaseOfANewerStationIsRefusedAndKept();
    void aFileThatIsNoDatabaseIsRefusedAndKept();
    void aFolderThatCannotBeMadeIsNamed();

private:
    QString folder() const { return m_folder->filePath(QStringLiteral("data/station")); }
    int cameras(Database &database) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {
/// A database as the first version of the tables had it. Stays as it is, whatever the tables become.
constexpr const char *firstVersion[] = {
    "CREATE TABLE camera (name TEXT PRIMARY KEY, streams INTEGER NOT NULL)",
    "CREATE TABLE recording_group (number INTEGER PRIMARY KEY, id TEXT NOT NULL UNIQUE, name TEXT NOT NULL UNIQUE, "
    "folder TEXT NOT NULL UNIQUE, reserved_minutes INTEGER NOT NULL, reserved_time_enabled INTEGER NOT NULL)",
    "CREATE TABLE group_path (number INTEGER PRIMARY KEY, group_number INTEGER NOT NULL REFERENCES recording_group ON "
    "DELETE CASCADE, path TEXT NOT NULL, kind INTEGER NOT NULL, reserved_megabytes INTEGER NOT NULL, recovery INTEGER "
    "NOT NULL, UNIQUE (group_number, path))",
    "CREATE TABLE group_member (number INTEGER PRIMARY KEY, group_number INTEGER NOT NULL REFERENCES recording_group "
    "ON DELETE CASCADE, camera TEXT NOT NULL REFERENCES camera, stream INTEGER NOT NULL, time_shift INTEGER NOT NULL, "
    "seamless INTEGER NOT NULL, UNIQUE (group_number, camera, stream))",
    "CREATE TABLE group_node (number INTEGER PRIMARY KEY, group_number INTEGER NOT NULL REFERENCES recording_group ON "
    "DELETE CASCADE, node TEXT NOT NULL, UNIQUE (group_number, node))",
    "PRAGMA user_version = 1",
    "INSERT INTO camera VALUES ('Cam', 2)",
    "INSERT INTO recording_group VALUES (7, '{1}', 'Yard', 'yard', 90, 1)",
    "INSERT INTO group_path VALUES (1, 7, '/srv', 0, 2048, 0)",
    "INSERT INTO group_member VALUES (1, 7, 'Cam', 1, 0, 1)",
    "INSERT INTO group_node VALUES (1, 7, 'node')",
};

int version(Database &database)
{
    return database.value(QStringLiteral("PRAGMA user_version")).toInt();
}

const QString insertCamera = QStringLiteral("INSERT INTO camera (name, streams) VALUES (?, ?)");

QString errorOf(const std::function<void()> &action)
{
    try {
        action();
    } catch (const DatabaseError &error) {
        return QString::fromStdString(error.what());
    }
    return {};
}
} // namespace

void StationDatabaseTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_folder = std::make_unique<QTemporaryDir>();
}

int StationDatabaseTest::cameras(Database &database) const
{
    return database.value(QStringLiteral("SELECT count(*) FROM camera")).toInt();
}

void StationDatabaseTest::theFolderAndTheTablesAreMade()
{
    Database database(folder());
    QVERIFY(QFile::exists(folder() + QStringLiteral("/station.db")));
    QCOMPARE(cameras(database), 0);
    QCOMPARE(database.value(QStringLiteral("PRAGMA journal_mode")).toString(), QStringLiteral("wal"));
}

void StationDatabaseTest::aCommittedTransactionIsThereForTheNext()
{
    {
        Database database(folder());
        Transaction transaction(database);
        database.run(insertCamera, {QStringLiteral("Yard"), 2});
        database.run(insertCamera, {QStringLiteral("Gate"), 1});
        transaction.commit();
    }
    Database again(folder());
    QCOMPARE(cameras(again), 2);
}

void StationDatabaseTest::aTransactionThatIsNotCommittedLeavesNothing()
{
    Database database(folder());
    {
        Transaction transaction(database);
        database.run(insertCamera, {QStringLiteral("Yard"), 2});
    }
    QCOMPARE(cameras(database), 0);
    Transaction next(database); // the first one is over
    next.commit();
}

void StationDatabaseTest::aWrongStatementIsNamed()
{
    Database database(folder());
    const QString error = errorOf([&database] { database.run(QStringLiteral("SELECT colour FROM camera")); });
    QVERIFY2(error.contains(QStringLiteral("SELECT colour FROM camera")), qPrintable(error));
    QVERIFY2(error.contains(QStringLiteral("colour"), Qt::CaseSensitive), qPrintable(error));
}

void StationDatabaseTest::aDatabaseOfTheFirstVersionIsBroughtUpToDate()
{
    QVERIFY(QDir().mkpath(folder()));
    {
        QSqlDatabase first = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("first"));
        first.setDatabaseName(folder() + QStringLiteral("/station.db"));
        QVERIFY(first.open());
        for (const char *statement : firstVersion) {
            QSqlQuery query(first);
            QVERIFY2(query.exec(QString::fromLatin1(statement)), statement);
        }
        first.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("first"));

    int newest = 0;
    {
        Database fresh(m_folder->filePath(QStringLiteral("fresh")));
        newest = version(fresh);
        QVERIFY(newest >= 1);
    }
    for (int opened = 0; opened < 2; ++opened) {
        Database database(folder());
        QCOMPARE(version(database), newest);
        const QList<RecordingGroup> groups = GroupStore(database).groups();
        QCOMPARE(groups.size(), 1);
        QCOMPARE(groups.front().name, QStringLiteral("Yard"));
        QCOMPARE(groups.front().folder, QStringLiteral("yard"));
        QCOMPARE(groups.front().reservedMinutes, 90);
        QVERIFY(groups.front().isReservedTimeEnabled);
        QCOMPARE(groups.front().paths.size(), 1);
        QCOMPARE(groups.front().paths.front().path, QStringLiteral("/srv"));
        QCOMPARE(groups.front().paths.front().reservedMegabytes, 2048);
        QCOMPARE(groups.front().members.size(), 1);
        QCOMPARE(groups.front().members.front().camera, QStringLiteral("Cam"));
        QVERIFY(groups.front().members.front().seamless);
        QCOMPARE(groups.front().nodeIds, QStringList{QStringLiteral("node")});
    }
}

void StationDatabaseTest::twoWhoOpenAtOnceMakeTheTablesOnce()
{
    constexpr int count = 4;
    std::vector<QString> errors(count);
    std::vector<std::thread> threads;
    for (QString &error : errors) {
        threads.emplace_back([this, &error] { error = errorOf([this] { const Database database(folder()); }); });
    }
    for (std::thread &thread : threads)
        thread.join();
    for (const QString &error : errors)
        QCOMPARE(error, QString());
    Database database(folder());
    QCOMPARE(cameras(database), 0);
}

void StationDatabaseTest::aWriterWaitsForAnother()
{
    Database database(folder());
    database.run(insertCamera, {QStringLiteral("Gate"), 0});
    constexpr int rounds = 50;
    const auto count = [this] { // reads, then writes what it read and one more
        Database own(folder());
        for (int round = 0; round < rounds; ++round) {
            Transaction transaction(own);
            const int streams = own.value(QStringLiteral("SELECT streams FROM camera")).toInt();
            own.run(QStringLiteral("UPDATE camera SET streams = ?"), {streams + 1});
            transaction.commit();
        }
    };
    QString otherError;
    std::thread other([&] { otherError = errorOf(count); });
    const QString error = errorOf(count);
    other.join();
    QCOMPARE(error, QString());
    QCOMPARE(otherError, QString());
    QCOMPARE(database.value(QStringLiteral("SELECT streams FROM camera")).toInt(), 2 * rounds);
}

void StationDatabaseTest::aDatabaseOfANewerStationIsRefusedAndKept()
{
    {
        Database database(folder());
        database.run(insertCamera, {QStringLiteral("Yard"), 2});
        database.run(QStringLiteral("PRAGMA user_version = 1000"));
    }
    const QString error = errorOf([this] { const Database database(folder()); });
    QVERIFY2(error.contains(QStringLiteral("1000")), qPrintable(error));
    const QString second = errorOf([this] { const Database database(folder()); });
    QCOMPARE(second, error);
}

void StationDatabaseTest::aFileThatIsNoDatabaseIsRefusedAndKept()
{
    QVERIFY(QDir().mkpath(folder()));
    const QByteArray text(2048, 'x');
    const QString name = folder() + QStringLiteral("/station.db");
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text);
    file.close();
    QVERIFY(!errorOf([this] { const Database database(folder()); }).isEmpty());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), text);
}

void StationDatabaseTest::aFolderThatCannotBeMadeIsNamed()
{
    QFile file(m_folder->filePath(QStringLiteral("data")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QString error = errorOf([this] { const Database database(folder()); });
    QVERIFY2(error.contains(folder()), qPrintable(error));
}

QTEST_GUILESS_MAIN(StationDatabaseTest)
#include "tst_station_database.moc"
