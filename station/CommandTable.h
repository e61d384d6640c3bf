#pragma once

#include "StationMessage.h"

#include <QHash>

#include <functional>
#include <memory>
#include <variant>

class Edit;

/// Takes every part of a reply, on the station's thread.
using Answer = std::function<void(const StationReply &)>;

/// Carries one command out that changes nothing. May answer at once or later, in one part or several; throws what stops
/// it.
using CommandHandler = std::function<void(const QVariant &data, const Answer &answer)>;

/// The same for a command that changes something: data and answer go through @p edit, which takes care that it happens
/// once.
using EditHandler = std::function<void(const std::shared_ptr<Edit> &edit)>;

/// Every command that a station knows, by its name. A subject of the station enters its own.
using CommandTable = QHash<QString, std::variant<CommandHandler, EditHandler>>;

/// The last part of a reply.
inline StationReply lastPart(const QString &returnCode, const QVariant &data = {})
{
    return {returnCode, data, true};
}

/// Does @p work, a part of carrying @p command out. Whatever it throws becomes the last part of the reply, and a line
/// in the station's log where that tells more. For handlers that answer later; what they throw at once is caught
/// already. Edits have Edit::attempt() for it.
void answerFailures(const QString &command, const Answer &answer, const std::function<void()> &work);

/// @p relayPath when it names the station that is called @p own: it is the same or empty. Else UnknownStation is given
/// to @p answer and the result is false.
bool isMeant(const QString &relayPath, const QString &own, const Answer &answer);
