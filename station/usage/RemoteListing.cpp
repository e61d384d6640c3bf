#include "RemoteListing.h"

#include "RecordingIndex.h"

#include <QSet>

#include <utility>

namespace {
constexpr qsizetype filesAtOnce = 5000; // others wait for the database meanwhile

QStringList without(QStringList names, const QStringList &there)
{
    const QSet<QString> kept(there.cbegin(), there.cend());
    names.removeIf([&kept](const QString &name) { return kept.contains(name); });
    return names;
}

void applyFiles(RecordingIndex &index, qint64 place, const QList<RemoteDay> &days)
{
    QList<DayChange> changes;
    qsizetype files = 0;
    for (const RemoteDay &day : days) {
        const DayFolder folder{place, day.camera, day.day};
        if (!day.isThere) {
            index.removeDays(place, day.camera, {day.day});
            continue;
        }
        const std::optional<QHash<QString, qint64>> before = index.files(folder);
        DayChange change = difference(folder, before.value_or(QHash<QString, qint64>()), day.sizes);
        if (before && change.written.isEmpty() && change.removed.isEmpty())
            continue;
        files += change.written.size() + change.removed.size();
        changes.append(std::move(change));
        if (files >= filesAtOnce) {
            index.apply(std::exchange(changes, {}));
            files = 0;
        }
    }
    if (!changes.isEmpty())
        index.apply(changes);
}
} // namespace

void applyListing(RecordingIndex &index, const RemoteListing &listing)
{
    if (listing.cameras) {
        const QStringList gone = without(index.cameras(listing.place), *listing.cameras);
        if (!gone.isEmpty())
            index.removeCameras(listing.place, gone);
    }
    for (auto days = listing.days.cbegin(); days != listing.days.cend(); ++days) {
        const QStringList gone = without(index.days(listing.place, days.key()), *days);
        if (!gone.isEmpty())
            index.removeDays(listing.place, days.key(), gone);
    }
    applyFiles(index, listing.place, listing.files);
    if (listing.readAt.isValid())
        index.markRead(listing.place, listing.readAt);
}
