#pragma once

#include "RecordingGroupData.h"

#include <QStringView>

#include <functional>
#include <vector>

/// Finds recording groups of the cache by id and by member without walking along it.
///
/// It holds numbers alone, chained by hash values; the texts stay in the cache. So it is as good as the cache was when
/// the index was built, and every call is handed that cache: whoever changes the cache drops the index.
class RecordingGroupIndex
{
public:
    using Groups = std::vector<RecordingGroupData>;

    /// Throws std::bad_alloc when memory ran out.
    explicit RecordingGroupIndex(const Groups &groups);

    /// The number of the first group of this id and relay path; that of all groups when there is none.
    std::size_t find(const Groups &groups, const QString &id, const QString &relayPath) const;

    /// Calls @p visit with each member whose "camName" is @p name and the number of its group, in the order of the
    /// cache, until it returns true.
    void visitMembers(const Groups &groups, QStringView name,
                      const std::function<bool(std::size_t group, const QVariantMap &member)> &visit) const;

private:
    /// The numbers from 0, chained by hash value. They are put in from the last one on, so that chains ascend.
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
