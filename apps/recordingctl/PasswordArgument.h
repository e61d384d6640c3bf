#pragma once

#include "ArgumentConversion.h"

/// The password that @p text stands for: - reads one line from standard input, without echo when that is a terminal,
/// @FILE reads the first line of a plain file or a pipe; either may have 4096 bytes. A password itself is refused, as
/// everyone on the machine can read the arguments of a process; only the empty one may be typed.
ConvertedArgument passwordArgument(const QString &text, const QString &parameter);
