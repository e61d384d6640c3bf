#include "Measuring.h"
#include "Program.h"
#include "ServerVocabulary.h"
#include "TreeStation.h"
#include "usage/UsageFigures.h"

namespace {
constexpr int days = 25;
constexpr qint64 bytesOfADay = 70'000'000'000;
const QDate today(2026, 3, 20);

/// A group each, all on one volume, as an index has them.
QList<UsagePlace> placesOf(int groups)
{
    QList<UsagePlace> places;
    for (int number = 0; number < groups; ++number) {
        UsagePlace place;
        place.groupId = QStringLiteral("{00000000-0000-4000-8000-%1}").arg(number, 12, 10, QLatin1Char('0'));
        place.groupName = QStringLiteral("Group %1").arg(number);
        place.reservedMinutes = 10'080;
        place.path = QStringLiteral("/disk/recordings");
        place.reservedMegabytes = 1024;
        place.storage = UsagePlace::Storage::Present;
        place.volume = {
            QStringLiteral("/disk"), QStringLiteral("Disk"), qint64(1) << 46, qint64(1) << 44, false, false};
        place.days.emplace();
        for (int day = 1; day <= days; ++day)
            place.days->insert(today.addDays(-day), {2400, bytesOfADay + number});
        places.append(place);
    }
    return places;
}

/// The maps of @p entries made anew, with their values at hand.
QVariantList again(const QVariantList &entries)
{
    QVariantList list;
    for (const QVariant &value : entries) {
        const QVariantMap &entry = *static_cast<const QVariantMap *>(value.constData());
        QVariantMap map;
        for (auto field = entry.cbegin(); field != entry.cend(); ++field)
            map.insert(field.key(), field.value());
        list.append(map);
    }
    return list;
}

void makeEvent(benchmark::State &state, int groups)
{
    const QList<UsagePlace> places = placesOf(groups);
    const QVariantList sent = usageEntries(places, today);
    const QVariantList same = again(sent);
    for (qsizetype group = 0; group < sent.size(); ++group) {
        const QVariantMap entry = sent.at(group).toMap();
        require(entry.value(FieldKey::volumeRecordedDays) == days
                    && entry.value(FieldKey::volumeOneDayUsage) == bytesOfADay + group,
                "the event's figures are wrong");
    }
    QVariantList made;
    measure(state,
            {
                {"ours", [&] { made = usageEntries(places, today); }, [&] { made.clear(); }},
                {"floor", [&] { made = again(sent); }, [&] { made.clear(); }},
                {"compared", [&] { require(!isWorthTelling(sent, same), "what is the same is told"); }},
            },
            {.rounds = 31, .cpuSeconds = processSeconds});
    state.counters["us a group"] = state.counters["ours"] / groups;
}
} // namespace

void addEvents(const std::vector<int> &groups)
{
    add("making an event", groups, makeEvent);
}
