#pragma once

#include "alarms/StationTrouble.h"

#include <QString>

#include <stdexcept>

/// What keeps the station from using its database.
enum class DatabaseTrouble {
    Missing, ///< its folder held one before
    Damaged,
    Newer, ///< a newer station wrote it
    NotAllowed, ///< the station's user may not read or write it
    NotOwned, ///< it belongs to another user
    Full, ///< its disk has no space left
    ReadOnly, ///< its disk is mounted read-only
    Busy, ///< another program held it for too long
    Replaced, ///< the folder or the file is not the one that was opened
    Failed, ///< anything else, a failing disk for instance
};

/// The station's database failed: what was tried, and what the system or SQLite says of it.
class DatabaseError : public std::runtime_error
{
public:
    /// @param detail what an operator is told of it; empty: @p what
    DatabaseError(DatabaseTrouble trouble, const QString &what, const QString &detail = {});

    DatabaseTrouble trouble() const { return m_trouble; }
    const QString &detail() const { return m_detail; }

private:
    DatabaseTrouble m_trouble;
    QString m_detail;
};

/// The word of StationReturnCode that a command is refused with.
QString returnCodeOf(DatabaseTrouble trouble);

/// Whether @p returnCode is one of those.
bool isDatabaseCode(const QString &returnCode);

/// @p error as operators are told of it; StationTrouble::since is left to whoever noticed it.
/// @param file the database
StationTrouble troubleOf(const DatabaseError &error, const QString &file);
