#pragma once

#include <QString>

/// Return codes with which the host itself answers a command that no station answered.
namespace HostReturnCode {
extern const QString LinkDown; ///< the station cannot be reached; the command was not carried out
extern const QString StationLost; ///< the station was lost before the reply came; an edit may have taken effect
extern const QString NoAnswer; ///< the station did not answer in time; an edit may still take effect
extern const QString CannotBeSent; ///< the command is too large, or holds what cannot travel
extern const QString TooLargeForBroker; ///< the command is larger than the broker takes
extern const QString BrokerRefused; ///< the broker does not let this user send commands to that station
extern const QString BadReply; ///< what the station answered cannot be read; an edit may have taken effect
extern const QString UnknownStation; ///< the relay path names no station that can be reached
extern const QString OtherStation; ///< another station took the direct one's place; an edit may still take effect
extern const QString Closing; ///< the client is closing
} // namespace HostReturnCode
