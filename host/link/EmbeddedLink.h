#pragma once

#include "StationLink.h"

#include <QThread>

#include <functional>
#include <memory>

class Station;

/// Runs one station inside this process, on a thread of its own, so that a slow disk never blocks the window.
///
/// The station is the directly connected one: its events carry the empty relay path. Commands are begun one after the
/// other; one that waits for a NAS server does not hold up those behind it. The end of the link waits for the command
/// that runs at that moment (a station sees QThread::isInterruptionRequested() then), and no more than a moment for NAS
/// servers; the other commands are dropped.
class EmbeddedLink : public StationLink
{
    Q_OBJECT
public:
    using MakeStation = std::function<std::unique_ptr<Station>()>;

    /// @param makeStation called on the station's thread, where the station lives and ends
    /// @param relayPath the name under which this station also answers, besides the empty one
    explicit EmbeddedLink(MakeStation makeStation, QString relayPath = {}, QObject *parent = nullptr);
    ~EmbeddedLink() override;

    /// Starts the station; upChanged(true) follows when it runs, and nothing when @p makeStation made none. A second
    /// start does nothing.
    void start();

    bool isUp() const override;
    /// A relay path of no station here is answered with HostReturnCode::UnknownStation. Dropped while the link is down.
    void send(quint64 correlation, const QString &relayPath, const StationCommand &command) override;

private:
    void createStation();
    void carryOut(quint64 correlation, const StationCommand &command);

    MakeStation m_makeStation;
    QString m_relayPath;
    QThread m_thread;
    QObject m_stationSide; // lives on m_thread, and so do the calls to it
    std::unique_ptr<Station> m_station; // likewise; used on m_thread alone
    bool m_up = false;
};
