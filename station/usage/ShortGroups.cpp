#include "ShortGroups.h"

#include "GroupFigures.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "UsageFigures.h"

#include <utility>

namespace {
constexpr int minutesPerDay = 24 * 60;

QString daysText(qint64 days)
{
    return days == 1 ? QStringLiteral("1 day") : QStringLiteral("%1 days").arg(days);
}

StationTrouble troubleOf(const QString &id, const QString &name, qint64 reservedDays, const GroupFigures &figures)
{
    StationTrouble trouble;
    trouble.kind = StationAlarmKind::InsufficientRecordingDays;
    trouble.severity = StationTrouble::Severity::Warning;
    trouble.subject = name;
    trouble.groupId = id;
    trouble.text =
        QStringLiteral("The recording group %1 will not reach its reserved time of %2: %3 recorded, room for %4 more.")
            .arg(name, daysText(reservedDays), daysText(figures.recordedDays), daysText(figures.remainingDays));
    trouble.remedy = QStringLiteral("Give the recording group more space, or reserve less time.");
    return trouble;
}
} // namespace

void ShortGroups::judge(const QVariantList &entries)
{
    const QHash<QString, GroupFigures> figures = groupFigures(entries);
    const QMap<QString, StationTrouble> before = std::exchange(m_troubles, {});
    for (const QVariant &value : entries) {
        const QVariantMap entry = value.toMap();
        const QString id = entry.value(FieldKey::recordingGroupID).toString();
        const qint64 reservedDays = entry.value(FieldKey::recordingGroupReservedTime).toInt() / minutesPerDay;
        if (id.isEmpty() || id == UsageGroup::backup || reservedDays <= 0)
            continue;
        const QString name = entry.value(FieldKey::recordingGroupName).toString();
        const GroupFigures group = figures.value(id);
        const bool isKnown = group.recordedDays >= 0 && group.remainingDays >= 0;
        if (isKnown && group.recordedDays + group.remainingDays < reservedDays)
            m_troubles.insert(id, troubleOf(id, name, reservedDays, group));
        else if (const auto known = before.constFind(id); !isKnown && known != before.cend())
            m_troubles.insert(id, *known);
    }
}
