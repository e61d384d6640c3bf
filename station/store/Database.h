#pragma once

#include "DatabaseError.h"
#include "DatabaseFile.h"

#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <optional>

/// What a query found, row by row. There is no way to take an error for the end.
class Rows
{
public:
    /// Goes to the next row, at first to the first one; false behind the last. Throws DatabaseError.
    bool next();
    QVariant value(int column) const { return m_query.value(column); }

private:
    friend class Statement;
    explicit Rows(QSqlQuery &&query);

    QSqlQuery m_query;
};

/// What a statement did.
struct Effect
{
    qint64 rows = 0; ///< that were changed
    qint64 lastNumber = 0; ///< of the row that was inserted last
};

/// A statement with a "?" for each value. What it does throws DatabaseError.
class Statement
{
public:
    Effect run(const QVariantList &values = {});
    /// Ends the statement: it gives its rows away.
    Rows rows(const QVariantList &values = {}) &&;
    /// The first column of the first row; invalid where there is none.
    QVariant value(const QVariantList &values = {});

private:
    friend class Database;
    Statement(QSqlQuery &&query, const QString &text);
    void execute(const QVariantList &values);

    QSqlQuery m_query;
};

/// @p value as it is bound to a "?": a null QString would be NULL.
QVariant boundText(const QString &value);

/// One connection to the station's database, the file "station.db" in its data folder.
///
/// Used on the thread that made it alone; another thread, and another process, opens a connection of its own. Readers
/// never wait, writers wait for each other. What a committed transaction wrote survives the end of the process and of
/// the machine's power at any moment.
///
/// Where the disk takes nothing, or this user may only read, the database can still be read: see limitation().
class Database
{
public:
    /// Makes folder and file where there never were any and brings the tables up to date (see Schema.h). Its
    /// small tables are checked for damage, and all of a database that was not closed. Throws DatabaseError; what is
    /// there is left as it is then.
    explicit Database(const QString &folder);

    /// How a database is opened that is only looked at.
    enum class Look {
        Shared, ///< others may be writing it; SQLite's files beside it may be made
        Unchanging, ///< nobody writes it and it has no write-ahead file; nothing is made
    };
    /// Opens the database that is in @p folder to be read, whatever its version and without a check for damage. It is
    /// not written, nor are its mark and its mode. Throws DatabaseError.
    Database(const QString &folder, Look look);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    /// The database in @p folder.
    static QString pathIn(const QString &folder) { return DatabaseFile::pathIn(folder); }
    /// Whether one is in @p folder, or was. Makes none.
    static bool isIn(const QString &folder);

    /// Ready to be run again and again.
    Statement prepared(const QString &statement);
    /// Executes @p statement with @p values in the places of its "?".
    Effect run(const QString &statement, const QVariantList &values = {});
    Rows rows(const QString &statement, const QVariantList &values = {});
    QVariant value(const QString &statement, const QVariantList &values = {});

    /// Why it can only be read; none where it can be written. What a transaction throws then.
    const std::optional<DatabaseError> &limitation() const { return m_limitation; }
    /// Takes nothing more in: a damaged database is never written.
    void refuseWriting(const DatabaseError &reason) { m_limitation = reason; }
    /// Throws DatabaseError where the file is not the one that was opened.
    void verify();
    /// A line in the station's log, once for each connection.
    void warnOnce(const QString &line);
    /// Why the disk takes nothing at the moment, as far as the system tells.
    std::optional<DatabaseError> whyDiskTakesNothing() const { return m_file.whyDiskTakesNothing(); }

private:
    enum class Access { ReadWrite, ReadOnly, Unchanging, Alone };

    void make();
    void open(bool wasLeftOpen);
    bool openForReading(Access access);
    void connect(const QString &path, Access access);
    void disconnect();
    void check(const QString &question);
    void checkTables();
    void setId();

    DatabaseFile m_file;
    QString m_connection;
    std::optional<DatabaseError> m_limitation;
    bool m_isReplaced = false;
    QStringList m_warnings;
};

/// Everything that is run during its life takes effect together, or not at all.
class Transaction
{
public:
    /// How long other writers are waited for.
    enum class Patience {
        Long, ///< ten seconds: somebody waits for what is written
        Short, ///< a moment: it can be done later
    };

    explicit Transaction(Database &database, Patience patience = Patience::Long);
    ~Transaction(); ///< takes everything back unless it was committed
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    Database &database() const { return m_database; }
    /// Throws DatabaseError, also where the database was replaced before, or while, it was written.
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
