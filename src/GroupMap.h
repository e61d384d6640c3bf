#pragma once

#include <QString>

#include <map>
#include <vector>

/// Values by recording-group id, in the order of the ids; a value keeps its address as long as the map lives.
///
/// The entries of an event come group by group, or round after round in the same order. So operator[] first tries the
/// group it found last, then the one that appeared after that; only then does it search.
template<typename Value>
class GroupMap
{
    struct Group;
    using Groups = std::map<QString, Group>;

public:
    /// The value of @p id, a new one where there is none.
    Value &operator[](const QString &id)
    {
        if (Value *const value = at(m_last, id))
            return *value;
        if (Value *const value = at(m_last + 1 < m_places.size() ? m_last + 1 : 0, id))
            return *value;
        const auto [group, isNew] = m_groups.try_emplace(id, m_places.size());
        if (isNew)
            m_places.push_back(group);
        m_last = group->second.place;
        return group->second.value;
    }

    /// The value of @p id; null where there is none.
    Value *find(const QString &id)
    {
        const auto group = m_groups.find(id);
        return group == m_groups.end() ? nullptr : &group->second.value;
    }

    /// Calls @p visit with each id and its value, in the order of the ids.
    template<typename Visit>
    void forEach(Visit visit)
    {
        for (auto &[id, group] : m_groups)
            visit(id, group.value);
    }
    template<typename Visit>
    void forEach(Visit visit) const
    {
        for (const auto &[id, group] : m_groups)
            visit(id, group.value);
    }

private:
    struct Group
    {
        explicit Group(std::size_t number)
            : place(number)
        {
        }

        std::size_t place; // in the order of appearance
        Value value = {};
    };

    Value *at(std::size_t place, const QString &id)
    {
        if (place >= m_places.size() || m_places[place]->first != id)
            return nullptr;
        m_last = place;
        return &m_places[place]->second.value;
    }

    Groups m_groups;
    std::vector<typename Groups::iterator> m_places; // in the order of appearance
    std::size_t m_last = 0; // the place that was asked for last
};
