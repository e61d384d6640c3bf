#pragma once

#include <QSqlQuery>
#include <QString>
#include <QVariantList>

#include <stdexcept>

/// The station's database failed: what was tried, and what SQLite says of it.
class DatabaseError : public std::runtime_error
{
public:
    explicit DatabaseError(const QString &what);
};

/// One connection to the station's database, the file "station.db" in its data folder.
///
/// Used on the thread that made it alone; another thread, and another process, opens a connection of its own. Readers
/// never wait, writers wait for each other. What a committed transaction wrote survives the end of the process and of
/// the machine's power at any moment.
class Database
{
public:
    /// Makes folder and file where they are missing and brings the tables up to date (see Schema.h). Throws
    /// DatabaseError; a database that a newer station wrote is left as it is.
    explicit Database(const QString &folder);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    /// Whether @p folder has the file of a database.
    static bool isIn(const QString &folder);

    /// A statement with a "?" for each value, ready to be bound and executed again and again.
    QSqlQuery prepared(const QString &statement);
    /// Executes @p statement with @p values in the places of its "?". Throws DatabaseError.
    QSqlQuery run(const QString &statement, const QVariantList &values = {});

private:
    QString m_connection;
};

/// Executes @p query with its values bound; throws DatabaseError.
void execute(QSqlQuery &query);

/// Everything that is run during its life takes effect together, or not at all.
class Transaction
{
public:
    /// Waits for other writers.
    explicit Transaction(Database &database);
    ~Transaction(); ///< takes everything back unless it was committed
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    void commit();

private:
    Database &m_database;
    bool m_isOpen = true;
};

/// Everything that is read during its life is of one moment, whatever others commit meanwhile. May stand within a
/// Transaction and within another Snapshot.
class Snapshot
{
public:
    explicit Snapshot(Database &database);
    ~Snapshot();
    Snapshot(const Snapshot &) = delete;
    Snapshot &operator=(const Snapshot &) = delete;

private:
    Database &m_database;
};
