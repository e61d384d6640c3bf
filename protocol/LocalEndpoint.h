#pragma once

#include <QString>
#include <QStringList>

/// Where a station on this machine is found: what client and station agree on without a word.

/// "recording-station" below the folder where this user's programs keep their data: $XDG_DATA_HOME where that is an
/// absolute path, else ~/.local/share. Empty where there is no home either.
QString defaultStationFolder();

/// The absolute path of the data folder @p folder, its links followed as far as it exists.
QString normalizedFolder(const QString &folder);

/// The sockets that the station of @p folder may listen on, in this order: "station.socket" in the folder, unless that
/// path is too long for a socket, and a file named after the folder in this user's runtime folder, for that case and
/// for a disk that takes nothing.
QStringList stationSocketPaths(const QString &folder);

/// The folder for sockets whose path would be too long: below $XDG_RUNTIME_DIR, else below /tmp. Not made by this.
QString stationRuntimeFolder();

/// The file that names who holds @p folder, or held it last.
QString stationHolderPath(const QString &folder);

/// Who holds @p folder: "recording-stationd (process 123)"; "another program" where that is not written.
QString stationHolder(const QString &folder);

/// This process in the same words.
QString programAndProcess();
