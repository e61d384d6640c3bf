#pragma once

#include <QJsonObject>
#include <QString>

/// Writes @p text and a line end to standard output, which carries results and nothing else.
void printLine(const QString &text);
/// Writes @p text, which ends its own lines, to standard output.
void printText(const QString &text);
/// Whether something could not be written to standard output.
bool isOutputLost();
/// Writes one line to standard error, preceded by the tool's name.
void printError(const QString &message);

QString indentedJson(const QJsonObject &object);
/// On one line.
QString compactJson(const QJsonObject &object);
