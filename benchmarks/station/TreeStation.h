#pragma once

#include "RecordedTree.h"
#include "Station.h"
#include "Waiting.h"

/// A whole station for a tree with an index, on this thread and one that it starts, in a hurry: it waits for nothing
/// before it reads or tells. Everything throws std::runtime_error where an event does not come.
class TreeStation
{
public:
    /// @param files must outlive this object
    TreeStation(RecordedTree &files, const QString &dataFolder);

    /// Until an event has told the figures that the files come to.
    void waitForFigures();
    /// Has all folders read to the end, unless that was done before.
    void requireReading();

private:
    bool areFiguresTold() const;

    RecordedTree &m_files;
    Station m_station;
    Waiting m_waiting;
    QVariantList m_told; // by the last "VolumeChanged"
    int m_events = 0;
    bool m_hasRead = false;
};
