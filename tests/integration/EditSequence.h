#pragma once

#include "groups/RecordingGroup.h"

/// A thousand edits of recording groups, each known by its number: four for each group, the last of which removes every
/// other group.
namespace EditSequence {

constexpr int length = 1000;
constexpr int editsOfAGroup = 4;
constexpr int cameras = 8;
constexpr int streams = 3;
constexpr int folders = 6;

enum class Kind { Add, Update, AddPath, RemoveOrRename };

inline Kind kindOf(int edit)
{
    return static_cast<Kind>(edit % editsOfAGroup);
}

inline bool isRemoval(int edit)
{
    return kindOf(edit) == Kind::RemoveOrRename && edit / editsOfAGroup % 2 == 1;
}

inline QString camera(int number)
{
    return QStringLiteral("Camera %1").arg(number % cameras);
}

inline QString folder(const QString &volume, int number)
{
    return QStringLiteral("%1/%2").arg(volume).arg(number % folders);
}

/// The group that @p edit is about, as the edit leaves it; without its id. A removal leaves it as it was.
inline RecordingGroup groupAfter(int edit, const QString &volume)
{
    const int number = edit / editsOfAGroup;
    const Kind kind = kindOf(edit);
    RecordingGroup group;
    group.folder = QStringLiteral("group %1").arg(number);
    group.name = group.folder;
    const int paths = kind == Kind::Add ? 3 : 2;
    const int firstPath = number + (kind == Kind::Add ? 0 : 3);
    for (int path = 0; path < paths; ++path)
        group.paths.append({folder(volume, firstPath + path), PathKind::Local, 1024 * (number % 5), path == 0});
    if (kind >= Kind::AddPath)
        group.paths.append({folder(volume, firstPath + paths), PathKind::Local, 1024, false});
    for (int member = 0; member < cameras; ++member) {
        for (int stream = kind == Kind::Add ? 0 : 1; stream < streams; ++stream)
            group.members.append({camera(number + member), stream, kind == Kind::Add, kind != Kind::Add});
    }
    group.isReservedTimeEnabled = true;
    group.reservedMinutes = number + (kind == Kind::Add ? 1 : 1000);
    if (kind == Kind::RemoveOrRename && !isRemoval(edit)) {
        group.name = QStringLiteral("renamed %1").arg(number);
        group.nodeIds = QStringList{QStringLiteral("b"), QStringLiteral("a")};
    }
    return group;
}

/// All groups after the first @p count edits, in the order in which they were made.
inline QList<RecordingGroup> groupsAfter(int count, const QString &volume)
{
    QList<RecordingGroup> groups;
    for (int first = 0; first < count; first += editsOfAGroup) {
        const int last = qMin(first + editsOfAGroup, count) - 1;
        if (!isRemoval(last))
            groups.append(groupAfter(last, volume));
    }
    return groups;
}

} // namespace EditSequence
