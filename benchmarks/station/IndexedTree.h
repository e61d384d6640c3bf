#pragma once

#include "RecordedTree.h"
#include "usage/PlaceReader.h"

#include <memory>

class IndexWorker;

/// A tree of recordings with a station's database for it, and the part of a station that keeps the index, on this
/// thread. Everything may throw std::exception.
class IndexedTree
{
public:
    /// Makes the files and the data folder in the new folder @p path.
    IndexedTree(const Layout &layout, const std::string &path);
    ~IndexedTree();

    RecordedTree &files() { return m_files; }
    QString dataFolder() const { return m_dataFolder; }

    /// The groups in a database without an index, and nothing that works on it.
    void forgetIndex();
    /// Reads all folders; the first time after forgetIndex() and close() a worker starts with it.
    void read();
    /// To be called before another station works on the database.
    void close();
    /// As read() would leave it, by read() unless that was done before.
    void requireIndex();

    /// What the worker told last.
    const PlaceSums &sums() const { return m_sums; }
    /// Throws where that is not what the files come to.
    void checkSums() const;

private:
    RecordedTree m_files;
    QString m_dataFolder;
    QList<IndexedPlace> m_places;
    std::unique_ptr<IndexWorker> m_worker;
    PlaceSums m_sums;
    bool m_isIndexed = false;
    quint64 m_ticket = 0;
};
