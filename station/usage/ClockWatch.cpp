#include "ClockWatch.h"

#include "StationVocabulary.h"
#include "files/OpenFile.h"

#include <QDir>
#include <QFile>
#include <QUuid>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {
constexpr std::chrono::seconds tolerated = 1h; // clocks are corrected
constexpr std::chrono::seconds betweenNotes = 10min;
constexpr int longPause = 30; // days without a recording or a running station

QString text(const QDateTime &time)
{
    return time.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm"));
}
} // namespace

ClockWatch::ClockWatch(const QString &folder, Now now)
    : m_file(QDir(folder).filePath(QStringLiteral("latest-time")))
    , m_now(now ? std::move(now) : Now(QDateTime::currentDateTimeUtc))
{
}

void ClockWatch::look(const QDate &newest)
{
    m_newest = newest;
    m_seen = m_now();
    if (!m_latest)
        m_latest = m_stored = stored();
    const QDateTime latest = *m_latest;
    m_isBehind = latest.isValid() && m_seen.addDuration(tolerated) < latest;
    const bool isAfterLongPause = latest.isValid() && latest.daysTo(m_seen) > longPause;
    m_isAhead = isAfterLongPause && newest.isValid() && newest.daysTo(m_seen.date()) > longPause;
    if (m_isBehind || m_isAhead || (isAfterLongPause && !newest.isValid()))
        return;
    if (!latest.isValid() || m_seen > latest)
        m_latest = m_seen;
    if (!m_stored.isValid() || m_stored.addDuration(betweenNotes) < m_seen)
        store(m_seen);
}

QList<StationTrouble> ClockWatch::troubles() const
{
    const QString remedy =
        QStringLiteral("Set the clock of the station's machine. If it is right, delete the file %1 and start the "
                       "station again.")
            .arg(m_file);
    StationTrouble trouble{{}, StationTrouble::Severity::Error, QStringLiteral("clock"), {}, remedy, {}};
    if (m_isBehind) {
        trouble.kind = StationAlarmKind::ClockBehind;
        trouble.text =
            QStringLiteral(
                "The clock of the station's machine was set back: it says %1, and was at %2 before. Recorded "
                "days and remaining days are not known.")
                .arg(text(m_seen), text(*m_latest));
    } else if (m_isAhead) {
        trouble.kind = StationAlarmKind::ClockAhead;
        trouble.text =
            QStringLiteral(
                "The clock of the station's machine says %1, but the last recording is of %2: the clock was set "
                "forward, or nothing has been recorded since.")
                .arg(text(m_seen), m_newest.toString(Qt::ISODate));
    } else {
        return {};
    }
    return {trouble};
}

QDateTime ClockWatch::stored() const
{
    // Whoever may write here could have put a link, or a pipe that never ends, in the file's place.
    const OpenFile file(open(QFile::encodeName(m_file).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat facts = {};
    if (!file.isOpen() || fstat(file.get(), &facts) != 0 || !S_ISREG(facts.st_mode))
        return {};
    char content[64] = {};
    const ssize_t length = read(file.get(), content, sizeof content);
    const QByteArrayView text(content, std::max<ssize_t>(length, 0));
    return QDateTime::fromString(QString::fromLatin1(text.trimmed()), Qt::ISODate);
}

void ClockWatch::store(const QDateTime &time)
{
    const QString made = m_file + QStringLiteral(".new-") + QUuid::createUuid().toString(QUuid::Id128);
    const QByteArray from = QFile::encodeName(made);
    const QByteArray text = time.toUTC().toString(Qt::ISODate).toLatin1() + '\n';
    const OpenFile file(open(from.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!file.isOpen())
        return;
    if (write(file.get(), text.constData(), static_cast<std::size_t>(text.size())) == text.size()
        && fsync(file.get()) == 0
        && rename(from.constData(), QFile::encodeName(m_file).constData()) == 0) // a link would be replaced itself
        m_stored = time;
    else
        unlink(from.constData());
}
