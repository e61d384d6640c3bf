#include "LogonPauses.h"

#include "ServerVocabulary.h"
#include "StationVocabulary.h"

#include <QMessageAuthenticationCode>
#include <QRandomGenerator>

#include <algorithm>

LogonPauses::LogonPauses(std::chrono::milliseconds first, std::chrono::milliseconds longest)
    : m_first(first)
    , m_longest(longest)
{
    quint64 words[4];
    QRandomGenerator::system()->fillRange(words);
    m_salt = QByteArray(reinterpret_cast<const char *>(words), sizeof words);
}

void LogonPauses::note(const SmbPath &place, const SmbLogon &logon, const QString &returnCode)
{
    if (returnCode == StationReturnCode::NasServerNotResponding)
        return;
    const QByteArray key = keyOf(place, logon);
    if (returnCode != NasReturnCode::LogonNASServerFaled) {
        m_refusals.remove(key);
        return;
    }
    // An operator's try in the middle of a pause begins it anew and makes it no longer.
    const auto known = m_refusals.constFind(key);
    const std::chrono::milliseconds pause = known == m_refusals.cend() ? m_first
        : known->deadline.hasExpired()                                 ? std::min(2 * known->pause, m_longest)
                                                                       : known->pause;
    m_refusals.removeIf([this](const auto &entry) {
        return entry.value().deadline.hasExpired() && entry.value().age.hasExpired(2 * m_longest.count());
    });
    Refusal refusal{pause, QDeadlineTimer(pause), QDateTime::currentDateTimeUtc().addMSecs(pause.count()), {}};
    refusal.age.start();
    m_refusals.insert(key, refusal);
}

std::optional<QDateTime> LogonPauses::end(const SmbPath &place, const SmbLogon &logon) const
{
    const auto known = m_refusals.constFind(keyOf(place, logon));
    if (known == m_refusals.cend() || known->deadline.hasExpired())
        return {};
    return known->end;
}

bool LogonPauses::wasRefused(const SmbPath &place, const SmbLogon &logon, std::chrono::milliseconds time) const
{
    const auto known = m_refusals.constFind(keyOf(place, logon));
    return known != m_refusals.cend() && !known->age.hasExpired(time.count());
}

/// Passwords are not kept here.
QByteArray LogonPauses::keyOf(const SmbPath &place, const SmbLogon &logon) const
{
    const QStringList words{place.hostKey(), logon.domain, logon.userName, logon.password};
    return QMessageAuthenticationCode::hash(words.join(QChar(u'\0')).toUtf8(), m_salt, QCryptographicHash::Sha256);
}
