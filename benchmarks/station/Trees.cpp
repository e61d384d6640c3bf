#include "Trees.h"

#include <utility>

Trees::Trees(std::string recordings, std::string data, const std::vector<Layout> &layouts)
    : m_recordings(std::move(recordings))
    , m_data(std::move(data))
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
    if (!tree) {
        const std::string name = '/' + std::to_string(size);
        tree = std::make_unique<IndexedTree>(m_layouts.at(size), m_recordings + name, m_data + name);
    }
    return *tree;
}
