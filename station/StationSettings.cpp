#include "StationSettings.h"

#include <QFile>

QString defaultStationFolder()
{
    const QString name = QStringLiteral("/recording-station");
    const QString dataHome = QFile::decodeName(qgetenv("XDG_DATA_HOME"));
    if (dataHome.startsWith(u'/')) // a relative one is to be ignored
        return dataHome + name;
    const QString home = QFile::decodeName(qgetenv("HOME"));
    return home.startsWith(u'/') ? home + QStringLiteral("/.local/share") + name : QString();
}
