#pragma once

#include "StationMessage.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>

#include <optional>

class Database;

/// An edit that the station was asked for under an id, and what it answered.
struct KeptRequest
{
    QByteArray fingerprint; ///< see requestFingerprint()
    QList<StationReply> parts; ///< without the last one where the edit was cut off
};

/// The answered edits in the station's database, by the ids of their commands. Throws DatabaseError.
class RequestStore
{
public:
    /// @param database must outlive this object
    explicit RequestStore(Database &database);

    /// What was kept under @p id; none where that was before @p oldest.
    std::optional<KeptRequest> find(const QString &id, const QDateTime &oldest) const;

    /// Keeps @p id without any part, in the place of whatever was there.
    void insert(const QString &id, const QByteArray &fingerprint, const QDateTime &time);
    /// Keeps the next parts of @p id, the first of which has the number @p first, from 0.
    void append(const QString &id, qsizetype first, const QList<StationReply> &parts);

    /// Removes some of what was kept before @p oldest, or after @p newest: the clock was set back. Whether there is
    /// more of it.
    bool prune(const QDateTime &oldest, const QDateTime &newest);

private:
    Database &m_database;
};
