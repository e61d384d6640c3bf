#include "GroupMembers.h"

#include "ServerVocabulary.h"
#include "StationVocabulary.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {
const QString messageKey = QStringLiteral("message");
}

void GroupMembers::setCameras(const QVariantList &cameras)
{
    if (m_cameras == cameras)
        return;
    m_cameras = cameras;
    m_streams.clear();
    for (const QVariant &camera : cameras) {
        const QVariantMap map = camera.toMap();
        m_streams.insert(map.value(FieldKey::camName).toString(), map.value(StationKey::streams).toInt());
    }
    if (!m_rows.isEmpty())
        emit dataChanged(index(0), index(count() - 1), {StreamCount});
    emit camerasChanged();
}

void GroupMembers::setRows(const QVariantList &members)
{
    beginResetModel();
    m_rows.clear();
    m_rows.reserve(members.size());
    for (const QVariant &member : members) {
        const QVariantMap map = member.toMap();
        m_rows.append({map.value(FieldKey::camName).toString(), map.value(FieldKey::streamIndex).toInt(),
                       map.value(FieldKey::enableTimeShift).toBool(), map.value(FieldKey::enableSeamless).toBool(),
                       map.value(messageKey).toString()});
    }
    endResetModel();
    emit changed();
}

QVariantList GroupMembers::rows() const
{
    QVariantList members;
    members.reserve(m_rows.size());
    for (const Row &row : m_rows) {
        members.append(QVariantMap{{FieldKey::camName, row.camName},
                                   {FieldKey::streamIndex, row.streamIndex},
                                   {FieldKey::enableTimeShift, row.isTimeShifted},
                                   {FieldKey::enableSeamless, row.isSeamless},
                                   {messageKey, row.message}});
    }
    return members;
}

QList<int> GroupMembers::streamsOf(const QString &camera) const
{
    QList<int> streams;
    for (const Row &row : m_rows) {
        if (row.camName == camera)
            streams.append(row.streamIndex);
    }
    return streams;
}

int GroupMembers::freeStreams(const QString &camera) const
{
    const int all = m_streams.value(camera, 0);
    const QList<int> taken = streamsOf(camera);
    int free = 0;
    for (int stream = 0; stream < all; ++stream)
        free += taken.contains(stream) ? 0 : 1;
    return free;
}

int GroupMembers::add(const QStringList &cameras)
{
    QHash<QString, QList<int>> taken;
    for (const Row &row : std::as_const(m_rows))
        taken[row.camName].append(row.streamIndex);
    QList<Row> added;
    for (const QString &camera : cameras) {
        QList<int> &streams = taken[camera];
        int stream = 0;
        while (streams.contains(stream))
            ++stream;
        if (stream >= m_streams.value(camera, 0))
            continue;
        streams.append(stream);
        added.append({camera, stream, false, false, {}});
    }
    if (added.isEmpty())
        return -1;
    const int first = count();
    beginInsertRows({}, first, first + static_cast<int>(added.size()) - 1);
    m_rows.append(added);
    endInsertRows();
    emit changed();
    return first;
}

void GroupMembers::change(int row, const QString &role, const QVariant &value)
{
    if (row < 0 || row >= count())
        return;
    Row &member = m_rows[row];
    const int number = roleNames().key(role.toUtf8(), -1);
    switch (number) {
    case StreamIndex:
        member.streamIndex = value.toInt();
        break;
    case EnableTimeShift:
        member.isTimeShifted = value.toBool();
        break;
    case EnableSeamless:
        member.isSeamless = value.toBool();
        break;
    default:
        return;
    }
    tellOf(row, number);
    setMessage(row, {});
}

void GroupMembers::remove(int row)
{
    if (row < 0 || row >= count())
        return;
    beginRemoveRows({}, row, row);
    m_rows.removeAt(row);
    endRemoveRows();
    emit changed();
}

void GroupMembers::setMessage(int row, const QString &message)
{
    if (row < 0 || row >= count() || m_rows[row].message == message)
        return;
    m_rows[row].message = message;
    tellOf(row, Message);
}

void GroupMembers::clearMessages()
{
    for (int row = 0; row < count(); ++row)
        setMessage(row, {});
}

int GroupMembers::firstMessage() const
{
    const auto found =
        std::find_if(m_rows.cbegin(), m_rows.cend(), [](const Row &row) { return !row.message.isEmpty(); });
    return found == m_rows.cend() ? -1 : static_cast<int>(std::distance(m_rows.cbegin(), found));
}

void GroupMembers::tellOf(int row, int role)
{
    emit dataChanged(index(row), index(row), {role});
}

int GroupMembers::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant GroupMembers::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row &row = m_rows[index.row()];
    switch (role) {
    case CamName:
        return row.camName;
    case StreamIndex:
        return row.streamIndex;
    case StreamCount:
        return std::max(row.streamIndex + 1, m_streams.value(row.camName, 1));
    case EnableTimeShift:
        return row.isTimeShifted;
    case EnableSeamless:
        return row.isSeamless;
    case Message:
        return row.message;
    default:
        return {};
    }
}

QHash<int, QByteArray> GroupMembers::roleNames() const
{
    return {
        {CamName, "camName"},
        {StreamIndex, "streamIndex"},
        {StreamCount, "streamCount"},
        {EnableTimeShift, "enableTimeShift"},
        {EnableSeamless, "enableSeamless"},
        {Message, "message"},
    };
}
