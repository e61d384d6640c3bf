#pragma once

#include "CommandTable.h"
#include "EditRequest.h"

class GroupStore;
class StationData;

/// The commands about recording groups: those that tell them and those that edit them.
///
/// Every edit takes effect as it was judged, or is judged again: no other process comes between. An edit that is
/// refused changes nothing. Recorded files are never deleted.
class GroupCommands
{
public:
    struct Hooks
    {
        /// What is to be done after an edit took effect and was answered; may come many times in a row.
        std::function<void()> groupsChanged = {};
        /// The bytes of the recordings in the folder of a path, where they are counted and the count is up to date.
        std::function<std::optional<qint64>(const QString &path, const QString &folder)> countedBytes = {};
    };

    /// @param data must outlive this object, and so must those in @p paths
    /// @param relayPath the station's own
    GroupCommands(StationData &data, const PathChecks &paths, const QString &relayPath, Hooks hooks);

    /// The entries refer to this object.
    void enterInto(CommandTable &table);

private:
    /// What an edit is judged against, as of one moment.
    struct Judged
    {
        qint64 version = 0; ///< of the data as this connection sees it
        GroupSite site;
    };

    void getRecordingGroup(const QVariant &data, const Answer &answer);
    void retrieveRecordingGroupTreeModel(const QVariant &data, const Answer &answer);
    void addRecordingGroup(Edit &edit);
    void addRecordingGroupWithCompleteInfo(Edit &edit);
    void addPathToRecordingGroup(Edit &edit);
    void updateRecordingGroup(Edit &edit);
    void removePathFromRecordingGroup(Edit &edit);
    void removeRecordingGroup(Edit &edit);

    using Reply = std::function<StationReply(const EditOutcome &)>;
    void carryOut(Edit &edit, const EditRequest &request, const Reply &reply);
    Judged judged() const;
    bool isAsJudged(const Judged &before) const;
    qint64 keptBytes(const RecordingGroup &group, const QList<GroupPath> &paths) const;

    StationData &m_data;
    PathChecks m_paths;
    QString m_relayPath;
    Hooks m_hooks;
};
