#include "UsageSamples.h"

#include "SaturatedSum.h"
#include "ServerVocabulary.h"
#include "smb/SmbPath.h"

#include <QMap>
#include <QSet>

#include <limits>

namespace {
using Figure = std::optional<qint64>;

/// A sum that is not known once a part of it is not.
class Sum
{
public:
    void add(const Figure &part)
    {
        if (!part)
            m_total.reset();
        else if (m_total)
            m_total = saturatedSum(*m_total, *part);
    }
    const Figure &total() const { return m_total; }

private:
    Figure m_total = 0;
};

Figure bytesOf(const UsagePlace &place)
{
    if (!place.days)
        return {};
    qint64 bytes = 0;
    for (const DaySum &day : *place.days)
        bytes = saturatedSum(bytes, day.bytes);
    return bytes;
}

/// An entry of "VolumeChanged" has -1 for what is not known.
Figure figureIn(const QVariant &entry, const QString &key)
{
    const qint64 value = entry.toMap().value(key, -1).toLongLong();
    return value < 0 ? Figure() : Figure(value);
}

struct GroupSums
{
    Figure days; // on one of the group's entries
    Figure oneDayUsage;
    Sum availableKilobytes;
    Sum recordedBytes;
    Sum reservedMegabytes;
    int reservedMinutes = 0;
};

/// How long @p availableKilobytes last.
Figure remainingDays(const Figure &availableKilobytes, const Figure &oneDayUsage)
{
    if (!availableKilobytes || oneDayUsage.value_or(0) <= 0)
        return {};
    constexpr long double bytesPerKilobyte = 1024;
    const long double days =
        static_cast<long double>(*availableKilobytes) * bytesPerKilobyte / static_cast<long double>(*oneDayUsage);
    constexpr auto most = static_cast<long double>(std::numeric_limits<qint64>::max());
    return days < most ? static_cast<qint64>(days) : std::numeric_limits<qint64>::max();
}

UsageSample groupSample(const QString &id, const GroupSums &sums)
{
    UsageSample sample{{HistorySubject::Kind::RecordingGroup, id}};
    sample.figures[UsageSample::RecordedDays] = sums.days;
    sample.figures[UsageSample::RemainingDays] = remainingDays(sums.availableKilobytes.total(), sums.oneDayUsage);
    sample.figures[UsageSample::OneDayUsage] = sums.oneDayUsage;
    sample.figures[UsageSample::RecordedBytes] = sums.recordedBytes.total();
    sample.figures[UsageSample::ReservedMinutes] = sums.reservedMinutes;
    sample.figures[UsageSample::ReservedMegabytes] = sums.reservedMegabytes.total();
    return sample;
}

QList<UsageSample> groupSamples(const QList<UsagePlace> &places, const QVariantList &entries)
{
    QMap<QString, GroupSums> groups;
    for (const UsagePlace &place : places) {
        if (place.groupId.isEmpty())
            continue;
        GroupSums &sums = groups[place.groupId];
        sums.recordedBytes.add(bytesOf(place));
        sums.reservedMegabytes.add(place.reservedMegabytes);
        sums.reservedMinutes = place.reservedMinutes;
    }
    for (const QVariant &entry : entries) {
        const auto group = groups.find(entry.toMap().value(FieldKey::recordingGroupID).toString());
        if (group == groups.end())
            continue;
        if (const Figure days = figureIn(entry, FieldKey::volumeRecordedDays))
            group->days = saturatedSum(group->days.value_or(0), *days);
        if (const Figure usage = figureIn(entry, FieldKey::volumeOneDayUsage))
            group->oneDayUsage = saturatedSum(group->oneDayUsage.value_or(0), *usage);
        group->availableKilobytes.add(figureIn(entry, FieldKey::volumeAvailableSize));
    }
    QList<UsageSample> samples;
    for (auto group = groups.cbegin(); group != groups.cend(); ++group)
        samples.append(groupSample(group.key(), *group));
    return samples;
}

QString volumeOf(const UsagePlace &place)
{
    if (!place.isNas)
        return place.volume.path;
    const std::optional<SmbPath> share = SmbPath::parse(place.path);
    return share ? share->shareKey() : QString();
}

QSet<QString> sharesOfGroups(const QList<UsagePlace> &places)
{
    QSet<QString> shares;
    for (const UsagePlace &place : places) {
        if (place.isNas && !place.groupId.isEmpty())
            shares.insert(volumeOf(place));
    }
    return shares;
}

QList<UsageSample> volumeSamples(const QList<UsagePlace> &places, const QList<Volume> &mounted)
{
    const QSet<QString> shares = sharesOfGroups(places);
    QMap<QString, UsageSample> samples;
    QMap<QString, Sum> recorded;
    const auto take = [&](const QString &path, const Volume *volume) {
        UsageSample &sample = samples[path];
        sample.subject = {HistorySubject::Kind::Volume, path};
        if (volume && volume->bytesTotal > 0) {
            sample.figures[UsageSample::VolumeBytes] = volume->bytesTotal;
            sample.figures[UsageSample::AvailableBytes] = volume->bytesAvailable;
        }
        recorded[path];
    };
    for (const Volume &volume : mounted)
        take(volume.path, &volume);
    for (const UsagePlace &place : places) {
        const QString path = volumeOf(place);
        const bool isThere = place.isNas ? shares.contains(path) : place.storage == UsagePlace::Storage::Present;
        if (path.isEmpty() || (place.groupId.isEmpty() && !isThere))
            continue;
        const bool isShareThere = place.isNas && place.storage == UsagePlace::Storage::Present;
        take(path, isShareThere ? &place.volume : nullptr);
        recorded[path].add(bytesOf(place));
    }
    for (auto sample = samples.begin(); sample != samples.end(); ++sample)
        sample->figures[UsageSample::RecordedBytes] = recorded.value(sample.key()).total();
    return samples.values();
}
} // namespace

QList<UsageSample> samplesOf(const QList<UsagePlace> &places, const QVariantList &entries, const QList<Volume> &mounted)
{
    return QList<UsageSample>{UsageSample{}} + groupSamples(places, entries) + volumeSamples(places, mounted);
}
