#pragma once

#include <QString>
#include <QVariant>

/// The data of the command that the plug-in sends when @p invokable, which edits recording groups, is called with
/// @p arguments, in the order of its parameters. For those who ask the station about an edit before they send it.
QVariant editRequestData(const QString &invokable, const QVariantList &arguments);
