#pragma once

#include <QObject>

#include <functional>

class QSocketNotifier;

/// While it lives, the first SIGINT or SIGTERM calls a function from the event loop instead of ending the process; a
/// second one ends it as ever. One at a time.
class Interruption : public QObject
{
    Q_OBJECT
public:
    explicit Interruption(const std::function<void()> &interrupted);
    ~Interruption() override;

private:
    QSocketNotifier *m_notifier = nullptr; // a child
};
