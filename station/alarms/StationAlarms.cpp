#include "StationAlarms.h"

#include "StationLog.h"
#include "StationProtocol.h"

#include <algorithm>
#include <utility>

namespace {
QVariantMap mapOf(const StationTrouble &trouble)
{
    return {
        {StationKey::kind, trouble.kind},
        {StationKey::severity,
         trouble.severity == StationTrouble::Severity::Warning ? StationSeverity::warning : StationSeverity::error},
        {StationKey::subject, trouble.subject},
        {StationKey::text, trouble.text},
        {StationKey::remedy, trouble.remedy},
        {StationKey::since, trouble.since.toString(Qt::ISODateWithMs)},
    };
}
} // namespace

StationAlarms::StationAlarms(std::chrono::milliseconds interval, QObject *parent)
    : QObject(parent)
    , m_timer(this)
{
    connect(&m_timer, &QTimer::timeout, this, &StationAlarms::update);
    m_timer.start(interval);
}

void StationAlarms::addSource(Source source)
{
    m_sources.append(std::move(source));
}

void StationAlarms::enterInto(CommandTable &table)
{
    table.insert(StationOwnCommandName::listAlarms, [this](const QVariant &data, const Answer &answer) {
        if (!data.isNull())
            return answer(lastPart(StationReturnCode::BadRequest));
        update();
        answer(lastPart(StationReturnCode::Success, report()));
    });
}

void StationAlarms::update()
{
    const QList<StationTrouble> before = std::exchange(m_troubles, {});
    const auto findIn = [](const QList<StationTrouble> &list, const StationTrouble &trouble) {
        return std::find_if(list.cbegin(), list.cend(), [&trouble](const StationTrouble &other) {
            return other.kind == trouble.kind && other.subject == trouble.subject;
        });
    };
    for (const Source &source : std::as_const(m_sources)) {
        const QList<StationTrouble> told = source();
        for (StationTrouble trouble : told) {
            if (findIn(m_troubles, trouble) != m_troubles.cend())
                continue; // two who met the same
            const auto known = findIn(before, trouble);
            if (known != before.cend())
                trouble.since = known->since;
            else if (!trouble.since.isValid())
                trouble.since = QDateTime::currentDateTimeUtc();
            if (known == before.cend() && trouble.severity != StationTrouble::Severity::Pending)
                qCInfo(stationLog, "%s", qPrintable(trouble.text));
            m_troubles.append(trouble);
        }
    }
    const QVariantMap now = report();
    if (now == m_told)
        return;
    m_told = now;
    emit eventRaised({StationOwnEventName::AlarmsChanged, now});
}

QVariantMap StationAlarms::report() const
{
    QVariantList alarms;
    QVariantList pending;
    for (const StationTrouble &trouble : m_troubles)
        (trouble.severity == StationTrouble::Severity::Pending ? pending : alarms).append(mapOf(trouble));
    return {{StationKey::alarms, alarms}, {StationKey::pending, pending}};
}
