#pragma once

#include "StationLink.h"

#include <functional>
#include <memory>

class Station;

/// Runs one station inside this process, on a thread of its own, so that a slow disk never blocks the window.
///
/// The station is the directly connected one: its events carry the empty relay path. Commands are begun one after the
/// other; one that waits for a NAS server does not hold up those behind it. The end of the link waits a second for the
/// command that runs at that moment (a station sees QThread::isInterruptionRequested() then) and for the station's end;
/// the other commands are dropped. A station that hangs longer is left behind with its thread.
class EmbeddedLink : public StationLink
{
    Q_OBJECT
public:
    using MakeStation = std::function<std::unique_ptr<Station>()>;

    /// @param makeStation called on the station's thread, where the station lives and ends. Neither it nor the station
    /// may use what ends before the process does, as the station may be left behind.
    /// @param relayPath the name under which this station also answers, besides the empty one
    explicit EmbeddedLink(MakeStation makeStation, QString relayPath = {}, QObject *parent = nullptr);
    ~EmbeddedLink() override;

    /// Whether a thread hangs that was left behind: a station's, or one of those that look at disks for it. Then the
    /// process has to end with std::_Exit(): it must not take away what the thread uses when its disk answers at last.
    static bool isAnythingLeftBehind();

    /// Starts the station; upChanged(true) follows when it runs, and nothing when @p makeStation made none. A second
    /// start does nothing.
    void start();

    bool isUp() const override;
    /// A relay path of no station here is answered with HostReturnCode::UnknownStation. Dropped while the link is down.
    void send(quint64 correlation, const QString &relayPath, const StationCommand &command) override;

private:
    struct StationSide;

    QString m_relayPath;
    std::shared_ptr<StationSide> m_stationSide; // kept for good when it is left behind
    bool m_up = false;
};
