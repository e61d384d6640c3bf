#include "NasFolderReader.h"

#include "RecordingIndex.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"

#include <QElapsedTimer>

#include <algorithm>
#include <functional>

namespace {
constexpr qsizetype newestDays = 2; // files are written into them

/// One part of a reading.
class Reader
{
public:
    Reader(const NasReadJob &job, std::chrono::milliseconds limit)
        : m_job(job)
        , m_client(job.logon, limit)
    {
        m_part.returnCode = ReturnCode::Success;
        m_part.listing.place = job.place;
        m_part.rest = job.tasks;
    }

    NasReadPart read(std::chrono::milliseconds time)
    {
        QElapsedTimer timer;
        timer.start();
        do {
            const NasReadTask task = m_part.rest.front();
            m_part.rest.pop_front();
            read(task);
            if (m_part.returnCode != ReturnCode::Success)
                return {m_part.returnCode, {}, {}, {}};
        } while (!m_part.rest.empty() && timer.elapsed() < time.count());
        return m_part;
    }

private:
    void read(const NasReadTask &task)
    {
        SmbPath folder = m_job.path;
        for (const QString &name : {m_job.folder, task.camera, task.day}) {
            if (!name.isEmpty())
                folder.folders.append(name);
        }
        const SmbListing listing = m_client.list(folder);
        const bool isMissing = listing.returnCode == StationReturnCode::DirectoryNotFound;
        if (listing.returnCode == StationReturnCode::DirectoryNotReadable) {
            m_part.unreadable.append(folder.folders.mid(m_job.path.folders.size()).join(u'/'));
        } else if (listing.returnCode != ReturnCode::Success && !isMissing) {
            m_part.returnCode = listing.returnCode;
        } else if (task.kind == NasReadTask::Kind::Place) {
            // Nothing recorded yet, or the whole path went away: then the recordings are not to be forgotten.
            if (isMissing)
                m_part.returnCode = m_client.list(m_job.path).returnCode;
            takeCameras(listing);
        } else if (task.kind == NasReadTask::Kind::Camera) {
            takeDays(task.camera, listing);
        } else {
            takeFiles(task, listing, !isMissing);
        }
    }

    static QStringList foldersIn(const SmbListing &listing)
    {
        QStringList names;
        for (const SmbEntry &entry : listing.entries) {
            if (entry.kind == SmbEntry::Kind::Folder)
                names.append(entry.name);
        }
        return names;
    }

    void takeCameras(const SmbListing &listing)
    {
        const QStringList cameras = foldersIn(listing);
        m_part.listing.cameras = cameras;
        for (const QString &camera : cameras)
            m_part.rest.push_back({NasReadTask::Kind::Camera, camera});
    }

    void takeDays(const QString &camera, const SmbListing &listing)
    {
        QStringList days = foldersIn(listing);
        days.removeIf([](const QString &name) { return !isDayFolder(name); });
        std::sort(days.begin(), days.end(), std::greater<>());
        m_part.listing.days.insert(camera, days);
        const QSet<QString> known = m_job.known.value(camera);
        for (qsizetype i = 0; i < days.size(); ++i) {
            if (m_job.isFull || i < newestDays || !known.contains(days.at(i)))
                m_part.rest.push_front({NasReadTask::Kind::Day, camera, days.at(i)});
        }
    }

    void takeFiles(const NasReadTask &task, const SmbListing &listing, bool isThere)
    {
        RemoteDay day{task.camera, task.day, isThere, {}};
        for (const SmbEntry &entry : listing.entries) {
            if (entry.kind == SmbEntry::Kind::File)
                day.sizes.insert(entry.name, entry.bytes);
        }
        m_part.listing.files.append(day);
    }

    const NasReadJob &m_job;
    SmbClient m_client;
    NasReadPart m_part;
};
} // namespace

NasReadPart readOn(const NasReadJob &job, std::chrono::milliseconds limit, std::chrono::milliseconds time)
{
    return Reader(job, limit).read(time);
}
