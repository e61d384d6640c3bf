#pragma once

#include "RecordedTree.h"
#include "usage/PlaceReader.h"

#include <memory>

class IndexWorker;
class TreeStation;

/// A tree of recordings with a station's database for it, and what works on them: the part of a station that keeps the
/// index, on this thread, or a whole station. Everything may throw std::exception.
class IndexedTree
{
public:
    /// Makes the files in the new folder @p path, and the data folder @p dataFolder.
    IndexedTree(const Layout &layout, const std::string &path, const std::string &dataFolder);
    ~IndexedTree();

    RecordedTree &files() { return m_files; }

    /// The groups in a database without an index, and nothing that works on it.
    void forgetIndex();
    /// Reads all folders; the first time after close() the part of a station that does it starts with it.
    void read();
    /// As read() would leave it, by read() unless that was done before.
    void requireIndex();
    /// A whole station, which begins with the index as it is; the same until close() or read().
    TreeStation &station();
    /// Ends whatever works on the database.
    void close();

    /// What the worker told last.
    const PlaceSums &sums() const { return m_sums; }
    /// Throws where that is not what the files come to.
    void checkSums() const;

private:
    RecordedTree m_files;
    QString m_dataFolder;
    QList<IndexedPlace> m_places;
    std::unique_ptr<IndexWorker> m_worker;
    std::unique_ptr<TreeStation> m_station;
    PlaceSums m_sums;
    bool m_isIndexed = false;
    quint64 m_ticket = 0;
};
