#pragma once

#include <QMetaEnum>
#include <QMetaType>
#include <QString>
#include <QVariant>

/// The enumeration behind @p type; an invalid one when the type is none that the meta-object system knows.
QMetaEnum enumerationOf(QMetaType type);

/// @p value for a reader: enumerators by name, texts as they are, lists of texts with commas, other lists and maps as
/// JSON, an invalid value as nothing.
QString valueText(const QVariant &value);
