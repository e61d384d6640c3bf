#include "NasVolumes.h"

#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "TimedWork.h"
#include "nas/LogonPauses.h"
#include "nas/NasAccounts.h"
#include "nas/PasswordVault.h"
#include "store/Database.h"

#include <algorithm>
#include <iterator>

namespace {
using Storage = UsagePlace::Storage;
using Severity = StationTrouble::Severity;

QString shareOf(const QString &path)
{
    return QStringLiteral("//") + path.section(u'/', 2, 3);
}

PlaceState stateOf(Storage storage, const QString &path)
{
    PlaceState state;
    state.storage = storage;
    state.volume.name = shareOf(path);
    return state;
}

StationTrouble trouble(const char *kind, const QString &subject, const QString &text, const QString &remedy)
{
    return {QString::fromLatin1(kind), Severity::Error, subject, text, remedy, QDateTime::currentDateTimeUtc()};
}

StationTrouble notAnswering(const QString &share)
{
    return trouble("ShareNotAnswering", share, QStringLiteral("The NAS server of %1 does not answer.").arg(share),
                   QStringLiteral("Check that the NAS server runs and that the network to it works."));
}

StationTrouble notRegistered(const QString &share)
{
    return trouble("ShareMissing", share, QStringLiteral("No NAS server is registered for %1.").arg(share),
                   QStringLiteral("Add the NAS server, or remove the path from its recording groups."));
}

/// @param subject a share or a folder on one
StationTrouble missing(const QString &subject)
{
    return trouble("ShareMissing", subject,
                   QStringLiteral("%1 does not exist on its NAS server, or its user may not see it.").arg(subject),
                   QStringLiteral("Make the folder, or correct the path in its recording groups."));
}

StationTrouble keyUnusable(const QString &what)
{
    return trouble("NasKeyUnusable", QStringLiteral("nas.key"),
                   QStringLiteral("The passwords of the NAS servers cannot be read (nas.key): %1.").arg(what),
                   QStringLiteral("Put the key file back, or remove the NAS servers and add them again."));
}

StationTrouble databaseFailed(const QString &what)
{
    return trouble(
        "DatabaseFailed", QStringLiteral("station.db"),
        QStringLiteral("The NAS servers cannot be read from the station's database (station.db): %1.").arg(what),
        QStringLiteral("See the station's log."));
}

bool isSame(const StationTrouble &one, const StationTrouble &other)
{
    return one.kind == other.kind && one.subject.compare(other.subject, Qt::CaseInsensitive) == 0;
}

bool isEqual(const StationTrouble &one, const StationTrouble &other)
{
    return isSame(one, other) && one.text == other.text && one.since == other.since;
}

/// Adds @p added, unless it is there already, since whenever it began.
void merge(QList<StationTrouble> &troubles, const StationTrouble &added)
{
    const auto known = std::find_if(troubles.begin(), troubles.end(),
                                    [&added](const StationTrouble &other) { return isSame(added, other); });
    if (known == troubles.end())
        troubles.append(added);
    else
        known->since = std::min(known->since, added.since);
}
} // namespace

/// The questions of one round, and the paths behind each.
class NasVolumes::Questions
{
public:
    void add(const Key &key, const SmbPath &place, const SmbLogon &logon)
    {
        for (qsizetype i = 0; i < m_questions.size(); ++i) {
            SpaceQuestion &known = m_questions[i];
            if (known.places.constFirst().shareKey() != place.shareKey() || known.logon.domain != logon.domain
                || known.logon.userName != logon.userName || known.logon.password != logon.password)
                continue;
            known.places.append(place);
            m_keys[i].append(key);
            return;
        }
        m_questions.append({logon, {place}});
        m_keys.append({key});
    }

    const QList<SpaceQuestion> &questions() const { return m_questions; }
    const QList<QList<Key>> &keys() const { return m_keys; }

private:
    QList<SpaceQuestion> m_questions;
    QList<QList<Key>> m_keys;
};

NasVolumes::NasVolumes(NasAccounts &accounts, TimedWork &work, std::chrono::milliseconds interval, QObject *parent)
    : QObject(parent)
    , m_accounts(accounts)
    , m_work(work)
    , m_timer(this)
{
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        ask(m_volumes.keys(), Asker::Timer);
        tellTroubles();
        emit answered(); // where no server is registered
    });
}

void NasVolumes::setGroups(const QList<RecordingGroup> &groups)
{
    const QMap<Key, Known> before = std::exchange(m_volumes, {});
    QList<Key> added;
    for (const RecordingGroup &group : groups) {
        for (const GroupPath &path : group.paths) {
            const Key key{path.kind, path.path};
            if (path.kind == PathKind::Local || m_volumes.contains(key))
                continue;
            Known unknown;
            unknown.state = stateOf(Storage::Unknown, path.path);
            m_volumes.insert(key, before.value(key, unknown));
            if (!before.contains(key))
                added.append(key);
        }
    }
    ask(added, Asker::Timer);
    tellTroubles();
    if (m_volumes.isEmpty())
        m_timer.stop();
    else if (!m_timer.isActive())
        m_timer.start();
}

void NasVolumes::askAll()
{
    ask(m_volumes.keys(), Asker::Operator);
    tellTroubles();
    if (!m_volumes.isEmpty())
        emit answered(); // where no server is registered
}

PlaceState NasVolumes::state(const GroupPath &path) const
{
    const auto known = m_volumes.constFind({path.kind, path.path});
    return known == m_volumes.cend() ? stateOf(Storage::Unknown, path.path) : known->state;
}

bool NasVolumes::isAsking(const GroupPath &path) const
{
    const auto known = m_volumes.constFind({path.kind, path.path});
    return known != m_volumes.cend() && !known->askedAt.isNull();
}

QList<StationTrouble> NasVolumes::troubles() const
{
    QList<StationTrouble> troubles;
    for (auto volume = m_volumes.cbegin(); volume != m_volumes.cend(); ++volume) {
        if (volume->trouble)
            merge(troubles, *volume->trouble);
    }
    for (auto volume = m_volumes.cbegin(); volume != m_volumes.cend(); ++volume) {
        if (volume->askedAt.isNull() || (volume->isAnswered && !volume->isOwed))
            continue;
        const QString share = shareOf(volume.key().second);
        merge(troubles,
              {StationAlarmKind::SharePending, Severity::Pending, share,
               QStringLiteral("The NAS server of %1 has not answered yet.").arg(share), QString(), volume->askedAt});
    }
    return troubles;
}

void NasVolumes::ask(const QList<Key> &keys, Asker asker)
{
    Questions questions;
    QMap<std::pair<PathKind, QString>, std::optional<SmbLogon>> logons; // by kind and host
    for (const Key &key : inOrder(keys)) {
        Known &known = m_volumes[key];
        const QString share = shareOf(key.second);
        if (!known.askedAt.isNull()) {
            known.isOwed = known.isOwed || asker == Asker::Operator;
            continue;
        }
        const std::optional<SmbPath> place = SmbPath::parse(key.second);
        std::optional<SmbLogon> logon;
        try {
            const std::pair<PathKind, QString> account(key.first, place ? place->hostKey() : QString());
            if (place && !logons.contains(account)) {
                logons.insert(account,
                              m_accounts.registered(*place,
                                                    key.first == PathKind::NetHost ? NasAccounts::Account::OfHost
                                                                                   : NasAccounts::Account::OfDomain));
            }
            logon = logons.value(account);
        } catch (const VaultError &error) {
            set(key, stateOf(Storage::Gone, key.second), keyUnusable(QString::fromUtf8(error.what())));
            continue;
        } catch (const DatabaseError &error) {
            set(key, stateOf(Storage::Unknown, key.second), databaseFailed(QString::fromUtf8(error.what())));
            continue;
        }
        if (!logon) {
            set(key, stateOf(Storage::Gone, key.second), notRegistered(share));
        } else if (asker == Asker::Timer && m_accounts.pauses().end(*place, *logon)) {
            set(key, stateOf(Storage::Gone, key.second), refused(share, *place, *logon));
        } else {
            known.askedAt = QDateTime::currentDateTimeUtc();
            known.isOwed = asker == Asker::Operator;
            questions.add(key, *place, *logon);
        }
    }
    m_asked += static_cast<int>(questions.questions().size());
    askSpaces(m_work, m_accounts.pauses(), questions.questions(),
              [this, questions](qsizetype index, const QList<SmbSpace> &spaces) {
                  take(questions.keys().at(index), questions.questions().at(index), spaces);
              });
}

/// The first question of an account goes ahead: one that was answered last time, and where none was, another one each
/// time. A share that hangs hides the others of its server once only.
QList<NasVolumes::Key> NasVolumes::inOrder(const QList<Key> &keys)
{
    QList<Key> good;
    QList<Key> others;
    for (const Key &key : keys)
        (m_volumes.value(key).state.storage == Storage::Present ? good : others).append(key);
    if (!others.isEmpty())
        std::rotate(others.begin(), others.begin() + m_rounds++ % others.size(), others.end());
    return good + others;
}

void NasVolumes::take(const QList<Key> &keys, const SpaceQuestion &question, const QList<SmbSpace> &spaces)
{
    --m_asked;
    const bool isAllMissing = spaces.size() > 1
        && std::all_of(spaces.cbegin(), spaces.cend(),
                       [](const SmbSpace &space) { return space.returnCode == NasReturnCode::GetNasCapacityFailed; });
    for (qsizetype i = 0; i < keys.size(); ++i) {
        const SmbPath &place = question.places.at(i);
        const SmbSpace &space = spaces.at(i);
        const QString &path = keys.at(i).second;
        const QString share = shareOf(path);
        const bool isThere = space.returnCode == ReturnCode::Success;
        PlaceState state = stateOf(isThere ? Storage::Present : Storage::Gone, path);
        state.volume.path = place.shareKey();
        state.volume.bytesTotal = space.bytesTotal;
        state.volume.bytesAvailable = space.bytesAvailable;
        std::optional<StationTrouble> found;
        if (space.returnCode == StationReturnCode::NasServerNotResponding)
            found = notAnswering(share);
        else if (space.returnCode == NasReturnCode::LogonNASServerFaled)
            found = refused(share, place, question.logon);
        else if (!isThere)
            found = missing(isAllMissing ? share : path);
        set(keys.at(i), state, found);
    }
    tellTroubles();
    emit answered();
}

/// Nothing happens where no group has the path any more.
void NasVolumes::set(const Key &key, const PlaceState &state, std::optional<StationTrouble> found)
{
    const auto known = m_volumes.find(key);
    if (known == m_volumes.end())
        return;
    if (found && known->trouble && isSame(*found, *known->trouble))
        found->since = known->trouble->since;
    *known = {state, found, {}, true, false};
}

StationTrouble NasVolumes::refused(const QString &share, const SmbPath &place, const SmbLogon &logon) const
{
    QString text = QStringLiteral("The NAS server refused the log-on of %1 to %2").arg(logon.userName, share);
    if (const std::optional<QDateTime> end = m_accounts.pauses().end(place, logon))
        text += QStringLiteral("; tried again at ") + end->toLocalTime().toString(QStringLiteral("HH:mm"));
    return trouble("ShareRefused", share, text + u'.',
                   QStringLiteral("Enter the password of this NAS server again, or unlock the account on it."));
}

void NasVolumes::tellTroubles()
{
    const QList<StationTrouble> now = troubles();
    if (std::equal(now.cbegin(), now.cend(), m_told.cbegin(), m_told.cend(), isEqual))
        return;
    m_told = now;
    emit troublesChanged();
}
