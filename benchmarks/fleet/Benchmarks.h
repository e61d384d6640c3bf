#pragma once

#include <chrono>

/// How large and how long everything is.
struct Scale
{
    bool isSmoke = false; ///< ten stations and seconds, to see that it works
    std::chrono::seconds watch{120}; ///< how long a thousand stations are watched
};

/// What making and reading the event of each second costs, before anybody looks at it.
void addBody(const Scale &scale);
/// An empty command to a station and its reply, against bare messages over the same broker.
void addRoundTrip(const Scale &scale);
/// Clients of sites of some sizes: how long until they have all figures, and what they cost from then on.
void addSites(const Scale &scale);
/// A broker that dies under stations and clients.
void addBrokerRestart(const Scale &scale);
