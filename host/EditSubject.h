#pragma once

#include "StationMessage.h"

class QObject;

/// What the edit @p command is about, for a reader: the name of a recording group or camera, the host of a NAS server,
/// the path of a folder; of several groups their names, separated by commas. An id that no model knows stands for
/// itself. Empty where the command names nothing.
/// @param plugin the PluginRecordingManagement, whose models know the names behind ids; may be null
QString editSubject(const StationCommand &command, QObject *plugin);
