#include "VolumeOverview.h"

#include "ModelColumn.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "VolumeParts.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <utility>

namespace {
constexpr double bytesOfAKilobyte = 1024;

bool isLost(const QVariantMap &volume)
{
    const QString state = volume.value(StationKey::state).toString();
    return state == StationVolumeState::gone || state == StationVolumeState::notAnswering;
}

bool isShare(const QVariantMap &volume)
{
    return volume.value(StationKey::kind) == StationVolumeKind::NAS;
}

/// What space a volume is: of a folder on a NAS server, its share. Shares are written in other letters by those who
/// enter them.
QString spaceOf(const QString &path, bool isNas)
{
    return isNas ? path.section(u'/', 0, 3).toCaseFolded() : path;
}

/// The plug-in's volumes, as the station would tell them.
class ListedVolumes
{
public:
    explicit ListedVolumes(const QAbstractItemModel &model)
        : m_path(model, "rootPathRole")
        , m_name(model, "nameRole")
        , m_size(model, "sizeRole")
        , m_available(model, "availableSizeRole")
        , m_isSystem(model, "isSystemRole")
        , m_isNas(model, "isNASRole")
    {
    }

    QString path(int row) const { return m_path[row].toString(); }
    bool isNas(int row) const { return m_isNas[row].toBool(); }

    QVariantMap operator[](int row) const
    {
        const double size = m_size[row].toDouble() * bytesOfAKilobyte;
        const double free = m_available[row].toDouble() * bytesOfAKilobyte;
        const bool isKnown = size > 0 && free >= 0;
        return {
            {FieldKey::volumePath, m_path[row]},
            {FieldKey::volumeName, m_name[row]},
            {FieldKey::volumeIsSystem, m_isSystem[row]},
            {StationKey::kind, isNas(row) ? StationVolumeKind::NAS : StationVolumeKind::local},
            {StationKey::state, isKnown ? StationVolumeState::there : StationVolumeState::unknown},
            {StationKey::size, isKnown ? size : -1},
            {StationKey::free, isKnown ? free : -1},
            {StationKey::unknownBytes, isKnown ? std::max(size - free, 0.0) : 0},
        };
    }

private:
    ModelColumn m_path;
    ModelColumn m_name;
    ModelColumn m_size;
    ModelColumn m_available;
    ModelColumn m_isSystem;
    ModelColumn m_isNas;
};
} // namespace

VolumeOverview::VolumeOverview(QObject *parent)
    : QAbstractListModel(parent)
{
    m_later.setSingleShot(true);
    connect(&m_later, &QTimer::timeout, this, &VolumeOverview::update);
}

void VolumeOverview::setModel(QObject *model)
{
    if (m_model == model)
        return;
    if (m_model)
        m_model->disconnect(this);
    m_model = qobject_cast<QAbstractItemModel *>(model);
    const auto later = [this] { m_later.start(0); };
    if (m_model) {
        connect(m_model, &QAbstractItemModel::modelReset, this, later);
        connect(m_model, &QAbstractItemModel::rowsInserted, this, later);
        connect(m_model, &QAbstractItemModel::rowsRemoved, this, later);
        connect(m_model, &QAbstractItemModel::dataChanged, this, later);
    }
    later();
    emit modelChanged();
}

void VolumeOverview::setStorage(StationStorage *storage)
{
    if (m_storage == storage)
        return;
    if (m_storage)
        m_storage->disconnect(this);
    m_storage = storage;
    if (m_storage)
        connect(m_storage, &StationStorage::changed, this, [this] { m_later.start(0); });
    m_later.start(0);
    emit storageChanged();
}

QList<VolumeOverview::Row> VolumeOverview::rowsNow() const
{
    QList<Row> rows;
    QHash<QString, QVariantMap> told; // by the space
    QSet<QString> shown;
    const QVariantList storage = m_storage ? m_storage->volumes() : QVariantList();
    for (const QVariant &entry : storage) {
        const QVariantMap volume = entry.toMap();
        const QString path = volume.value(FieldKey::volumePath).toString();
        const QString space = spaceOf(path, isShare(volume));
        told.insert(space, volume);
        if (isLost(volume)) {
            rows.append({path, volume});
            shown.insert(space);
        }
    }
    const QSet<QString> lost = shown;
    if (m_model) {
        const ListedVolumes listed(*m_model);
        for (int row = 0; row < m_model->rowCount(); ++row) {
            const QString path = listed.path(row);
            const QString space = spaceOf(path, listed.isNas(row));
            if (lost.contains(space))
                continue;
            shown.insert(space);
            const auto known = told.constFind(space);
            rows.append({path, known == told.cend() ? listed[row] : *known});
        }
    }
    for (const QVariant &entry : storage) {
        const QVariantMap volume = entry.toMap();
        const QString path = volume.value(FieldKey::volumePath).toString();
        if (isShare(volume) && !shown.contains(spaceOf(path, true)))
            rows.append({path, volume});
    }
    return rows;
}

/// Rows that stay keep their place in a view.
void VolumeOverview::update()
{
    const QList<Row> now = rowsNow();
    QSet<QString> wanted;
    for (const Row &row : now)
        wanted.insert(row.path);
    for (qsizetype row = m_rows.size() - 1; row >= 0; --row) {
        if (wanted.contains(m_rows.at(row).path))
            continue;
        beginRemoveRows({}, int(row), int(row));
        m_rows.removeAt(row);
        endRemoveRows();
    }
    QSet<QString> present;
    for (const Row &row : std::as_const(m_rows))
        present.insert(row.path);
    for (qsizetype row = 0; row < now.size(); ++row) {
        if (!present.contains(now.at(row).path)) {
            const auto isNew = [&present](const Row &other) { return !present.contains(other.path); };
            const auto end = std::find_if_not(now.cbegin() + row, now.cend(), isNew);
            const qsizetype count = end - (now.cbegin() + row);
            beginInsertRows({}, int(row), int(row + count - 1));
            m_rows.insert(row, count, Row());
            std::copy_n(now.cbegin() + row, count, m_rows.begin() + row);
            endInsertRows();
            row += count - 1;
            continue;
        }
        const auto isIt = [&](const Row &other) { return other.path == now.at(row).path; };
        const qsizetype old = std::find_if(m_rows.cbegin() + row, m_rows.cend(), isIt) - m_rows.cbegin();
        if (old != row) {
            beginMoveRows({}, int(old), int(old), {}, int(row));
            m_rows.move(old, row);
            endMoveRows();
        }
        if (m_rows.at(row).volume != now.at(row).volume) {
            m_rows[row] = now.at(row);
            emit dataChanged(index(int(row)), index(int(row)));
        }
    }
    emit changed();
}

int VolumeOverview::lostCount() const
{
    return static_cast<int>(
        std::count_if(m_rows.cbegin(), m_rows.cend(), [](const Row &row) { return isLost(row.volume); }));
}

double VolumeOverview::size() const
{
    return sum(StationKey::size);
}

double VolumeOverview::free() const
{
    return sum(StationKey::free);
}

/// Two folders of one share are one space.
double VolumeOverview::sum(const QString &key) const
{
    QSet<QString> added;
    double sum = 0;
    for (const Row &row : m_rows) {
        const QString space = spaceOf(row.path, isShare(row.volume));
        if (!added.contains(space))
            sum += std::max(row.volume.value(key).toDouble(), 0.0);
        added.insert(space);
    }
    return sum;
}

int VolumeOverview::rowOf(const QString &path) const
{
    int holder = -1;
    qsizetype longest = -1;
    for (int row = 0; row < count(); ++row) {
        const QString mount = m_rows.at(row).path;
        const QString prefix = mount.endsWith(u'/') ? mount : mount + u'/';
        if (path == mount)
            return row;
        if (path.startsWith(prefix) && mount.size() > longest) {
            holder = row;
            longest = mount.size();
        }
    }
    return holder;
}

int VolumeOverview::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant VolumeOverview::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row &row = m_rows.at(index.row());
    switch (role) {
    case Path:
        return row.path;
    case Volume:
        return row.volume;
    case Name: {
        const QString name = row.volume.value(FieldKey::volumeName).toString();
        return name.isEmpty() ? row.path : name;
    }
    case Size:
        return row.volume.value(StationKey::size, -1).toDouble();
    case Free:
        return row.volume.value(StationKey::free, -1).toDouble();
    case Parts:
        return volumeParts(row.volume);
    default:
        return {};
    }
}

QHash<int, QByteArray> VolumeOverview::roleNames() const
{
    return {{Path, "path"}, {Volume, "volume"}, {Parts, "parts"}, {Name, "name"}, {Size, "size"}, {Free, "free"}};
}
