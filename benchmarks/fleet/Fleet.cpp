#include "Fleet.h"

#include <QTimer>

#include <algorithm>
#include <utility>

/// The stations of one thread. Their events are spread over the interval, so that they do not all come at once.
class Fleet::Squad : public QObject
{
public:
    Squad(Fleet &fleet, int first, int step)
        : m_fleet(fleet)
        , m_timer(this)
    {
        for (int number = first; number <= fleet.stations(); number += step)
            m_numbers.push_back(number);
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.callOnTimeout(this, [this] { publishSome(); });
    }

    void start()
    {
        for (const int number : m_numbers) {
            auto station =
                std::make_unique<LightStation>(stationId(number), m_fleet.m_options.broker, m_fleet.m_options.interval);
            connect(station.get(), &LightStation::readyChanged, this,
                    [this, one = station.get()] { m_fleet.noteReady(one->isReady() ? 1 : -1); });
            station->start();
            m_stations.push_back(std::move(station));
        }
        m_timer.start(std::max(m_fleet.m_options.interval / slices, std::chrono::milliseconds(1)));
    }

    void stop()
    {
        m_timer.stop();
        for (const auto &station : m_stations)
            station->stop();
        m_stations.clear();
    }

    LightStation::Counts counts() const
    {
        LightStation::Counts sum;
        for (const auto &station : m_stations) {
            const LightStation::Counts &counts = station->counts();
            sum.events += counts.events;
            sum.commands += counts.commands;
            sum.edits += counts.edits;
            sum.repeated += counts.repeated;
            sum.unreadable += counts.unreadable;
        }
        return sum;
    }

private:
    static constexpr int slices = 50;

    void publishSome()
    {
        for (auto i = static_cast<std::size_t>(m_slice); i < m_stations.size(); i += slices)
            m_stations[i]->publishFigures();
        m_slice = (m_slice + 1) % slices;
    }

    Fleet &m_fleet;
    std::vector<int> m_numbers;
    std::vector<std::unique_ptr<LightStation>> m_stations;
    QTimer m_timer;
    int m_slice = 0;
};

Fleet::Fleet(const Options &options, QObject *parent)
    : QObject(parent)
    , m_options(options)
{
    const int threads = std::clamp(options.threads, 1, std::max(options.stations, 1));
    for (int number = 1; number <= threads; ++number) {
        auto thread = std::make_unique<QThread>();
        auto squad = std::make_unique<Squad>(*this, number, threads);
        squad->moveToThread(thread.get());
        m_squads.push_back(std::move(squad));
        m_threads.push_back(std::move(thread));
    }
}

Fleet::~Fleet()
{
    for (std::size_t i = 0; i < m_threads.size(); ++i) {
        if (!m_threads[i]->isRunning())
            continue;
        QMetaObject::invokeMethod(
            m_squads[i].get(), [squad = m_squads[i].get()] { squad->stop(); }, Qt::BlockingQueuedConnection);
        m_threads[i]->quit();
        m_threads[i]->wait();
    }
}

void Fleet::start()
{
    for (std::size_t i = 0; i < m_threads.size(); ++i) {
        m_threads[i]->start();
        QMetaObject::invokeMethod(
            m_squads[i].get(), [squad = m_squads[i].get()] { squad->start(); }, Qt::QueuedConnection);
    }
}

LightStation::Counts Fleet::counts()
{
    LightStation::Counts sum;
    for (const auto &squad : m_squads) {
        LightStation::Counts counts;
        QMetaObject::invokeMethod(
            squad.get(), [&counts, one = squad.get()] { counts = one->counts(); }, Qt::BlockingQueuedConnection);
        sum.events += counts.events;
        sum.commands += counts.commands;
        sum.edits += counts.edits;
        sum.repeated += counts.repeated;
        sum.unreadable += counts.unreadable;
    }
    return sum;
}

QString Fleet::stationId(int number)
{
    return QStringLiteral("station-%1").arg(number);
}

/// On the thread of a station.
void Fleet::noteReady(int change)
{
    const int before = m_ready.fetch_add(change);
    const bool wasComplete = before == m_options.stations;
    const bool isComplete = before + change == m_options.stations;
    if (wasComplete != isComplete)
        emit completeChanged(isComplete);
}
