#pragma once

#include <QFile>
#include <QString>

#include <type_traits>

#include <poll.h>

/// Notices whether anything was mounted or unmounted on this machine since the watch began.
class MountWatch
{
public:
    MountWatch()
    {
        if (!m_table.open(QIODevice::ReadOnly))
            qFatal("%s cannot be read", qPrintable(m_table.fileName()));
    }

    bool hasChanged()
    {
        m_table.readAll(); // waits for a mount that is just being made
        pollfd table{m_table.handle(), POLLPRI, 0};
        return poll(&table, 1, 0) != 0;
    }

private:
    QFile m_table{QStringLiteral("/proc/self/mountinfo")};
};

/// What @p look returns. Looks again until nothing was mounted or unmounted meanwhile, so that all parts of the result
/// belong to one table of mounts.
template<typename Look>
std::invoke_result_t<Look> betweenMounts(Look look)
{
    for (;;) {
        MountWatch watch;
        const std::invoke_result_t<Look> seen = look();
        if (!watch.hasChanged())
            return seen;
    }
}
