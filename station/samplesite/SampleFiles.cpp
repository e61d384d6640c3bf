#include "SampleFiles.h"

#include "Directories.h"
#include "StationProtocol.h"
#include "groups/FolderNames.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <cerrno>
#include <system_error>
#include <utility>

namespace {
constexpr quint32 firstSeed = 20;

QString failure()
{
    return createFailure(std::error_code(errno, std::generic_category()));
}
} // namespace

SampleFiles::SampleFiles(QString folder)
    : m_folder(std::move(folder))
{
}

SampleFiles::~SampleFiles()
{
    if (!m_written.isEmpty())
        QDir(m_written).removeRecursively();
}

QString SampleFiles::pathIn(const QString &folder)
{
    return folder + QStringLiteral("/recordings");
}

QString SampleFiles::write(const QList<SampleGroup> &groups, const QDateTime &now)
{
    m_written = m_folder + QStringLiteral(".unfinished");
    QDir(m_written).removeRecursively(); // of a start that was cut off
    quint32 seed = firstSeed;
    for (const SampleGroup &group : groups) {
        for (const QString &camera : group.cameras) {
            for (int daysAgo = 0; daysAgo < group.recordedDays; ++daysAgo) {
                const QDate day = now.date().addDays(-daysAgo);
                const QString folder = QStringList{pathIn(m_written), folderName(group.name), folderName(camera),
                                                   day.toString(Qt::ISODate)}
                                           .join(u'/');
                const QString refusal = writeDay(folder, sampleFiles(group, day, now, ++seed));
                if (!refusal.isEmpty())
                    return refusal;
            }
        }
    }
    return {};
}

QString SampleFiles::writeDay(const QString &folder, const QList<SampleFile> &files)
{
    if (QThread::currentThread()->isInterruptionRequested())
        return StationReturnCode::InternalError;
    errno = 0;
    if (!QDir().mkpath(folder))
        return failure();
    for (const SampleFile &sample : files) {
        QFile file(folder + u'/' + sample.name);
        if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly) || !file.resize(sample.bytes)
            || !file.setFileTime(sample.writtenAt, QFileDevice::FileModificationTime))
            return failure();
    }
    return {};
}

bool SampleFiles::moveToPlace()
{
    // A folder of that name, even an empty one, is somebody's.
    if (QFileInfo::exists(m_folder) || !QDir().rename(m_written, m_folder))
        return false;
    m_written = m_folder;
    return true;
}

void SampleFiles::keep()
{
    m_written.clear();
}
