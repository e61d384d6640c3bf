#pragma once

#include <QString>

/// A copy of @p text for one line of a log or a terminal: control characters are written as \n, \t or \x1b, those that
/// turn the direction of writing and those that separate lines as \u202e.
QString printable(const QString &text);
