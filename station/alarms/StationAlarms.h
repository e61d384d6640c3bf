#pragma once

#include "AlarmKeeper.h"
#include "CommandTable.h"
#include "StationTrouble.h"

#include <QObject>
#include <QTimer>
#include <QVariantMap>

#include <chrono>
#include <functional>
#include <optional>

/// What troubles the station, gathered from everybody who notices it, and what did: the commands "station.listAlarms",
/// "station.listPastAlarms", "station.acknowledgeAlarm" and "station.withdrawAcknowledgement" and the event
/// "station.AlarmsChanged", see docs/station-protocol.md. Lives on the station's thread.
class StationAlarms : public QObject
{
    Q_OBJECT
public:
    using Source = std::function<QList<StationTrouble>()>;

    /// @param data must outlive this object
    /// @param interval after which the sources are asked anew
    /// @param isSettled whether all sources know of everything that may trouble the station: what troubled it before it
    /// was started and none of them tells is over then
    StationAlarms(StationData &data, const RecordSettings &settings, std::chrono::milliseconds interval,
                  std::function<bool()> isSettled, QObject *parent = nullptr);

    /// What @p source tells is one of the alarms as long as it tells it.
    void addSource(Source source);
    /// The entries refer to this object.
    void enterInto(CommandTable &table);

    /// Asks all sources now.
    void update();
    const QList<StationTrouble> &troubles() const { return m_troubles; }

signals:
    void eventRaised(const StationEvent &event);

private:
    void listAlarms(const QVariant &data, const Answer &answer);
    void listPastAlarms(const QVariant &data, const Answer &answer);
    void acknowledge(Edit &edit);
    void withdraw(Edit &edit);
    std::optional<StationTrouble> find(Edit &edit);
    void change(Edit &edit, const StationTrouble &trouble, const std::optional<Acknowledgement> &acknowledgement);
    QVariantMap report() const;

    StationData &m_data;
    AlarmKeeper m_keeper;
    RecordSettings m_settings;
    std::function<bool()> m_isSettled;
    QList<Source> m_sources;
    QList<StationTrouble> m_troubles;
    QVariantMap m_told;
    QTimer m_timer;
};
