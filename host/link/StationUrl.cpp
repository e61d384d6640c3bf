#include "StationUrl.h"

#include <QtGlobal>

QString stationUrl(const QString &connect, const QString &dataFolder)
{
    if (!connect.isEmpty())
        return connect;
    if (!dataFolder.isEmpty())
        return QStringLiteral("local:") + dataFolder;
    return qEnvironmentVariable("RECORDING_CONNECT", QStringLiteral("local:"));
}
