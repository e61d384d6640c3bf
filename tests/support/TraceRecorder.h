#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// The lines that the plug-in's objects wrote to the trace library. add_recording_test() puts a recording stand-in of
/// that library on the tests' library path; a test run by hand needs the same LD_LIBRARY_PATH, and stops without it.
struct TraceLine
{
    int severity; ///< 2 error, 5 trace
    QString text;
    QString sourceFile; ///< the name alone, without folders
    int line;
};

/// Every line since the last call.
QList<TraceLine> takeTraceRecords();

/// The lines since the last call as text: "error: PluginRecordingManagement::addNASServer, host is empty" or
/// "trace: PluginRecordingManagement::Init, Enter".
QStringList takeTraceLines();

/// The error lines since the last call, without "error: ". Trace lines of the same time are forgotten.
QStringList takeErrorLines();
