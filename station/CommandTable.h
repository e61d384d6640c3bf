#pragma once

#include "StationMessage.h"

#include <QHash>

#include <functional>

/// Takes every part of a reply, on the station's thread.
using Answer = std::function<void(const StationReply &)>;

/// Carries one command out. May answer at once or later, in one part or several; throws what stops it.
using CommandHandler = std::function<void(const QVariant &data, const Answer &answer)>;

/// Every command that a station knows, by its name. A subject of the station enters its own.
using CommandTable = QHash<QString, CommandHandler>;

/// The last part of a reply.
inline StationReply lastPart(const QString &returnCode, const QVariant &data = {})
{
    return {returnCode, data, true};
}
