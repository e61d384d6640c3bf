#pragma once

#include "IndexedTree.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

/// The trees that the benchmarks work on, each made when it is asked for first.
class Trees
{
public:
    /// @param recordings the folder where they are made, @param data the one for the stations' databases
    Trees(std::string recordings, std::string data, const std::vector<Layout> &layouts);

    std::vector<int> sizes() const; ///< files, the smallest first
    /// Of one of the sizes. Throws std::runtime_error where it cannot be made.
    IndexedTree &tree(int size);

private:
    std::string m_recordings;
    std::string m_data;
    std::map<int, Layout> m_layouts;
    std::map<int, std::unique_ptr<IndexedTree>> m_trees;
};
