#include "VolumeTable.h"

#include <QAbstractItemModel>

#include <iterator>

QString sizeText(qlonglong kilobytes)
{
    constexpr const char *units[] = {"KB", "MB", "GB", "TB"};
    double value = static_cast<double>(kilobytes);
    std::size_t unit = 0;
    while (value >= 1024 && unit + 1 < std::size(units)) {
        value /= 1024;
        ++unit;
    }
    return QStringLiteral("%1 %2").arg(value, 0, 'f', 2).arg(QLatin1String(units[unit]));
}

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
        const QString used = size > 0 ? QStringLiteral("%1 %").arg(
                                 100.0 * static_cast<double>(size - available) / static_cast<double>(size), 0, 'f', 0)
                                      : QStringLiteral("-");
        table.addRow({value("nameRole").toString(), value("rootPathRole").toString(), sizeText(size),
                      sizeText(available), used, mark("isSystemRole"), mark("isNASRole")});
    }
    return table;
}
