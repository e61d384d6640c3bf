#include "NasRecordings.h"

#include "NasVolumes.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "UsageSettings.h"
#include "nas/LogonPauses.h"
#include "nas/NasAccounts.h"
#include "nas/PasswordVault.h"
#include "store/Database.h"

#include <algorithm>
#include <utility>

namespace {
using Severity = StationTrouble::Severity;

QString shareOf(const QString &path)
{
    return QStringLiteral("//") + path.section(u'/', 2, 3);
}

QString rootOf(const NasPlace &place)
{
    return place.path.path + u'/' + place.folder;
}

QString asOf(const QDateTime &readAt)
{
    return readAt.isValid()
        ? QStringLiteral("figures as of %1").arg(readAt.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")))
        : QStringLiteral("the recordings were never counted");
}

StationTrouble tooSlow(const NasPlace &place)
{
    const QString share = shareOf(place.path.path);
    return {StationAlarmKind::ShareNotAnswering,
            Severity::Error,
            share,
            QStringLiteral("The NAS server of %1 takes too long to list the recordings in %2; %3.")
                .arg(share, rootOf(place), asOf(place.readAt)),
            QStringLiteral("Check that the NAS server runs and that the network to it works."),
            QDateTime::currentDateTimeUtc()};
}

StationTrouble notReadable(const NasPlace &place, const QString &folder)
{
    const QString path = place.path.path + u'/' + folder;
    return {StationAlarmKind::FolderNotReadable,
            Severity::Error,
            path,
            QStringLiteral("The recordings in %1 cannot be read; %2.").arg(path, asOf(place.readAt)),
            QStringLiteral("Let the user of the NAS server read the folder."),
            QDateTime::currentDateTimeUtc()};
}
} // namespace

NasRecordings::NasRecordings(NasAccounts &accounts, const NasVolumes &volumes, std::chrono::milliseconds limit,
                             const UsageSettings &settings, QObject *parent)
    : QObject(parent)
    , m_accounts(accounts)
    , m_volumes(volumes)
    , m_limit(limit)
    , m_fullInterval(settings.nasFullInterval)
    , m_work(limit)
    , m_timer(this)
{
    m_timer.setInterval(settings.nasRecordingsInterval);
    connect(&m_timer, &QTimer::timeout, this, &NasRecordings::round);
}

void NasRecordings::setPlaces(const QList<NasPlace> &places)
{
    const QMap<qint64, Known> before = std::exchange(m_places, {});
    for (const NasPlace &place : places) {
        Known known = before.value(place.number);
        const QDateTime readAt = std::max(known.place.readAt, place.readAt);
        known.place = place;
        known.place.readAt = readAt;
        known.address = SmbPath::parse(place.path.path);
        if (known.address)
            m_places.insert(place.number, known);
    }
    m_readings.removeIf([this](const auto &reading) { return !m_places.contains(reading.value().job.place); });
    if (m_places.isEmpty())
        m_timer.stop();
    else if (!m_timer.isActive())
        m_timer.start();
    start();
}

void NasRecordings::readAll()
{
    for (Known &known : m_places) {
        known.due = Due::Everything;
        known.isOwed = true;
        known.isHeld = false;
    }
    start();
}

bool NasRecordings::isAwaited() const
{
    return std::any_of(m_places.cbegin(), m_places.cend(), [](const Known &known) { return known.isOwed; });
}

bool NasRecordings::isBeingRead(qint64 place) const
{
    return std::any_of(m_readings.cbegin(), m_readings.cend(),
                       [place](const Reading &reading) { return reading.job.place == place; });
}

bool NasRecordings::isFullDue(const Known &known) const
{
    return !known.wasReadFully || known.sinceFull.hasExpired(m_fullInterval.count());
}

void NasRecordings::round()
{
    for (Known &known : m_places) {
        known.isHeld = false;
        if (!isBeingRead(known.place.number))
            known.due = std::max(known.due, isFullDue(known) ? Due::Everything : Due::Newest);
    }
    start();
}

void NasRecordings::look()
{
    for (Known &known : m_places) {
        const bool isThere = m_volumes.state(known.place.path).storage == UsagePlace::Storage::Present;
        if (isThere && !std::exchange(known.wasThere, isThere)) {
            known.isHeld = false;
            known.due = std::max(known.due, isFullDue(known) ? Due::Everything : Due::Newest);
        }
        known.wasThere = isThere;
        known.isCurrent = known.isCurrent && isThere;
    }
    start();
}

void NasRecordings::start()
{
    for (Known &known : m_places) {
        if (known.due == Due::Nothing || known.isHeld || m_readings.contains(known.address->hostKey())
            || m_volumes.isAsking(known.place.path))
            continue;
        if (m_volumes.state(known.place.path).storage != UsagePlace::Storage::Present || !begin(known))
            known.isOwed = false; // what is wrong is told by others
    }
    emit changed();
}

/// False where nobody can log on at the moment.
bool NasRecordings::begin(Known &known)
{
    const bool isOfHost = known.place.path.kind == PathKind::NetHost;
    std::optional<SmbLogon> logon;
    try {
        logon = m_accounts.registered(*known.address,
                                      isOfHost ? NasAccounts::Account::OfHost : NasAccounts::Account::OfDomain);
    } catch (const VaultError &) {
    } catch (const DatabaseError &) {
    }
    if (!logon || m_accounts.pauses().end(*known.address, *logon))
        return false;
    Reading reading;
    reading.number = ++m_lastReading;
    reading.job = {known.place.number,           *known.address, known.place.folder, *logon,
                   known.due == Due::Everything, known.days,     {NasReadTask{}}};
    reading.since = QDateTime::currentDateTimeUtc();
    known.due = Due::Nothing;
    if (reading.job.isFull)
        known.sinceFull.start();
    const QString host = known.address->hostKey();
    m_readings.insert(host, reading);
    readPart(host);
    return true;
}

void NasRecordings::readPart(const QString &host)
{
    constexpr std::chrono::milliseconds longest = std::chrono::seconds(2); // then it is told how far it came
    const Reading &reading = m_readings[host];
    const std::chrono::milliseconds time = std::min(longest, m_limit / 4);
    m_work.run<NasReadPart>(
        host, [job = reading.job, limit = m_limit, time] { return readOn(job, limit, time); },
        {StationReturnCode::NasServerNotResponding, {}, {}, {}},
        [this, host, number = reading.number](const NasReadPart &part) { takePart(host, number, part); });
}

void NasRecordings::takePart(const QString &host, quint64 number, const NasReadPart &part)
{
    const auto reading = m_readings.find(host);
    if (reading == m_readings.end() || reading->number != number || reading->isTaking)
        return start(); // the place is gone
    m_accounts.pauses().note(reading->job.path, reading->job.logon, part.returnCode);
    if (part.returnCode != ReturnCode::Success)
        return fail(host, part.returnCode);
    reading->job.tasks = part.rest;
    reading->unreadable += part.unreadable;
    reading->listing = part.listing;
    if (part.rest.empty() && reading->unreadable.isEmpty())
        reading->listing.readAt = reading->since;
    for (const RemoteDay &day : part.listing.files)
        reading->files += day.sizes.size();
    reading->isTaking = true;
    emit listed(RemoteListing(reading->listing));
}

void NasRecordings::taken(qint64 place, bool isKept)
{
    const auto reading = std::find_if(m_readings.begin(), m_readings.end(),
                                      [place](const Reading &other) { return other.job.place == place; });
    if (reading == m_readings.end() || !std::exchange(reading->isTaking, false))
        return start();
    const QString host = reading.key();
    Known &known = m_places[place];
    if (!isKept) {
        known.due = Due::Everything;
        known.wasReadFully = false;
        hold(known);
        m_readings.remove(host);
        return start();
    }
    const RemoteListing &listing = reading->listing;
    if (listing.cameras) {
        known.days.removeIf([&listing](const auto &camera) { return !listing.cameras->contains(camera.key()); });
    }
    for (auto days = listing.days.cbegin(); days != listing.days.cend(); ++days)
        known.days[days.key()].intersect({days->cbegin(), days->cend()});
    for (const RemoteDay &day : listing.files) {
        if (day.isThere)
            known.days[day.camera].insert(day.day);
    }
    if (reading->job.tasks.empty())
        return finish(host);
    if (m_accounts.pauses().end(reading->job.path, reading->job.logon))
        return fail(host, NasReturnCode::LogonNASServerFaled);
    readPart(host);
    emit changed();
}

void NasRecordings::finish(const QString &host)
{
    const Reading reading = m_readings.take(host);
    Known &known = m_places[reading.job.place];
    if (reading.unreadable.isEmpty()) {
        known.place.readAt = reading.since;
        known.wasReadFully = known.wasReadFully || reading.job.isFull;
        known.trouble.reset();
    } else {
        known.wasReadFully = known.wasReadFully && !reading.job.isFull;
        known.trouble = notReadable(known.place, reading.unreadable.constFirst());
    }
    known.isCurrent = known.wasReadFully && reading.unreadable.isEmpty();
    if (known.due == Due::Nothing) // else somebody asked meanwhile
        known.isOwed = false;
    start();
}

void NasRecordings::fail(const QString &host, const QString &code)
{
    const Reading reading = m_readings.take(host);
    Known &failed = m_places[reading.job.place];
    failed.due = std::max(failed.due, reading.job.isFull ? Due::Everything : Due::Newest);
    hold(failed);
    if (code == StationReturnCode::NasServerNotResponding) {
        failed.trouble = tooSlow(failed.place);
        for (Known &known : m_places) {
            if (known.address->hostKey() == host)
                hold(known); // each of them would wait as long
        }
    }
    start();
}

void NasRecordings::hold(Known &known)
{
    known.isHeld = true;
    known.isOwed = false;
    known.isCurrent = false;
}

QList<StationTrouble> NasRecordings::troubles() const
{
    QList<StationTrouble> troubles;
    for (const Known &known : m_places) {
        if (known.trouble)
            troubles.append(*known.trouble);
    }
    for (const Reading &reading : m_readings) {
        const Known known = m_places.value(reading.job.place);
        if (!known.isOwed)
            continue;
        const QString root = rootOf(known.place);
        troubles.append(
            {StationAlarmKind::RecordingsNotCounted,
             Severity::Pending,
             root,
             QStringLiteral("The recordings in %1 are being counted, %2 files so far.").arg(root).arg(reading.files),
             {},
             reading.since});
    }
    return troubles;
}

QList<StationTrouble> NasRecordings::withTimes(QList<StationTrouble> troubles) const
{
    const QStringList kinds{StationAlarmKind::ShareNotAnswering, StationAlarmKind::ShareRefused,
                            StationAlarmKind::ShareMissing};
    for (StationTrouble &trouble : troubles) {
        if (!kinds.contains(trouble.kind))
            continue;
        std::optional<QDateTime> oldest;
        for (const Known &known : m_places) {
            const QString &path = known.place.path.path;
            const bool isThere = m_volumes.state(known.place.path).storage == UsagePlace::Storage::Present;
            const bool isThis = trouble.subject.compare(path, Qt::CaseInsensitive) == 0
                || trouble.subject.compare(shareOf(path), Qt::CaseInsensitive) == 0;
            if (isThis && !isThere)
                oldest = oldest ? std::min(*oldest, known.place.readAt) : known.place.readAt;
        }
        if (oldest && trouble.text.endsWith(u'.'))
            trouble.text = trouble.text.chopped(1) + QStringLiteral("; %1.").arg(asOf(*oldest));
    }
    return troubles;
}
