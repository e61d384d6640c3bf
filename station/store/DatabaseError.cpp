#include "DatabaseError.h"

#include "StationVocabulary.h"

#include <QFileInfo>

#include <algorithm>
#include <iterator>

namespace {
struct TroubleWords
{
    DatabaseTrouble trouble;
    const QString &returnCode;
    const char *text; // %1: the file, %2: what the error said
    const char *remedy; // %1: the folder
};

const TroubleWords words[] = {
    {DatabaseTrouble::Missing, StationReturnCode::DatabaseMissing, "The station's database %1 is missing.",
     "Put it back from a backup. To begin anew without it, move the folder %1 away."},
    {DatabaseTrouble::Damaged, StationReturnCode::DatabaseDamaged, "The station's database %1 is damaged (%2).",
     "Stop the station and keep a copy of the folder %1. Then put a backup in place, or export what can be read: "
     "sqlite3 station.db .recover | sqlite3 new.db"},
    {DatabaseTrouble::Newer, StationReturnCode::DatabaseNewer,
     "The station's database %1 was written by a newer version of the station.",
     "Start that version, or put a backup from before the update in place."},
    {DatabaseTrouble::NotAllowed, StationReturnCode::DatabaseNotAllowed,
     "The station's user may not use the database %1 (%2).",
     "Give the folder %1 and its files to the user that the station runs as."},
    {DatabaseTrouble::NotOwned, StationReturnCode::DatabaseNotOwned,
     "The station's database %1 belongs to another user (%2).",
     "Run the station as that user, or give the folder %1 and its files to this one."},
    {DatabaseTrouble::Full, StationReturnCode::DatabaseFull,
     "The disk of the station's data is full (%1): nothing can be changed, and recordings are not counted.",
     "Free space on the disk that holds the folder %1."},
    {DatabaseTrouble::ReadOnly, StationReturnCode::DatabaseReadOnly,
     "The disk of the station's data is read-only (%1): nothing can be changed, and recordings are not counted.",
     "Mount the disk that holds the folder %1 writable; the system's log says why it is not."},
    {DatabaseTrouble::Busy, StationReturnCode::DatabaseBusy, "Another program keeps the station's database %1 locked.",
     "Wait for that program or end it; the station tries again by itself."},
    {DatabaseTrouble::Replaced, StationReturnCode::DatabaseReplaced,
     "The station's data folder or its database %1 was replaced, moved or deleted while the station ran.",
     "Start the station again: it then uses what lies in the folder %1."},
    {DatabaseTrouble::Failed, StationReturnCode::DatabaseFailed, "The station's database %1 cannot be used (%2).",
     "Check the disk that holds the folder %1; the station's log says more."},
};

const TroubleWords &wordsOf(DatabaseTrouble trouble)
{
    return *std::find_if(std::begin(words), std::end(words),
                         [trouble](const TroubleWords &row) { return row.trouble == trouble; });
}

/// Only what stands in @p text is replaced: a path may have a "%2" in it.
QString filled(const char *text, const QString &first, const QString &second)
{
    const QString pattern = QString::fromLatin1(text);
    return pattern.contains(QStringLiteral("%2")) ? pattern.arg(first, second) : pattern.arg(first);
}
} // namespace

DatabaseError::DatabaseError(DatabaseTrouble trouble, const QString &what, const QString &detail)
    : std::runtime_error(what.toStdString())
    , m_trouble(trouble)
    , m_detail(detail.isEmpty() ? what : detail)
{
}

QString returnCodeOf(DatabaseTrouble trouble)
{
    return wordsOf(trouble).returnCode;
}

bool isDatabaseCode(const QString &returnCode)
{
    return std::any_of(std::begin(words), std::end(words),
                       [&returnCode](const TroubleWords &row) { return row.returnCode == returnCode; });
}

StationTrouble troubleOf(const DatabaseError &error, const QString &file)
{
    const TroubleWords &row = wordsOf(error.trouble());
    const QString remedy = QString::fromLatin1(row.remedy);
    const QString folder = QFileInfo(file).path();
    return {row.returnCode,
            StationTrouble::Severity::Error,
            file,
            filled(row.text, file, error.detail()),
            remedy.contains(QStringLiteral("%1")) ? remedy.arg(folder) : remedy,
            {}};
}
