#include "ClockWatch.h"

#include "StationProtocol.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <chrono>
#include <utility>

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
    constexpr qint64 most = 64; // bytes
    QFile file(m_file);
    if (QFileInfo(m_file).isSymLink() || !file.open(QIODevice::ReadOnly))
        return {};
    return QDateTime::fromString(QString::fromLatin1(file.read(most)).trimmed(), Qt::ISODate);
}

void ClockWatch::store(const QDateTime &time)
{
    if (!QFileInfo(QFileInfo(m_file).path()).isDir())
        return;
    QSaveFile file(m_file);
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    file.write(time.toUTC().toString(Qt::ISODate).toLatin1() + '\n');
    if (file.commit())
        m_stored = time;
}
