#include "ActivityLog.h"

#include "ActivityStore.h"
#include "ListLimit.h"
#include "RequestMap.h"
#include "ServerVocabulary.h"
#include "StationData.h"
#include "StationVocabulary.h"
#include "store/Database.h"

namespace {
QDateTime time(const RequestMap &request, const QString &key)
{
    if (!request.contains(key))
        return {};
    const QDateTime time = QDateTime::fromString(request.string(key), Qt::ISODateWithMs);
    if (!time.isValid() || time.timeSpec() == Qt::LocalTime)
        throw BadRequest(QStringLiteral("\"%1\" has to be a time in UTC as in 2026-03-20T12:00:00.000Z").arg(key));
    return time.toUTC();
}
} // namespace

ActivityLog::ActivityLog(StationData &data, QObject *parent)
    : QObject(parent)
    , m_data(data)
{
}

void ActivityLog::enterInto(CommandTable &table)
{
    table.insert(StationCommandName::listActivity,
                 [this](const QVariant &data, const Answer &answer) { listActivity(data, answer); });
}

void ActivityLog::add(const Activity &activity)
{
    emit eventRaised({StationEventName::ActivityAdded, activityMap(activity)});
}

void ActivityLog::listActivity(const QVariant &data, const Answer &answer)
{
    const RequestMap request(data.isNull() ? QVariantMap() : data);
    ActivityQuery query;
    query.from = time(request, StationKey::from);
    query.until = time(request, StationKey::until);
    if (request.contains(FieldKey::recordingGroupID))
        query.groupId = request.string(FieldKey::recordingGroupID);
    query.limit = readLimit(request);
    if (request.contains(StationKey::before)) {
        query.before = request.integer(StationKey::before);
        if (query.before < 1)
            throw BadRequest(QStringLiteral("\"%1\" has to be the number of an entry").arg(StationKey::before));
    }
    QVariantList list;
    if (m_data.isDatabaseThere()) {
        const QList<Activity> found = ActivityStore(m_data.database()).list(query);
        for (const Activity &activity : found)
            list.append(activityMap(activity));
    }
    answer(lastPart(ReturnCode::Success, list));
}
