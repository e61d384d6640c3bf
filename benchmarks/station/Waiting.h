#pragma once

#include <QEventLoop>
#include <QObject>
#include <QTimer>

#include <functional>
#include <stdexcept>
#include <string>

/// Waits for facts while the thread's event loop turns.
class Waiting : public QObject
{
public:
    /// Returns once @p isSo, which is asked now and at every look(). Throws after a minute and a half, naming @p what.
    void waitFor(const std::function<bool()> &isSo, const std::string &what)
    {
        QTimer limit;
        limit.setSingleShot(true);
        connect(&limit, &QTimer::timeout, &m_loop, [this] { m_loop.exit(1); });
        limit.start(std::chrono::seconds(90));
        m_isSo = isSo;
        const int result = isSo() ? 0 : m_loop.exec();
        m_isSo = nullptr;
        if (result != 0)
            throw std::runtime_error("waited in vain for " + what);
    }

    /// To be called when the fact may have come.
    void look()
    {
        if (m_isSo && m_isSo())
            m_loop.exit(0);
    }

private:
    QEventLoop m_loop;
    std::function<bool()> m_isSo;
};
