#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

struct CallOutcome;

/// @p outcome of a call of @p name for a program: "name", "result", "answers" and "rows", those of the model.
QJsonObject outcomeJson(const QString &name, const CallOutcome &outcome);

/// Why @p outcome is a failure, as a code; empty where it is none.
QString errorCodeOf(const CallOutcome &outcome);

/// Writes the answering signals and the model of @p outcome, or what a query returned, to standard output.
void printOutcome(const CallOutcome &outcome);

/// What of a request the station refused and why, one line each: the element, its value, the station's code.
QStringList refusalLines(const CallOutcome &outcome);
/// The same for a program: objects with "element", "index", "value", "code" and "reason", null where there is none.
QJsonArray refusedElementsJson(const CallOutcome &outcome);
