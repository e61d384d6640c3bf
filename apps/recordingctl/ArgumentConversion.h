#pragma once

#include <QMetaMethod>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVariant>

/// An argument of the command line as a value of its parameter.
struct ConvertedArgument
{
    QVariant value; ///< of exactly the parameter's type; invalid on failure
    QString error; ///< empty on success; else one line that names the parameter and what it takes
};

/// Makes a value of the type @p type of what was typed for @p parameter.
///
/// Texts are taken as they are; a truth value is true, false, yes, no, 1 or 0; an enumerator goes by name or number;
/// lists and maps are JSON. A list of texts is JSON when it begins with a bracket, else it has the one element typed.
ConvertedArgument convertArgument(const QString &text, const QString &parameter, QMetaType type);

/// The arguments of @p method, one for each of its parameters, converted; passwords by passwordArgument().
/// On failure the list is empty and @p error says what the first wrong one must be.
QVariantList convertArguments(const QStringList &texts, const QMetaMethod &method, QString *error);
