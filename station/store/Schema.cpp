#include "Schema.h"

#include "Database.h"

#include <iterator>

namespace {
struct Step
{
    const char *subject;
    const char *statements; // separated by semicolons
};

constexpr Step steps[] = {
    {"cameras and recording groups", R"(
        CREATE TABLE camera (
            name TEXT PRIMARY KEY,
            streams INTEGER NOT NULL);
        CREATE TABLE recording_group (
            number INTEGER PRIMARY KEY,
            id TEXT NOT NULL UNIQUE,
            name TEXT NOT NULL UNIQUE,
            folder TEXT NOT NULL UNIQUE,
            reserved_minutes INTEGER NOT NULL,
            reserved_time_enabled INTEGER NOT NULL);
        CREATE TABLE group_path (
            number INTEGER PRIMARY KEY,
            group_number INTEGER NOT NULL REFERENCES recording_group ON DELETE CASCADE,
            path TEXT NOT NULL,
            kind INTEGER NOT NULL,
            reserved_megabytes INTEGER NOT NULL,
            recovery INTEGER NOT NULL,
            UNIQUE (group_number, path));
        CREATE TABLE group_member (
            number INTEGER PRIMARY KEY,
            group_number INTEGER NOT NULL REFERENCES recording_group ON DELETE CASCADE,
            camera TEXT NOT NULL REFERENCES camera,
            stream INTEGER NOT NULL,
            time_shift INTEGER NOT NULL,
            seamless INTEGER NOT NULL,
            UNIQUE (group_number, camera, stream));
        CREATE TABLE group_node (
            number INTEGER PRIMARY KEY,
            group_number INTEGER NOT NULL REFERENCES recording_group ON DELETE CASCADE,
            node TEXT NOT NULL,
            UNIQUE (group_number, node)))"},
    {"NAS servers", R"(
        CREATE TABLE nas_server (
            number INTEGER PRIMARY KEY,
            id TEXT NOT NULL UNIQUE,
            host TEXT NOT NULL,
            host_key TEXT NOT NULL,
            logon_domain TEXT NOT NULL,
            user_name TEXT NOT NULL,
            sealed_password BLOB NOT NULL,
            UNIQUE (host_key, user_name)))"},
    {"index of recorded files", R"(
        CREATE TABLE recording_place (
            number INTEGER PRIMARY KEY,
            path TEXT NOT NULL,
            folder TEXT NOT NULL,
            group_id TEXT NOT NULL,
            volume_path TEXT NOT NULL,
            volume_name TEXT NOT NULL,
            is_read INTEGER NOT NULL DEFAULT 0,
            UNIQUE (path, folder));
        CREATE TABLE recorded_day (
            number INTEGER PRIMARY KEY,
            place INTEGER NOT NULL REFERENCES recording_place ON DELETE CASCADE,
            camera TEXT NOT NULL,
            day TEXT NOT NULL,
            files INTEGER NOT NULL,
            bytes INTEGER NOT NULL,
            UNIQUE (place, camera, day));
        CREATE TABLE recorded_file (
            day_number INTEGER NOT NULL REFERENCES recorded_day ON DELETE CASCADE,
            name TEXT NOT NULL,
            bytes INTEGER NOT NULL,
            PRIMARY KEY (day_number, name)) WITHOUT ROWID)"},
    {"sums of recorded files", R"(
        CREATE INDEX recorded_day_sums ON recorded_day (place, day, files, bytes))"},
    {"answered edits, activity and alarms", R"(
        CREATE TABLE edit_request (
            number INTEGER PRIMARY KEY,
            id TEXT NOT NULL UNIQUE,
            fingerprint BLOB NOT NULL,
            time INTEGER NOT NULL);
        CREATE INDEX edit_request_time ON edit_request (time);
        CREATE TABLE edit_reply (
            request INTEGER NOT NULL REFERENCES edit_request ON DELETE CASCADE,
            part INTEGER NOT NULL,
            return_code TEXT NOT NULL,
            data BLOB NOT NULL,
            is_last INTEGER NOT NULL,
            PRIMARY KEY (request, part)) WITHOUT ROWID;
        CREATE TABLE activity (
            number INTEGER PRIMARY KEY AUTOINCREMENT,
            time INTEGER NOT NULL,
            client TEXT NOT NULL,
            user TEXT NOT NULL,
            command TEXT NOT NULL,
            group_id TEXT NOT NULL,
            group_name TEXT NOT NULL,
            subject TEXT NOT NULL,
            return_code TEXT NOT NULL,
            duration INTEGER NOT NULL);
        CREATE INDEX activity_time ON activity (time);
        CREATE INDEX activity_group ON activity (group_id, number);
        CREATE TABLE alarm (
            number INTEGER PRIMARY KEY,
            kind TEXT NOT NULL,
            severity INTEGER NOT NULL,
            subject TEXT NOT NULL,
            text TEXT NOT NULL,
            remedy TEXT NOT NULL,
            since INTEGER NOT NULL,
            until INTEGER);
        CREATE UNIQUE INDEX alarm_standing ON alarm (kind, subject) WHERE until IS NULL;
        CREATE INDEX alarm_until ON alarm (until, number))"},
    {"samples of usage figures, and when a place was read", R"(
        CREATE TABLE history_subject (
            number INTEGER PRIMARY KEY,
            kind INTEGER NOT NULL,
            key TEXT NOT NULL,
            UNIQUE (kind, key));
        CREATE TABLE history_sample (
            subject INTEGER NOT NULL REFERENCES history_subject ON DELETE CASCADE,
            resolution INTEGER NOT NULL,
            time INTEGER NOT NULL,
            recorded_days INTEGER,
            remaining_days INTEGER,
            one_day_usage INTEGER,
            recorded_bytes INTEGER,
            reserved_minutes INTEGER,
            reserved_megabytes INTEGER,
            volume_bytes INTEGER,
            available_bytes INTEGER,
            PRIMARY KEY (subject, resolution, time)) WITHOUT ROWID;
        ALTER TABLE recording_place ADD COLUMN read_at INTEGER)"},
    {"deletions of recordings of no group", R"(
        CREATE TABLE recording_deletion (
            place INTEGER PRIMARY KEY REFERENCES recording_place ON DELETE CASCADE,
            begun INTEGER NOT NULL,
            ended INTEGER,
            return_code TEXT NOT NULL))"},
    {"acknowledged alarms", R"(
        ALTER TABLE alarm ADD COLUMN acknowledged_at INTEGER;
        ALTER TABLE alarm ADD COLUMN acknowledged_by TEXT;
        ALTER TABLE alarm ADD COLUMN note TEXT)"},
};

int version(Database &database)
{
    return database.value(QStringLiteral("PRAGMA user_version")).toInt();
}

/// Throws unless a station wrote @p found at some time.
void requireKnown(int found)
{
    constexpr int newest = std::size(steps);
    if (found < 0)
        throw DatabaseError(DatabaseTrouble::Damaged,
                            QStringLiteral("its version is %1, which no station writes").arg(found));
    if (found > newest) {
        throw DatabaseError(DatabaseTrouble::Newer,
                            QStringLiteral("A newer station wrote the database: it has version %1, expected %2 at most")
                                .arg(found)
                                .arg(newest));
    }
}

void take(Database &database, const Step &step)
{
    const QStringList statements = QString::fromUtf8(step.statements).split(u';');
    for (const QString &statement : statements)
        database.run(statement);
}
} // namespace

void updateSchema(Database &database)
{
    constexpr int newest = std::size(steps);
    requireKnown(version(database));
    while (version(database) < newest) {
        database.run(QStringLiteral("BEGIN IMMEDIATE"));
        try {
            const int taken = version(database); // another process may have been quicker
            requireKnown(taken);
            if (taken < newest) {
                take(database, steps[taken]);
                database.run(QStringLiteral("PRAGMA user_version = %1").arg(taken + 1));
            }
            database.run(QStringLiteral("COMMIT"));
        } catch (...) {
            database.run(QStringLiteral("ROLLBACK"));
            throw;
        }
    }
}

int knownSchemaVersion(Database &database)
{
    const int found = version(database);
    requireKnown(found);
    return found;
}

int newestSchemaVersion()
{
    return static_cast<int>(std::size(steps));
}

void requireSchema(Database &database)
{
    constexpr int newest = std::size(steps);
    const int found = version(database);
    requireKnown(found);
    if (found < newest) {
        throw DatabaseError(
            DatabaseTrouble::Failed,
            QStringLiteral("an older station wrote it (version %1 of %2), and it cannot be brought up to date")
                .arg(found)
                .arg(newest));
    }
}

void requireMade(Database &database)
{
    if (version(database) == 0)
        throw DatabaseError(DatabaseTrouble::Damaged, QStringLiteral("no station made its tables"));
}

QStringList smallTables()
{
    return {QStringLiteral("camera"),
            QStringLiteral("recording_group"),
            QStringLiteral("group_path"),
            QStringLiteral("group_member"),
            QStringLiteral("group_node"),
            QStringLiteral("nas_server"),
            QStringLiteral("recording_place"),
            QStringLiteral("recorded_day"),
            QStringLiteral("edit_request"),
            QStringLiteral("edit_reply"),
            QStringLiteral("alarm"),
            QStringLiteral("history_subject"),
            QStringLiteral("recording_deletion")};
}
