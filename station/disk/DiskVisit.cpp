#include "DiskVisit.h"

#include "MountTable.h"

#include <algorithm>
#include <utility>

bool DiskVisit::Progress::giveUp()
{
    State expected = Running;
    return state.compare_exchange_strong(expected, GivenUp) || expected == GivenUp;
}

DiskVisit::DiskVisit() = default;

DiskVisit::DiskVisit(std::shared_ptr<Progress> progress, std::shared_ptr<Guests> guests)
    : m_progress(std::move(progress))
    , m_guests(std::move(guests))
    , m_mounts(std::make_unique<MountTable>(MountTable::ofThisMachine()))
{
}

DiskVisit::~DiskVisit()
{
    if (!m_guests)
        return;
    const std::lock_guard lock(m_guests->mutex);
    leave();
}

bool DiskVisit::enter(const QString &path)
{
    if (!m_guests)
        return true;
    constexpr std::size_t mostAtOnce = 8;
    const QString mount = m_mounts->holding(path).mountPoint;
    const Clock::time_point now = Clock::now();
    const std::lock_guard lock(m_guests->mutex);
    leave();
    if (m_progress->state == Progress::GivenUp)
        return false;
    std::set<const Progress *> &there = m_guests->byMount[mount];
    const auto hangs = [this, now](const Progress *other) { return now - other->lastSign.load() > m_guests->limit; };
    if (there.size() >= mostAtOnce || std::any_of(there.cbegin(), there.cend(), hangs))
        return false;
    there.insert(m_progress.get());
    m_mount = mount;
    m_progress->lastSign = now;
    return true;
}

bool DiskVisit::goesOn()
{
    if (!m_progress)
        return true;
    m_progress->lastSign = Clock::now();
    return m_progress->state != Progress::GivenUp;
}

bool DiskVisit::settle()
{
    if (!m_progress)
        return true;
    Progress::State expected = Progress::Running;
    return m_progress->state.compare_exchange_strong(expected, Progress::Settled) || expected == Progress::Settled;
}

void DiskVisit::leave()
{
    const auto there = m_guests->byMount.find(m_mount);
    if (there == m_guests->byMount.end())
        return;
    there->second.erase(m_progress.get());
    if (there->second.empty())
        m_guests->byMount.erase(there);
}
