#pragma once

#include <QAbstractListModel>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QVariantList>

#include <utility>

/// Stands in for the status monitor of a client: keeps the alarms about storage that plug-ins raise and withdraw, and
/// those that stations raise themselves, as a list model, the oldest first. Lives on the UI thread.
///
/// What a plug-in says of volumes names none of them: where a station names those that cannot be reached, its alarms
/// stand in place of the plug-in's one. Of a recording group that is short of its reserved time the plug-in says that
/// it is, and the station since when, in figures, and whether somebody has acknowledged it: one row has both.
///
/// The plug-in repeats itself with every event of a station: an alarm that is raised already is not raised again, and
/// one that is not there is not withdrawn. Each event begins with removeVolumeError() and may report the same volume
/// again right after it, so that a volume error is withdrawn only when the event loop comes round and no
/// monitorVolumeStatus() for that station came in between.
///
/// Alarms of many stations are kept side by side. What one station says costs no more because others have alarms.
class StatusMonitorPlugin : public QAbstractListModel
{
    Q_OBJECT
public:
    /// What an alarm is about.
    enum Kind {
        VolumeError, ///< a volume of the station tells neither size nor free space, or cannot be reached
        InsufficientRecordingDays, ///< a recording group will not reach its reserved time
        StationError, ///< the station says that something is broken: its database, its clock, its folders
        StationWarning, ///< the station says that something will not go well for long
    };
    Q_ENUM(Kind)

    /// Of a row, which is an alarm.
    enum Role {
        SourceRole = Qt::UserRole + 1, ///< "sourceRole", string: the station's relay path
        KindRole, ///< "kindRole": Kind
        GroupIdRole, ///< "groupIdRole", string: of the recording group; empty for a volume error
        GroupNameRole, ///< "groupNameRole", string: likewise
        SinceRole, ///< "sinceRole", QDateTime: when the alarm was raised
        SubjectRole, ///< "subjectRole", string: what a station's own alarm is about, a volume's path for instance
        TextRole, ///< "textRole", string: a station's own alarm as a sentence
        RemedyRole, ///< "remedyRole", string: what to do about it, a sentence
        AcknowledgedAtRole, ///< "acknowledgedAtRole", QDateTime: when somebody said that he has seen it; else invalid
        AcknowledgedByRole, ///< "acknowledgedByRole", string: who
        NoteRole, ///< "noteRole", string: what he wrote down
        WordRole, ///< "wordRole", string: the station's kind of it, by which it is acknowledged; empty: it knows none
    };
    Q_ENUM(Role)

    /// One alarm; the roles of the same names say more.
    struct Alarm
    {
        QString source; ///< the station's relay path
        Kind kind = VolumeError; ///< what it is about
        QString groupId; ///< empty: no recording group
        QString groupName; ///< likewise
        QDateTime since; ///< when it was raised
        QString subject = {}; ///< a path or a file
        QString text = {}; ///< a sentence
        QString remedy = {}; ///< a sentence
        QDateTime acknowledgedAt = {}; ///< invalid: it is not acknowledged
        QString acknowledgedBy = {}; ///< who
        QString note = {}; ///< what he wrote down
        QString word = {}; ///< the station's kind; empty: the station knows nothing of what a plug-in raised
        quint64 number = 0; ///< in the order of raising

        /// Whether something is broken, and not only about to be.
        bool isError() const { return kind == VolumeError || kind == StationError; }
    };

    static const QString pluginId; ///< under which the framework hands this object out

    using QAbstractListModel::QAbstractListModel;

    /// One row for each alarm.
    int rowCount(const QModelIndex &parent = {}) const override;
    /// The roles are those of Role.
    QVariant data(const QModelIndex &index, int role) const override;
    /// The names that stand beside Role.
    QHash<int, QByteArray> roleNames() const override;

    const QList<Alarm> &alarms() const { return m_alarms; } ///< in the order of the rows

    /// How many alarms a station has.
    struct Count
    {
        int all = 0; ///< of every kind
        int errors = 0; ///< those that say that something is broken
        bool operator==(const Count &) const = default; ///< member by member
    };
    Count count(const QString &source) const; ///< zeros for a station without alarms

    /// Whose alarms are meant where a source is empty; they are kept under that relay path, and stay where they are
    /// when another station becomes the directly connected one. Empty, as at first: the directly connected one has
    /// none.
    void setDirectStation(const QString &relayPath);

    // What the plug-in calls, by name.
    /// The volume error of @p source is over, unless monitorVolumeStatus() follows before the event loop comes round.
    Q_INVOKABLE void removeVolumeError(const QString &source);
    /// A volume of @p source tells neither size nor free space.
    Q_INVOKABLE void monitorVolumeStatus(const QString &source);
    /// The group reaches its reserved time.
    Q_INVOKABLE void monitorSufficientRecordingGroup(const QString &source, const QString &groupId);
    /// The group does not reach its reserved time. Mind the order: the name stands before the id.
    Q_INVOKABLE void monitorInsufficientRecordingDays(const QString &source, const QString &groupName,
                                                      const QString &groupId);

    /// Withdraws the alarms about recording groups of @p source that are not in @p groupIds: the plug-in says nothing
    /// more about a group that was removed.
    void keepGroups(const QString &source, const QSet<QString> &groupIds);

    /// Takes @p alarms for those that the station @p source raises itself at the moment: maps as in the answer of its
    /// "station.listAlarms".
    void setStationAlarms(const QString &source, const QVariantList &alarms);

signals:
    /// @p alarm is new; its row is there.
    void raised(const StatusMonitorPlugin::Alarm &alarm);
    /// @p alarm is over; its row is gone.
    void withdrawn(const StatusMonitorPlugin::Alarm &alarm);

private:
    QString stationOf(const QString &source) const;
    qsizetype rowOf(quint64 number) const;
    QList<qsizetype> rowsOf(const QString &source) const; // rising
    qsizetype find(const QString &source, Kind kind, const QString &groupId) const; // -1: none
    void raise(Alarm alarm);
    void withdraw(qsizetype row);
    void update(qsizetype row, const Alarm &alarm);
    void setGroupFacts(const QString &source, QHash<QString, Alarm> facts);
    bool isNamed(const QString &source) const;
    void settleVolumeErrors();

    QList<Alarm> m_alarms; // their numbers rise
    QHash<QString, QList<quint64>> m_numbers; // of a station's alarms, rising
    quint64 m_lastNumber = 0;
    QString m_direct;
    QHash<std::pair<QString, QString>, QString> m_shortGroups; // names, by source and id: those that have an alarm
    QHash<QString, QHash<QString, Alarm>> m_groupFacts; // what stations say of short groups, by source and id
    QSet<QString> m_unconfirmed; // sources whose volume error was removed and not reported again
};
