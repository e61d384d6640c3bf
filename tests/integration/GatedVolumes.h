#pragma once

#include "VolumeSource.h"

#include <QSemaphore>
#include <QThread>

#include <atomic>

/// What a test sees of the volumes below, and how it lets them go on. Outlives them.
struct Gate
{
    QSemaphore open; ///< one release for each listing
    std::atomic<int> entered = 0; ///< listings that began
    std::atomic<int> left = 0; ///< listings that ended
    std::atomic<QThread *> thread = nullptr; ///< of the last listing
    std::atomic<bool> endsEarly = true; ///< a listing ends where its thread is asked to end
    std::atomic<bool> gone = false; ///< the volumes were destroyed, on this thread:
    std::atomic<QThread *> endThread = nullptr;
};

/// One volume of a slow disk: a listing ends when the test opens the gate, and mostly when the thread is asked to end.
class GatedVolumes : public VolumeSource
{
public:
    explicit GatedVolumes(Gate &gate)
        : m_gate(gate)
    {
    }

    ~GatedVolumes() override
    {
        m_gate.endThread = QThread::currentThread();
        m_gate.gone = true;
    }

    QList<Volume> volumes() const override
    {
        m_gate.thread = QThread::currentThread();
        ++m_gate.entered;
        while (!m_gate.open.tryAcquire(1, 1)) {
            if (m_gate.endsEarly && QThread::currentThread()->isInterruptionRequested())
                break;
        }
        ++m_gate.left;
        return {{QStringLiteral("/gated"), QStringLiteral("Gated"), 2048, 1024, true, false}};
    }

    std::optional<Volume> volumeHolding(const QString &) const override { return {}; }

private:
    Gate &m_gate;
};
