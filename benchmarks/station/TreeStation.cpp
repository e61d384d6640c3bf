#include "TreeStation.h"

#include "FakeVolumes.h"
#include "Program.h"
#include "ServerVocabulary.h"
#include "groups/GroupStore.h"
#include "store/Database.h"
#include "usage/RecordingIndex.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QTimer>

#include <algorithm>
#include <numeric>

namespace {
constexpr qint64 terabyte = qint64(1) << 40;

/// Bytes that a group records in a day, as docs/station-protocol.md has them: the mean of the last seven days.
qint64 oneDayUsage(const DaySums &days)
{
    const QList<DaySum> last = days.values().mid(std::max<qsizetype>(0, days.size() - 7));
    return std::accumulate(last.begin(), last.end(), 0LL, [](qint64 sum, const DaySum &day) { return sum + day.bytes; })
        / last.size();
}
} // namespace

void waitFor(const std::function<bool()> &isSo, const std::string &what)
{
    const QDeadlineTimer limit(std::chrono::seconds(90));
    QTimer beat; // the loop comes round although nothing else happens
    beat.start(std::chrono::seconds(1));
    while (!isSo()) {
        require(!limit.hasExpired(), "waited in vain for " + what);
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

TreeStation::TreeStation(const Layout &layout, const QString &path, const QString &dataFolder)
    : m_layout(layout)
    , m_path(path)
    , m_dataFolder(dataFolder)
{
}

RecordedTree &TreeStation::files()
{
    if (!m_files) {
        m_files = std::make_unique<RecordedTree>(m_layout, m_path);
        forgetIndex();
    }
    return *m_files;
}

void TreeStation::forgetIndex()
{
    stop();
    QDir(m_dataFolder).removeRecursively();
    Database database(m_dataFolder);
    GroupStore store(database);
    for (const RecordingGroup &group : files().groups())
        store.insert(group);
}

void TreeStation::stop()
{
    m_station.reset();
    m_told.clear();
    m_isSettled = false;
}

Station &TreeStation::station()
{
    if (m_station)
        return *m_station;
    StationSettings settings;
    settings.dataFolder = m_dataFolder;
    settings.volumes = std::make_unique<FakeVolumes>(QList<Volume>{{files().path(), "Disk", terabyte, terabyte / 2}});
    settings.usage.tellInterval = std::chrono::milliseconds(1);
    settings.usage.settleTime = std::chrono::milliseconds(1);
    settings.usage.volumeInterval = std::chrono::hours(1);
    // The newest day with recordings is over, so that what comes to it changes the one-day usage.
    settings.usage.today = [] { return RecordedTree::newestDay().addDays(1); };
    m_station = std::make_unique<Station>(std::move(settings));
    QObject::connect(m_station.get(), &Station::eventRaised, m_station.get(), [this](const StationEvent &event) {
        if (event.name != ServerEvent::VolumeChanged)
            return;
        ++m_events;
        m_told = event.data.toList();
        m_isTold = areFiguresTold();
    });
    return *m_station;
}

bool TreeStation::areFiguresTold()
{
    const QList<DaySums> &sums = files().sums();
    return std::equal(m_told.cbegin(), m_told.cend(), sums.cbegin(), sums.cend(),
                      [](const QVariant &told, const DaySums &days) {
                          const QVariantMap entry = told.toMap();
                          return entry.value(FieldKey::volumeRecordedDays) == days.size()
                              && entry.value(FieldKey::volumeOneDayUsage) == oneDayUsage(days);
                      });
}

void TreeStation::waitForFigures()
{
    station();
    m_isTold = areFiguresTold();
    waitFor([this] { return m_isTold; }, "the figures of the files");
}

void TreeStation::readAll()
{
    const int before = m_events;
    station().handle({ServerCommand::reloadStorageUsageInfo, {}}, [](const StationReply &) {});
    waitFor([this, before] { return m_events > before; }, "the event after reading all folders");
}

void TreeStation::settle()
{
    waitForFigures();
    if (!m_isSettled)
        readAll();
    m_isSettled = true;
}

void TreeStation::checkIndex()
{
    Database database(m_dataFolder);
    const PlaceSums sums = RecordingIndex(database).sums();
    QList<qint64> places = sums.keys();
    std::sort(places.begin(), places.end()); // in the order of the groups
    QList<DaySums> read;
    for (const qint64 place : std::as_const(places))
        read.append(sums[place].days);
    require(read == files().sums(), "the station's sums are not those of the files");
}
