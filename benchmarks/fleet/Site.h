#pragma once

#include "Broker.h"
#include "Child.h"

#include <chrono>
#include <memory>
#include <vector>

/// A broker, stations and clients, each a process of its own.
class Site
{
public:
    /// Starts the broker and @p stations stations, and waits until all can be reached.
    /// @param interval from one event of a station to its next
    explicit Site(int stations, std::chrono::milliseconds interval = std::chrono::seconds(1));

    /// Starts one more client and waits until it has figures of all stations.
    /// @return seconds from when it began to connect
    double addClient(bool hasWindow);

    Broker &broker() { return m_broker; }
    Child &fleet() { return m_fleet; }
    const std::vector<std::unique_ptr<Child>> &clients() const { return m_clients; }
    int stations() const { return m_stations; }
    /// Seconds that the stations took to come.
    double arrival() const { return m_arrival; }

private:
    int m_stations;
    Broker m_broker;
    Child m_fleet;
    std::vector<std::unique_ptr<Child>> m_clients; // they go first
    double m_arrival = 0;
};
