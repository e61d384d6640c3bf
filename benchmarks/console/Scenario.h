#pragma once

#include "ConsoleClient.h"
#include "ConsoleWindow.h"

#include <string>
#include <vector>

/// A page of the console and the message that fills it.
struct Scenario
{
    /// One size of a scenario.
    struct Size
    {
        int records; ///< in the message
        bool plainOnce = false; ///< the plain rules take too long for more
    };

    std::string name;
    QString page; ///< its key in Main.qml
    std::vector<Size> sizes;
    /// The message; @p turn changes what every record says, so that no message repeats the one before.
    Message (*message)(int records, int turn);
    /// What stands in the window when it has arrived.
    std::vector<Fact> (*facts)(int records, int turn);
    /// What the page asks the plug-in for when it is refreshed, done by hand where there is no page; may be null.
    void (*request)(PluginRecordingManagement &plugin) = nullptr;
    /// What has come from the station before the message.
    std::vector<Message> before = {};
};

std::vector<Scenario> scenarios();

/// Empty when both plug-ins' models hold the same rows, else what differs.
std::string difference(PluginRecordingManagement &left, PluginRecordingManagement &right);
