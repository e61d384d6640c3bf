#include "StationLog.h"

Q_LOGGING_CATEGORY(stationLog, "recording.station", QtWarningMsg)
