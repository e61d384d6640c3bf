#pragma once

#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

/// What was typed, understood as far as it can be without the plug-in.
struct CommandLine
{
    QString command;
    QStringList arguments;
    bool json = false;
    std::optional<std::chrono::milliseconds> timeout;
    std::optional<int> count;

    QString text; ///< what --help or --version prints; nothing else is to be done then
    QString error; ///< one line that says what is wrong; empty when nothing is

    /// @param arguments those of the process, the program's name first
    static CommandLine parse(const QStringList &arguments);
};
