#pragma once

#include "Database.h"

#include <QString>
#include <QTemporaryDir>

#include <memory>
#include <optional>

/// Looks through the database of a data folder, all of it, and changes nothing there: no mark, no update, no file of
/// SQLite's. A database that its last station did not close is looked at in a copy below the folder for temporary
/// files. Blocks for as long as the disk takes.
class DatabaseCheck
{
public:
    /// Opens the database of @p folder and checks it for damage. Throws DatabaseError, also where somebody goes on
    /// writing a database that nobody is known to use.
    /// @param isInUse whether a station runs on the folder
    DatabaseCheck(const QString &folder, bool isInUse);

    /// The version of its tables, and the one that this station brings them to.
    int version() const { return m_version; }
    static int newestVersion();

    /// To be read.
    Database &database() { return *m_database; }

private:
    void look(const QString &folder, bool isInUse);
    void copy(const QString &folder);

    std::unique_ptr<QTemporaryDir> m_copy;
    std::optional<Database> m_database;
    int m_version = 0;
    bool m_isShared = false; // others may write it meanwhile
};
