#pragma once

#include "link/StationLink.h"
#include "service/StationThread.h"

#include <memory>

/// Runs one station inside this process, as StationThread does; for tests, and for a look at the software without a
/// second process. The station is the directly connected one: its events carry the empty relay path.
class EmbeddedLink : public StationLink
{
    Q_OBJECT
public:
    using MakeStation = StationThread::MakeStation; ///< makes the station, on the station's thread

    /// @param relayPath the name under which this station also answers, besides the empty one
    explicit EmbeddedLink(MakeStation makeStation, QString relayPath = {}, QObject *parent = nullptr);

    /// "embedded:DIR", a station of this machine with the data folder DIR ("embedded:": this user's), which no other
    /// station may serve meanwhile.
    static Kind kind();
    /// "embedded:" with the station that @p makeStation makes.
    static Kind kind(const MakeStation &makeStation);

    void start() override;
    /// Unknown before start(), then Connecting until the station runs; Down where it could not be made.
    StationState state(const QString &relayPath) const override;
    /// A relay path of no station here is answered with HostReturnCode::UnknownStation.
    void send(quint64 correlation, const QString &relayPath, const StationCommand &command) override;

private:
    void setState(const StationState &state);

    QString m_relayPath;
    QString m_user;
    StationState m_state;
    StationThread m_station;
};
