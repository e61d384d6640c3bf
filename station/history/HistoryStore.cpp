#include "HistoryStore.h"

#include "store/Database.h"

#include <algorithm>

namespace {
constexpr auto resolutions = {HistoryResolution::Hour, HistoryResolution::Day};
constexpr qint64 hour = 3600; // seconds
constexpr qint64 day = 24 * hour;

// In the order of UsageSample::Figure.
const QStringList columns{
    QStringLiteral("recorded_days"),  QStringLiteral("remaining_days"),   QStringLiteral("one_day_usage"),
    QStringLiteral("recorded_bytes"), QStringLiteral("reserved_minutes"), QStringLiteral("reserved_megabytes"),
    QStringLiteral("volume_bytes"),   QStringLiteral("available_bytes"),
};

QVariant valueOf(const std::optional<qint64> &figure)
{
    return figure ? QVariant(*figure) : QVariant(QMetaType::fromType<qlonglong>());
}

/// An empty text is bound as such: a null QString would be NULL.
QString text(const QString &value)
{
    return value.isNull() ? QStringLiteral("") : value;
}

qint64 roundedUp(qint64 time, qint64 step)
{
    const qint64 over = time % step;
    return over == 0 ? time : time - over + step;
}
} // namespace

qint64 stepOf(HistoryResolution resolution)
{
    return resolution == HistoryResolution::Hour ? hour : day;
}

qint64 keptSteps(HistoryResolution resolution)
{
    constexpr qint64 hours = 92 * 24;
    constexpr qint64 days = 5 * 366;
    return resolution == HistoryResolution::Hour ? hours : days;
}

HistoryStore::HistoryStore(Database &database)
    : m_database(database)
{
}

std::optional<qint64> HistoryStore::numberOf(const HistorySubject &subject) const
{
    const QVariant number =
        m_database.value(QStringLiteral("SELECT number FROM history_subject WHERE kind = ? AND key = ?"),
                         {static_cast<int>(subject.kind), text(subject.key)});
    return number.isValid() ? std::optional(number.toLongLong()) : std::nullopt;
}

bool HistoryStore::isGroup(const HistorySubject &subject) const
{
    return subject.kind == HistorySubject::Kind::RecordingGroup
        && m_database.value(QStringLiteral("SELECT 1 FROM recording_group WHERE id = ?"), {text(subject.key)})
               .isValid();
}

bool HistoryStore::insert(HistoryResolution resolution, qint64 time, const UsageSample &sample)
{
    std::optional<qint64> number = numberOf(sample.subject);
    if (!number) {
        number = m_database
                     .run(QStringLiteral("INSERT INTO history_subject (kind, key) VALUES (?, ?)"),
                          {static_cast<int>(sample.subject.kind), text(sample.subject.key)})
                     .lastNumber;
    }
    QVariantList values{*number, static_cast<int>(resolution), time};
    for (const std::optional<qint64> &figure : sample.figures)
        values.append(valueOf(figure));
    const QStringList marks(values.size(), QStringLiteral("?"));
    const Effect effect = m_database.run(
        QStringLiteral("INSERT OR IGNORE INTO history_sample (subject, resolution, time, %1) VALUES (%2)")
            .arg(columns.join(QStringLiteral(", ")), marks.join(QStringLiteral(", "))),
        values);
    return effect.rows > 0;
}

void HistoryStore::complete(HistoryResolution resolution, qint64 time, const UsageSample &sample)
{
    QStringList settings;
    QVariantList values;
    for (qsizetype i = 0; i < columns.size(); ++i) {
        settings.append(QStringLiteral("%1 = coalesce(%1, ?)").arg(columns.at(i)));
        values.append(valueOf(sample.figures[static_cast<std::size_t>(i)]));
    }
    values += {numberOf(sample.subject).value_or(0), static_cast<int>(resolution), time};
    m_database.run(QStringLiteral("UPDATE history_sample SET %1 WHERE subject = ? AND resolution = ? AND time = ?")
                       .arg(settings.join(QStringLiteral(", "))),
                   values);
}

void HistoryStore::prune(qint64 now)
{
    constexpr qsizetype subjectsAtOnce = 100; // others wait for the database meanwhile
    QVariantList numbers;
    {
        Rows rows = m_database.rows(QStringLiteral("SELECT number FROM history_subject"));
        while (rows.next())
            numbers.append(rows.value(0));
    }
    for (qsizetype first = 0; first < numbers.size(); first += subjectsAtOnce) {
        Transaction transaction(m_database, Transaction::Patience::Short);
        for (const QVariant &number : numbers.mid(first, subjectsAtOnce)) {
            for (const HistoryResolution resolution : resolutions) {
                const qint64 step = stepOf(resolution);
                const qint64 oldest = now - now % step - (keptSteps(resolution) - 1) * step;
                m_database.run(
                    QStringLiteral("DELETE FROM history_sample WHERE subject = ? AND resolution = ? AND time < ?"),
                    {number, static_cast<int>(resolution), oldest});
            }
            m_database.run(QStringLiteral("DELETE FROM history_subject WHERE number = ? AND NOT EXISTS"
                                          " (SELECT 1 FROM history_sample WHERE subject = number)"),
                           {number});
        }
        transaction.commit();
    }
}

HistoryPage HistoryStore::page(const HistoryQuery &query) const
{
    const Snapshot snapshot(m_database);
    HistoryPage page;
    const std::optional<qint64> number = numberOf(query.subject);
    page.isSubjectKnown = number || isGroup(query.subject);
    if (!page.isSubjectKnown)
        return page;
    if (number) {
        Rows rows = m_database.rows(
            QStringLiteral("SELECT time, %1 FROM history_sample WHERE subject = ? AND resolution = ?"
                           " AND time >= ? AND time < ? ORDER BY time LIMIT ?")
                .arg(columns.join(QStringLiteral(", "))),
            {*number, static_cast<int>(query.resolution), query.from.value_or(0), query.until, pageSize + 1});
        while (rows.next()) {
            TimedSample found{rows.value(0).toLongLong(), {query.subject}};
            for (std::size_t i = 0; i < found.sample.figures.size(); ++i) {
                const QVariant value = rows.value(static_cast<int>(i) + 1);
                if (!value.isNull())
                    found.sample.figures[i] = value.toLongLong();
            }
            page.samples.append(found);
        }
    }
    if (page.samples.size() > pageSize)
        page.moreFrom = page.samples.takeLast().time;
    page.gaps = gaps(query, page.moreFrom.value_or(query.until));
    return page;
}

/// The step that has not ended yet may still get its sample.
QList<HistoryGap> HistoryStore::gaps(const HistoryQuery &query, qint64 until) const
{
    const qint64 step = stepOf(query.resolution);
    const int resolution = static_cast<int>(query.resolution);
    const qint64 station = numberOf({}).value_or(0);
    const QVariant first =
        m_database.value(QStringLiteral("SELECT min(time) FROM history_sample WHERE subject = ? AND resolution = ?"),
                         {station, resolution});
    if (first.isNull())
        return {};
    qint64 next = std::max(first.toLongLong(), roundedUp(query.from.value_or(0), step));
    const qint64 end = std::min(roundedUp(until, step), query.now - query.now % step);
    QList<HistoryGap> gaps;
    Rows rows = m_database.rows(QStringLiteral("SELECT time FROM history_sample WHERE subject = ? AND resolution = ?"
                                               " AND time >= ? AND time < ? ORDER BY time"),
                                {station, resolution, next, end});
    while (rows.next()) {
        const qint64 time = rows.value(0).toLongLong();
        if (time > next)
            gaps.append({next, time});
        next = time + step;
    }
    if (next < end)
        gaps.append({next, end});
    return gaps;
}
