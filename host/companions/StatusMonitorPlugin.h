#pragma once

#include <QAbstractListModel>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>

#include <utility>

/// Stands in for the status monitor of a client: keeps the alarms about storage that plug-ins raise and withdraw, as a
/// list model, the oldest first. Lives on the UI thread.
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
        VolumeError, ///< a volume of the station tells neither size nor free space
        InsufficientRecordingDays, ///< a recording group will not reach its reserved time
    };
    Q_ENUM(Kind)

    enum Role {
        SourceRole = Qt::UserRole + 1, ///< "sourceRole", string: the station's relay path
        KindRole, ///< "kindRole": Kind
        GroupIdRole, ///< "groupIdRole", string: of the recording group; empty for a volume error
        GroupNameRole, ///< "groupNameRole", string: likewise
        SinceRole, ///< "sinceRole", QDateTime: when the alarm was raised
    };
    Q_ENUM(Role)

    struct Alarm
    {
        QString source;
        Kind kind = VolumeError;
        QString groupId;
        QString groupName;
        QDateTime since;
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

signals:
    void raised(const StatusMonitorPlugin::Alarm &alarm);
    void withdrawn(const StatusMonitorPlugin::Alarm &alarm);

private:
    qsizetype find(const QString &source, Kind kind, const QString &groupId) const; // -1: none
    void raise(const Alarm &alarm);
    void withdraw(qsizetype row);
    void settleVolumeErrors();

    QList<Alarm> m_alarms;
    QHash<std::pair<QString, QString>, QString> m_shortGroups; // names, by source and id: those that have an alarm
    QSet<QString> m_unconfirmed; // sources whose volume error was removed and not reported again
};
