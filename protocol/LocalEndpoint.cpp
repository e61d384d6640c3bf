#include "LocalEndpoint.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/un.h>
#include <unistd.h>

namespace {
constexpr auto longestSocketPath = static_cast<qsizetype>(sizeof(sockaddr_un::sun_path)) - 1;
} // namespace

QString defaultStationFolder()
{
    const QString name = QStringLiteral("/recording-station");
    const QString dataHome = QFile::decodeName(qgetenv("XDG_DATA_HOME"));
    if (dataHome.startsWith(u'/')) // a relative one is to be ignored
        return dataHome + name;
    const QString home = QFile::decodeName(qgetenv("HOME"));
    return home.startsWith(u'/') ? home + QStringLiteral("/.local/share") + name : QString();
}

QString normalizedFolder(const QString &folder)
{
    QString rest;
    QString existing = QDir::cleanPath(QDir::current().absoluteFilePath(folder));
    while (!QFileInfo::exists(existing) && existing.lastIndexOf(u'/') > 0) {
        const qsizetype slash = existing.lastIndexOf(u'/');
        rest.prepend(existing.mid(slash));
        existing.truncate(slash);
    }
    const QString canonical = QFileInfo(existing).canonicalFilePath();
    return QDir::cleanPath((canonical.isEmpty() ? existing : canonical) + rest);
}

QString stationRuntimeFolder()
{
    const QString runtime = QFile::decodeName(qgetenv("XDG_RUNTIME_DIR"));
    if (runtime.startsWith(u'/'))
        return runtime + QStringLiteral("/recording-station");
    return QStringLiteral("/tmp/recording-station-%1").arg(getuid());
}

QStringList stationSocketPaths(const QString &folder)
{
    const QString normalized = normalizedFolder(folder);
    const QString beside = normalized + QStringLiteral("/station.socket");
    const QByteArray name = QCryptographicHash::hash(QFile::encodeName(normalized), QCryptographicHash::Sha256).toHex();
    const QString apart = QStringLiteral("%1/%2.socket").arg(stationRuntimeFolder(), QLatin1String(name.left(32)));
    return QFile::encodeName(beside).size() <= longestSocketPath ? QStringList{beside, apart} : QStringList{apart};
}

QString stationHolderPath(const QString &folder)
{
    return normalizedFolder(folder) + QStringLiteral("/station.holder");
}

QString stationHolder(const QString &folder)
{
    const QFileInfo info(stationHolderPath(folder));
    QFile file(info.filePath());
    constexpr qint64 longestName = 200;
    const bool isReadable = info.isFile() && !info.isSymLink() && file.open(QIODevice::ReadOnly);
    const QString holder = isReadable ? QString::fromUtf8(file.read(longestName)).simplified() : QString();
    return holder.isEmpty() ? QStringLiteral("another program") : holder;
}

QString programAndProcess()
{
    return QStringLiteral("%1 (process %2)")
        .arg(QCoreApplication::applicationName())
        .arg(QCoreApplication::applicationPid());
}
