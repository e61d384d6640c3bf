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

    /// Another station is the directly connected one, or it tells another name.
    /// @param name empty: that of this machine
    /// @param address as others reach it; empty: that of this machine
    void setStation(const QString &name, const QString &address, const QString &relayPath);

    /// The directly connected station: "name", "ip" (of a station on this machine the first address that others can
    /// reach, else "127.0.0.1"; as it was when it became the directly connected one), "relayPath" and "type"
    /// ("RecordingServer"), all strings. Answers at once.
    Q_INVOKABLE QVariant getStationTree() const;

private:
    QVariantMap m_station;
};
