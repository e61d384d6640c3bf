#include "store/Database.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>

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
    void aDatabaseOfANewerStationIsRefusedAndKept();
    void aFileThatIsNoDatabaseIsRefusedAndKept();
    void aFolderThatCannotBeMadeIsNamed();

private:
    QString folder() const { return m_folder->filePath(QStringLiteral("data/station")); }
    int cameras(Database &database) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {
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
    QSqlQuery query = database.run(QStringLiteral("SELECT count(*) FROM camera"));
    return query.next() ? query.value(0).toInt() : -1;
}

void StationDatabaseTest::theFolderAndTheTablesAreMade()
{
    Database database(folder());
    QVERIFY(QFile::exists(folder() + QStringLiteral("/station.db")));
    QCOMPARE(cameras(database), 0);
    QSqlQuery mode = database.run(QStringLiteral("PRAGMA journal_mode"));
    QVERIFY(mode.next());
    QCOMPARE(mode.value(0).toString(), QStringLiteral("wal"));
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
