#pragma once

#include "MessageCodec.h"

#include <QString>

#include <chrono>

/// How a station serves its clients.
struct ServiceSettings
{
    QString stationName; ///< empty: the name of this machine
    QString relayPath; ///< under which the station also answers, besides the empty one
    QString version; ///< of the program
    MessageLimits messages;
    int clientLimit = 100;
    qint64 queueLimit = 64 * 1024 * 1024; ///< bytes that may wait for one client
    int commandLimit = 256; ///< commands of one client under way; no more are read from it meanwhile
    std::chrono::milliseconds greetingTime = std::chrono::seconds(10); ///< for a client's first words
    std::chrono::milliseconds readingTime = std::chrono::seconds(60); ///< in which a client has to take something
    std::chrono::milliseconds partingTime = std::chrono::seconds(1); ///< to take the last words, before it is cut off
    std::chrono::milliseconds endTime = std::chrono::seconds(4); ///< for what is under way when the station ends
};
