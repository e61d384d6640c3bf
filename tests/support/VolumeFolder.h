#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>

/// The path of @p name in a folder on one of this machine's volumes, where a station can record: beside the test, or
/// elsewhere if that lies in memory.
inline QString onAVolume(const QString &name)
{
    const QStringList folders{QCoreApplication::applicationDirPath(), QStringLiteral("/var/tmp"), QDir::homePath(),
                              QDir::rootPath()};
    for (const QString &folder : folders) {
        const QStorageInfo disk(folder);
        const bool isInMemory = disk.fileSystemType() == "tmpfs" || disk.fileSystemType() == "ramfs";
        const bool isRoot = disk.rootPath() == QDir::rootPath(); // a volume, whatever it is
        if ((!isInMemory || isRoot) && QFileInfo(folder).isWritable())
            return QDir(QFileInfo(folder).canonicalFilePath()).filePath(name);
    }
    qFatal("No folder of a volume can be written: neither %s", qPrintable(folders.join(QStringLiteral(" nor "))));
    return {};
}
