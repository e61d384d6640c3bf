#include "RecordPruning.h"

#include "ActivityStore.h"
#include "RequestStore.h"
#include "StationData.h"
#include "StationLog.h"
#include "alarms/AlarmStore.h"
#include "store/Database.h"

#include <utility>

namespace {
constexpr auto timeToTryAgain = std::chrono::minutes(1);
} // namespace

RecordPruning::RecordPruning(StationData &data, RecordSettings settings, QObject *parent)
    : QObject(parent)
    , m_data(data)
    , m_settings(std::move(settings))
    , m_daily(this)
    , m_next(this)
{
    connect(&m_daily, &QTimer::timeout, this, &RecordPruning::prune);
    m_daily.start(m_settings.pruneInterval);
    m_next.setSingleShot(true);
    connect(&m_next, &QTimer::timeout, this, &RecordPruning::pruneSome);
    prune();
}

void RecordPruning::prune()
{
    m_next.start(0);
}

void RecordPruning::pruneSome()
{
    if (!m_data.isDatabaseThere())
        return;
    const QDateTime now = m_settings.currentTime();
    const QDateTime oldest = now.addMSecs(-m_settings.activityAge.count());
    try {
        Database &database = m_data.database();
        if (database.limitation())
            return;
        Transaction transaction(database, Transaction::Patience::Short);
        const bool hasMoreRequests = RequestStore(database).prune(now.addMSecs(-m_settings.requestAge.count()),
                                                                  now.addMSecs(m_settings.requestAge.count()));
        const bool hasMoreActivity = ActivityStore(database).prune(oldest, m_settings.mostRows);
        const bool hasMoreAlarms = AlarmStore(database).prune(oldest, m_settings.mostRows);
        transaction.commit();
        if (hasMoreRequests || hasMoreActivity || hasMoreAlarms)
            m_next.start(0);
    } catch (const DatabaseError &error) {
        qCInfo(stationLog, "What is too old cannot be removed: %s", error.what());
        m_next.start(timeToTryAgain);
    }
}
