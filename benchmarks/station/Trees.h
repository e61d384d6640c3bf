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
    /// @param folder where they are made
    Trees(std::string folder, const std::vector<Layout> &layouts);

    std::vector<int> sizes() const; ///< files, the smallest first
    /// Of one of the sizes. Throws std::runtime_error where it cannot be made.
    IndexedTree &tree(int size);

private:
    std::string m_folder;
    std::map<int, Layout> m_layouts;
    std::map<int, std::unique_ptr<IndexedTree>> m_trees;
};
