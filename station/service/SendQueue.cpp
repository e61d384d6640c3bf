#include "SendQueue.h"

#include <algorithm>
#include <utility>

bool SendQueue::append(const QByteArray &frame, const QString &replaces)
{
    const auto older = replaces.isEmpty()
        ? m_entries.end()
        : std::find_if(m_entries.begin(), m_entries.end(),
                       [&replaces](const Entry &entry) { return entry.replaces == replaces; });
    if (older != m_entries.end()) { // behind what was said before the newer one
        m_bytes -= older->frame.size();
        m_entries.erase(older);
    }
    if (!m_entries.empty() && m_bytes + frame.size() > m_limit)
        return false;
    m_entries.push_back({frame, replaces});
    m_bytes += frame.size();
    return true;
}

std::optional<QByteArray> SendQueue::takeNext()
{
    if (m_entries.empty())
        return {};
    QByteArray frame = std::move(m_entries.front().frame);
    m_entries.pop_front();
    m_bytes -= frame.size();
    return frame;
}
