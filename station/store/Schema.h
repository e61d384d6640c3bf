#pragma once

#include <QString>
#include <QStringList>

class Database;

/// Brings the tables of @p database up to date, one version after the other, each in a transaction of its own.
///
/// The version is the number of steps taken, kept in SQLite's user_version. A step that was published is never changed;
/// what comes later is a step behind it. Throws DatabaseError where a newer station wrote the database, or nobody did.
void updateSchema(Database &database);

/// The version of the tables of @p database. Throws DatabaseError where no station of this version or an older one
/// wrote them.
int knownSchemaVersion(Database &database);
/// The version that updateSchema() leads to.
int newestSchemaVersion();

/// Throws DatabaseError unless the tables of @p database, which may not be written, are up to date.
void requireSchema(Database &database);

/// Throws DatabaseError unless a station made the tables of @p database: another program leaves an empty one behind.
void requireMade(Database &database);

/// All tables but those that grow with time: of recorded files, of the activity, and of samples of usage figures.
QStringList smallTables();
