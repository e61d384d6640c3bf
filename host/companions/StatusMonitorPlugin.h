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
/// stand in place of the plug-in's one.
///
/// The plug-in repeats itself with every event of a station: an alarm that is raised already is not raised again, and
/// one that is not there is not withdrawn. Each event begins with removeVolumeError() and may report the same volume
/// again right after it, so that a volume error is withdrawn only when the event loop comes round and no
/// monitorVolumeStatus() for that station came in between.
class StatusMonitorPlugin : public QAbstractListModel
{
    Q_OBJECT
public:
    enum Kind {
        VolumeError, ///< a volume of the station tells neither size nor free space, or cannot be reached
        InsufficientRecordingDays, ///< a recording group will not reach its reserved time
        StationError, ///< the station says that something is broken: its database, its clock, its folders
        StationWarning, ///< the station says that something will not go well for long
    };
    Q_ENUM(Kind)

    enum Role {
        SourceRole = Qt::UserRole + 1, ///< "sourceRole", string: the station's relay path
        KindRole, ///< "kindRole": Kind
        GroupIdRole, ///< "groupIdRole", string: of the recording group; empty for a volume error
        GroupNameRole, ///< "groupNameRole", string: likewise
        SinceRole, ///< "sinceRole", QDateTime: when the alarm was raised
        SubjectRole, ///< "subjectRole", string: what a station's own alarm is about, a volume's path for instance
        TextRole, ///< "textRole", string: a station's own alarm as a sentence
        RemedyRole, ///< "remedyRole", string: what to do about it, a sentence
    };
    Q_ENUM(Role)

    struct Alarm
    {
        QString source;
        Kind kind = VolumeError;
        QString groupId;
        QString groupName;
        QDateTime since;
        QString subject = {};
        QString text = {};
        QString remedy = {};
        QString word = {}; ///< the station's kind of its own alarms; empty for those of plug-ins

        bool isError() const { return kind == VolumeError || kind == StationError; }
    };

    static const QString pluginId; ///< under which the framework hands this object out

    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    const QList<Alarm> &alarms() const { return m_alarms; }

    // What the plug-in calls, by name.
    Q_INVOKABLE void removeVolumeError(const QString &source);
    Q_INVOKABLE void monitorVolumeStatus(const QString &source);
    Q_INVOKABLE void monitorSufficientRecordingGroup(const QString &source, const QString &groupId);
    /// Mind the order: the name stands before the id.
    Q_INVOKABLE void monitorInsufficientRecordingDays(const QString &source, const QString &groupName,
                                                      const QString &groupId);

    /// Withdraws the alarms about recording groups of @p source that are not in @p groupIds: the plug-in says nothing
    /// more about a group that was removed.
    void keepGroups(const QString &source, const QSet<QString> &groupIds);

    /// Takes @p alarms for those that the station @p source raises itself at the moment: maps as in the answer of its
    /// "station.listAlarms".
    void setStationAlarms(const QString &source, const QVariantList &alarms);

signals:
    void raised(const StatusMonitorPlugin::Alarm &alarm);
    void withdrawn(const StatusMonitorPlugin::Alarm &alarm);

private:
    qsizetype find(const QString &source, Kind kind, const QString &groupId) const; // -1: none
    void raise(const Alarm &alarm);
    void withdraw(qsizetype row);
    void update(qsizetype row, const Alarm &alarm);
    bool isNamed(const QString &source) const;
    void settleVolumeErrors();

    QList<Alarm> m_alarms;
    QHash<std::pair<QString, QString>, QString> m_shortGroups; // names, by source and id: those that have an alarm
    QSet<QString> m_unconfirmed; // sources whose volume error was removed and not reported again
};
