#include "StationFigures.h"

#include "MissingDays.h"
#include "ServerVocabulary.h"

#include <QAbstractItemModel>

#include <algorithm>

StationFigures StationFigures::of(const QAbstractItemModel &usage, const QVariant &volumes)
{
    const QHash<int, QByteArray> names = usage.roleNames();
    const int id = names.key("idRole");
    const int recorded = names.key("recordedDaysRole");
    const int remaining = names.key("remainDaysRole");
    const int reserved = names.key("reserveTimeRole");
    StationFigures figures;
    figures.groups = 0;
    for (int row = 0; row < usage.rowCount(); ++row) {
        const QModelIndex group = usage.index(row, 0);
        if (group.data(id) == FieldKey::backupID)
            continue;
        ++figures.groups;
        const qlonglong minutes = group.data(reserved).toLongLong();
        const qint64 missing =
            ::missingDays(minutes, group.data(recorded).toLongLong(), group.data(remaining).toLongLong());
        if (missing < 0)
            figures.unknownGroups += minutes > 0 ? 1 : 0;
        else if (missing > 0)
            ++figures.shortGroups;
        figures.missingDays = std::max(figures.missingDays, static_cast<int>(missing));
    }
    const QVariantList entries = volumes.toList();
    double kilobytes = 0;
    for (const QVariant &entry : entries)
        kilobytes += std::max(entry.toMap().value(FieldKey::volumeAvailableSize).toDouble(), 0.0);
    if (!entries.isEmpty())
        figures.freeBytes = kilobytes * 1024;
    return figures;
}
