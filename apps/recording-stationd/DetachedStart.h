#pragma once

#include <QString>

#include <functional>

/// Tells the process that started this one how that went; once.
using ReportStart = std::function<void(const QString &error)>;

/// Has @p run, the work of a whole program, done by a process of its own, which belongs to no terminal and no parent.
/// Returns in the first process alone, when @p run has reported its start: 0, or 1 with the error on standard error.
///
/// The new process ends with what @p run returns; its standard output and error go to @p logFile, and to the file of
/// the same name with ".1" behind it when that grew too large before. To be called before there are threads.
int runDetached(const QString &logFile, const std::function<int(const ReportStart &)> &run);
