#pragma once

#include <QAbstractListModel>
#include <QHash>
#include <QList>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

/// The members of a recording group while it is edited: a row for each stream of a camera that the group records. Lives
/// on the UI thread.
class GroupMembers : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(int count READ count NOTIFY changed)
    /// The station's cameras: maps with "camName" (string) and "streams" (int).
    Q_PROPERTY(QVariantList cameras READ cameras WRITE setCameras NOTIFY camerasChanged)

public:
    /// In QML by the names with a small first letter.
    enum Role {
        CamName = Qt::UserRole + 1, ///< string
        StreamIndex, ///< int, from 0
        StreamCount, ///< int: streams of the camera, at least as many as the member's index needs
        EnableTimeShift, ///< bool
        EnableSeamless, ///< bool
        Message, ///< string: why the station refused the row; empty: it did not
    };

    using QAbstractListModel::QAbstractListModel;

    int count() const { return static_cast<int>(m_rows.size()); }
    QVariantList cameras() const { return m_cameras; }
    void setCameras(const QVariantList &cameras);

    /// Puts these members in the place of all rows: maps with the names of the roles but for "streamCount"; what is
    /// missing is 0, false or empty.
    Q_INVOKABLE void setRows(const QVariantList &members);
    /// The rows as such maps, for a request.
    Q_INVOKABLE QVariantList rows() const;

    /// Adds a row for each of these cameras, with the lowest stream that the group does not record yet; a camera whose
    /// streams are all recorded gets none. The first new row; -1 without one.
    Q_INVOKABLE int add(const QStringList &cameras);
    /// How many streams of a camera the group does not record; a camera that the station does not list has none.
    Q_INVOKABLE int freeStreams(const QString &camera) const;
    /// Changes one value of a row and takes its message away. Other roles than the stream, time shift and seamless are
    /// left alone.
    Q_INVOKABLE void change(int row, const QString &role, const QVariant &value);
    Q_INVOKABLE void remove(int row);

    Q_INVOKABLE void setMessage(int row, const QString &message);
    Q_INVOKABLE void clearMessages();
    /// The first row with a message; -1 without one.
    Q_INVOKABLE int firstMessage() const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

signals:
    void changed();
    void camerasChanged();

private:
    struct Row
    {
        QString camName;
        int streamIndex = 0;
        bool isTimeShifted = false;
        bool isSeamless = false;
        QString message;
    };

    QList<int> streamsOf(const QString &camera) const;
    void tellOf(int row, int role);

    QList<Row> m_rows;
    QVariantList m_cameras;
    QHash<QString, int> m_streams; // by camera
};
