#include "StationData.h"

#include "LocalEndpoint.h"
#include "store/Database.h"

namespace {
constexpr qint64 timeToTryAgain = 5000; // milliseconds
} // namespace

StationData::StationData(const QString &folder)
    : m_folder(folder.isEmpty() ? defaultStationFolder() : folder)
{
}

StationData::~StationData() = default;

bool StationData::isDatabaseThere() const
{
    return m_database || Database::isIn(m_folder);
}

Database &StationData::database()
{
    if (m_trouble && m_trouble->trouble() == DatabaseTrouble::Replaced)
        throw *m_trouble;
    try {
        const bool isLimited =
            m_database && m_database->limitation() && m_database->limitation()->trouble() != DatabaseTrouble::Damaged;
        if (isLimited && m_opened.hasExpired(timeToTryAgain))
            m_database.reset();
        if (!m_database) {
            m_database = std::make_unique<Database>(m_folder);
            m_opened.start();
            m_trouble.reset();
        }
        m_database->verify();
    } catch (const DatabaseError &error) {
        m_trouble = error;
        throw;
    }
    return *m_database;
}

void StationData::note(const DatabaseError &error)
{
    if (error.trouble() == DatabaseTrouble::Damaged && m_database)
        m_database->refuseWriting(error);
    else if (!m_trouble || m_trouble->trouble() != DatabaseTrouble::Replaced)
        m_trouble = error;
}

void StationData::look()
{
    if (!isDatabaseThere())
        return;
    try {
        Database &opened = database();
        m_trouble = opened.whyDiskTakesNothing();
    } catch (const DatabaseError &) { // was taken up
    }
}

QList<StationTrouble> StationData::troubles() const
{
    std::optional<DatabaseError> error = m_trouble;
    if (!error && m_database)
        error = m_database->limitation();
    if (!error)
        return {};
    return {troubleOf(*error, Database::pathIn(m_folder))};
}
