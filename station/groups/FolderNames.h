#pragma once

#include "RecordingGroup.h"

/// Recordings lie in <path of a group>/<group folder>/<camera folder>/<yyyy-mm-dd>/file.
///
/// The folder that belongs to the name of a group or a camera: the name, with every character that some file system
/// takes in no name written as "%" and the two hexadecimal digits of each of its bytes: control characters, the
/// characters / \ : * ? " < > | and %, a dot at the beginning or the end, and a space at the end. Two names never have
/// the same folder. Empty where the name can have none: it is empty, holds a NUL or half of a surrogate pair, or comes
/// to more than 240 bytes.
QString folderName(const QString &name);

/// The folder for a new group called @p name: folderName(), with "-2", "-3" and so on behind it where one of
/// @p groups has it, in the same or other capitals.
QString newGroupFolder(const QString &name, const QList<RecordingGroup> &groups);
