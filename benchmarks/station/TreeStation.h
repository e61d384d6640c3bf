#pragma once

#include "RecordedTree.h"
#include "Station.h"

#include <memory>

/// Lets the thread's event loop turn until @p isSo. Throws after a minute and a half, naming @p what.
void waitFor(const std::function<bool()> &isSo, const std::string &what);

/// A tree of recordings and a whole station for it, on this thread and one that it starts, in a hurry: it waits for
/// nothing before it reads or tells. It runs from the first call that needs it until stop(). Everything may throw
/// std::exception.
class TreeStation
{
public:
    /// The files come into the new folder @p path, when they are first asked for, and the database into the data folder
    /// @p dataFolder.
    TreeStation(const Layout &layout, const QString &path, const QString &dataFolder);

    const Layout &layout() const { return m_layout; }
    int size() const { return m_layout.all(); } ///< files
    const QString &dataFolder() const { return m_dataFolder; }
    RecordedTree &files();

    /// Leaves the groups in a database without an index.
    void forgetIndex();
    void stop();
    /// Until an event has told the figures that the files come to.
    void waitForFigures();
    /// Has all folders read through once more.
    void readAll();
    /// The index is as the files are, and the station at rest.
    void settle();
    /// Throws where the index is not what the files come to.
    void checkIndex();

    double readingAgain = 0; ///< what reading an unchanged tree took, microseconds; 0 where it was not measured

private:
    Station &station();
    bool areFiguresTold();

    Layout m_layout;
    QString m_path;
    QString m_dataFolder;
    std::unique_ptr<RecordedTree> m_files;
    std::unique_ptr<Station> m_station;
    QVariantList m_told; // by the last "VolumeChanged"
    bool m_isTold = false; // what the files come to
    int m_events = 0;
    bool m_isSettled = false;
};

using TreeStations = std::vector<std::unique_ptr<TreeStation>>;

/// Registers the benchmarks of each kind. @p trees must outlive their run.
void addReading(const TreeStations &trees);
void addChanges(const TreeStations &trees);
void addEvents(const std::vector<int> &groups);
/// These two run stations of recording-stationd, with data below @p folder and on the trees; those go last.
void addLink(const QString &folder, bool isSmoke);
void addStarts(const TreeStations &trees);
