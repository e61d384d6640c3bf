#include "Database.h"

#include "Schema.h"

#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QUuid>

namespace {
constexpr auto patience = "QSQLITE_BUSY_TIMEOUT=10000"; // milliseconds that a writer waits for another one

QString fileIn(const QString &folder)
{
    return QDir(folder).filePath(QStringLiteral("station.db"));
}

void closeConnection(const QString &name)
{
    QSqlDatabase::database(name, false).close();
    QSqlDatabase::removeDatabase(name);
}
} // namespace

DatabaseError::DatabaseError(const QString &what)
    : std::runtime_error(what.toStdString())
{
}

Database::Database(const QString &folder)
    : m_connection(QUuid::createUuid().toString())
{
    if (!QDir().mkpath(folder))
        throw DatabaseError(QStringLiteral("The data folder %1 cannot be made").arg(folder));
    try {
        QSqlDatabase connection = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
        connection.setDatabaseName(fileIn(folder));
        connection.setConnectOptions(QString::fromLatin1(patience));
        if (!connection.open()) {
            throw DatabaseError(QStringLiteral("The database %1 cannot be opened: %2")
                                    .arg(connection.databaseName(), connection.lastError().text()));
        }
        run(QStringLiteral("PRAGMA journal_mode = WAL"));
        run(QStringLiteral("PRAGMA synchronous = FULL"));
        run(QStringLiteral("PRAGMA foreign_keys = ON"));
        updateSchema(*this);
    } catch (...) {
        closeConnection(m_connection);
        throw;
    }
}

Database::~Database()
{
    closeConnection(m_connection);
}

bool Database::isIn(const QString &folder)
{
    return QFile::exists(fileIn(folder));
}

QSqlQuery Database::prepared(const QString &statement)
{
    QSqlQuery query(QSqlDatabase::database(m_connection, false));
    query.setForwardOnly(true);
    if (!query.prepare(statement))
        throw DatabaseError(QStringLiteral("%1: %2").arg(statement.simplified(), query.lastError().text()));
    return query;
}

QSqlQuery Database::run(const QString &statement, const QVariantList &values)
{
    QSqlQuery query = prepared(statement);
    for (const QVariant &value : values)
        query.addBindValue(value);
    execute(query);
    return query;
}

void execute(QSqlQuery &query)
{
    if (!query.exec())
        throw DatabaseError(QStringLiteral("%1: %2").arg(query.lastQuery().simplified(), query.lastError().text()));
}

Transaction::Transaction(Database &database)
    : m_database(database)
{
    m_database.run(QStringLiteral("BEGIN IMMEDIATE"));
}

Transaction::~Transaction()
{
    if (!m_isOpen)
        return;
    try {
        m_database.run(QStringLiteral("ROLLBACK"));
    } catch (const DatabaseError &) { // SQLite took it back by itself
    }
}

void Transaction::commit()
{
    m_database.run(QStringLiteral("COMMIT"));
    m_isOpen = false;
}

Snapshot::Snapshot(Database &database)
    : m_database(database)
{
    m_database.run(QStringLiteral("SAVEPOINT snapshot"));
}

Snapshot::~Snapshot()
{
    try {
        m_database.run(QStringLiteral("RELEASE snapshot"));
    } catch (const DatabaseError &) { // SQLite ended it by itself
    }
}
