#include "StationData.h"

#include "StationSettings.h"
#include "store/Database.h"

StationData::StationData(const QString &folder)
    : m_folder(folder.isEmpty() ? defaultStationFolder() : folder)
{
}

StationData::~StationData() = default;

Database &StationData::database()
{
    if (!m_database)
        m_database = std::make_unique<Database>(m_folder);
    return *m_database;
}
