#pragma once

#include <QObject>
#include <QVariant>

/// Stands in for the station plug-in of a client: says which station the client is connected to. Lives on the UI
/// thread.
class StationPlugin : public QObject
{
    Q_OBJECT
public:
    static const QString pluginId; ///< under which the framework hands this object out

    /// @param name of the station; empty: that of this machine
    /// @param relayPath as the station's replies carry it
    explicit StationPlugin(const QString &name, const QString &relayPath, QObject *parent = nullptr);

    /// The directly connected station: "name", "ip" (the first address of this machine that others can reach, else
    /// "127.0.0.1"; as it was when this object was made), "relayPath" and "type" ("RecordingServer"), all strings.
    /// Answers at once.
    Q_INVOKABLE QVariant getStationTree() const;

private:
    QVariantMap m_station;
};
