#pragma once

#include "StationStorage.h"

#include <QAbstractListModel>
#include <QHash>
#include <QList>
#include <QPointer>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

/// The recording groups of one station with their storage, the worst first. The plug-in's usage models are replaced
/// with every change, while the rows here stay, so that a view keeps its selection and its place. The groups' figures
/// are a copy; their volumes are read from the plug-in when a view wants them. Lives on the UI thread.
class GroupUsageModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(int count READ count NOTIFY changed)
    Q_PROPERTY(int shortCount READ shortCount NOTIFY changed)
    Q_PROPERTY(int unknownCount READ unknownCount NOTIFY changed)
    Q_PROPERTY(int lostCount READ lostCount NOTIFY changed)
    /// What the volumes hold, not owned; null: nobody knows.
    Q_PROPERTY(StationStorage *storage READ storage WRITE setStorage NOTIFY storageChanged)

public:
    /// How a group stands to its reserved time, judged as the plug-in does: in whole days, and not at all while one of
    /// the figures is unknown. In the order of the rows.
    enum State {
        Lost, ///< none of its volumes is there
        Short, ///< recorded and remaining days together fall short
        Unknown,
        Sufficient,
        Unassigned, ///< no group: storage that the station uses for none
    };
    Q_ENUM(State)

    /// In QML by the names with a small first letter.
    enum Role {
        GroupId = Qt::UserRole + 1, ///< string, empty for Unassigned
        Name, ///< string
        Standing, ///< State
        IsBackup, ///< bool
        RecordedDays, ///< int, negative: unknown
        RemainingDays, ///< int, negative: unknown
        MissingDays, ///< qlonglong, 0 unless Short
        OneDayUsage, ///< qlonglong, bytes; negative: unknown
        ReservedTime, ///< int, minutes; 0: none
        Volumes, ///< list of maps: "path" (string), "fillable" (double, bytes that the group may still fill there;
                 ///< negative: unknown), "volume" (map, with the keys of "station.listStorage") and "parts" (list, as
                 ///< volumeParts())
    };

    using QAbstractListModel::QAbstractListModel;

    /// Takes the figures over that @p recording, the plug-in's object, has of the station behind @p relayPath. Rows
    /// that stay are changed, and as few as possible of them moved, not replaced. Neither is owned.
    Q_INVOKABLE void update(QObject *recording, const QString &relayPath);
    /// The row of a group, -1 without one.
    Q_INVOKABLE int rowOf(const QString &groupId) const;

    /// What is known of a group, in a map by the names of the roles but for its volumes; empty without a row for it.
    Q_INVOKABLE QVariantMap figuresOf(const QString &groupId) const;

    int count() const; ///< of recording groups
    int shortCount() const;
    int unknownCount() const;
    int lostCount() const;

    StationStorage *storage() const { return m_storage; }
    void setStorage(StationStorage *storage);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

signals:
    void changed();
    void storageChanged();

private:
    struct Group
    {
        QString id;
        QString name;
        State state = Unknown;
        int recordedDays = -1;
        int remainingDays = -1;
        qlonglong missingDays = 0;
        qlonglong oneDayUsage = -1;
        int reservedTime = 0;
    };

    static void judge(Group &group);
    static void sortWorstFirst(QList<Group> &groups);
    static QList<Group> groupsOf(QObject &recording, const QString &relayPath);
    void show(const QList<Group> &groups);
    void removeAllBut(const QHash<QString, int> &places);
    void arrange(const QList<Group> &groups, const QHash<QString, int> &places);
    QVariantList volumesOf(const QString &groupId) const;
    int countOf(State state) const;

    QPointer<QObject> m_recording;
    QPointer<StationStorage> m_storage;
    QString m_relayPath;
    QList<Group> m_groups;
};
