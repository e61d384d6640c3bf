#pragma once

#include "StationLink.h"

#include <QThread>

#include <functional>
#include <memory>

class Station;

/// Runs one station inside this process, on a thread of its own, so that a slow disk never blocks the window.
class EmbeddedLink : public StationLink
{
    Q_OBJECT
public:
    using MakeStation = std::function<std::unique_ptr<Station>()>;

    /// @param makeStation called on the station's thread, where the station lives and ends
    /// @param relayPath the name under which this station also answers, besides the empty one
    explicit EmbeddedLink(MakeStation makeStation, const QString &relayPath = {}, QObject *parent = nullptr);
    ~EmbeddedLink() override;

    /// Starts the station; upChanged(true) follows when it runs.
    void start();

    bool isUp() const override;
    /// A relay path of no station here is answered with HostReturnCode::UnknownStation.
    void send(quint64 correlation, const QString &relayPath, const StationCommand &command) override;

private:
    MakeStation m_makeStation;
    QString m_relayPath;
    QThread m_thread;
    std::unique_ptr<Station> m_station; // lives on m_thread
    bool m_up = false;
};
