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
    return {QStringLiteral("camera"),          QStringLiteral("recording_group"), QStringLiteral("group_path"),
            QStringLiteral("group_member"),    QStringLiteral("group_node"),      QStringLiteral("nas_server"),
            QStringLiteral("recording_place"), QStringLiteral("recorded_day")};
}
