#pragma once

#include <QLoggingCategory>

/// What the station has to say to those who run it: the category "recording.station". Never a password.
Q_DECLARE_LOGGING_CATEGORY(stationLog)
