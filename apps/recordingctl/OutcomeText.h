#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

struct CallOutcome;

/// @p outcome of a call of @p name for a program: "call", "answers", and where there are any "returnCode", "result",
/// "model" and "refused" (what of the request was refused, and why).
QJsonObject outcomeJson(const QString &name, const CallOutcome &outcome);

/// Writes the answering signals and the model of @p outcome, or what a query returned, to standard output.
void printOutcome(const CallOutcome &outcome);

/// What of a request the station refused and why, one line each: the element, its value, the station's code.
QStringList refusalLines(const CallOutcome &outcome);
