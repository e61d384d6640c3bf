#pragma once

#include "MqttMessage.h"
#include "MqttSettings.h"

#include <memory>
#include <optional>

struct mosquitto;

/// One attempt to reach a broker: the library's client, about to connect.
struct MqttAttempt
{
    std::shared_ptr<mosquitto> client; ///< null where it failed
    QString error; ///< why, an English clause
    int places = 0; ///< that the broker's name leads to: so many attempts in turn each take another one
};

/// Looks the broker's name up, reads the files that @p settings name and begins to connect. May block as long as that
/// takes; any thread.
/// @param clientId under which the broker knows this connection; unique among all its clients
/// @param will what the broker says to all when it loses this connection; none: nothing
/// @param number of the attempt, from 0: where a name has several addresses, each attempt takes the next one
MqttAttempt attemptMqtt(const MqttSettings &settings, const QString &clientId, const std::optional<MqttMessage> &will,
                        int number);

/// Why no connection came about, an English clause.
/// @param code of libmosquitto
/// @param detail what it said of TLS; may be empty
QString mqttConnectError(const MqttSettings &settings, int code, const QString &detail);

/// What @p code of libmosquitto means, an English clause.
QString mqttErrorText(int code);
