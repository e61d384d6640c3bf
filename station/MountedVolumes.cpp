#include "MountedVolumes.h"

#include "StationLog.h"
#include "StationVocabulary.h"
#include "disk/DiskThreads.h"

#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QStorageInfo>
#include <QThread>

#include <algorithm>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <system_error>
#include <utility>

namespace {
using Clock = std::chrono::steady_clock;

MountedVolumes::Look lookAtMount(const MountRecord &mount)
{
    // The whole of a file system is a folder; a part of it may be a file.
    if (mount.root != u'/' && !QFileInfo(mount.mountPoint).isDir())
        return {true, {}};
    const QStorageInfo info(mount.mountPoint);
    const bool isRoot = mount.mountPoint == u'/';
    Volume volume;
    volume.path = mount.mountPoint;
    volume.name = volumeName(mount, info.name());
    volume.isSystem = isSystemMount(mount);
    volume.isReadOnly = mount.isReadOnly;
    // Where a changed root hides the mount of a path, Qt names no device and may take the path itself for a mount.
    const bool isMounted = info.rootPath() == mount.mountPoint && !info.device().isEmpty();
    if (isMounted && info.isValid() && info.isReady()) {
        volume.bytesTotal = info.bytesTotal();
        volume.bytesAvailable = info.bytesAvailable();
        volume.bytesFree = info.bytesFree();
    } else if (isRoot) {
        std::error_code error;
        const std::filesystem::space_info space = std::filesystem::space("/", error);
        volume.bytesTotal = error ? 0 : static_cast<qint64>(space.capacity);
        volume.bytesAvailable = error ? 0 : static_cast<qint64>(space.available);
        volume.bytesFree = error ? -1 : static_cast<qint64>(space.free);
    }
    if (volume.bytesTotal <= 0 && !isRoot)
        return {};
    return {false, volume};
}

/// The same for one mount as long as it is mounted.
QString keyOf(const MountRecord &mount)
{
    return QStringLiteral("%1 %2 %3").arg(mount.id).arg(mount.device, mount.mountPoint);
}

/// The volume that is always there, whether it answers or not.
Volume silentRoot(const MountRecord &mount)
{
    return {mount.mountPoint, volumeName(mount, {}), 0, 0, true, mount.isReadOnly};
}
} // namespace

/// What is known of the mounts, and who is being asked.
struct MountedVolumes::Looks : std::enable_shared_from_this<Looks>
{
    struct Mount
    {
        QString path;
        bool isAsked = false; // a thread is at it
        Clock::time_point askedAt;
        Look answer;
        QDateTime silentSince; // valid while it does not answer
    };

    LookAt lookAt;
    Limits limits;
    std::mutex mutex;
    std::condition_variable answered;
    QHash<QString, Mount> mounts;

    void ask(const MountRecord &mount);
    void take(const MountRecord &mount, const Look &answer);
    void askAll(const QList<MountRecord> &list, Clock::time_point deadline);
    void forgetOthers(const MountTable &table);
    /// A volume and its device, as the table of mounts writes it.
    using Answers = QList<std::pair<QString, Volume>>;
    Answers answers(MountTable table, const std::optional<QSet<QString>> &devices = {});
};

/// To be called with the mutex held.
void MountedVolumes::Looks::ask(const MountRecord &mount)
{
    Mount &known = mounts[keyOf(mount)];
    known.path = mount.mountPoint;
    const bool isTooEarly = known.silentSince.isValid() && Clock::now() - known.askedAt < limits.pause;
    if (known.isAsked || isTooEarly)
        return;
    known.isAsked = true;
    known.askedAt = Clock::now();
    try {
        DiskThreads::start([looks = shared_from_this(), mount] {
            Look answer;
            try {
                answer = looks->lookAt(mount);
            } catch (...) { // as one that does not tell its size
            }
            looks->take(mount, answer);
        });
    } catch (const std::system_error &) {
        known.isAsked = false; // no thread was free: it did not answer
    }
}

void MountedVolumes::Looks::take(const MountRecord &mount, const Look &answer)
{
    const std::lock_guard lock(mutex);
    const auto known = mounts.find(keyOf(mount));
    if (known == mounts.end())
        return; // it was unmounted meanwhile
    known->isAsked = false;
    known->answer = answer;
    answered.notify_all();
    if (known->silentSince.isValid() && !answer.volume && !answer.isFile)
        return; // it failed after the limit, and would again
    if (known->silentSince.isValid())
        qCInfo(stationLog, "The volume %s answers again.", qPrintable(known->path));
    known->silentSince = {};
}

void MountedVolumes::Looks::askAll(const QList<MountRecord> &list, Clock::time_point deadline)
{
    std::unique_lock lock(mutex);
    for (const MountRecord &mount : list)
        ask(mount);
    const auto isWaitedFor = [this](const MountRecord &mount) {
        const Mount &known = mounts[keyOf(mount)];
        return known.isAsked && !known.silentSince.isValid();
    };
    constexpr std::chrono::milliseconds look{20}; // between two looks at whether this thread shall end
    while (std::any_of(list.cbegin(), list.cend(), isWaitedFor)) {
        if (Clock::now() >= deadline || QThread::currentThread()->isInterruptionRequested())
            break;
        answered.wait_until(lock, std::min(deadline, Clock::now() + look));
    }
    for (const MountRecord &mount : list) {
        Mount &known = mounts[keyOf(mount)];
        if (!known.isAsked || known.silentSince.isValid() || Clock::now() < deadline)
            continue;
        known.silentSince = QDateTime::currentDateTimeUtc();
        qCWarning(stationLog, "The volume %s does not answer.", qPrintable(known.path));
    }
}

/// What is no mount any more; a thread that hangs there finds nothing to tell.
void MountedVolumes::Looks::forgetOthers(const MountTable &table)
{
    QSet<QString> keys;
    for (const MountRecord &mount : table.records())
        keys.insert(keyOf(mount));
    const std::lock_guard lock(mutex);
    mounts.removeIf([&keys](const auto &known) { return !keys.contains(known.key()); });
}

/// One for each device. @param devices that are asked; none: all
MountedVolumes::Looks::Answers MountedVolumes::Looks::answers(MountTable table,
                                                              const std::optional<QSet<QString>> &devices)
{
    forgetOthers(table);
    const Clock::time_point deadline = Clock::now() + limits.answer;
    while (true) {
        QList<MountRecord> wanted = table.volumes();
        if (devices)
            wanted.removeIf([&devices](const MountRecord &mount) { return !devices->contains(mount.device); });
        askAll(wanted, deadline);
        const std::lock_guard lock(mutex);
        Answers answers;
        bool isAllFolders = true;
        for (const MountRecord &mount : std::as_const(wanted)) {
            const Mount known = mounts.value(keyOf(mount));
            const bool isSilent = known.isAsked || known.silentSince.isValid();
            if (!isSilent && known.answer.isFile) {
                table.markAsFile(mount.id); // another mount of that file system may be one
                isAllFolders = false;
            } else if (!isSilent && known.answer.volume) {
                answers.append({mount.device, *known.answer.volume});
            } else if (mount.mountPoint == u'/') {
                answers.append({mount.device, silentRoot(mount)});
            }
        }
        if (isAllFolders)
            return answers;
    }
}

MountedVolumes::MountedVolumes()
    : MountedVolumes(ReadTable())
{
}

MountedVolumes::MountedVolumes(ReadTable readTable, LookAt lookAt)
    : MountedVolumes(std::move(readTable), std::move(lookAt), Limits())
{
}

MountedVolumes::MountedVolumes(ReadTable readTable, LookAt lookAt, Limits limits)
    : m_readTable(readTable ? std::move(readTable) : MountTable::ofThisMachine)
    , m_looks(std::make_shared<Looks>())
{
    m_looks->lookAt = lookAt ? std::move(lookAt) : lookAtMount;
    m_looks->limits = limits;
}

MountedVolumes::~MountedVolumes() = default;

QList<Volume> MountedVolumes::volumes() const
{
    QList<Volume> volumes;
    for (const auto &[device, volume] : m_looks->answers(m_readTable()))
        volumes.append(volume);
    return volumes;
}

std::optional<Volume> MountedVolumes::volumeHolding(const QString &path) const
{
    return volumesHolding({path}).front();
}

QList<std::optional<Volume>> MountedVolumes::volumesHolding(const QStringList &paths) const
{
    const MountTable table = m_readTable();
    QList<const MountRecord *> holders;
    QSet<QString> devices;
    for (const QString &path : paths) {
        holders.append(&table.holding(path));
        devices.insert(holders.back()->device);
    }
    QHash<QString, Volume> byDevice;
    for (const auto &[device, volume] : m_looks->answers(table, devices))
        byDevice.insert(device, volume);
    QList<std::optional<Volume>> volumes;
    for (const MountRecord *holder : std::as_const(holders)) {
        const auto found = byDevice.constFind(holder->device);
        volumes.append(found == byDevice.cend() ? std::nullopt : std::optional(*found));
        if (volumes.back())
            volumes.back()->isReadOnly = holder->isReadOnly; // one file system can be mounted both ways
    }
    return volumes;
}

bool MountedVolumes::isSilent(const QString &path) const
{
    const MountTable table = m_readTable();
    const QString device = table.holding(path).device;
    const std::lock_guard lock(m_looks->mutex);
    const QList<MountRecord> &records = table.records();
    return std::any_of(records.cbegin(), records.cend(), [this, &device](const MountRecord &mount) {
        return mount.device == device && m_looks->mounts.value(keyOf(mount)).silentSince.isValid();
    });
}

QList<StationTrouble> MountedVolumes::troubles() const
{
    QList<StationTrouble> troubles;
    const std::lock_guard lock(m_looks->mutex);
    for (const Looks::Mount &mount : std::as_const(m_looks->mounts)) {
        if (mount.silentSince.isValid()) {
            troubles.append(
                {StationAlarmKind::VolumeNotAnswering, StationTrouble::Severity::Error, mount.path,
                 QStringLiteral("The volume %1 does not answer.").arg(mount.path),
                 QStringLiteral("Check the disk, or the connection to the server that it is on; if it is gone "
                                "for good, unmount it."),
                 mount.silentSince});
        }
    }
    std::sort(troubles.begin(), troubles.end(),
              [](const StationTrouble &left, const StationTrouble &right) { return left.subject < right.subject; });
    return troubles;
}
