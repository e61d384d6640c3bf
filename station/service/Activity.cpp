#include "Activity.h"

#include "ServerVocabulary.h"
#include "StationVocabulary.h"

QVariantMap activityMap(const Activity &activity)
{
    QVariantMap map{
        {StationKey::time, activity.time.toString(Qt::ISODateWithMs)},
        {StationKey::client, activity.client},
        {StationKey::user, activity.user},
        {StationKey::command, activity.command},
        {FieldKey::recordingGroupID, activity.subject.groupId},
        {FieldKey::recordingGroupName, activity.subject.groupName},
        {StationKey::subject, activity.subject.object},
        {StationKey::returnCode, activity.returnCode},
        {StationKey::duration, activity.duration},
    };
    if (activity.number > 0)
        map.insert(StationKey::number, activity.number);
    return map;
}

QString activityLine(const Activity &activity)
{
    return QStringLiteral("%1 client \"%2\" user \"%3\" %4 group %5 \"%6\" subject \"%7\": %8 after %9 ms")
        .arg(activity.time.toString(Qt::ISODateWithMs), activity.client, activity.user, activity.command,
             activity.subject.groupId, activity.subject.groupName, activity.subject.object, activity.returnCode,
             QString::number(activity.duration));
}
