#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// What the command line asks for.
struct StartOptions
{
    enum class Task {
        Serve, ///< as a service, until a signal ends it
        ServeOnDemand, ///< detached, until nobody is left
        Check, ///< look and tell
        Help,
        Version,
    };

    Task task = Task::Serve;
    QString dataFolder; ///< empty: not named
    QString stationId; ///< empty: not named
    QString broker; ///< its URL; empty: not named
    QString configFile; ///< an absolute path; empty: not named
    QString error; ///< wrong use, an English sentence; empty: none
};

/// Reads the arguments of the program, its own name included.
StartOptions readStartOptions(const QStringList &arguments);

/// What --help prints. Needs the application object.
QString helpText();

/// The folder that the station keeps its data in: @p chosen on the command line, else @p configured, else the state
/// folder that a service manager made ($STATE_DIRECTORY), else defaultStationFolder(). Empty where there is none.
QString dataFolderOf(const QString &chosen, const QString &configured);
