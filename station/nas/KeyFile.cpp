#include "KeyFile.h"

#include <QDir>
#include <QFileInfo>

KeyFile KeyFile::of(const QString &setting, const QString &dataFolder)
{
    if (!setting.isEmpty())
        return {setting, Keeper::Station};
    const QString credentials = QFile::decodeName(qgetenv("CREDENTIALS_DIRECTORY"));
    if (credentials.startsWith(u'/')) {
        const QString credential = QDir(credentials).filePath(QStringLiteral("recording-station.key"));
        if (QFileInfo::exists(credential))
            return {credential, Keeper::System};
    }
    return {QDir(dataFolder).filePath(QStringLiteral("nas.key")), Keeper::Station};
}
