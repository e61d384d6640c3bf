#include "RowItems.h"

#include "ItemRoles.h"

#include <QStandardItemModel>
#include <QUuid>

#include <exception>
#include <new>
#include <utility>

namespace {

struct RoleValue
{
    int role;
    QVariant value;
};

RowItem makeItem(std::initializer_list<RoleValue> values)
{
    RowItem item(new (std::nothrow) QStandardItem);
    if (!item)
        return nullptr;
    for (const RoleValue &entry : values)
        item->setData(entry.value, entry.role);
    return item;
}

// Items, values and lists allocate inside Qt, which throws: out of memory means no row, never an exception.
template<typename Make>
auto orNull(Make make) noexcept -> decltype(make())
{
    try {
        return make();
    } catch (const std::exception &) {
        return nullptr;
    }
}

} // namespace

RowItem VolumeItem(const QString &path, const QString &name, qlonglong size, qlonglong availableSize, bool isSystem,
                   bool isNas)
{
    return orNull([&] {
        return makeItem({
            {VolumeRole::Id, QUuid::createUuid().toString()},
            {VolumeRole::RootPath, path},
            {VolumeRole::Name, name},
            {VolumeRole::Size, size},
            {VolumeRole::AvailableSize, availableSize},
            {VolumeRole::IsSystem, isSystem},
            {VolumeRole::IsNas, isNas},
        });
    });
}

RowItem RecordingGroupItem(const QString &id, const QString &name, const QStringList &pathList,
                           const QStringList &nodeIdList, const QStringList &nasPathList, int recordedDays,
                           int remainDays, qint64 oneDayUsage, int reserveTime)
{
    return orNull([&] {
        return makeItem({
            {RecordingGroupRole::Id, id},
            {RecordingGroupRole::Name, name},
            {RecordingGroupRole::PathList, pathList},
            {RecordingGroupRole::NodeIdList, nodeIdList},
            {RecordingGroupRole::NasPathList, nasPathList},
            {RecordingGroupRole::RecordedDays, recordedDays},
            {RecordingGroupRole::RemainDays, remainDays},
            {RecordingGroupRole::OneDayUsage, oneDayUsage},
            {RecordingGroupRole::ReserveTime, reserveTime},
        });
    });
}

RowItem NasServerItem(const QString &id, const QString &host, const QString &logonDomain, const QString &userName,
                      const QString &password)
{
    return orNull([&] {
        return makeItem({
            {NasServerRole::Id, id},
            {NasServerRole::Host, host},
            {NasServerRole::LogonDomain, logonDomain},
            {NasServerRole::UserName, userName},
            {NasServerRole::Password, password},
        });
    });
}

RowItem DirectoryItem(const QString &folder)
{
    return orNull([&] {
        return makeItem({
            {DirectoryRole::Id, folder},
            {DirectoryRole::Name, folder},
        });
    });
}

RowItem TreeStationItem(const QString &name, const QString &ip, const QString &relayPath, const QString &type)
{
    return orNull([&] {
        return makeItem({
            {TreeRole::Name, name},
            {TreeRole::StationIp, ip},
            {TreeRole::RelayPath, relayPath},
            {TreeRole::Type, type},
            {TreeRole::Id, QUuid::createUuid().toString()},
        });
    });
}

RowBatch::RowBatch(QStandardItemModel *model)
    : m_model(model)
{
}

RowBatch::RowBatch(QStandardItem *parent)
    : m_model(parent->model())
    , m_below(true)
    , m_parent(parent->index())
{
}

RowBatch::~RowBatch()
{
    qDeleteAll(m_rows);
}

RowBatch::RowBatch(RowBatch &&other) noexcept
    : m_model(other.m_model)
    , m_below(other.m_below)
    , m_parent(std::move(other.m_parent))
    , m_rows(std::exchange(other.m_rows, {}))
{
}

QStandardItem *RowBatch::parent() const
{
    if (!m_model)
        return nullptr;
    if (m_below)
        return m_parent.isValid() ? m_model->itemFromIndex(m_parent) : nullptr;
    return m_model->invisibleRootItem(); // a cleared model has a new root
}

bool RowBatch::add(RowItem row) noexcept
{
    if (!row || !m_model)
        return false;
    try {
        m_rows.append(row.get());
        row.release();
        return true;
    } catch (const std::bad_alloc &) {
        return false;
    }
}

bool RowBatch::append() noexcept
{
    if (m_rows.isEmpty())
        return true;
    try {
        // A column inserted from within the insertion of rows would reach the views nested in it.
        if (parent() && parent()->columnCount() == 0)
            parent()->setColumnCount(1);
        if (QStandardItem *const item = parent()) {
            item->appendRows(std::exchange(m_rows, {}));
            return true;
        }
    } catch (const std::bad_alloc &) {
    }
    qDeleteAll(std::exchange(m_rows, {}));
    return false;
}

void clearRows(QStandardItemModel *model)
{
    if (model)
        model->clear();
}

QStandardItemModel *newListModel(const QHash<int, QByteArray> &roleNames, QObject *parent) noexcept
{
    return orNull([&]() -> QStandardItemModel * {
        std::unique_ptr<QStandardItemModel> model(new (std::nothrow) QStandardItemModel);
        if (!model)
            return nullptr;
        model->setItemRoleNames(roleNames);
        model->setParent(parent); // last: a child that failed half made would stay in its parent's list
        return model.release();
    });
}
