#include "Edit.h"

#include "ActivityStore.h"
#include "RequestFingerprint.h"
#include "RequestStore.h"
#include "ServerVocabulary.h"
#include "StationData.h"
#include "StationLog.h"
#include "StationVocabulary.h"
#include "store/Database.h"

#include <exception>
#include <utility>

namespace {
constexpr qsizetype longestName = 255; // of a client or user
constexpr qsizetype longestSubject = 4096;
constexpr qsizetype mostRefusalBytes = 64 * 1024; // a larger one is judged again

/// Another station on the same database keeps an outcome under this edit's id.
class KeptElsewhere : public std::exception
{
};

/// About: what it holds of others' texts.
qsizetype bytesOf(const QVariant &data)
{
    qsizetype bytes = data.toString().size();
    const QVariantList list = data.toList();
    for (const QVariant &entry : list)
        bytes += bytesOf(entry);
    const QVariantMap map = data.toMap();
    for (const QVariant &entry : map)
        bytes += bytesOf(entry);
    return bytes;
}

/// What the station's own troubles made of an edit is no outcome of it.
bool isOutcome(const StationReply &reply)
{
    if (reply.returnCode == ReturnCode::Success)
        return true;
    return !isDatabaseCode(reply.returnCode) && reply.returnCode != StationReturnCode::InternalError
        && (!reply.finish || bytesOf(reply.data) <= mostRefusalBytes);
}
} // namespace

Edit::Edit(const EditSite &site, StationCommand command, std::function<void()> finished)
    : m_site(site)
    , m_command(std::move(command))
    , m_fingerprint(requestFingerprint(m_command))
    , m_finished(std::move(finished))
{
    m_time.start();
}

QDateTime Edit::oldestRequest() const
{
    return m_site.settings.currentTime().addMSecs(-m_site.settings.requestAge.count());
}

Edit::Part Edit::made(const StationReply &reply) const
{
    Activity activity;
    activity.time = m_site.settings.currentTime();
    activity.client = m_command.client.left(longestName);
    activity.user = m_command.user.left(longestName);
    activity.command = m_command.name;
    activity.subject = {m_subject.groupId.left(longestSubject), m_subject.groupName.left(longestSubject),
                        m_subject.object.left(longestSubject)};
    activity.returnCode = reply.returnCode;
    activity.duration = m_time.elapsed();
    return {reply, activity};
}

void Edit::commit(Transaction &transaction, const StationReply &part)
{
    QList<Part> parts = m_unkept + QList<Part>{made(part)};
    keep(transaction.database(), parts);
    transaction.commit();
    m_keptParts += parts.size();
    m_unkept.clear();
    give(part);
    finish(parts);
}

void Edit::answer(const StationReply &part)
{
    if (isFinished() || (!isDatabaseCode(part.returnCode) && isKeptElsewhere()))
        return;
    m_unkept.append(made(part));
    const bool hasEffect = part.returnCode == ReturnCode::Success;
    QList<Part> kept;
    if (hasEffect)
        kept = keepRest();
    give(part);
    if (part.finish && !hasEffect)
        kept = keepRest();
    finish(kept);
}

void Edit::attempt(const std::function<void()> &work)
{
    const std::shared_ptr<Edit> self = shared_from_this();
    const auto answerFailure = [this](const StationReply &part) { answer(part); };
    answerFailures(m_command.name, answerFailure, [this, &work] {
        try {
            work();
        } catch (const KeptElsewhere &) {
            if (!giveKept())
                throw DatabaseError(DatabaseTrouble::Busy, QStringLiteral("another station carries this edit out"));
        } catch (const DatabaseError &error) {
            if (m_site.databaseFailed)
                m_site.databaseFailed(error);
            throw;
        }
    });
}

void Edit::addListener(const Answer &answer)
{
    m_listeners.append(answer);
    const QList<StationReply> given = m_parts;
    for (const StationReply &part : given)
        answer(part);
}

bool Edit::giveKept()
{
    if (!hasId() || !m_site.data.isDatabaseThere())
        return false;
    const std::optional<KeptRequest> kept = RequestStore(m_site.data.database()).find(m_command.id, oldestRequest());
    if (!kept)
        return false;
    if (kept->fingerprint != m_fingerprint) {
        refuseId(StationReturnCode::RequestIdInUse,
                 QStringLiteral("the command and data that came under the id \"%1\" before").arg(m_command.id));
        return true;
    }
    const QList<StationReply> outstanding = kept->parts.mid(m_parts.size());
    m_keptParts = kept->parts.size();
    m_unkept.clear();
    for (const StationReply &part : outstanding)
        give(part);
    finish({});
    return isFinished();
}

void Edit::refuseId(const QString &returnCode, const QString &expected)
{
    m_isIdOwn = false;
    qCInfo(stationLog, "%s: expected: %s", qPrintable(m_command.name), qPrintable(expected));
    answer(lastPart(returnCode));
}

/// A refusal may be what another station's work on the same edit led to; then that is what came of it.
bool Edit::isKeptElsewhere()
{
    if (!hasId() || !m_site.data.isDatabaseThere())
        return false;
    try {
        const std::optional<KeptRequest> kept =
            RequestStore(m_site.data.database()).find(m_command.id, oldestRequest());
        return kept && (kept->fingerprint != m_fingerprint || kept->parts.size() > m_keptParts) && giveKept();
    } catch (const DatabaseError &error) {
        qCInfo(stationLog, "%s: %s", qPrintable(m_command.name), error.what());
        return false;
    }
}

/// Within a transaction; the activities get their numbers.
void Edit::keep(Database &database, QList<Part> &parts) const
{
    if (hasId())
        keepOutcome(database, parts);
    ActivityStore activities(database);
    for (Part &part : parts)
        part.activity.number = activities.insert(part.activity);
}

void Edit::keepOutcome(Database &database, const QList<Part> &parts) const
{
    QList<StationReply> outcome;
    for (const Part &part : parts) {
        if (isOutcome(part.reply))
            outcome.append(part.reply);
    }
    if (outcome.isEmpty())
        return;
    RequestStore requests(database);
    const std::optional<KeptRequest> kept = requests.find(m_command.id, oldestRequest());
    if (kept && (kept->fingerprint != m_fingerprint || kept->parts.size() != m_keptParts))
        throw KeptElsewhere();
    if (!kept)
        requests.insert(m_command.id, m_fingerprint, m_site.settings.currentTime());
    requests.append(m_command.id, m_keptParts, outcome);
}

/// The parts that were not kept yet, with their numbers where they are kept now.
QList<Edit::Part> Edit::keepRest()
{
    const QList<Part> parts = std::exchange(m_unkept, {});
    try {
        if (!isDatabaseCode(parts.constLast().reply.returnCode)) {
            QList<Part> kept = parts;
            Database &database = m_site.data.database();
            Transaction transaction(database, Transaction::Patience::Short);
            keep(database, kept);
            transaction.commit();
            m_keptParts += kept.size();
            return kept;
        }
    } catch (const DatabaseError &error) {
        qCInfo(stationLog, "%s: %s", qPrintable(m_command.name), error.what());
        if (error.trouble() == DatabaseTrouble::Damaged && m_site.databaseFailed)
            m_site.databaseFailed(error);
    } catch (const KeptElsewhere &) { // answered already; the first outcome that was kept stays
    }
    for (const Part &part : parts) {
        const QString line = activityLine(part.activity);
        if (part.reply.returnCode == ReturnCode::Success)
            qCWarning(stationLog, "not kept in the database: %s", qPrintable(line));
        else
            qCInfo(stationLog, "not kept in the database: %s", qPrintable(line));
    }
    return parts;
}

void Edit::give(const StationReply &part)
{
    m_time.restart();
    m_parts.append(part);
    const QList<Answer> listeners = m_listeners;
    for (const Answer &listener : listeners) {
        try {
            listener(part);
        } catch (...) { // the others get it all the same, and what is done is done
            qCWarning(stationLog, "%s: an answer was not taken", qPrintable(m_command.name));
        }
    }
}

void Edit::finish(const QList<Part> &parts)
{
    if (m_site.activityAdded) {
        for (const Part &part : parts)
            m_site.activityAdded(part.activity);
    }
    if (isFinished() && m_finished)
        std::exchange(m_finished, {})();
}
