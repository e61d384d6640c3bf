#include "TreeStation.h"

#include "FixedVolume.h"
#include "StationProtocol.h"

namespace {
constexpr qsizetype averagedDays = 7;

StationSettings settings(const RecordedTree &files, const QString &dataFolder)
{
    StationSettings settings;
    settings.dataFolder = dataFolder;
    settings.volumes = std::make_unique<FixedVolume>(files.volume());
    settings.usage.tellInterval = std::chrono::milliseconds(1);
    settings.usage.settleTime = std::chrono::milliseconds(1);
    settings.usage.volumeInterval = std::chrono::hours(1);
    // The newest day with recordings is over, so that what comes to it changes the one-day usage.
    settings.usage.today = [] { return RecordedTree::newestDay().addDays(1); };
    return settings;
}

/// Bytes that a group records in a day, as docs/station-protocol.md has them.
qint64 oneDayUsage(const DaySums &days)
{
    const qsizetype count = qMin(averagedDays, days.size());
    qint64 bytes = 0;
    auto day = days.cend();
    for (qsizetype i = 0; i < count; ++i)
        bytes += (--day)->bytes;
    return bytes / count;
}
} // namespace

TreeStation::TreeStation(RecordedTree &files, const QString &dataFolder)
    : m_files(files)
    , m_station(settings(files, dataFolder))
{
    QObject::connect(&m_station, &Station::eventRaised, &m_waiting, [this](const StationEvent &event) {
        if (event.name != StationEventName::VolumeChanged)
            return;
        ++m_events;
        m_told = event.data.toList();
        m_waiting.look();
    });
}

bool TreeStation::areFiguresTold() const
{
    if (m_told.size() != m_files.sums().size())
        return false;
    for (qsizetype group = 0; group < m_told.size(); ++group) {
        const QVariantMap entry = m_told.at(group).toMap();
        const DaySums &days = m_files.sums().at(group);
        if (entry.value(StationKey::volumeRecordedDays) != days.size()
            || entry.value(StationKey::volumeOneDayUsage) != oneDayUsage(days))
            return false;
    }
    return true;
}

void TreeStation::waitForFigures()
{
    m_waiting.waitFor([this] { return areFiguresTold(); }, "the figures of the files");
}

void TreeStation::requireReading()
{
    if (m_hasRead)
        return;
    const int before = m_events;
    m_station.handle({StationCommandName::reloadStorageUsageInfo, {}}, {});
    m_waiting.waitFor([this, before] { return m_events > before; }, "the event after reading all folders");
    m_hasRead = true;
}
