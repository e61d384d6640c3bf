#pragma once

#include "StationFigures.h"
#include "link/StationPresence.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QStringList>
#include <QTimer>

class StationCalls;
class StatusMonitorPlugin;

/// What a client knows of each station that its link reaches: whether it is up, its figures, and whether it has told
/// its alarms. Asks stations that come up for their alarms, a few at a time. Lives on the UI thread.
class StationDirectory : public QObject
{
    Q_OBJECT
public:
    /// What is known of one station.
    struct Record
    {
        StationPresence presence; ///< whether it is up
        StationFigures figures; ///< as it told them last
        QDateTime toldAt = {}; ///< when it told the figures, or where nobody says, when they came; in UTC
        int alarms = 0; ///< those that stand
        int errors = 0; ///< alarms that say that something is broken
        bool areAlarmsTold = false; ///< the station has told its own since it came up last, and its figures

        /// Whether commands reach it.
        bool isUp() const { return presence.state.kind == StationState::Kind::Up; }
    };

    /// Nothing is owned, and all outlive this object.
    /// @param plugin has a usage model for each station
    StationDirectory(StationLink &link, StationCalls &calls, StatusMonitorPlugin &monitor, QObject &plugin);

    /// Asks for the alarms of all stations; else for those of none.
    void setAsksForAlarms(bool asks);

    /// Of all stations that were heard of, in no order; empty where the link's one station has none.
    QStringList relayPaths() const;
    /// How many stations were heard of.
    int count() const { return static_cast<int>(m_records.size()); }
    /// The link reaches more stations than one, or might.
    bool isSite() const { return m_link.reachesMany() || m_records.size() > 1; }
    /// Why there may be more, an English sentence; empty where these are all.
    QString whyIncomplete() const { return m_link.whyIncomplete(); }
    /// An empty one where the station is not known.
    Record record(const QString &relayPath) const;
    /// How many stations are not up.
    int notUp() const { return m_notUp; }
    /// How many of those that are up have not told their alarms yet.
    int untold() const { return m_untold; }

    /// An event was handed to the plug-in; @p station is the relay path also of the directly connected one.
    void noteEvent(const QString &event, const QVariant &data, const QString &station);
    /// The station behind @p relayPath has told its alarms.
    void noteAlarmsTold(const QString &relayPath);

signals:
    /// What record() tells of these stations is new. Comes a moment after it, once for all changes of that moment.
    void changed(const QStringList &relayPaths);
    void siteChanged(); ///< isSite()
    void completenessChanged(); ///< whyIncomplete()

private:
    void touch(const QString &relayPath);
    void flush();
    void follow(const StationPresence &presence);
    void update(const QString &relayPath, const Record &record, bool isKept = true);
    void askSome();

    StationLink &m_link;
    StationCalls &m_calls;
    StatusMonitorPlugin &m_monitor;
    QObject &m_plugin;
    QHash<QString, Record> m_records;
    QSet<QString> m_alarmsTold; // stations that have told their own
    QSet<QString> m_touched;
    QList<QString> m_toAsk;
    int m_asked = 0; // not answered yet
    int m_notUp = 0;
    int m_untold = 0;
    bool m_asksForAlarms = false;
    QTimer m_later;
};
