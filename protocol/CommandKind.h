#pragma once

#include <QSet>
#include <QString>

/// The commands that change what a station keeps.
const QSet<QString> &editCommands();

/// Whether @p command changes anything at the station: the edits, and what ends one that goes on.
bool changesAnything(const QString &command);

/// Whether @p command changes what the station keeps, so that an answer that never came leaves it open whether it did.
bool isEdit(const QString &command);
