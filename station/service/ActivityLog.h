#pragma once

#include "Activity.h"
#include "CommandTable.h"

#include <QObject>

class StationData;

/// Who edited what: the command "station.listActivity" and the event "station.ActivityAdded", see
/// docs/station-protocol.md. The entries are written by each Edit. Lives on the station's thread.
class ActivityLog : public QObject
{
    Q_OBJECT
public:
    /// @param data must outlive this object
    explicit ActivityLog(StationData &data, QObject *parent = nullptr);

    /// The entry refers to this object.
    void enterInto(CommandTable &table);

    /// Tells of @p activity.
    void add(const Activity &activity);

signals:
    void eventRaised(const StationEvent &event);

private:
    void listActivity(const QVariant &data, const Answer &answer);

    StationData &m_data;
};
