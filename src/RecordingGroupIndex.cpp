#include "RecordingGroupIndex.h"

#include "ReplyFields.h"
#include "ServerVocabulary.h"

#include <bit>

namespace {

std::size_t countMembers(const RecordingGroupIndex::Groups &groups)
{
    std::size_t count = 0;
    for (const RecordingGroupData &group : groups)
        count += static_cast<std::size_t>(group.recordingGroupMemberList.size());
    return count;
}

std::size_t hashOf(const QString &id, const QString &relayPath)
{
    return qHashMulti(0, id, relayPath);
}

/// Asks the memory for the name of every member before the first is read. The names lie anywhere, and to wait for one
/// after another takes a third of what the index costs.
void fetchNames(const QVariantList &members)
{
    QVariantMap convertedMember;
    QString convertedName;
    for (const QVariant &value : members) {
        const QVariantMap &member = mapIn(value, convertedMember);
        if (member.isEmpty())
            continue;
        const auto name = member.cbegin(); // the first of a member's keys is the one of its name
        __builtin_prefetch(name.key().constData());
        __builtin_prefetch(textIn(*name, convertedName).constData());
    }
}

} // namespace

RecordingGroupIndex::Chains::Chains(std::size_t count)
    : m_first(std::bit_ceil(count + 1), end)
    , m_next(count, end)
{
}

void RecordingGroupIndex::Chains::put(std::size_t number, std::size_t hash)
{
    quint32 &first = m_first[hash & (m_first.size() - 1)];
    m_next[number] = first;
    first = static_cast<quint32>(number);
}

RecordingGroupIndex::RecordingGroupIndex(const Groups &groups)
    : m_members(countMembers(groups))
    , m_groupChains(groups.size())
    , m_memberChains(m_members.size())
{
    RecordReader member({&FieldKey::camName});
    QString convertedName;
    std::size_t number = m_members.size();
    for (std::size_t group = groups.size(); group-- > 0;) {
        m_groupChains.put(group, hashOf(groups[group].recordingGroupID, groups[group].relayPath));
        const QVariantList &members = groups[group].recordingGroupMemberList;
        fetchNames(members);
        for (qsizetype place = members.size(); place-- > 0;) {
            member.read(members[place]);
            m_members[--number] = {static_cast<quint32>(group), static_cast<quint32>(place)};
            m_memberChains.put(number, qHash(QStringView(textIn(member[0], convertedName))));
        }
    }
}

std::size_t RecordingGroupIndex::find(const Groups &groups, const QString &id, const QString &relayPath) const
{
    quint32 number = m_groupChains.first(hashOf(id, relayPath));
    while (number != Chains::end && !(groups[number].recordingGroupID == id && groups[number].relayPath == relayPath))
        number = m_groupChains.next(number);
    return number == Chains::end ? groups.size() : number;
}

void RecordingGroupIndex::visitMembers(
    const Groups &groups, QStringView name,
    const std::function<bool(std::size_t group, const QVariantMap &member)> &visit) const
{
    QVariantMap convertedMember;
    QString convertedName;
    for (quint32 number = m_memberChains.first(qHash(name)); number != Chains::end;
         number = m_memberChains.next(number)) {
        const Member place = m_members[number];
        const QVariantMap &member = mapIn(groups[place.group].recordingGroupMemberList[place.place], convertedMember);
        if (textIn(fieldIn(member, FieldKey::camName), convertedName) == name && visit(place.group, member))
            return;
    }
}
