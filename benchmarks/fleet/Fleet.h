#pragma once

#include "LightStation.h"

#include <QObject>
#include <QThread>

#include <atomic>
#include <chrono>
#include <memory>
#include <vector>

/// Many light stations on a few threads, each with a connection of its own: "station-1", "station-2" and so on.
class Fleet : public QObject
{
    Q_OBJECT
public:
    struct Options
    {
        MqttSettings broker;
        int stations = 1;
        int threads = 2;
        std::chrono::milliseconds interval = std::chrono::seconds(1); ///< from one event of a station to its next
    };

    explicit Fleet(const Options &options, QObject *parent = nullptr);
    ~Fleet() override; ///< the stations say goodbye

    void start();

    int stations() const { return m_options.stations; }
    /// How many stations can be reached at the moment.
    int ready() const { return m_ready; }
    /// The sum over all stations. Waits until their threads come to it.
    LightStation::Counts counts();

    static QString stationId(int number); ///< from 1

signals:
    /// All stations can be reached now, or not all of them any more.
    void completeChanged(bool isComplete);

private:
    class Squad;

    void noteReady(int change);

    Options m_options;
    std::atomic<int> m_ready = 0;
    std::vector<std::unique_ptr<QThread>> m_threads;
    std::vector<std::unique_ptr<Squad>> m_squads; // on the threads
};
