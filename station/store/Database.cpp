#include "Database.h"

#include "Schema.h"
#include "StationLog.h"

#include <QFile>
#include <QRandomGenerator>
#include <QScopeGuard>
#include <QSqlDatabase>
#include <QSqlError>
#include <QUrl>
#include <QUuid>

#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace {
constexpr auto patience = "QSQLITE_BUSY_TIMEOUT=10000"; // milliseconds that a writer waits for another one
const QString longPatience = QStringLiteral("PRAGMA busy_timeout = 10000");
const QString shortPatience = QStringLiteral("PRAGMA busy_timeout = 100");

/// What SQLite's numbers of errors mean; the upper bytes of a number only say more of the same.
DatabaseTrouble troubleOf(const QSqlError &error)
{
    switch (error.nativeErrorCode().toInt() & 0xff) {
    case 3: // permission
    case 14: // cannot open
    case 23: // authorization
        return DatabaseTrouble::NotAllowed;
    case 5: // busy
    case 6: // locked
        return DatabaseTrouble::Busy;
    case 8:
        return DatabaseTrouble::ReadOnly;
    case 11: // corrupt
    case 26: // no database
        return DatabaseTrouble::Damaged;
    case 13:
        return DatabaseTrouble::Full;
    default:
        return DatabaseTrouble::Failed;
    }
}

DatabaseError failed(const QString &what, const QSqlError &error)
{
    return {troubleOf(error), QStringLiteral("%1: %2").arg(what.simplified(), error.text()), error.databaseText()};
}

bool mayBeReadAnyway(DatabaseTrouble trouble)
{
    return trouble == DatabaseTrouble::Full || trouble == DatabaseTrouble::ReadOnly
        || trouble == DatabaseTrouble::NotAllowed || trouble == DatabaseTrouble::Failed;
}

/// Without closing it: SQLite would bring what it holds into a file that is not its own, and remove another's.
void abandon(const QString &connection)
{
    static auto *const abandoned = new QList<QSqlDatabase>;
    abandoned->append(QSqlDatabase::database(connection, false));
}
} // namespace

QVariant boundText(const QString &value)
{
    return value.isNull() ? QStringLiteral("") : value;
}

Rows::Rows(QSqlQuery &&query)
    : m_query(std::move(query))
{
}

bool Rows::next()
{
    if (m_query.next())
        return true;
    if (m_query.lastError().isValid())
        throw failed(m_query.lastQuery(), m_query.lastError());
    return false;
}

Statement::Statement(QSqlQuery &&query, const QString &text)
    : m_query(std::move(query))
{
    m_query.setForwardOnly(true);
    if (!m_query.prepare(text))
        throw failed(text, m_query.lastError());
}

void Statement::execute(const QVariantList &values)
{
    for (qsizetype i = 0; i < values.size(); ++i)
        m_query.bindValue(static_cast<int>(i), values.at(i));
    if (!m_query.exec())
        throw failed(m_query.lastQuery(), m_query.lastError());
}

Effect Statement::run(const QVariantList &values)
{
    execute(values);
    return {m_query.numRowsAffected(), m_query.lastInsertId().toLongLong()};
}

Rows Statement::rows(const QVariantList &values) &&
{
    execute(values);
    return Rows(std::move(m_query));
}

QVariant Statement::value(const QVariantList &values)
{
    execute(values);
    QVariant value;
    if (m_query.next())
        value = m_query.value(0);
    else if (m_query.lastError().isValid())
        throw failed(m_query.lastQuery(), m_query.lastError());
    m_query.finish();
    return value;
}

Database::Database(const QString &folder)
    : m_file(folder)
{
    m_file.makeFolder();
    if (!m_file.isThere())
        make();
    m_file.closeToOthers();
    const bool wasLeftOpen = m_file.enterUse();
    try {
        open(wasLeftOpen);
        m_file.remember();
    } catch (...) {
        disconnect();
        throw;
    }
}

Database::Database(const QString &folder, Look look)
    : m_file(folder)
    , m_limitation(DatabaseError(DatabaseTrouble::NotAllowed, QStringLiteral("it is only looked at")))
{
    try {
        connect(m_file.path(), look == Look::Shared ? Access::ReadOnly : Access::Unchanging);
        requireMade(*this);
    } catch (...) {
        disconnect();
        throw;
    }
}

Database::~Database()
{
    if (m_isReplaced)
        abandon(m_connection);
    else
        disconnect();
}

bool Database::isIn(const QString &folder)
{
    try {
        return DatabaseFile(folder).isThere();
    } catch (const DatabaseError &) { // something is there, and opening it says what is wrong
        return true;
    }
}

/// Under another name first, so that a file with the database's name always is a whole database.
void Database::make()
{
    const QString made = m_file.path() + QStringLiteral(".new-") + QUuid::createUuid().toString(QUuid::Id128);
    const int file =
        ::open(QFile::encodeName(made).constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (file >= 0)
        ::close(file);
    try {
        connect(made, Access::ReadWrite);
        updateSchema(*this);
        setId();
        disconnect();
        m_file.place(made);
    } catch (const DatabaseError &error) {
        disconnect();
        QFile::remove(made);
        throw m_file.whyNotWritable().value_or(error);
    }
    qCInfo(stationLog, "A new database was made: %s", qPrintable(m_file.path()));
}

void Database::open(bool wasLeftOpen)
{
    try {
        m_file.requireWritable();
        m_file.requireWritable();
        connect(m_file.path(), Access::ReadWrite);
        requireMade(*this);
        if (wasLeftOpen)
            check(QStringLiteral("PRAGMA quick_check(1)"));
        if (m_limitation)
            return requireSchema(*this);
        updateSchema(*this);
        checkTables();
        if (!m_limitation)
            setId();
        return;
    } catch (const DatabaseError &error) {
        disconnect();
        m_limitation = mayBeReadAnyway(error.trouble()) ? m_file.whyNotWritable() : std::nullopt;
        if (!m_limitation)
            throw;
    }
    // SQLite reads as well without its files beside the database, but not past a write-ahead file that is there.
    const Access first = m_file.writeAheadBytes() == 0 ? Access::Unchanging : Access::ReadOnly;
    if (!openForReading(first) && !openForReading(Access::Alone))
        throw *m_limitation;
    qCInfo(stationLog, "The database can only be read: %s", m_limitation->what());
}

bool Database::openForReading(Access access)
{
    try {
        connect(m_file.path(), access);
        requireMade(*this);
        requireSchema(*this);
        checkTables();
        return true;
    } catch (const DatabaseError &error) {
        disconnect();
        if (!mayBeReadAnyway(error.trouble()))
            throw;
        return false;
    }
}

void Database::connect(const QString &path, Access access)
{
    m_connection = QUuid::createUuid().toString();
    QSqlDatabase connection = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    QString options = QString::fromLatin1(patience);
    QString name = path;
    if (access == Access::ReadOnly || access == Access::Unchanging)
        options += QStringLiteral(";QSQLITE_OPEN_READONLY");
    if (access == Access::Unchanging) {
        options += QStringLiteral(";QSQLITE_OPEN_URI");
        name = QStringLiteral("file:%1?immutable=1").arg(QString::fromLatin1(QUrl::toPercentEncoding(path, "/")));
    }
    connection.setDatabaseName(name);
    connection.setConnectOptions(options);
    if (!connection.open())
        throw failed(QStringLiteral("The database %1 cannot be opened").arg(path), connection.lastError());
    if (access == Access::Alone)
        value(QStringLiteral("PRAGMA locking_mode = EXCLUSIVE"));
    if (access == Access::ReadWrite) {
        value(QStringLiteral("PRAGMA journal_mode = WAL"));
        run(QStringLiteral("PRAGMA synchronous = FULL"));
        run(QStringLiteral("PRAGMA foreign_keys = ON"));
    }
}

void Database::disconnect()
{
    if (m_connection.isEmpty())
        return;
    const QString name = std::exchange(m_connection, {});
    QSqlDatabase::database(name, false).close();
    QSqlDatabase::removeDatabase(name);
}

/// SQLite takes most damage for data.
void Database::check(const QString &question)
{
    const QString found = value(question).toString();
    if (found == QStringLiteral("ok"))
        return;
    m_limitation = DatabaseError(DatabaseTrouble::Damaged, found.simplified());
    qCInfo(stationLog, "The database is damaged: %s", m_limitation->what());
}

/// A clean end says nothing of the disk. All but the large ones, so that every start can afford it.
void Database::checkTables()
{
    const QStringList tables = smallTables();
    for (const QString &table : tables)
        check(QStringLiteral("PRAGMA quick_check(%1)").arg(table));
}

/// Tells this database from any other that is written over it; databases of older stations have none.
void Database::setId()
{
    if (value(QStringLiteral("PRAGMA application_id")).toInt() != 0)
        return;
    const int id = QRandomGenerator::system()->bounded(1, std::numeric_limits<int>::max());
    run(QStringLiteral("PRAGMA application_id = %1").arg(id));
    value(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
}

void Database::verify()
{
    try {
        m_file.verify();
    } catch (const DatabaseError &error) {
        m_isReplaced = true;
        m_limitation = error;
        throw;
    }
}

void Database::warnOnce(const QString &line)
{
    if (m_warnings.contains(line))
        return;
    m_warnings.append(line);
    qCWarning(stationLog, "%s", qPrintable(line));
}

Statement Database::prepared(const QString &statement)
{
    return {QSqlQuery(QSqlDatabase::database(m_connection, false)), statement};
}

Effect Database::run(const QString &statement, const QVariantList &values)
{
    return prepared(statement).run(values);
}

Rows Database::rows(const QString &statement, const QVariantList &values)
{
    return prepared(statement).rows(values);
}

QVariant Database::value(const QString &statement, const QVariantList &values)
{
    return prepared(statement).value(values);
}

Transaction::Transaction(Database &database, Patience patience)
    : m_database(database)
{
    if (m_database.limitation())
        throw *m_database.limitation();
    m_database.verify(); // SQLite would take a file that was written over for a damaged one
    if (patience == Patience::Short)
        m_database.value(shortPatience);
    const auto back = qScopeGuard([this, patience] {
        if (patience == Patience::Short)
            m_database.value(longPatience);
    });
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
    m_database.verify();
    m_database.run(QStringLiteral("COMMIT"));
    m_isOpen = false;
    m_database.verify();
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
