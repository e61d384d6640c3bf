#pragma once

#include "CommandTable.h"
#include "StationTrouble.h"

#include <QObject>
#include <QTimer>
#include <QVariantMap>

#include <chrono>
#include <functional>

/// What troubles the station at the moment, gathered from everybody who notices it: the command "station.listAlarms"
/// and the event "station.AlarmsChanged", see docs/station-protocol.md. Lives on the station's thread.
class StationAlarms : public QObject
{
    Q_OBJECT
public:
    using Source = std::function<QList<StationTrouble>()>;

    /// @param interval after which the sources are asked anew
    explicit StationAlarms(std::chrono::milliseconds interval, QObject *parent = nullptr);

    /// What @p source tells is one of the alarms as long as it tells it.
    void addSource(Source source);
    /// The entry refers to this object.
    void enterInto(CommandTable &table);

    /// Asks all sources now.
    void update();
    const QList<StationTrouble> &troubles() const { return m_troubles; }

signals:
    void eventRaised(const StationEvent &event);

private:
    QVariantMap report() const;

    QList<Source> m_sources;
    QList<StationTrouble> m_troubles;
    QVariantMap m_told;
    QTimer m_timer;
};
