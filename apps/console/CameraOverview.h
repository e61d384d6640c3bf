#pragma once

#include "ConsoleSession.h"

#include <QAbstractListModel>
#include <QHash>
#include <QList>
#include <QPointer>
#include <QStringList>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

/// The station's cameras and which recording groups record them, as rows that stay while the station is asked again.
/// The cameras are the session's, the groups those of the plug-in's queries. Lives on the UI thread.
class CameraOverview : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(ConsoleSession *session READ session WRITE setSession NOTIFY sourceChanged) ///< not owned
    Q_PROPERTY(QObject *recording READ recording WRITE setRecording NOTIFY sourceChanged) ///< the plug-in's; not owned
    /// Somebody looks at the rows: they follow what changes, and refresh() asks. Else they stay as they are.
    Q_PROPERTY(bool active READ isActive WRITE setActive NOTIFY activeChanged)
    Q_PROPERTY(int count READ count NOTIFY changed)
    Q_PROPERTY(int unrecordedCount READ unrecordedCount NOTIFY changed)
    /// Cameras or groups were asked for, and the answer is outstanding.
    Q_PROPERTY(bool loading READ isLoading NOTIFY changed)
    /// The station has listed its cameras and its groups: only then can a camera be called unrecorded.
    Q_PROPERTY(bool known READ isKnown NOTIFY changed)
    /// Why cameras or groups could not be listed, as a sentence; empty when they could.
    Q_PROPERTY(QString failure READ failure NOTIFY changed)

public:
    /// In QML by the names with a small first letter.
    enum Role {
        CamName = Qt::UserRole + 1, ///< string
        Streams, ///< int, from 1
        Groups, ///< list of maps, by name: "id", "name" (strings), "streams" (list of int) and "cameras" (int: how
                ///< many it records)
        GroupNames, ///< string list, in the same order
        GroupCount, ///< int; -1 while nobody knows
        RecordedStreams, ///< int: different streams that some group records; -1 while nobody knows
        Unrecorded, ///< bool: known, and no group records it
    };

    using QAbstractListModel::QAbstractListModel;

    ConsoleSession *session() const { return m_session; }
    void setSession(ConsoleSession *session);
    QObject *recording() const { return m_recording; }
    void setRecording(QObject *recording);
    bool isActive() const { return m_isActive; }
    void setActive(bool active);

    int count() const { return static_cast<int>(m_rows.size()); }
    int unrecordedCount() const;
    bool isLoading() const;
    bool isKnown() const;
    QString failure() const;

    /// Asks the station for cameras and groups; nothing without a connection. What is under way is not asked for again.
    Q_INVOKABLE void refresh();
    /// The row of a camera; -1 without one.
    Q_INVOKABLE int rowOf(const QString &camera) const;

    /// Those of @p cameras that some recording group records, as far as is known.
    Q_INVOKABLE QStringList recorded(const QStringList &cameras) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

signals:
    void sourceChanged();
    void activeChanged();
    void changed();

private slots:
    void takeGroups(); // the plug-in has them, whoever asked

private:
    /// A recording group that records a camera.
    struct Place
    {
        QString id;
        QString name;
        QList<int> streams;
        int cameras = 0;
    };
    struct Row
    {
        QString name;
        int streams = 1;
        QList<Place> places;
    };

    void noteRefusal(const QString &command);
    void failGroups(const QString &sentence);
    void update();
    void updateLater();
    QHash<QString, QList<Place>> placesByCamera() const;
    void show(const QList<Row> &rows);
    QVariant placesOf(const Row &row) const;

    QPointer<ConsoleSession> m_session;
    QPointer<QObject> m_recording;
    bool m_isActive = false;
    bool m_isOutdated = true; // something changed while nobody looked
    bool m_areGroupsAsked = false;
    bool m_areGroupsKnown = false;
    bool m_areGroupsRead = false; // m_places is what the plug-in knows
    QHash<QString, QList<Place>> m_places; // by camera
    QString m_groupFailure;
    QList<Row> m_rows;
};
