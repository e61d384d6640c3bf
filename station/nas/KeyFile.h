#pragma once

#include <QString>

/// Where the key of the stored passwords lies, and who keeps it.
struct KeyFile
{
    enum class Keeper {
        Station, ///< makes it where it is missing; the station's user alone may read it
        System, ///< handed over by the service manager to be read, never made
    };

    QString path;
    Keeper keeper = Keeper::Station;

    /// @p setting where that names a file, else "recording-station.key" in $CREDENTIALS_DIRECTORY where a service
    /// manager put it there, else "nas.key" in @p dataFolder.
    static KeyFile of(const QString &setting, const QString &dataFolder);
};
