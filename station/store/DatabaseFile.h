#pragma once

#include "DatabaseError.h"

#include <QString>

#include <optional>

#include <sys/types.h>

/// The file of a station's database and what lies beside it, as the file system shows them. Knows nothing of tables.
///
/// A folder that held a database once keeps a mark, the file "station-data", so that a database that went away is not
/// taken for one that was never made. The mark also tells whether anybody else has the database open.
class DatabaseFile
{
public:
    explicit DatabaseFile(const QString &folder);
    ~DatabaseFile();
    DatabaseFile(const DatabaseFile &) = delete;
    DatabaseFile &operator=(const DatabaseFile &) = delete;

    static QString pathIn(const QString &folder);
    const QString &folder() const { return m_folder; }
    const QString &path() const { return m_path; }
    /// SQLite's file of what was written and not moved into the database yet.
    QString writeAheadPath() const { return m_path + QStringLiteral("-wal"); }
    qint64 writeAheadBytes() const; ///< 0 where there is none

    /// Makes the folder, for this user alone, where it is missing. Throws DatabaseError.
    void makeFolder() const;
    /// Whether there is a database to open. Throws DatabaseError where there was one, or something else is in its
    /// place: no plain file, an empty one, another user's. Changes nothing.
    bool isThere() const;
    /// Whether others than its owner may read or write the file.
    bool isOpenToOthers() const;
    /// Takes that from them.
    void closeToOthers() const;
    /// Gives @p made, a file in the folder, the database's name, unless somebody else was quicker.
    void place(const QString &made) const;

    /// Leaves the mark, and keeps it open until the end. Whether the database was not closed by the one who used it
    /// last, and nobody else uses it now.
    bool enterUse();
    /// From now on verify() holds the folder and the files against what they are now.
    void remember();
    /// Throws DatabaseError (Replaced) where the folder, the database or its write-ahead file is another than then, or
    /// was written over by something else than SQLite.
    void verify() const;
    /// Moves the write-ahead file of a database that was written over aside: SQLite would write it into the new one.
    void setWriteAheadAside() const;

    /// Throws DatabaseError where this user may not write the file, or beside it: SQLite opens it all the same.
    void requireWritable() const;
    /// Why nothing can be written; none where it can.
    std::optional<DatabaseError> whyNotWritable() const;
    /// The same from the system's figures of the disk alone, without a trial.
    std::optional<DatabaseError> whyDiskTakesNothing() const;

private:
    struct Identity
    {
        dev_t device = 0;
        ino_t inode = 0;
        bool operator==(const Identity &) const = default;
    };
    struct Header
    {
        quint32 id = 0; ///< of the database, drawn when it was made
        quint32 changes = 0; ///< never falls
    };
    static Identity identityOf(const QString &path);
    Header readHeader() const;

    QString m_folder;
    QString m_path;
    int m_mark = -1; // a file descriptor
    int m_content = -1; // likewise; never closed, see remember()
    Identity m_folderIdentity;
    Identity m_fileIdentity;
    Identity m_writeAheadIdentity;
    mutable Header m_header;
};
