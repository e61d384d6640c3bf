#pragma once

#include "groups/RecordingGroup.h"

#include <QStringList>

/// Each path of a group: path, kind, reserve and whether it is for recovery.
inline QStringList texts(const QList<GroupPath> &paths)
{
    QStringList list;
    for (const GroupPath &path : paths) {
        list.append(QStringLiteral("%1 %2 %3 %4")
                        .arg(path.path)
                        .arg(static_cast<int>(path.kind))
                        .arg(path.reservedMegabytes)
                        .arg(path.isRecovery));
    }
    return list;
}

/// Each member of a group: camera, stream, time shift and seamless recording.
inline QStringList texts(const QList<GroupMember> &members)
{
    QStringList list;
    for (const GroupMember &member : members) {
        list.append(QStringLiteral("%1 %2 %3 %4")
                        .arg(member.camera)
                        .arg(member.stream)
                        .arg(member.timeShift)
                        .arg(member.seamless));
    }
    return list;
}

/// Everything of @p group but its id, for one comparison.
inline QString text(const RecordingGroup &group)
{
    QStringList parts{group.name, group.folder};
    parts += texts(group.paths);
    parts += texts(group.members);
    parts.append(group.nodeIds.join(u','));
    parts.append(QStringLiteral("%1 %2").arg(group.reservedMinutes).arg(group.isReservedTimeEnabled));
    return parts.join(u'|');
}
