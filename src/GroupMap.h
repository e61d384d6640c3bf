#pragma once

#include "ReplyFields.h"

#include <QString>

#include <map>
#include <vector>

/// Values by recording-group id, in the order of the ids.
///
/// The entries of an event come group by group, or round after round in the same order. So before an id is searched
/// for, the group that was asked for last is tried, and the one that first came after it.
template<typename Value>
class GroupMap
{
public:
    /// The value of @p id, a new one where there is none. It stays where it is as long as the map.
    Value &operator[](const QString &id)
    {
        if (Value *const value = at(m_last, id))
            return *value;
        if (Value *const value = at(m_last + 1 < m_places.size() ? m_last + 1 : 0, id))
            return *value;
        const auto [group, isNew] = m_groups.try_emplace(id, Group{m_places.size()});
        if (isNew)
            m_places.push_back(group);
        m_last = group->second.place;
        return group->second.value;
    }

    /// Calls @p visit with each id and its value, in the order of the ids.
    template<typename Visit>
    void forEach(Visit visit)
    {
        for (auto &[id, group] : m_groups)
            visit(id, group.value);
    }

private:
    struct Group
    {
        std::size_t place; // in the order of appearance
        Value value = {};
    };
    using Groups = std::map<QString, Group>;

    Value *at(std::size_t place, const QString &id)
    {
        if (place >= m_places.size() || !sameText(m_places[place]->first, id))
            return nullptr;
        m_last = place;
        return &m_places[place]->second.value;
    }

    Groups m_groups;
    std::vector<typename Groups::iterator> m_places; // in the order of appearance
    std::size_t m_last = 0; // the place that was asked for last
};
