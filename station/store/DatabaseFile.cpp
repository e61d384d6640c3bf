#include "DatabaseFile.h"

#include "StationLog.h"
#include "files/PrivateFolder.h"
#include "groups/WriteTrial.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <cerrno>
#include <map>
#include <mutex>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {
constexpr mode_t fileMode = 0600;
constexpr qsizetype headerSize = 100; // of SQLite's files
constexpr auto magic = "SQLite format 3"; // their first bytes

constexpr auto markText =
    "A recording station keeps its data in this folder. Where station.db is missing beside this file, "
    "the station's database was lost.\n";

DatabaseError failed(DatabaseTrouble trouble, const QString &what)
{
    return {trouble, what};
}

DatabaseError systemFailure(const QString &what, int error)
{
    const QString text = QStringLiteral("%1: %2").arg(what, qt_error_string(error));
    switch (error) {
    case EACCES:
    case EPERM:
        return failed(DatabaseTrouble::NotAllowed, text);
    case EROFS:
        return failed(DatabaseTrouble::ReadOnly, text);
    case ENOSPC:
    case EDQUOT:
        return failed(DatabaseTrouble::Full, text);
    default:
        return failed(DatabaseTrouble::Failed, text);
    }
}

bool lookAt(const QString &path, struct stat &facts)
{
    return lstat(QFile::encodeName(path).constData(), &facts) == 0;
}

/// Closing any descriptor of a file drops every lock that SQLite holds on it in this process: one for each file stays.
int keptDescriptor(const QString &path, dev_t device, ino_t inode)
{
    static std::mutex mutex;
    static std::map<std::pair<dev_t, ino_t>, int> kept;
    const std::lock_guard lock(mutex);
    const auto found = kept.find({device, inode});
    if (found != kept.end())
        return found->second;
    const int descriptor = open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (descriptor >= 0)
        kept.emplace(std::pair(device, inode), descriptor);
    return descriptor;
}
} // namespace

DatabaseFile::DatabaseFile(const QString &folder)
    : m_folder(folder)
    , m_path(pathIn(folder))
{
}

DatabaseFile::~DatabaseFile()
{
    if (m_mark >= 0)
        close(m_mark);
}

QString DatabaseFile::pathIn(const QString &folder)
{
    return QDir(folder).filePath(QStringLiteral("station.db"));
}

qint64 DatabaseFile::writeAheadBytes() const
{
    struct stat facts = {};
    return lookAt(writeAheadPath(), facts) ? facts.st_size : 0;
}

void DatabaseFile::makeFolder() const
{
    const QString failure = QStringLiteral("The data folder %1 cannot be made").arg(m_folder);
    const QFileInfo info(m_folder);
    if (info.isDir())
        return;
    if (info.exists())
        throw failed(DatabaseTrouble::Failed, QStringLiteral("The data folder %1 is no folder").arg(m_folder));
    if (!PrivateFolder::make(QDir::cleanPath(info.absoluteFilePath())))
        throw systemFailure(failure, errno);
}

bool DatabaseFile::isThere() const
{
    struct stat facts = {};
    if (!lookAt(m_path, facts)) {
        if (errno != ENOENT && errno != ENOTDIR)
            throw systemFailure(QStringLiteral("The database %1 cannot be looked at").arg(m_path), errno);
        struct stat trace = {};
        const bool wasThere =
            lookAt(QDir(m_folder).filePath(QStringLiteral("station-data")), trace) || lookAt(writeAheadPath(), trace);
        if (wasThere)
            throw failed(DatabaseTrouble::Missing, QStringLiteral("The database %1 is missing").arg(m_path));
        return false;
    }
    if (!S_ISREG(facts.st_mode))
        throw failed(DatabaseTrouble::Damaged, QStringLiteral("%1 is no plain file").arg(m_path));
    if (facts.st_uid != geteuid()) {
        throw failed(
            DatabaseTrouble::NotOwned,
            QStringLiteral("its owner has the number %1, the station's user %2").arg(facts.st_uid).arg(geteuid()));
    }
    if (facts.st_size == 0)
        throw failed(DatabaseTrouble::Damaged, QStringLiteral("the file is empty"));
    if (facts.st_size < headerSize) // SQLite takes a file of one byte for a new one
        throw failed(DatabaseTrouble::Damaged, QStringLiteral("the file is cut off"));
    return true;
}

bool DatabaseFile::isOpenToOthers() const
{
    struct stat facts = {};
    return lookAt(m_path, facts) && S_ISREG(facts.st_mode) && (facts.st_mode & (S_IRWXG | S_IRWXO)) != 0;
}

void DatabaseFile::closeToOthers() const
{
    if (isOpenToOthers())
        chmod(QFile::encodeName(m_path).constData(), fileMode);
}

void DatabaseFile::place(const QString &made) const
{
    const QByteArray from = QFile::encodeName(made);
    const QByteArray to = QFile::encodeName(m_path);
    const bool isPlaced = link(from.constData(), to.constData()) == 0 || errno == EEXIST
        || rename(from.constData(), to.constData()) == 0; // some file systems know no links
    const int error = errno;
    unlink(from.constData());
    if (!isPlaced)
        throw systemFailure(QStringLiteral("The database %1 cannot be made").arg(m_path), error);
}

bool DatabaseFile::enterUse()
{
    const QByteArray path = QFile::encodeName(QDir(m_folder).filePath(QStringLiteral("station-data")));
    m_mark = open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, fileMode);
    if (m_mark < 0)
        m_mark = open(path.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW); // nothing can be written here
    if (m_mark < 0)
        return writeAheadBytes() > 0;
    struct stat facts = {};
    if (fstat(m_mark, &facts) == 0 && facts.st_size == 0) {
        [[maybe_unused]] const ssize_t written = write(m_mark, markText, qstrlen(markText));
    }
    const bool isAlone = flock(m_mark, LOCK_EX | LOCK_NB) == 0;
    const bool wasLeftOpen = isAlone && writeAheadBytes() > 0;
    flock(m_mark, LOCK_SH | LOCK_NB);
    return wasLeftOpen;
}

DatabaseFile::Identity DatabaseFile::identityOf(const QString &path)
{
    struct stat facts = {};
    if (stat(QFile::encodeName(path).constData(), &facts) != 0)
        return {};
    return {facts.st_dev, facts.st_ino};
}

DatabaseFile::Header DatabaseFile::readHeader() const
{
    unsigned char bytes[headerSize] = {};
    if (m_content < 0 || pread(m_content, bytes, headerSize, 0) != headerSize
        || qstrncmp(reinterpret_cast<const char *>(bytes), magic, qstrlen(magic)) != 0)
        return {};
    constexpr int changes = 24;
    constexpr int applicationId = 68;
    return {qFromBigEndian<quint32>(bytes + applicationId), qFromBigEndian<quint32>(bytes + changes)};
}

void DatabaseFile::remember()
{
    m_folderIdentity = identityOf(m_folder);
    m_fileIdentity = identityOf(m_path);
    m_writeAheadIdentity = identityOf(writeAheadPath());
    m_content = keptDescriptor(m_path, m_fileIdentity.device, m_fileIdentity.inode);
    m_header = readHeader();
}

void DatabaseFile::verify() const
{
    const auto refuse = [this](const QString &what) { throw failed(DatabaseTrouble::Replaced, what.arg(m_path)); };
    if (identityOf(m_folder) != m_folderIdentity || identityOf(m_path) != m_fileIdentity)
        refuse(QStringLiteral("%1 is not the file that was opened"));
    if (m_writeAheadIdentity != Identity() && identityOf(writeAheadPath()) != m_writeAheadIdentity)
        refuse(QStringLiteral("%1-wal is not the file that was opened"));
    if (m_content < 0)
        return;
    const Header now = readHeader();
    const bool isAnother = m_header.id != 0 && now.id != m_header.id;
    if (isAnother || now.changes < m_header.changes) {
        setWriteAheadAside();
        refuse(QStringLiteral("%1 was written over"));
    }
    m_header = now;
}

void DatabaseFile::setWriteAheadAside() const
{
    if (m_writeAheadIdentity == Identity() || identityOf(writeAheadPath()) != m_writeAheadIdentity)
        return;
    const QString aside = m_path + QStringLiteral("-wal.replaced-")
        + QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMddHHmmss"));
    if (QFile::rename(writeAheadPath(), aside))
        qCWarning(stationLog, "The write-ahead file of the database that was written over is now %s.",
                  qPrintable(aside));
}

void DatabaseFile::requireWritable() const
{
    for (const auto &[path, mode] : {std::pair(m_path, W_OK), std::pair(m_folder, W_OK | X_OK)}) {
        if (faccessat(AT_FDCWD, QFile::encodeName(path).constData(), mode, AT_EACCESS) != 0)
            throw systemFailure(path, errno);
    }
}

std::optional<DatabaseError> DatabaseFile::whyNotWritable() const
{
    if (const std::optional<DatabaseError> disk = whyDiskTakesNothing())
        return disk;
    if (access(QFile::encodeName(m_path).constData(), W_OK) != 0 && errno != ENOENT)
        return systemFailure(m_path, errno);
    if (const int error = WriteTrial::tryFolder(QFile::encodeName(m_folder).toStdString()))
        return systemFailure(m_folder, error);
    return {};
}

std::optional<DatabaseError> DatabaseFile::whyDiskTakesNothing() const
{
    constexpr unsigned long leastSpace = 256 * 1024; // bytes; SQLite's files beside the database take some
    struct statvfs disk = {};
    if (statvfs(QFile::encodeName(m_folder).constData(), &disk) != 0)
        return systemFailure(m_folder, errno);
    if ((disk.f_flag & ST_RDONLY) != 0)
        return systemFailure(m_folder, EROFS);
    const auto available = geteuid() == 0 ? disk.f_bfree : disk.f_bavail; // some of it is kept for root
    if (available * disk.f_frsize < leastSpace)
        return systemFailure(m_folder, ENOSPC);
    return {};
}
