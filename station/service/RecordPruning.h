#pragma once

#include "RecordSettings.h"

#include <QObject>
#include <QTimer>

class StationData;

/// Removes what the station has kept for long enough: ids of edits, activity, past alarms. A little at a time, so that
/// nobody waits for it. Lives on the station's thread.
class RecordPruning : public QObject
{
    Q_OBJECT
public:
    /// @param data must outlive this object; nothing happens before the thread's event loop turns
    RecordPruning(StationData &data, RecordSettings settings, QObject *parent = nullptr);

    /// Prunes when the event loop turns.
    void prune();

private:
    void pruneSome();

    StationData &m_data;
    RecordSettings m_settings;
    QTimer m_daily;
    QTimer m_next;
};
