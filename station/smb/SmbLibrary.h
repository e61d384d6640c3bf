#pragma once

#include <mutex>

/// What libsmbclient needs of a process that uses it on several threads.
namespace SmbLibrary {
/// Sets the library up, at the first call in the process: safe for threads, silent, configured by us alone, and without
/// its cache of names, which threads cannot share. Called before every use; from any thread.
void prepare();

/// Held while a context is made: that writes to settings which all contexts share. Never for long.
std::mutex &creation();

/// Whether a log-on was through in this process, so that connections need no turns any more.
bool wasUsed();

/// Held by a connection during its life. The library initialises parts of itself at the first log-on in the process and
/// does not guard that against other threads: until a log-on was through, connections take turns, but one to a silent
/// server delays the others by two seconds only. (See knockAt(): most silent ones never get there.) Where the library
/// cannot be made safe for threads they always take turns, however long.
class Turn
{
public:
    Turn();
    ~Turn();
    Turn(const Turn &) = delete;
    Turn &operator=(const Turn &) = delete;

    /// A log-on was through, accepted or refused.
    void serverAnswered();

private:
    bool m_isMine = false;
};
} // namespace SmbLibrary
