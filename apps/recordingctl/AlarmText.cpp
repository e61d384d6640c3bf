#include "AlarmText.h"

#include "JsonFields.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "ValueText.h"

QString alarmWords(StatusMonitorPlugin::Kind kind, const QString &text)
{
    switch (kind) {
    case StatusMonitorPlugin::VolumeError:
        return QStringLiteral("a volume cannot be reached");
    case StatusMonitorPlugin::InsufficientRecordingDays:
        return QStringLiteral("reserved time will not be reached");
    case StatusMonitorPlugin::StationError:
    case StatusMonitorPlugin::StationWarning:
        break;
    }
    return text;
}

QJsonObject alarmJson(const StatusMonitorPlugin::Alarm &alarm)
{
    const QString kind = alarm.word.isEmpty() ? valueText(QVariant::fromValue(alarm.kind)) : alarm.word;
    return {{StationKey::kind, kind},
            {StationKey::severity, alarm.isError() ? StationSeverity::error : StationSeverity::warning},
            {StationKey::subject, textJson(alarm.subject)},
            {StationKey::text, textJson(alarm.text.isEmpty() ? alarmWords(alarm.kind) : alarm.text)},
            {StationKey::remedy, textJson(alarm.remedy)},
            {StationKey::since, timeJson(alarm.since)},
            {StationKey::acknowledgedAt, timeJson(alarm.acknowledgedAt)},
            {StationKey::acknowledgedBy, textJson(alarm.acknowledgedBy)},
            {StationKey::note, textJson(alarm.note)},
            {QStringLiteral("group"), textJson(alarm.groupName)},
            {QStringLiteral("groupId"), textJson(alarm.groupId)},
            {QStringLiteral("source"), textJson(alarm.source)}};
}

QJsonObject stationAlarmJson(const QVariantMap &alarm)
{
    const bool isOfGroup = alarm.contains(FieldKey::recordingGroupID);
    QVariantMap fields{{QStringLiteral("group"), isOfGroup ? alarm.value(StationKey::subject) : QVariant()},
                       {QStringLiteral("groupId"), alarm.value(FieldKey::recordingGroupID)},
                       {QStringLiteral("source"), {}}};
    for (const QString &key :
         {StationKey::kind, StationKey::severity, StationKey::subject, StationKey::text, StationKey::remedy,
          StationKey::since, StationKey::acknowledgedAt, StationKey::acknowledgedBy, StationKey::note})
        fields.insert(key, alarm.value(key));
    return fieldsJson(fields);
}

QJsonObject pastAlarmJson(const QVariantMap &alarm)
{
    QJsonObject json = stationAlarmJson(alarm);
    for (const char *key : {"group", "groupId", "source"}) // of the plug-in's alarms alone
        json.remove(QLatin1String(key));
    json.insert(StationKey::until,
                fieldsJson({{StationKey::until, alarm.value(StationKey::until)}})[StationKey::until]);
    return json;
}
