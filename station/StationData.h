#pragma once

#include <QString>

#include <memory>

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

    /// The station's thread's connection, opened by the first call. Throws DatabaseError; the next call tries again.
    Database &database();

private:
    QString m_folder;
    std::unique_ptr<Database> m_database;
};
