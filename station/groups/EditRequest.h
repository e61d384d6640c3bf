#pragma once

#include "GroupEdit.h"

#include <QVariant>

#include <functional>
#include <optional>

/// One edit of one recording group, as a command asks for it.
struct EditRequest
{
    enum class Kind { Add, Change, Remove };

    Kind kind = Kind::Change;
    QString id = {}; ///< of the group, as it was sent; empty for a new one
    QString path = {}; ///< likewise; "removePathFromRecordingGroup" alone
    std::function<void(GroupEdit &)> steps = {}; ///< none to remove the group
};

/// The edits that @p command asks for with @p data, at least one, in their order; each takes effect or not by itself.
/// None where the command is no edit of recording groups. Throws BadRequest.
std::optional<QList<EditRequest>> editRequests(const QString &command, const QVariant &data);

/// What came of an edit: the group as it is then, or why it stays as it is.
struct EditOutcome
{
    RecordingGroup before = {}; ///< worthless for a new group
    RecordingGroup after = {}; ///< worthless for one that is removed, and where there are errors
    QList<EditError> errors = {};

    QString returnCode() const; ///< "0", or that of the first error
};

/// Judges @p request against @p site and writes nothing. May wait for disks and NAS servers, for a bounded time. A new
/// group has an id and a folder of its own then.
EditOutcome judge(const EditRequest &request, const GroupSite &site);
