#pragma once

#include "LocalClient.h"

// A station that is a process of its own, recording-stationd, which its first client starts.

/// The station's reply; asked for again where the link answers that the station was lost. Throws std::runtime_error
/// where none can be reached.
StationReply ask(LocalClient &client, const StationCommand &command);

/// Sends @p signal to the station of @p folder and waits for the end of its process.
void endStation(const QString &folder, int signal);
