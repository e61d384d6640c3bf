#include "StationAlarms.h"

#include "AlarmStore.h"
#include "RequestMap.h"
#include "ServerVocabulary.h"
#include "StationData.h"
#include "StationLog.h"
#include "StationVocabulary.h"
#include "service/Edit.h"
#include "service/ListLimit.h"
#include "store/Database.h"

#include <QHash>
#include <QSet>

#include <utility>

namespace {
constexpr qsizetype longestNote = 1000; // characters
constexpr qsizetype longestName = 255; // of who acknowledges

QVariantMap mapOf(const StationTrouble &trouble)
{
    QVariantMap map{
        {StationKey::kind, trouble.kind},
        {StationKey::severity,
         trouble.severity == StationTrouble::Severity::Warning ? StationSeverity::warning : StationSeverity::error},
        {StationKey::subject, trouble.subject},
        {StationKey::text, trouble.text},
        {StationKey::remedy, trouble.remedy},
        {StationKey::since, trouble.since.toString(Qt::ISODateWithMs)},
    };
    if (!trouble.groupId.isEmpty())
        map.insert(FieldKey::recordingGroupID, trouble.groupId);
    if (const std::optional<Acknowledgement> &acknowledgement = trouble.acknowledgement) {
        map.insert(StationKey::acknowledgedAt, acknowledgement->time.toString(Qt::ISODateWithMs));
        map.insert(StationKey::acknowledgedBy, acknowledgement->by);
        map.insert(StationKey::note, acknowledgement->note);
    }
    return map;
}
} // namespace

StationAlarms::StationAlarms(StationData &data, const RecordSettings &settings, std::chrono::milliseconds interval,
                             std::function<bool()> isSettled, QObject *parent)
    : QObject(parent)
    , m_data(data)
    , m_keeper(data, settings)
    , m_settings(settings)
    , m_isSettled(std::move(isSettled))
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
    table.insert(StationCommandName::listAlarms,
                 [this](const QVariant &data, const Answer &answer) { listAlarms(data, answer); });
    table.insert(StationCommandName::listPastAlarms,
                 [this](const QVariant &data, const Answer &answer) { listPastAlarms(data, answer); });
    table.insert(StationCommandName::acknowledgeAlarm,
                 [this](const std::shared_ptr<Edit> &edit) { acknowledge(*edit); });
    table.insert(StationCommandName::withdrawAcknowledgement,
                 [this](const std::shared_ptr<Edit> &edit) { withdraw(*edit); });
}

void StationAlarms::listAlarms(const QVariant &data, const Answer &answer)
{
    if (!data.isNull())
        return answer(lastPart(StationReturnCode::BadRequest));
    update();
    answer(lastPart(ReturnCode::Success, report()));
}

void StationAlarms::listPastAlarms(const QVariant &data, const Answer &answer)
{
    const RequestMap request(data.isNull() ? QVariantMap() : data);
    const int limit = readLimit(request);
    update();
    QVariantList list;
    const QList<PastAlarm> past = m_keeper.past(limit);
    for (const PastAlarm &alarm : past) {
        QVariantMap map = mapOf(alarm.trouble);
        map.insert(StationKey::until, alarm.until.toString(Qt::ISODateWithMs));
        list.append(map);
    }
    answer(lastPart(ReturnCode::Success, list));
}

void StationAlarms::acknowledge(Edit &edit)
{
    const RequestMap request(edit.data());
    const QString note = request.contains(StationKey::note) ? request.string(StationKey::note) : QString();
    const std::optional<StationTrouble> trouble = find(edit);
    if (!trouble)
        return edit.answer(lastPart(StationReturnCode::AlarmNotFound));
    if (note.size() > longestNote)
        return edit.answer(lastPart(StationReturnCode::NoteRefused));
    const StationCommand &command = edit.command();
    const QString by = command.user.isEmpty() ? command.client : command.user;
    change(edit, *trouble, Acknowledgement{m_settings.currentTime(), by.left(longestName), note});
}

void StationAlarms::withdraw(Edit &edit)
{
    const std::optional<StationTrouble> trouble = find(edit);
    if (!trouble)
        return edit.answer(lastPart(StationReturnCode::AlarmNotFound));
    if (!trouble->acknowledgement)
        return edit.answer(lastPart(StationReturnCode::AlarmNotAcknowledged));
    change(edit, *trouble, {});
}

/// The alarm that @p edit names, as it stands at the moment.
std::optional<StationTrouble> StationAlarms::find(Edit &edit)
{
    const RequestMap request(edit.data());
    const QString kind = request.string(StationKey::kind);
    const QString subject = request.string(StationKey::subject);
    edit.setSubject({{}, {}, kind + u' ' + subject});
    update();
    for (const StationTrouble &trouble : std::as_const(m_troubles)) {
        const bool isAlarm = trouble.severity != StationTrouble::Severity::Pending;
        if (isAlarm && trouble.kind == kind && trouble.subject == subject)
            return trouble;
    }
    return {};
}

void StationAlarms::change(Edit &edit, const StationTrouble &trouble,
                           const std::optional<Acknowledgement> &acknowledgement)
{
    m_keeper.flush(); // so that the alarm is there
    Database &database = m_data.database();
    Transaction transaction(database);
    AlarmStore store(database);
    store.begin(trouble); // another station may have ended it
    store.acknowledge(trouble, acknowledgement);
    edit.commit(transaction, lastPart(ReturnCode::Success));
    m_keeper.setAcknowledgement(trouble, acknowledgement);
    update();
}

void StationAlarms::update()
{
    QHash<StationTrouble::Key, QDateTime> before; // since when
    for (const StationTrouble &trouble : std::as_const(m_troubles))
        before.insert(trouble.key(), trouble.since);
    m_troubles.clear();
    QSet<StationTrouble::Key> told;
    for (const Source &source : std::as_const(m_sources)) {
        for (StationTrouble &trouble : source()) {
            if (told.contains(trouble.key()))
                continue; // two who met the same
            told.insert(trouble.key());
            const auto known = before.constFind(trouble.key());
            if (known != before.cend())
                trouble.since = *known;
            else if (!trouble.since.isValid())
                trouble.since = m_settings.currentTime();
            if (known == before.cend() && trouble.severity != StationTrouble::Severity::Pending)
                qCInfo(stationLog, "%s", qPrintable(trouble.text));
            m_troubles.append(trouble);
        }
    }
    m_keeper.follow(m_troubles, m_isSettled && m_isSettled());
    const QVariantMap now = report();
    if (now == m_told)
        return;
    m_told = now;
    emit eventRaised({StationEventName::AlarmsChanged, now});
}

QVariantMap StationAlarms::report() const
{
    QVariantList alarms;
    QVariantList pending;
    for (const StationTrouble &trouble : m_troubles)
        (trouble.severity == StationTrouble::Severity::Pending ? pending : alarms).append(mapOf(trouble));
    return {{StationKey::alarms, alarms}, {StationKey::pending, pending}};
}
