#include "StationThread.h"

#include "Station.h"
#include "disk/DiskThreads.h"

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

/// What the station's thread uses; outlives the object where that thread hangs.
struct StationThread::StationSide
{
    MakeStation makeStation;
    QThread thread;
    QObject object; // lives on the thread, and so do the calls to it
    std::unique_ptr<Station> station; // likewise; used on the thread alone
    std::mutex mutex;
    StationThread *owner = nullptr; // null once it ended

    void createStation();
    void carryOut(const StationCommand &command, const Answer &answer);
    /// Has @p call made on the owner's thread, unless the owner ended.
    void callOwner(std::function<void(StationThread &)> call);
};

StationThread::StationThread(MakeStation makeStation, QObject *parent)
    : QObject(parent)
    , m_stationSide(std::make_shared<StationSide>())
{
    StationSide *const side = m_stationSide.get();
    side->makeStation = std::move(makeStation);
    side->owner = this;
    side->thread.setObjectName(QStringLiteral("station"));
    side->object.moveToThread(&side->thread);
    connect(&side->thread, &QThread::started, &side->object, [side] { side->createStation(); });
    connect(
        &side->thread, &QThread::finished, &side->object, [side] { side->station.reset(); }, Qt::DirectConnection);
}

StationThread::~StationThread()
{
    {
        const std::lock_guard lock(m_stationSide->mutex);
        m_stationSide->owner = nullptr;
    }
    m_stationSide->thread.requestInterruption();
    m_stationSide->thread.quit();
    constexpr unsigned long patience = 1000; // milliseconds
    if (m_stationSide->thread.wait(patience))
        return;
    const std::lock_guard lock(leftBehind().mutex);
    leftBehind().stations.push_back(m_stationSide);
}

bool StationThread::isAnythingLeftBehind()
{
    const std::lock_guard lock(leftBehind().mutex);
    return !leftBehind().stations.empty() || DiskThreads::busyThreads() > 0;
}

void StationThread::start()
{
    if (!m_stationSide->thread.isRunning())
        m_stationSide->thread.start();
}

void StationThread::handle(const StationCommand &command, const Answer &answer)
{
    QMetaObject::invokeMethod(
        &m_stationSide->object, [side = m_stationSide.get(), command, answer] { side->carryOut(command, answer); },
        Qt::QueuedConnection);
}

void StationThread::whenIdle(const std::function<void()> &done)
{
    QMetaObject::invokeMethod(
        &m_stationSide->object,
        [side = m_stationSide.get(), done] { side->callOwner([done](StationThread &) { done(); }); },
        Qt::QueuedConnection);
}

void StationThread::StationSide::createStation()
{
    station = makeStation();
    if (!station) {
        callOwner([](StationThread &target) { emit target.failed(); });
        return;
    }
    connect(
        station.get(), &Station::eventRaised, &object,
        [this](const StationEvent &event) {
            callOwner([event](StationThread &target) { emit target.eventRaised(event); });
        },
        Qt::DirectConnection);
    callOwner([](StationThread &target) {
        target.m_started = true;
        emit target.started();
    });
}

void StationThread::StationSide::carryOut(const StationCommand &command, const Answer &answer)
{
    if (!station || thread.isInterruptionRequested())
        return;
    station->handle(command, [this, answer](const StationReply &reply) {
        callOwner([answer, reply](StationThread &) { answer(reply); });
    });
}

void StationThread::StationSide::callOwner(std::function<void(StationThread &)> call)
{
    const std::lock_guard lock(mutex);
    if (!owner)
        return;
    QMetaObject::invokeMethod(
        owner, [target = owner, call = std::move(call)] { call(*target); }, Qt::QueuedConnection);
}
