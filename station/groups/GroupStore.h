#pragma once

#include "RecordingGroup.h"

#include <optional>

class Database;

/// The recording groups and the cameras in the station's database. Writes what it is given without judging it; several
/// writes that belong together are put into a Transaction by the caller. Throws DatabaseError.
class GroupStore
{
public:
    /// @param database must outlive this object
    explicit GroupStore(Database &database);

    QList<RecordingGroup> groups() const; ///< in the order in which they were made
    std::optional<RecordingGroup> group(const QString &id) const;

    void insert(const RecordingGroup &group);
    void replace(const RecordingGroup &group); ///< found by its id
    void remove(const QString &id);

    QList<Camera> cameras() const; ///< by name
    void insert(const Camera &camera);
    void removeCamera(const QString &name);

private:
    Database &m_database;
};
