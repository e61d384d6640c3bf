#pragma once

#include <QString>

/// What a return code means, as a sentence for the operator; empty for success. A code that nobody described is shown
/// as it is.
QString refusalText(const QString &returnCode);
