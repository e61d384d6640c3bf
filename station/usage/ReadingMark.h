#pragma once

#include <QDateTime>
#include <QString>

#include <mutex>

/// What the reading thread is at, for those who want to know whether it hangs. From any thread.
class ReadingMark
{
public:
    struct Reading
    {
        QString path; ///< empty: nothing is read
        QDateTime since; ///< UTC
    };

    void begin(const QString &path)
    {
        const std::lock_guard lock(m_mutex);
        m_reading = {path, QDateTime::currentDateTimeUtc()};
    }
    void end() { begin({}); }
    Reading reading() const
    {
        const std::lock_guard lock(m_mutex);
        return m_reading;
    }

private:
    mutable std::mutex m_mutex;
    Reading m_reading;
};
