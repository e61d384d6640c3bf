#pragma once

#include <QString>

/// Return codes with which the host itself answers a command that no station answered.
namespace HostReturnCode {
extern const QString LinkDown; ///< the link to the station is down, or went down before the reply came
extern const QString NoAnswer; ///< the station did not answer in time
extern const QString UnknownStation; ///< the relay path names no station that can be reached
extern const QString Closing; ///< the client is closing
} // namespace HostReturnCode
