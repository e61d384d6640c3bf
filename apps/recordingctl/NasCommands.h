#pragma once

#include "ExitCode.h"
#include "TextTable.h"

class CommandRun;
class QAbstractItemModel;

/// What the tool does with NAS servers: "nas", "nas-add" and so on.
ExitCode showNasServers(CommandRun &run);
ExitCode addNasServer(CommandRun &run);
ExitCode updateNasServer(CommandRun &run);
ExitCode removeNasServer(CommandRun &run);
ExitCode showNasFolders(CommandRun &run);
ExitCode showNasCapacity(CommandRun &run);
ExitCode addNasVolumes(CommandRun &run);

/// The NAS server model for an operator: no passwords.
TextTable nasServerTable(const QAbstractItemModel &servers);

/// The host in @p path, written as \\host\share, //host/share or smb://host/share; empty when it is none of these.
QString hostOfNasPath(const QString &path);
