#include "StationSettings.h"

#include <QStandardPaths>

QString defaultStationFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/recording-station");
}
