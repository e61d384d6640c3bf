#include "SampleFiles.h"

#include "Directories.h"
#include "StationVocabulary.h"
#include "files/PrivateFolder.h"
#include "groups/FolderNames.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QThread>
#include <QUuid>

#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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
        removeTree(m_written);
}

QString SampleFiles::pathIn(const QString &folder)
{
    return folder + QStringLiteral("/recordings");
}

QString SampleFiles::write(const QList<SampleGroup> &groups, const QDateTime &now)
{
    const QString beside = m_folder + QStringLiteral(".unfinished");
    removeLeftOvers(beside);
    const QFileInfo place(beside + u'-' + QUuid::createUuid().toString(QUuid::Id128));
    m_written = place.filePath();
    errno = 0;
    const PrivateFolder dataFolder(place.path());
    const PrivateFolder written = dataFolder.folder(place.fileName());
    const PrivateFolder recordings = written.folder(QFileInfo(pathIn(m_written)).fileName());
    quint32 seed = firstSeed;
    for (const SampleGroup &group : groups) {
        const PrivateFolder groupFolder = recordings.folder(folderName(group.name));
        for (const QString &camera : group.cameras) {
            const PrivateFolder cameraFolder = groupFolder.folder(folderName(camera));
            for (int daysAgo = 0; daysAgo < group.recordedDays; ++daysAgo) {
                const QDate day = now.date().addDays(-daysAgo);
                const PrivateFolder dayFolder = cameraFolder.folder(day.toString(Qt::ISODate));
                const QString refusal =
                    dayFolder.isOpen() ? writeDay(dayFolder, sampleFiles(group, day, now, ++seed)) : failure();
                if (!refusal.isEmpty())
                    return refusal;
            }
        }
    }
    return {};
}

/// Another station may be writing into one that is young.
void SampleFiles::removeLeftOvers(const QString &place)
{
    constexpr qint64 longestWriting = 24 * 60 * 60; // seconds
    const QFileInfo name(place);
    const QFileInfoList found = QDir(name.path()).entryInfoList({name.fileName() + QStringLiteral("-*")}, QDir::Dirs);
    for (const QFileInfo &folder : found) {
        if (folder.lastModified().secsTo(QDateTime::currentDateTime()) > longestWriting)
            removeTree(folder.filePath());
    }
}

QString SampleFiles::writeDay(const PrivateFolder &folder, const QList<SampleFile> &files)
{
    if (QThread::currentThread()->isInterruptionRequested())
        return StationReturnCode::InternalError;
    for (const SampleFile &sample : files) {
        const OpenFile file = folder.newFile(sample.name);
        const timespec written{static_cast<time_t>(sample.writtenAt.toSecsSinceEpoch()), 0};
        const timespec times[] = {{0, UTIME_OMIT}, written};
        if (!file.isOpen() || ftruncate(file.get(), sample.bytes) != 0 || futimens(file.get(), times) != 0)
            return failure();
    }
    return {};
}

bool SampleFiles::moveToPlace()
{
    // A folder of that name, even an empty one, is somebody's.
    const QFileInfo from(m_written);
    if (!PrivateFolder(from.path()).rename(from.fileName(), QFileInfo(m_folder).fileName()))
        return false;
    m_written = m_folder;
    return true;
}

void SampleFiles::keep()
{
    m_written.clear();
}
