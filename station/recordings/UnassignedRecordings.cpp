#include "UnassignedRecordings.h"

#include "SaturatedSum.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "smb/SmbPath.h"

namespace {
constexpr qint64 unknown = -1;

QString stateOf(const UnassignedPlace &place)
{
    if (place.place.isNas())
        return StationVolumeState::unknown; // nobody asks for what no group names
    switch (place.state.storage) {
    case UsagePlace::Storage::Present:
        return place.state.volume.isReadOnly ? StationVolumeState::readOnly : StationVolumeState::there;
    case UsagePlace::Storage::Gone:
        return StationVolumeState::gone;
    case UsagePlace::Storage::Unknown:
        break;
    }
    return place.state.isSilent ? StationVolumeState::notAnswering : StationVolumeState::unknown;
}

/// "//host/share"; the path itself where it is written in no such way.
QString shareOf(const QString &path)
{
    std::optional<SmbPath> share = SmbPath::parse(path);
    if (!share)
        return path;
    share->folders.clear();
    return share->text();
}

void insertVolume(QVariantMap &map, const UnassignedPlace &place)
{
    const bool isNas = place.place.isNas();
    const QString share = isNas ? shareOf(place.place.path) : QString();
    const bool isSeen = !place.state.volume.path.isEmpty();
    map.insert(StationKey::kind, isNas ? StationVolumeKind::NAS : StationVolumeKind::local);
    map.insert(FieldKey::volumePath, isNas ? share : (isSeen ? place.state.volume.path : place.place.volumePath));
    map.insert(FieldKey::volumeName, isNas ? share : (isSeen ? place.state.volume.name : place.place.volumeName));
}

void insertFigures(QVariantMap &map, const std::optional<DaySums> &days)
{
    qint64 bytes = 0;
    qint64 files = 0;
    const DaySums sums = days.value_or(DaySums());
    for (const DaySum &day : sums) {
        bytes = saturatedSum(bytes, day.bytes);
        files += day.files;
    }
    map.insert(StationKey::recordedBytes, days ? bytes : unknown);
    map.insert(StationKey::recordedFiles, days ? files : unknown);
    map.insert(StationKey::recordedDays, days ? sums.size() : unknown);
    if (!sums.isEmpty()) {
        map.insert(StationKey::oldestDay, sums.firstKey().toString(Qt::ISODate));
        map.insert(StationKey::newestDay, sums.lastKey().toString(Qt::ISODate));
    }
}
} // namespace

QVariantMap unassignedMap(const UnassignedPlace &place, const QStringList &cameras,
                          const std::optional<KeptDeletion> &deletion, bool isRunning)
{
    QVariantMap map{
        {StationKey::place, place.place.root()},  {FieldKey::path, place.place.path},
        {StationKey::folder, place.place.folder}, {StationKey::state, stateOf(place)},
        {StationKey::cameras, cameras},           {StationKey::counted, place.isCounted},
    };
    insertVolume(map, place);
    // The folder is gone and its volume is not: moved or deleted, nobody knows.
    const bool isLost = place.state.storage == UsagePlace::Storage::Gone && place.state.isVolumeThere;
    insertFigures(map, isLost ? std::nullopt : place.days);
    if (place.countedAt.isValid())
        map.insert(StationKey::countedAt, place.countedAt.toString(Qt::ISODateWithMs));
    if (deletion) {
        QVariantMap last{{StationKey::begun, deletion->begun.toString(Qt::ISODateWithMs)},
                         {StationKey::running, isRunning}};
        if (deletion->ended.isValid()) {
            last.insert(StationKey::ended, deletion->ended.toString(Qt::ISODateWithMs));
            last.insert(StationKey::returnCode, deletion->returnCode);
        }
        map.insert(StationKey::deletion, last);
    }
    return map;
}
