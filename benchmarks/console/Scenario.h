#pragma once

#include <QVariant>

#include <string>
#include <vector>

/// What an item of the page has to say, by the item's object name.
struct Fact
{
    QString item;
    const char *property;
    QVariant value;
};

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
    QString message; ///< "VolumeChanged", or the command that is answered
    /// What it says; @p turn changes every record, so that no message repeats the one before.
    QVariantList (*data)(int records, int turn);
    /// What stands in the window when it has arrived.
    std::vector<Fact> (*facts)(int records, int turn);
    /// What the page asks the plug-in for when it is refreshed, done by hand where there is no page; may be null.
    const char *request = nullptr;
    int volumes = 0; ///< in the reply about the station's volumes that comes before the message; 0: none comes
};

std::vector<Scenario> scenarios();
