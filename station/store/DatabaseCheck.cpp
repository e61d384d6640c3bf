#include "DatabaseCheck.h"

#include "Schema.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <utility>

namespace {
/// What a writer would change.
struct FileState
{
    qint64 bytes = 0;
    QDateTime changed;
    qint64 writeAheadBytes = 0;
    QDateTime writeAheadChanged;

    bool operator==(const FileState &) const = default;
};

FileState stateOf(const DatabaseFile &file)
{
    const QFileInfo database(file.path());
    const QFileInfo writeAhead(file.writeAheadPath());
    return {database.size(), database.lastModified(), writeAhead.size(), writeAhead.lastModified()};
}
} // namespace

DatabaseCheck::DatabaseCheck(const QString &folder, bool isInUse)
{
    const DatabaseFile file(folder);
    for (int attempts = 3; attempts > 0; --attempts) {
        const FileState before = stateOf(file);
        std::optional<DatabaseError> failure;
        try {
            look(folder, isInUse);
        } catch (const DatabaseError &error) {
            failure = error;
        }
        const bool mayHaveBeenTorn = before != stateOf(file);
        if (failure && !mayHaveBeenTorn)
            throw *failure;
        if (!failure && (m_isShared || !mayHaveBeenTorn))
            return;
    }
    throw DatabaseError(DatabaseTrouble::Busy, QStringLiteral("another program writes it"));
}

int DatabaseCheck::newestVersion()
{
    return newestSchemaVersion();
}

void DatabaseCheck::look(const QString &folder, bool isInUse)
{
    const DatabaseFile file(folder);
    m_database.reset();
    m_isShared = isInUse && QFileInfo::exists(file.path() + QStringLiteral("-shm"));
    if (m_isShared) {
        m_database.emplace(folder, Database::Look::Shared);
    } else if (file.writeAheadBytes() == 0) {
        m_database.emplace(folder, Database::Look::Unchanging);
    } else {
        copy(folder);
        m_database.emplace(m_copy->path(), Database::Look::Shared);
    }
    m_version = knownSchemaVersion(*m_database);
    const QString found = m_database->value(QStringLiteral("PRAGMA quick_check(1)")).toString();
    if (found != QStringLiteral("ok"))
        throw DatabaseError(DatabaseTrouble::Damaged, found.simplified());
}

/// SQLite would bring the write-ahead file into the database, or make files beside it.
void DatabaseCheck::copy(const QString &folder)
{
    m_copy = std::make_unique<QTemporaryDir>();
    const DatabaseFile from(folder);
    const DatabaseFile to(m_copy->path());
    for (const auto &[source, target] :
         {std::pair(from.path(), to.path()), std::pair(from.writeAheadPath(), to.writeAheadPath())}) {
        QFile file(source);
        if (!m_copy->isValid() || !file.copy(target)) {
            throw DatabaseError(DatabaseTrouble::Failed,
                                QStringLiteral("it was not closed, and cannot be copied to %1 to be looked at: %2")
                                    .arg(QDir::tempPath(), file.errorString()));
        }
    }
}
