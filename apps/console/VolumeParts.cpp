#include "VolumeParts.h"

#include "ServerVocabulary.h"
#include "StationVocabulary.h"

#include <algorithm>

namespace {
constexpr qsizetype mostGroups = 5; ///< that are parts of their own

struct Part
{
    QString kind;
    qint64 bytes = 0;
    QString id = {};
    QString name = {};
    int count = 0;
    qint64 told = bytes;

    bool isRecordings() const { return !id.isEmpty() || kind == u"backup" || kind == u"withoutGroup"; }
};

/// What is not known takes no part: it is among the others.
qint64 bytesIn(const QVariantMap &map, const QString &key)
{
    return std::max<qint64>(map.value(key).toLongLong(), 0);
}

QList<Part> groupsIn(const QVariantMap &volume, const QString &first)
{
    QList<Part> groups;
    for (const QVariant &entry : volume.value(StationKey::groups).toList()) {
        const QVariantMap group = entry.toMap();
        groups.append({QStringLiteral("group"), bytesIn(group, StationKey::recordedBytes),
                       group.value(FieldKey::recordingGroupID).toString(),
                       group.value(FieldKey::recordingGroupName).toString()});
    }
    std::stable_sort(groups.begin(), groups.end(), [&first](const Part &left, const Part &right) {
        if ((left.id == first) != (right.id == first))
            return left.id == first;
        return left.bytes > right.bytes;
    });
    return groups;
}

/// Recordings by the sizes of their files may come to more than what is taken: the largest are drawn smaller.
void takeOff(QList<Part> &parts, qint64 excess)
{
    while (excess > 0) {
        const auto largest = std::max_element(parts.begin(), parts.end(), [](const Part &left, const Part &right) {
            return (left.isRecordings() ? left.bytes : -1) < (right.isRecordings() ? right.bytes : -1);
        });
        if (largest == parts.end() || !largest->isRecordings() || largest->bytes == 0)
            return;
        const qint64 part = std::min(excess, largest->bytes);
        largest->bytes -= part;
        excess -= part;
    }
}

void foldGroups(QList<Part> &parts)
{
    const auto end =
        std::find_if_not(parts.begin(), parts.end(), [](const Part &part) { return part.kind == u"group"; });
    if (end - parts.begin() <= mostGroups)
        return;
    Part more{QStringLiteral("moreGroups")};
    for (auto part = parts.begin() + mostGroups; part != end; ++part) {
        more.bytes += part->bytes;
        more.told += part->told;
        ++more.count;
    }
    parts.erase(parts.begin() + mostGroups, end);
    parts.insert(mostGroups, more);
}
} // namespace

QVariantList volumeParts(const QVariantMap &volume, const QString &groupId)
{
    if (volume.value(StationKey::size).toLongLong() <= 0)
        return {};
    QList<Part> parts = groupsIn(volume, groupId);
    parts += {
        {QStringLiteral("backup"), bytesIn(volume, StationKey::backupBytes)},
        {QStringLiteral("withoutGroup"), bytesIn(volume, StationKey::withoutGroupBytes)},
    };
    takeOff(parts, bytesIn(volume, StationKey::excessBytes));
    parts.removeIf([](const Part &part) { return part.bytes == 0; });
    foldGroups(parts);
    parts += {
        {QStringLiteral("other"), bytesIn(volume, StationKey::otherBytes)},
        {QStringLiteral("unknown"), bytesIn(volume, StationKey::unknownBytes)},
        {QStringLiteral("root"), bytesIn(volume, StationKey::reservedForRoot)},
        {QStringLiteral("free"), bytesIn(volume, StationKey::free)},
    };
    QVariantList list;
    for (const Part &part : std::as_const(parts)) {
        if (part.bytes == 0)
            continue;
        list.append(QVariantMap{{QStringLiteral("kind"), part.kind},
                                {QStringLiteral("id"), part.id},
                                {QStringLiteral("name"), part.name},
                                {QStringLiteral("count"), part.count},
                                {QStringLiteral("bytes"), double(part.bytes)},
                                {QStringLiteral("told"), double(part.told)}});
    }
    return list;
}
