#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

/// What was typed, understood as far as it can be without the plug-in.
struct CommandLine
{
    QString command;
    QString edit; ///< forecast: the command whose effect is asked for; arguments and options are its own
    QStringList arguments;
    QMap<QString, QStringList> options; ///< what was typed behind each option, checked; [""] for a flag

    bool json = false;
    QString url; ///< of the station; see StationLink::open()
    std::optional<std::chrono::milliseconds> timeout;
    std::optional<int> count;

    QString text; ///< what --help or --version prints; nothing else is to be done then
    QString error; ///< one line that says what is wrong; empty when nothing is

    bool has(const QString &option) const { return options.contains(option); }
    QStringList values(const QString &option) const { return options.value(option); }
    QString value(const QString &option, const QString &otherwise = {}) const
    {
        return has(option) ? options.value(option).first() : otherwise;
    }

    /// @param arguments those of the process, the program's name first
    static CommandLine parse(const QStringList &arguments);
};
