#pragma once

#include "store/DatabaseError.h"

#include <QElapsedTimer>
#include <QList>
#include <QString>

#include <memory>
#include <optional>

class Database;

/// The station's data folder and the database in it. Nothing is made on the disk before it is asked for.
class StationData
{
public:
    /// @param folder empty: defaultStationFolder()
    explicit StationData(const QString &folder);
    ~StationData();

    const QString &folder() const { return m_folder; }

    /// Whether a database was made here before; asking makes none.
    bool isDatabaseThere() const;

    /// The station's thread's connection, opened by the first call and good until the next one: one that can only be
    /// read is opened anew now and then. Throws DatabaseError; the next call tries again, but for a database that was
    /// replaced.
    Database &database();

    /// Takes up that somebody met @p error: a database that is damaged is not written any more.
    void note(const DatabaseError &error);
    /// Looks whether what was in the way still is, and how the disk stands.
    void look();
    /// What keeps the station from reading or writing its database, as of the last call of any of these.
    QList<StationTrouble> troubles() const;

private:
    QString m_folder;
    std::unique_ptr<Database> m_database;
    std::optional<DatabaseError> m_trouble; // but for what the database itself knows
    QElapsedTimer m_opened;
};
