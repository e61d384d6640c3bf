#pragma once

#include <QString>

/// What a return code means, as a sentence for the operator; empty for success. A code that nobody described is shown
/// as it is.
QString refusalText(const QString &returnCode);

/// Why the plug-in sent nothing, as a sentence for the operator. @p fact is that of its error line, as
/// PluginErrors::lastFact(); where it is empty, all that is known is that the request was not sent.
QString unsentText(const QString &fact);

/// What is to be said behind it where it is open whether the edit @p command takes effect; else empty.
QString outcomeHint(const QString &command, const QString &returnCode);
