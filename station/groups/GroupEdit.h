#pragma once

#include "PathCheck.h"
#include "RecordingGroup.h"
#include "VolumeReserves.h"

#include <optional>

/// Why a part of an edit is refused.
struct EditError
{
    QString element; ///< the key of the request that it stands under
    int index = -1; ///< its place in that key's list; -1 where it is none
    QString value; ///< the name, path or camera that it is about, as it was sent
    QString returnCode;
    QString reason; ///< only with PathNotWritable: why not
};

/// A path to be added.
struct NewPath
{
    QString path; ///< as it was sent
    int kind = 0; ///< a number of PathKind, if all is well
    qint64 reservedMegabytes = 0;
    bool isRecovery = false;
};

/// What to change of a path that the group has; what is not given stays.
struct PathChange
{
    QString path; ///< as it was sent
    std::optional<int> kind;
    std::optional<qint64> reservedMegabytes;
    std::optional<bool> isRecovery;
};

/// A member to be removed.
struct MemberRemoval
{
    QString camera;
    std::optional<int> stream; ///< none: every stream of the camera
};

/// What to change of the group itself; what is not given stays.
struct GroupSettings
{
    std::optional<QString> name;
    std::optional<bool> isReservedTimeEnabled;
    std::optional<int> reservedMinutes;
    std::optional<QStringList> nodeIds; ///< a set: what comes twice counts once
};

/// What an edit is judged against.
struct GroupSite
{
    QList<RecordingGroup> groups; ///< all of the station
    QList<Camera> cameras; ///< likewise
    PathChecks paths;
};

/// One edit of one recording group: some steps, then finish(). It changes a copy and writes nothing.
///
/// An edit takes effect as a whole or not at all, so every step goes on after an error and finds all of its own. The
/// element of a step is the key of the request that it came under.
class GroupEdit
{
public:
    /// @param group one of those of @p site as it is, or a new one
    /// @param site must outlive this object
    GroupEdit(RecordingGroup group, const GroupSite &site);

    void change(const GroupSettings &settings);
    void removeMembers(const QString &element, const QList<MemberRemoval> &removals);
    void addMembers(const QString &element, const QList<GroupMember> &members);
    void removePaths(const QString &element, const QStringList &paths);
    void addPaths(const QString &element, const QList<NewPath> &paths);
    void changePaths(const QString &element, const QList<PathChange> &changes);

    /// Judges the group as the steps left it: a group with members has a path; where a step reserved more than before
    /// on a volume, the reserves of all groups there do not exceed it. All errors, in the order of steps and places.
    QList<EditError> finish();

    /// As the steps left it; worthless where finish() told an error.
    const RecordingGroup &group() const { return m_group; }

private:
    struct Place
    {
        QString element;
        int index = -1;
        QString value;
    };
    /// A step that reserves more than before.
    struct Claim
    {
        Place place;
        QString path;
    };

    void beginStep(const QString &element) { m_steps.append(element); }
    void refuse(const Place &place, const QString &returnCode, const QString &reason = {});
    void refuse(const Place &place, const PathFacts &facts);
    bool checkReserve(const Place &place, qint64 megabytes);
    bool lookAt(const Place &place, const QString &path, int kind);
    bool hasFolder(const QString &folder, const QString &space, const QString &exceptPath);
    GroupPath *findPath(const QString &path);
    void checkVolumes();

    RecordingGroup m_group;
    const GroupSite &m_site;
    QStringList m_steps; ///< their elements, in order
    QList<EditError> m_errors;
    QList<Claim> m_claims;
    std::optional<Place> m_removedPath; ///< the last one
    QString m_pathsElement; ///< where a path would be added
    VolumeReserves m_reserves;
};
