#include "Trees.h"

#include <utility>

Trees::Trees(std::string folder, const std::vector<Layout> &layouts)
    : m_folder(std::move(folder))
{
    for (const Layout &layout : layouts)
        m_layouts.emplace(layout.all(), layout);
}

std::vector<int> Trees::sizes() const
{
    std::vector<int> sizes;
    for (const auto &[size, layout] : m_layouts)
        sizes.push_back(size);
    return sizes;
}

IndexedTree &Trees::tree(int size)
{
    std::unique_ptr<IndexedTree> &tree = m_trees[size];
    if (!tree)
        tree = std::make_unique<IndexedTree>(m_layouts.at(size), m_folder + '/' + std::to_string(size));
    return *tree;
}
