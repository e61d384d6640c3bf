#pragma once

#include <QVariant>

#include <limits>
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
    std::string name;
    QString page; ///< its key in Main.qml
    std::vector<int> sizes; ///< records in the message
    QString message; ///< "VolumeChanged", or the command that is answered
    /// What it says; @p turn changes every record, so that no message repeats the one before.
    QVariantList (*data)(int records, int turn);
    /// What stands in the window when it has arrived.
    std::vector<Fact> (*facts)(int records, int turn);
    bool isTree = false; ///< the page asks for it, and shows the station's volumes beside it
    /// With more records the plain rules take too long for a second time.
    int mostPlain = std::numeric_limits<int>::max();
};

std::vector<Scenario> scenarios();
