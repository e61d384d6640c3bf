#pragma once

#include "CommandTable.h"
#include "GroupEdit.h"

class StationData;

/// The commands about recording groups: those that tell them and those that edit them.
///
/// Every edit reads, judges and writes in one transaction, so that no other process comes between. An edit that is
/// refused changes nothing. Recorded files are never deleted.
class GroupCommands
{
public:
    /// What is to be done after an edit took effect and was answered; may come many times in a row.
    using Changed = std::function<void()>;

    /// @param data must outlive this object, and so must those in @p paths
    /// @param relayPath the station's own
    GroupCommands(StationData &data, const PathChecks &paths, const QString &relayPath, Changed groupsChanged = {});

    /// The entries refer to this object.
    void enterInto(CommandTable &table);

private:
    /// What came of an edit: the group as it is now, or why it stays as it was.
    struct Outcome
    {
        RecordingGroup before; ///< worthless for a new group
        RecordingGroup after;
        QList<EditError> errors;

        QString returnCode() const;
    };
    using Steps = std::function<void(GroupEdit &)>;

    void getRecordingGroup(const QVariant &data, const Answer &answer);
    void retrieveRecordingGroupTreeModel(const QVariant &data, const Answer &answer);
    void addRecordingGroup(const QVariant &data, const Answer &answer);
    void addRecordingGroupWithCompleteInfo(const QVariant &data, const Answer &answer);
    void addPathToRecordingGroup(const QVariant &data, const Answer &answer);
    void updateRecordingGroup(const QVariant &data, const Answer &answer);
    void removePathFromRecordingGroup(const QVariant &data, const Answer &answer);
    void removeRecordingGroup(const QVariant &data, const Answer &answer);

    Outcome add(const Steps &steps);
    Outcome change(const QString &id, const Steps &steps);
    Outcome remove(const QString &id);
    qint64 keptBytes(const RecordingGroup &group, const QList<GroupPath> &paths) const;
    void answerEdit(const Outcome &outcome, const Answer &answer, const StationReply &part);

    StationData &m_data;
    PathChecks m_paths;
    QString m_relayPath;
    Changed m_groupsChanged;
};
