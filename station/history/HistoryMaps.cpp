#include "HistoryMaps.h"

#include "RequestMap.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "smb/SmbPath.h"

#include <QDateTime>

namespace {
constexpr qint64 bytesPerKilobyte = 1024;

QString text(qint64 time)
{
    return QDateTime::fromSecsSinceEpoch(time).toUTC().toString(Qt::ISODate);
}

std::optional<qint64> timeIn(const RequestMap &request, const QString &key)
{
    if (!request.contains(key))
        return {};
    const QDateTime time = QDateTime::fromString(request.string(key), Qt::ISODate);
    if (!time.isValid() || time.timeSpec() != Qt::UTC || time.toSecsSinceEpoch() < 0)
        throw BadRequest(QStringLiteral("\"%1\" has to be a time like 2026-03-20T00:00:00Z").arg(key));
    return time.toSecsSinceEpoch();
}

HistorySubject subjectIn(const RequestMap &request)
{
    const QString kind = request.string(StationKey::kind);
    if (kind == StationHistoryKind::recordingGroup)
        return {HistorySubject::Kind::RecordingGroup, request.string(StationKey::id)};
    if (kind != StationHistoryKind::volume)
        throw BadRequest(QStringLiteral("\"kind\" has to be \"recordingGroup\" or \"volume\""));
    const QString path = request.string(FieldKey::path);
    const std::optional<SmbPath> share = SmbPath::parse(path);
    return {HistorySubject::Kind::Volume, share ? share->shareKey() : path};
}

HistoryResolution resolutionIn(const RequestMap &request)
{
    const QString resolution = request.string(StationKey::resolution);
    if (resolution == StationResolution::hour)
        return HistoryResolution::Hour;
    if (resolution == StationResolution::day)
        return HistoryResolution::Day;
    throw BadRequest(QStringLiteral("\"resolution\" has to be \"hour\" or \"day\""));
}

/// -1 stands for what is not known.
void insert(QVariantMap &map, const QString &key, const std::optional<qint64> &figure, qint64 unit = 1)
{
    map.insert(key, figure ? *figure / unit : -1);
}

QVariantMap mapOf(const TimedSample &timed)
{
    const auto &figures = timed.sample.figures;
    QVariantMap map{{StationKey::time, text(timed.time)}};
    insert(map, StationKey::recordedBytes, figures[UsageSample::RecordedBytes]);
    if (timed.sample.subject.kind == HistorySubject::Kind::Volume) {
        insert(map, FieldKey::volumeSize, figures[UsageSample::VolumeBytes], bytesPerKilobyte);
        insert(map, FieldKey::volumeAvailableSize, figures[UsageSample::AvailableBytes], bytesPerKilobyte);
        return map;
    }
    insert(map, StationKey::recordedDays, figures[UsageSample::RecordedDays]);
    insert(map, StationKey::remainingDays, figures[UsageSample::RemainingDays]);
    insert(map, StationKey::oneDayUsage, figures[UsageSample::OneDayUsage]);
    insert(map, FieldKey::recordingGroupReservedTime, figures[UsageSample::ReservedMinutes]);
    insert(map, FieldKey::reserveSpace, figures[UsageSample::ReservedMegabytes]);
    return map;
}
} // namespace

HistoryQuery historyQuery(const QVariant &data, qint64 now)
{
    const RequestMap request(data);
    HistoryQuery query{subjectIn(request), resolutionIn(request), timeIn(request, StationKey::from),
                       timeIn(request, StationKey::until).value_or(now + 1), now};
    if (query.from.value_or(0) > query.until)
        throw BadRequest(QStringLiteral("\"from\" has to be before \"until\""));
    return query;
}

QVariantMap historyMap(const HistoryPage &page)
{
    QVariantList samples;
    for (const TimedSample &sample : page.samples)
        samples.append(mapOf(sample));
    QVariantList gaps;
    for (const HistoryGap &gap : page.gaps)
        gaps.append(QVariantMap{{StationKey::from, text(gap.from)}, {StationKey::until, text(gap.until)}});
    QVariantMap map{{StationKey::samples, samples}, {StationKey::gaps, gaps}};
    if (page.moreFrom)
        map.insert(StationKey::moreFrom, text(*page.moreFrom));
    return map;
}
