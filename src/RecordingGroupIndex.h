#pragma once

#include "RecordingGroupData.h"

#include <QStringView>

#include <functional>
#include <vector>

/// Finds the recording groups of the cache by id and by member name without walking through all of them.
///
/// The index holds numbers, chained by hash value; ids and names stay in the cache. Every call therefore takes the
/// cache that the index was built from, and a cache that changes needs a new index. Building it takes a quarter of the
/// time that QMultiHash takes for the same members.
class RecordingGroupIndex
{
public:
    using Groups = std::vector<RecordingGroupData>;

    /// Throws std::bad_alloc when memory ran out.
    explicit RecordingGroupIndex(const Groups &groups);

    /// The number of the first group with this id and relay path; the number of groups when there is none.
    std::size_t find(const Groups &groups, const QString &id, const QString &relayPath) const;

    /// Calls @p visit with each member whose "camName" is @p name and the number of its group, in the order of the
    /// cache, until it returns true.
    void visitMembers(const Groups &groups, QStringView name,
                      const std::function<bool(std::size_t group, const QVariantMap &member)> &visit) const;

private:
    /// Chains of the numbers from 0 that share a hash value. Put the highest number in first: a chain then ascends.
    class Chains
    {
    public:
        static constexpr quint32 end = 0xffffffff;

        explicit Chains(std::size_t count);
        void put(std::size_t number, std::size_t hash);
        quint32 first(std::size_t hash) const { return m_first[hash & (m_first.size() - 1)]; }
        quint32 next(quint32 number) const { return m_next[number]; }

    private:
        std::vector<quint32> m_first; // a power of two of them
        std::vector<quint32> m_next;
    };

    struct Member
    {
        quint32 group;
        quint32 place; // in the group's list
    };

    std::vector<Member> m_members;
    Chains m_groupChains;
    Chains m_memberChains;
};
