#include "CameraOverview.h"

#include "NaturalOrder.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"

#include <QMetaObject>
#include <QSet>

#include <algorithm>
#include <iterator>
#include <utility>

namespace {
const QString &recordingGroupType()
{
    static const QString type = QStringLiteral("RecordingGroup");
    return type;
}

QAbstractItemModel *treeOf(QObject &recording)
{
    QObject *tree = nullptr;
    QMetaObject::invokeMethod(&recording, "getRecordingGroupTreeModel", Qt::DirectConnection,
                              Q_RETURN_ARG(QObject *, tree));
    return qobject_cast<QAbstractItemModel *>(tree);
}

QVariantList membersOf(QObject &recording, const QString &groupId, const QString &relayPath)
{
    QVariantList members;
    QMetaObject::invokeMethod(&recording, "getRecordingGroupMemberList", Qt::DirectConnection,
                              Q_RETURN_ARG(QVariantList, members), Q_ARG(QString, groupId), Q_ARG(QString, relayPath));
    return members;
}
} // namespace

void CameraOverview::setSession(ConsoleSession *session)
{
    if (m_session == session)
        return;
    if (m_session) {
        m_session->disconnect(this);
        m_session->cameraList()->disconnect(this);
    }
    m_session = session;
    if (m_session) {
        connect(m_session, &ConsoleSession::refused, this, &CameraOverview::noteRefusal);
        connect(m_session->cameraList(), &StationCameras::changed, this, &CameraOverview::updateLater);
    }
    emit sourceChanged();
    updateLater();
}

void CameraOverview::setRecording(QObject *recording)
{
    if (m_recording == recording)
        return;
    if (m_recording)
        m_recording->disconnect(this);
    m_recording = recording;
    const QAbstractItemModel *const tree = m_recording ? treeOf(*m_recording) : nullptr;
    m_areGroupsRead = false;
    m_areGroupsKnown = tree && tree->rowCount(tree->index(0, 0)) > 0; // somebody else has asked
    if (m_recording)
        connect(m_recording, SIGNAL(retrieveRecordingGroupTreeModelFinish()), this, SLOT(takeGroups()));
    emit sourceChanged();
    updateLater();
}

void CameraOverview::setActive(bool active)
{
    if (m_isActive == active)
        return;
    m_isActive = active;
    emit activeChanged();
    if (m_isActive && m_isOutdated)
        update();
}

void CameraOverview::refresh()
{
    if (!m_session || !m_session->isConnected())
        return;
    if (!m_session->cameraList()->isLoading())
        m_session->cameraList()->refresh();
    if (m_areGroupsAsked || !m_recording)
        return;
    m_groupFailure.clear();
    m_areGroupsAsked = true;
    bool isSent = false;
    QMetaObject::invokeMethod(m_recording, "retrieveRecordingGroupTreeModel", Qt::DirectConnection,
                              Q_RETURN_ARG(bool, isSent));
    if (!isSent)
        failGroups(m_session->unsentText());
    emit changed();
}

void CameraOverview::noteRefusal(const QString &command)
{
    if (command != ServerCommand::retrieveRecordingGroupTreeModel)
        return;
    m_areGroupsKnown = false; // the request emptied the plug-in's tree, whoever sent it
    failGroups(m_session->refusal(command));
}

void CameraOverview::failGroups(const QString &sentence)
{
    m_areGroupsAsked = false;
    m_groupFailure = sentence;
    updateLater();
}

void CameraOverview::takeGroups()
{
    m_areGroupsAsked = false;
    m_areGroupsKnown = true;
    m_areGroupsRead = false;
    m_groupFailure.clear();
    updateLater();
}

bool CameraOverview::isLoading() const
{
    return m_areGroupsAsked || (m_session && m_session->cameraList()->isLoading());
}

bool CameraOverview::isKnown() const
{
    return m_areGroupsKnown && m_session && m_session->cameraList()->isKnown();
}

QString CameraOverview::failure() const
{
    if (m_session && !m_session->cameraList()->failure().isEmpty())
        return m_session->cameraList()->failure();
    return m_groupFailure;
}

void CameraOverview::updateLater()
{
    m_isOutdated = true;
    if (m_isActive)
        update();
    else
        emit changed();
}

QHash<QString, QList<CameraOverview::Place>> CameraOverview::placesByCamera() const
{
    QHash<QString, QList<Place>> places;
    const QAbstractItemModel *const tree = m_recording ? treeOf(*m_recording) : nullptr;
    if (!tree)
        return places;
    const QHash<int, QByteArray> roles = tree->roleNames();
    const int type = roles.key("typeRole", -1);
    const int id = roles.key("recordingGroupIDRole", -1);
    const int name = roles.key("nameRole", -1);
    const int relayPath = roles.key("relayPathRole", -1);
    for (int branch = 0; branch < tree->rowCount(); ++branch) {
        const QModelIndex station = tree->index(branch, 0);
        for (int row = 0; row < tree->rowCount(station); ++row) {
            const QModelIndex group = tree->index(row, 0, station);
            if (group.data(type).toString() != recordingGroupType())
                continue;
            const QString groupId = group.data(id).toString();
            const QVariantList members = membersOf(*m_recording, groupId, group.data(relayPath).toString());
            QHash<QString, QList<int>> streams; // by camera
            for (const QVariant &member : members) {
                const QVariantMap map = member.toMap();
                streams[map.value(FieldKey::camName).toString()].append(map.value(FieldKey::streamIndex).toInt());
            }
            for (auto camera = streams.cbegin(); camera != streams.cend(); ++camera)
                places[camera.key()].append(
                    {groupId, group.data(name).toString(), camera.value(), static_cast<int>(streams.size())});
        }
    }
    return places;
}

void CameraOverview::update()
{
    m_isOutdated = false;
    if (!m_areGroupsKnown)
        m_places.clear();
    else if (!m_areGroupsRead)
        m_places = placesByCamera();
    m_areGroupsRead = m_areGroupsKnown; // a request empties the plug-in's groups until it is answered
    const QCollator order = naturalOrder();
    QList<Row> rows;
    const QVariantList cameras = m_session ? m_session->cameraList()->list() : QVariantList();
    for (const QVariant &camera : cameras) {
        const QVariantMap map = camera.toMap();
        Row row{map.value(FieldKey::camName).toString(), map.value(StationKey::streams, 1).toInt(), {}};
        row.places = m_places.value(row.name);
        std::sort(row.places.begin(), row.places.end(),
                  [&order](const Place &left, const Place &right) { return order.compare(left.name, right.name) < 0; });
        rows.append(row);
    }
    show(rows);
    emit changed();
}

// Rows of cameras that stay are changed, not replaced: both lists have the station's order.
void CameraOverview::show(const QList<Row> &rows)
{
    QSet<QString> wanted;
    for (const Row &row : rows)
        wanted.insert(row.name);
    for (int row = count() - 1; row >= 0; --row) {
        if (wanted.contains(m_rows[row].name))
            continue;
        int first = row;
        while (first > 0 && !wanted.contains(m_rows[first - 1].name))
            --first;
        beginRemoveRows({}, first, row);
        m_rows.remove(first, row - first + 1);
        endRemoveRows();
        row = first;
    }
    const bool isSameOrder = std::is_sorted(rows.cbegin(), rows.cend(),
                                            [](const Row &left, const Row &right) { return left.name < right.name; });
    if (!isSameOrder) {
        beginResetModel();
        m_rows = rows;
        endResetModel();
        return;
    }
    for (int row = 0; row < rows.size(); ++row) {
        if (row < count() && m_rows[row].name == rows[row].name)
            continue;
        int end = row + 1;
        while (end < rows.size() && (row >= count() || rows[end].name < m_rows[row].name))
            ++end;
        beginInsertRows({}, row, end - 1);
        m_rows.insert(row, end - row, Row());
        std::copy_n(rows.cbegin() + row, end - row, m_rows.begin() + row);
        endInsertRows();
        row = end - 1;
    }
    m_rows = rows;
    if (!m_rows.isEmpty())
        emit dataChanged(index(0), index(count() - 1));
}

int CameraOverview::unrecordedCount() const
{
    if (!isKnown())
        return 0;
    return static_cast<int>(
        std::count_if(m_rows.cbegin(), m_rows.cend(), [](const Row &row) { return row.places.isEmpty(); }));
}

int CameraOverview::rowOf(const QString &camera) const
{
    const auto found =
        std::find_if(m_rows.cbegin(), m_rows.cend(), [&camera](const Row &row) { return row.name == camera; });
    return found == m_rows.cend() ? -1 : static_cast<int>(std::distance(m_rows.cbegin(), found));
}

QStringList CameraOverview::recorded(const QStringList &cameras) const
{
    QSet<QString> recorded;
    for (const Row &row : m_rows) {
        if (!row.places.isEmpty())
            recorded.insert(row.name);
    }
    QStringList names;
    std::copy_if(cameras.cbegin(), cameras.cend(), std::back_inserter(names),
                 [&recorded](const QString &camera) { return recorded.contains(camera); });
    return names;
}

QVariant CameraOverview::placesOf(const Row &row) const
{
    QVariantList list;
    for (const Place &place : row.places) {
        QVariantList streams;
        std::copy(place.streams.cbegin(), place.streams.cend(), std::back_inserter(streams));
        list.append(QVariantMap{{QStringLiteral("id"), place.id},
                                {QStringLiteral("name"), place.name},
                                {QStringLiteral("streams"), streams},
                                {QStringLiteral("cameras"), place.cameras}});
    }
    return list;
}

int CameraOverview::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant CameraOverview::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row &row = m_rows[index.row()];
    switch (role) {
    case CamName:
        return row.name;
    case Streams:
        return row.streams;
    case Groups:
        return placesOf(row);
    case GroupNames: {
        QStringList names;
        for (const Place &place : row.places)
            names.append(place.name);
        return names;
    }
    case GroupCount:
        return isKnown() ? static_cast<int>(row.places.size()) : -1;
    case RecordedStreams: {
        QSet<int> streams;
        for (const Place &place : row.places)
            streams.unite(QSet<int>(place.streams.cbegin(), place.streams.cend()));
        return isKnown() ? static_cast<int>(streams.size()) : -1;
    }
    case Unrecorded:
        return isKnown() && row.places.isEmpty();
    default:
        return {};
    }
}

QHash<int, QByteArray> CameraOverview::roleNames() const
{
    return {
        {CamName, "camName"},       {Streams, "streams"},       {Groups, "groups"},
        {GroupNames, "groupNames"}, {GroupCount, "groupCount"}, {RecordedStreams, "recordedStreams"},
        {Unrecorded, "unrecorded"},
    };
}
