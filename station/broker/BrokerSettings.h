#pragma once

#include "MessageCodec.h"
#include "mqtt/MqttSettings.h"

#include <QString>

#include <chrono>

/// How a station serves clients over a broker.
struct BrokerSettings
{
    MqttSettings mqtt;
    QString stationId; ///< the relay path; not empty
    QString stationName;
    QString version; ///< of the program
    QString rolesFile = {}; ///< see BrokerRoles; empty: everybody whom the broker lets in is an operator
    MessageLimits messages = {};
    int commandLimit = 1000; ///< commands under way, of all clients; more are refused
    std::chrono::milliseconds questionTime = std::chrono::seconds(3); ///< for another station of that ID to answer
    std::chrono::seconds heartbeat{3}; ///< an event is sent after so long without one: clients notice when none comes
    std::chrono::milliseconds endTime = std::chrono::seconds(4); ///< for what is under way when the station ends
};
