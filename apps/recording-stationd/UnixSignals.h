#pragma once

#include "files/OpenFile.h"

#include <QObject>
#include <QSocketNotifier>

#include <memory>

/// Hears signals of the operating system in the event loop. One object at a time.
class UnixSignals : public QObject
{
    Q_OBJECT
public:
    /// From now on SIGTERM, SIGINT and SIGHUP arrive here, and SIGPIPE is ignored.
    explicit UnixSignals(QObject *parent = nullptr);

signals:
    void endWanted(); ///< SIGTERM or SIGINT
    void settingsWanted(); ///< SIGHUP: the settings are to be read again

private:
    void read();

    OpenFile m_signals;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
