#pragma once

#include "FakePaths.h"
#include "GroupText.h"
#include "StationVocabulary.h"
#include "groups/GroupEdit.h"

#include <functional>
#include <optional>

/// Edits of groups written briefly, and what they come to as text.
namespace GroupEditing {

// What errors name.
inline const QString rm = QStringLiteral("removed");
inline const QString add = QStringLiteral("added");
inline const QString set = QStringLiteral("set");
inline const QString members = QStringLiteral("members");
// Kinds of a path.
inline constexpr int local = 0;
inline constexpr int host = 1;
inline constexpr int domain = 2;

/// "element/index/value/code[/reason]", one for each error.
inline QStringList texts(const QList<EditError> &errors)
{
    QStringList list;
    for (const EditError &error : errors) {
        QStringList parts{error.element, QString::number(error.index), error.value, error.returnCode};
        if (!error.reason.isEmpty())
            parts.append(error.reason);
        list.append(parts.join(u'|'));
    }
    return list;
}

inline QString text(const QList<GroupPath> &paths)
{
    return ::texts(paths).join(QStringLiteral(", "));
}

inline QString text(const QList<GroupMember> &list)
{
    return ::texts(list).join(QStringLiteral(", "));
}

inline NewPath newPath(const char *path, qint64 reserved = 0, int kind = local)
{
    return {QString::fromLatin1(path), kind, reserved, false};
}

inline PathChange reserveOf(const char *path, qint64 megabytes)
{
    return {QString::fromLatin1(path), {}, megabytes, {}};
}

inline GroupMember member(const char *camera, int stream = 0)
{
    return {QString::fromLatin1(camera), stream, false, false};
}

inline GroupSettings name(const QString &text)
{
    GroupSettings settings;
    settings.name = text;
    return settings;
}

inline GroupSettings reservedTime(std::optional<bool> enabled, std::optional<int> minutes)
{
    GroupSettings settings;
    settings.isReservedTimeEnabled = enabled;
    settings.reservedMinutes = minutes;
    return settings;
}

inline RecordingGroup group(const char *id, const QList<GroupPath> &paths = {})
{
    RecordingGroup made;
    made.id = QString::fromLatin1(id);
    made.name = QStringLiteral("Group ") + made.id;
    made.folder = made.name;
    made.paths = paths;
    return made;
}

inline GroupPath localPath(const char *path, qint64 reserved = 0)
{
    return {QString::fromLatin1(path), PathKind::Local, reserved, false};
}

/// Groups 1 and 2 and the cameras Gate, with one stream, and Yard, with three, on volumes of the test's own: "/" with
/// the folders /a and /a/b, 10 GB, "/mnt" with /mnt/c, and a share with //nas/rec/b, 4 GB each.
class Edits
{
protected:
    void setUp()
    {
        m_local = {};
        m_nas = {};
        m_local.add(QStringLiteral("/a"), QStringLiteral("/"), 10 * 1024);
        m_local.add(QStringLiteral("/a/b"), QStringLiteral("/"), 10 * 1024);
        m_local.add(QStringLiteral("/mnt/c"), QStringLiteral("/mnt"), 4 * 1024);
        m_local.refuse(QStringLiteral("/file"), StationReturnCode::NotADirectory);
        m_local.refuse(QStringLiteral("/proc"), StationReturnCode::OutsideVolumes);
        m_local.refuse(QStringLiteral("/locked"), StationReturnCode::PathNotWritable,
                       StationReturnCode::PermissionDenied);
        m_nas.add(QStringLiteral("//nas/rec"), QStringLiteral("//nas/rec"), 4 * 1024);
        m_nas.add(QStringLiteral("//nas/rec/b"), QStringLiteral("//nas/rec"), 4 * 1024);
        m_site = {{group("1"), group("2")},
                  {{QStringLiteral("Gate"), 1}, {QStringLiteral("Yard"), 3}},
                  {&m_local, &m_nas, &m_nas}};
    }

    /// What finish() tells after @p steps on @p before; the group itself is in m_after.
    QStringList errors(const RecordingGroup &before, const std::function<void(GroupEdit &)> &steps)
    {
        GroupEdit edit(before, m_site);
        steps(edit);
        const QStringList list = texts(edit.finish());
        m_after = edit.group();
        return list;
    }

    FakePaths m_local;
    FakePaths m_nas;
    GroupSite m_site;
    RecordingGroup m_after;
};

} // namespace GroupEditing
