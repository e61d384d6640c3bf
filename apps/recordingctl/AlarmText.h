#pragma once

#include "companions/StatusMonitorPlugin.h"

#include <QJsonObject>
#include <QString>
#include <QVariantMap>

/// What an alarm of @p kind says; @p text where it is one of the station's own, which has words already.
QString alarmWords(StatusMonitorPlugin::Kind kind, const QString &text = {});

/// @p alarm for a program: "kind" (the station's word, else the enumerator), "severity", "subject", "text", "remedy",
/// "since", "group", "groupId" and "source", null where there is none.
QJsonObject alarmJson(const StatusMonitorPlugin::Alarm &alarm);
/// The same of one of the station's own: a map as in the answer of "station.listAlarms".
QJsonObject stationAlarmJson(const QVariantMap &alarm);
/// One that ended.
QJsonObject pastAlarmJson(const QVariantMap &alarm);
