#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QVariant>
#include <QVariantMap>

class QDateTime;

/// One form for each quantity in everything that --json prints, whatever the plug-in and the station call it and count
/// it in. A new quantity gets a row in the table of JsonFields.cpp; what ends in Bytes, Megabytes, Minutes or Days
/// already needs none.
///
/// Sizes are bytes ("sizeBytes"), reserves MB ("...Megabytes"), lengths of time "...Minutes" or "...Days", points in
/// time ISO 8601 in UTC with milliseconds, enumerators their names. What is not known, or not there, is null: there is
/// no negative number, and no empty text. Passwords are asterisks.

/// @p value, which has no name: lists and maps with all that is in them, a model as null.
/// @param scope the signal or event that it belongs to, for names that mean different things
QJsonValue plainJson(const QVariant &value, const QString &scope = {});

/// @p fields under their names in JSON. A volume of no size is one whose size is not known, nor what is free on it.
QJsonObject fieldsJson(const QVariantMap &fields, const QString &scope = {});

/// "2026-11-21T05:10:01.776Z"; null for an invalid one.
QJsonValue timeJson(const QDateTime &time);

/// @p text, or null for an empty one.
QJsonValue textJson(const QString &text);
