#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QVariantMap>

/// The answer of "station.listStorage" for a program, see docs/recordingctl-json.md: null for what is not known.
QJsonArray storageJson(const QVariantList &volumes);

/// The same of "station.forecast". "now" and "then" of a group are null where there is none.
/// @param edit the command whose effect was asked for
QJsonObject forecastJson(const QString &edit, const QVariantMap &forecast);
