#include "FolderLock.h"

#include "LocalEndpoint.h"

#include <QFile>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
QString systemError()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

/// For those who find the folder taken. On a disk that takes nothing, they do without.
void writeHolder(const OpenFile &folder, const QString &path)
{
    const QByteArray name = QFile::encodeName(path.section(u'/', -1));
    const OpenFile file(openat(folder.get(), name.constData(),
                               O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, S_IRUSR | S_IWUSR));
    const QByteArray holder = programAndProcess().toUtf8() + '\n';
    if (file.isOpen())
        static_cast<void>(!write(file.get(), holder.constData(), static_cast<size_t>(holder.size())));
}
} // namespace

FolderLock::FolderLock(const QString &folder)
    : m_folder(open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    if (!m_folder.isOpen()) {
        m_reason = QStringLiteral("The folder %1 cannot be opened: %2.").arg(folder, systemError());
        return;
    }
    if (flock(m_folder.get(), LOCK_EX | LOCK_NB) != 0) {
        m_isTaken = errno == EWOULDBLOCK;
        m_reason = m_isTaken ? QStringLiteral("The data folder %1 is in use by %2.").arg(folder, stationHolder(folder))
                             : QStringLiteral("The folder %1 cannot be locked: %2.").arg(folder, systemError());
        return;
    }
    m_isHeld = true;
    writeHolder(m_folder, stationHolderPath(folder));
}
