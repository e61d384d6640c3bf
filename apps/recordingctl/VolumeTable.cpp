#include "VolumeTable.h"

#include "Units.h"

#include <QAbstractItemModel>

namespace {
/// What stands in a row of @p volumes, by the name of the role.
class Row
{
public:
    Row(const QAbstractItemModel &volumes, int row)
        : m_index(volumes.index(row, 0))
        , m_roles(volumes.roleNames())
    {
    }

    QString text(const char *role) const { return value(role).toString(); }
    qlonglong number(const char *role) const { return value(role).toLongLong(); }
    QString mark(const char *role) const { return value(role).toBool() ? QStringLiteral("yes") : QStringLiteral("no"); }

private:
    QVariant value(const char *role) const { return m_index.data(m_roles.key(role)); }

    QModelIndex m_index;
    QHash<int, QByteArray> m_roles;
};
} // namespace

TextTable volumeTable(const QAbstractItemModel &volumes)
{
    TextTable table({QStringLiteral("Name"), QStringLiteral("Path"), QStringLiteral("Size"), QStringLiteral("Free"),
                     QStringLiteral("Used"), QStringLiteral("System"), QStringLiteral("NAS")});
    for (const int column : {2, 3, 4})
        table.setRightAligned(column);
    for (int i = 0; i < volumes.rowCount(); ++i) {
        const Row row(volumes, i);
        const qlonglong size = row.number("sizeRole");
        const qlonglong available = row.number("availableSizeRole");
        table.addRow({row.text("nameRole"), row.text("rootPathRole"), sizeText(size), sizeText(available),
                      usedText(size, available), row.mark("isSystemRole"), row.mark("isNASRole")});
    }
    return table;
}

TextTable groupVolumeTable(const QAbstractItemModel &volumes)
{
    TextTable table({QStringLiteral("Name"), QStringLiteral("Path"), QStringLiteral("Size"),
                     QStringLiteral("Free for the group"), QStringLiteral("System"), QStringLiteral("NAS")});
    for (const int column : {2, 3})
        table.setRightAligned(column);
    for (int i = 0; i < volumes.rowCount(); ++i) {
        const Row row(volumes, i);
        table.addRow({row.text("nameRole"), row.text("rootPathRole"), sizeText(row.number("sizeRole")),
                      sizeText(row.number("availableSizeRole")), row.mark("isSystemRole"), row.mark("isNASRole")});
    }
    return table;
}
