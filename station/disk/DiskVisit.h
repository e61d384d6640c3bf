#pragma once

#include <QString>

#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <set>

class MountTable;

/// One piece of work on disks that may hang: it says which disk it is about to touch, and is kept from one that does
/// not answer. Used on the thread that does the work.
class DiskVisit
{
public:
    using Clock = std::chrono::steady_clock;

    /// What the thread that waits for the work sees of it.
    struct Progress
    {
        std::atomic<Clock::time_point> lastSign = Clock::now(); ///< of life
        enum State { Running, Settled, GivenUp };
        std::atomic<State> state = Running;

        /// Whether it could be given up: it has not settled.
        bool giveUp();
    };

    /// Who is on which disk, for all work of one owner.
    struct Guests
    {
        std::chrono::milliseconds limit;
        std::mutex mutex;
        std::map<QString, std::set<const Progress *>> byMount;
    };

    /// May touch everything.
    DiskVisit();
    DiskVisit(std::shared_ptr<Progress> progress, std::shared_ptr<Guests> guests);
    ~DiskVisit();
    DiskVisit(const DiskVisit &) = delete;
    DiskVisit &operator=(const DiskVisit &) = delete;

    /// To be called before @p path is touched. False: that disk does not answer to others, or enough of them wait for
    /// it already, or nobody waits for this work any more. It must be left alone then.
    /// @param path absolute, symbolic links resolved
    bool enter(const QString &path);
    /// To be called now and then in long work on one disk. False: nobody waits for it any more.
    bool goesOn();

    /// To be called before what was done takes effect for good. False: nobody waits for it any more, and it has to be
    /// taken back.
    bool settle();

private:
    void leave(); // with the guests' mutex held

    std::shared_ptr<Progress> m_progress; // null: may touch everything
    std::shared_ptr<Guests> m_guests;
    std::unique_ptr<MountTable> m_mounts;
    QString m_mount; // where it is
};
