#pragma once

#include "PluginRecordingManagement.h"

#include <QtQml/qqml.h>

/// Names the plug-in's class for the QML type description. Never instantiated: the plug-in registers its type itself.
struct RecordingManagementTypes
{
    Q_GADGET
    QML_FOREIGN(PluginRecordingManagement)
    QML_NAMED_ELEMENT(PluginRecordingManagement)
    QML_ADDED_IN_VERSION(1, 0)
};
