#include "StatusMonitor.h"

const QString StatusMonitorMethod::monitorVolumeStatus = QStringLiteral("monitorVolumeStatus");
const QString StatusMonitorMethod::removeVolumeError = QStringLiteral("removeVolumeError");
const QString StatusMonitorMethod::monitorInsufficientRecordingDays =
    QStringLiteral("monitorInsufficientRecordingDays");
const QString StatusMonitorMethod::monitorSufficientRecordingGroup = QStringLiteral("monitorSufficientRecordingGroup");
