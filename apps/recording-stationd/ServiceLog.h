#pragma once

#include <QLoggingCategory>
#include <QString>

/// What the program around the station has to say: the category "recording.service".
Q_DECLARE_LOGGING_CATEGORY(serviceLog)

/// How lines on standard error look.
enum class LogForm {
    Plain,
    Journal, ///< each begins with its level as sd-daemon(3) has it: "<4>"
};

/// Journal where a service manager takes what this process writes ($JOURNAL_STREAM or $INVOCATION_ID is set, and
/// standard error is no terminal), else Plain.
LogForm wantedLogForm();

/// From now on every message of this process is one line of standard error, written at once, as printable() has it. For
/// a program's main(), before there are threads.
void startServiceLog(LogForm form);

/// Writes the error that ends the program: "recording-stationd: @p error".
void writeError(const QString &error);
