#pragma once

#include "RecordingsDeletion.h"

#include <QAbstractListModel>
#include <QList>
#include <QTimer>
#include <QVariantList>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

#include <chrono>

class StationStorage;

/// The recordings that belong to no recording group, as the connected station listed them last: a row for each folder,
/// which stays while it is listed. It asks while somebody watches: when that begins, when the connection comes up, when
/// the station says something that may change the list, and again after a pause while the station has not counted all
/// of it, as no event says when it has. One request is under way at a time. It also carries out what an operator does
/// with such a folder. Lives on the UI thread.
class UnassignedRecordingsModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The session has it.")
    /// Somebody looks at it; to be set by the page.
    Q_PROPERTY(bool watched READ isWatched WRITE setWatched NOTIFY watchedChanged)
    Q_PROPERTY(bool loading READ isLoading NOTIFY changed) ///< an answer is to come
    Q_PROPERTY(bool known READ isKnown NOTIFY changed) ///< there was an answer
    /// Why the last request was in vain, as a sentence; empty when it was not.
    Q_PROPERTY(QString failure READ failure NOTIFY changed)
    Q_PROPERTY(int count READ count NOTIFY changed)
    Q_PROPERTY(double recordedBytes READ recordedBytes NOTIFY changed) ///< of the rows whose size is known
    Q_PROPERTY(int unknownCount READ unknownCount NOTIFY changed) ///< of the other rows
    Q_PROPERTY(RecordingsDeletion *deletion READ deletion CONSTANT)

public:
    /// Where the recordings are.
    enum Standing {
        There,
        ReadOnly, ///< there, and nothing can be changed
        Gone, ///< the volume, or the folder
        NotAnswering,
        OnNas, ///< the station lists them, and leaves them alone
        NotLookedAt, ///< not yet
    };
    Q_ENUM(Standing)

    /// In QML by the names with a small first letter.
    enum Role {
        Place = Qt::UserRole + 1, ///< string, the folder, by which the methods below name it
        Folder, ///< string, the folder that a group had in its path; empty: a former backup area
        Confirmation, ///< string, to be typed before it is deleted
        VolumePath, ///< string; empty: nobody knows
        VolumeName, ///< string
        Location, ///< Standing
        Editable, ///< bool: they can be given to a group or deleted
        RecordedBytes, ///< double; negative: unknown, as the two below
        RecordedFiles, ///< double
        RecordedDays, ///< double
        FirstDay, ///< string, as the desktop writes days; empty: unknown
        LastDay, ///< string
        Cameras, ///< string list
        Counted, ///< bool: the figures are of now
        CountedAt, ///< string, ISO 8601: when they were that last; may be empty
        LastDeletion, ///< string, a sentence about an earlier deletion that left something; mostly empty
    };

    /// @param storage of the same station; must outlive this object
    explicit UnassignedRecordingsModel(const StationStorage &storage, QObject *parent = nullptr);

    bool isWatched() const { return m_isWatched; }
    void setWatched(bool watched);
    bool isLoading() const { return m_isAsked; }
    bool isKnown() const { return m_isKnown; }
    QString failure() const { return m_failure; }
    int count() const { return static_cast<int>(m_places.size()); }
    double recordedBytes() const;
    int unknownCount() const;
    RecordingsDeletion *deletion() { return &m_deletion; }
    /// Between a list with something that is not counted and the next one; two seconds unless set.
    void setPause(std::chrono::milliseconds pause) { m_later.setInterval(pause); }

    /// Asks for the list, once more after the answer where one is outstanding. Nothing happens without a connection.
    Q_INVOKABLE void refresh();

    /// The recording groups that the station could give the recordings of @p place to, by name, as far as its storage
    /// is known: those with a path on the same volume. Maps with "id", "name" and "path" (strings): the path below
    /// which they would lie.
    Q_INVOKABLE QVariantList takersOf(const QString &place) const;
    /// The row of @p place, -1 without one.
    Q_INVOKABLE int rowOf(const QString &place) const;
    /// What the role called @p role says of @p place; invalid where it is not listed.
    Q_INVOKABLE QVariant valueOf(const QString &place, const QString &role) const;

    /// Has the station move the recordings into the folder of a group; assigned() tells the outcome.
    Q_INVOKABLE void assign(const QString &place, const QString &groupId);
    /// Has the station delete the recordings for good; deletionAnswered() tells whether it began.
    Q_INVOKABLE void remove(const QString &place, const QString &confirmation);
    /// Has the station stop the deletion that runs; its end says what came of that.
    Q_INVOKABLE void cancelDeletion();

    void setConnected(bool connected);
    /// Another station is asked from now on.
    void forget();
    /// Follows what may change the list, and the deletion; other events are passed over.
    void noteEvent(const QString &event, const QVariant &data);
    /// The answer to a request of requested(); @p returnCode as the station's or the host's.
    void takeReply(const QString &command, const QVariantMap &request, const QString &returnCode, const QVariant &data);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

signals:
    void watchedChanged();
    void changed();
    /// The client shall send the station @p command, and give the answer to takeReply(). An empty map stands for none.
    void requested(const QString &command, const QVariantMap &data);
    /// @p refusal: why they were not moved, as a sentence; empty: they are in @p path now. @p inTheWay: the folders
    /// that the group has already, where that is why.
    void assigned(const QString &place, const QString &refusal, const QStringList &inTheWay, const QString &path);
    /// @p refusal: why nothing is deleted, as a sentence; empty: the deletion has begun.
    void deletionAnswered(const QString &place, const QString &refusal);

private:
    void takeList(const QString &returnCode, const QVariantList &places);
    void takeAssignment(const QVariantMap &request, const QString &returnCode, const QVariantMap &data);
    void takeDeletion(const QVariantMap &request, const QString &returnCode, const QVariantMap &data);
    bool isStillCounted() const;
    void show(const QVariantList &places);
    void moveOrInsert(const QVariantMap &place, int row);

    const StationStorage &m_storage;
    RecordingsDeletion m_deletion;
    QTimer m_later;
    QList<QVariantMap> m_places; // as the station listed them
    QString m_failure;
    bool m_isWatched = false;
    bool m_isConnected = false;
    bool m_isKnown = false;
    bool m_isAsked = false;
    bool m_isAskedAgain = false;
};
