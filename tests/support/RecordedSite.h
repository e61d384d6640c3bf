#pragma once

#include "Station.h"
#include "VolumeSource.h"
#include "groups/GroupStore.h"
#include "store/Database.h"

#include <QDir>
#include <QFile>
#include <QMutex>
#include <QTemporaryDir>

#include <memory>
#include <stdexcept>

/// Volumes that a test takes away and gives back, each a folder below a temporary one; on any thread.
struct SiteVolumes
{
    QMutex mutex;
    QList<Volume> list;
    int looks = 0; ///< at where a path lies

    int looksSoFar()
    {
        const QMutexLocker lock(&mutex);
        return looks;
    }
    void set(const QList<Volume> &volumes)
    {
        const QMutexLocker lock(&mutex);
        list = volumes;
    }
};

/// Shows a station what SiteVolumes has: a path lies on the volume with the longest path above it.
class SiteVolumeSource : public VolumeSource
{
public:
    explicit SiteVolumeSource(std::shared_ptr<SiteVolumes> volumes)
        : m_volumes(std::move(volumes))
    {
    }

    QList<Volume> volumes() const override
    {
        const QMutexLocker lock(&m_volumes->mutex);
        return m_volumes->list;
    }

    std::optional<Volume> volumeHolding(const QString &path) const override
    {
        std::optional<Volume> holder;
        {
            const QMutexLocker lock(&m_volumes->mutex);
            ++m_volumes->looks;
        }
        for (const Volume &volume : volumes()) {
            const bool isAbove = path == volume.path || path.startsWith(volume.path + u'/');
            if (isAbove && (!holder || volume.path.size() > holder->path.size()))
                holder = volume;
        }
        return holder;
    }

private:
    std::shared_ptr<SiteVolumes> m_volumes;
};

/// A station's data folder and real folders of recordings in a temporary folder, on volumes of the test's making. All
/// file sizes are real, all files sparse.
class RecordedSite
{
public:
    static constexpr qint64 megabyte = 1024 * 1024;

    RecordedSite()
    {
        setFree(600 * megabyte);
        QDir().mkpath(disk());
    }

    QString dataFolder() const { return root() + QStringLiteral("/data"); }
    QString disk() const { return root() + QStringLiteral("/disk"); } ///< a volume; below the other one
    std::shared_ptr<SiteVolumes> volumes() const { return m_volumes; }
    Volume system() const { return {root(), QStringLiteral("System"), 1000 * megabyte, 500 * megabyte, true, false}; }

    void setFree(qint64 bytes)
    {
        m_volumes->set({system(), {disk(), QStringLiteral("Disk"), 1000 * megabyte, bytes, false, false}});
    }
    /// The disk's folder lies on the system's volume now.
    void unmountDisk() { m_volumes->set({system()}); }

    QString makePath(const QString &name)
    {
        const QString path = disk() + u'/' + name;
        QDir().mkpath(path);
        return path;
    }

    /// A group "id" with that folder and name, and a reserved time in days (0: none).
    void addGroup(const QString &id, const QStringList &paths, int reservedDays = 0)
    {
        Database database(dataFolder());
        GroupStore(database).insert(group(id, paths, reservedDays));
    }

    static RecordingGroup group(const QString &id, const QStringList &paths, int reservedDays = 0)
    {
        RecordingGroup group;
        group.id = id;
        group.name = id;
        group.folder = id;
        group.reservedMinutes = reservedDays * 24 * 60;
        group.isReservedTimeEnabled = reservedDays > 0;
        for (const QString &path : paths)
            group.paths.append({path, PathKind::Local, 0, false});
        return group;
    }

    static QString dayFolder(const QString &path, const QString &group, const QString &camera, const QDate &day)
    {
        return QStringList{path, group, camera, day.toString(Qt::ISODate)}.join(u'/');
    }

    /// Makes the file, or gives it another size.
    static void write(const QString &folder, const QString &name, qint64 bytes)
    {
        QDir().mkpath(folder);
        QFile file(folder + u'/' + name);
        if (!file.open(QIODevice::ReadWrite) || !file.resize(bytes))
            throw std::runtime_error("a file of the test could not be written");
    }

    StationSettings settings(const QDate &today) const
    {
        StationSettings settings{dataFolder(), {}, std::make_unique<SiteVolumeSource>(m_volumes)};
        settings.usage.tellInterval = std::chrono::milliseconds(10);
        settings.usage.volumeInterval = std::chrono::milliseconds(20);
        settings.usage.settleTime = std::chrono::milliseconds(10);
        settings.usage.today = [today] { return today; };
        return settings;
    }

private:
    QString root() const { return QDir(m_folder.path()).canonicalPath(); }

    QTemporaryDir m_folder;
    std::shared_ptr<SiteVolumes> m_volumes = std::make_shared<SiteVolumes>();
};
