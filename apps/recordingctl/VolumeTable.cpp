#include "VolumeTable.h"

#include "Units.h"

#include <QAbstractItemModel>

TextTable volumeTable(const QAbstractItemModel &volumes)
{
    const QHash<int, QByteArray> roles = volumes.roleNames();
    TextTable table({QStringLiteral("Name"), QStringLiteral("Path"), QStringLiteral("Size"), QStringLiteral("Free"),
                     QStringLiteral("Used"), QStringLiteral("System"), QStringLiteral("NAS")});
    for (const int column : {2, 3, 4})
        table.setRightAligned(column);
    for (int row = 0; row < volumes.rowCount(); ++row) {
        const auto value = [&](const char *role) { return volumes.index(row, 0).data(roles.key(role)); };
        const auto mark = [&](const char *role) {
            return value(role).toBool() ? QStringLiteral("yes") : QStringLiteral("no");
        };
        const qlonglong size = value("sizeRole").toLongLong();
        const qlonglong available = value("availableSizeRole").toLongLong();
        table.addRow({value("nameRole").toString(), value("rootPathRole").toString(), sizeText(size),
                      sizeText(available), usedText(size, available), mark("isSystemRole"), mark("isNASRole")});
    }
    return table;
}
