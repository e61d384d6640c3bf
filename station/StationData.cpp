#include "StationData.h"

#include "StationSettings.h"
#include "store/Database.h"

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
    if (!m_database)
        m_database = std::make_unique<Database>(m_folder);
    return *m_database;
}
