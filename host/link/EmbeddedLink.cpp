#include "EmbeddedLink.h"

#include "Station.h"
#include "disk/DiskThreads.h"
#include "framework/HostReturnCode.h"

#include <QThread>

#include <mutex>
#include <utility>
#include <vector>

namespace {
/// The stations whose threads may still use them, for good.
struct LeftBehind
{
    std::mutex mutex;
    std::vector<std::shared_ptr<void>> stations;
};

LeftBehind &leftBehind()
{
    static auto *const list = new LeftBehind; // the threads may outlive everything static
    return *list;
}
} // namespace

/// What the station's thread uses; outlives the link where that thread hangs.
struct EmbeddedLink::StationSide
{
    MakeStation makeStation;
    QThread thread;
    QObject object; // lives on the thread, and so do the calls to it
    std::unique_ptr<Station> station; // likewise; used on the thread alone
    std::mutex mutex;
    EmbeddedLink *link = nullptr; // null once it ended

    void createStation();
    void carryOut(quint64 correlation, const StationCommand &command);
    /// Has @p call made on the link's thread, unless the link ended.
    void tellLink(std::function<void(EmbeddedLink &)> call);
};

EmbeddedLink::EmbeddedLink(MakeStation makeStation, QString relayPath, QObject *parent)
    : StationLink(parent)
    , m_relayPath(std::move(relayPath))
    , m_stationSide(std::make_shared<StationSide>())
{
    StationSide *const side = m_stationSide.get();
    side->makeStation = std::move(makeStation);
    side->link = this;
    side->thread.setObjectName(QStringLiteral("station"));
    side->object.moveToThread(&side->thread);
    connect(&side->thread, &QThread::started, &side->object, [side] { side->createStation(); });
    connect(
        &side->thread, &QThread::finished, &side->object, [side] { side->station.reset(); }, Qt::DirectConnection);
}

EmbeddedLink::~EmbeddedLink()
{
    {
        const std::lock_guard lock(m_stationSide->mutex);
        m_stationSide->link = nullptr;
    }
    m_stationSide->thread.requestInterruption();
    m_stationSide->thread.quit();
    constexpr unsigned long patience = 1000; // milliseconds
    if (m_stationSide->thread.wait(patience))
        return;
    const std::lock_guard lock(leftBehind().mutex);
    leftBehind().stations.push_back(m_stationSide);
}

bool EmbeddedLink::isAnythingLeftBehind()
{
    const std::lock_guard lock(leftBehind().mutex);
    return !leftBehind().stations.empty() || DiskThreads::busyThreads() > 0;
}

void EmbeddedLink::start()
{
    if (!m_stationSide->thread.isRunning())
        m_stationSide->thread.start();
}

bool EmbeddedLink::isUp() const
{
    return m_up;
}

void EmbeddedLink::send(quint64 correlation, const QString &relayPath, const StationCommand &command)
{
    if (!m_up)
        return;
    if (relayPath.isEmpty() || relayPath == m_relayPath) {
        QMetaObject::invokeMethod(
            &m_stationSide->object,
            [side = m_stationSide.get(), correlation, command] { side->carryOut(correlation, command); },
            Qt::QueuedConnection);
        return;
    }
    const auto refuse = [this, correlation] { emit replyReceived(correlation, {HostReturnCode::UnknownStation, {}}); };
    QMetaObject::invokeMethod(this, refuse, Qt::QueuedConnection);
}

void EmbeddedLink::StationSide::createStation()
{
    station = makeStation();
    if (!station)
        return;
    connect(
        station.get(), &Station::eventRaised, &object,
        [this](const StationEvent &event) {
            tellLink([event](EmbeddedLink &target) { emit target.eventReceived({}, event); });
        },
        Qt::DirectConnection);
    tellLink([](EmbeddedLink &target) {
        target.m_up = true;
        emit target.upChanged(true);
    });
}

void EmbeddedLink::StationSide::carryOut(quint64 correlation, const StationCommand &command)
{
    if (thread.isInterruptionRequested())
        return;
    station->handle(command, [this, correlation](const StationReply &reply) {
        tellLink([correlation, reply](EmbeddedLink &target) { emit target.replyReceived(correlation, reply); });
    });
}

void EmbeddedLink::StationSide::tellLink(std::function<void(EmbeddedLink &)> call)
{
    const std::lock_guard lock(mutex);
    if (!link)
        return;
    QMetaObject::invokeMethod(
        link, [target = link, call = std::move(call)] { call(*target); }, Qt::QueuedConnection);
}
