#pragma once

#include "GroupFigures.h"
#include "UsageFigures.h"
#include "groups/EditRequest.h"

#include <QHash>
#include <QVariantMap>

#include <optional>
#include <utility>

/// What edits of recording groups would do: to themselves, as judge() says, to the days of the groups, and to the
/// reserves on the volumes. Writes nothing. Asks for a path's volume where nobody has looked at it yet, for a bounded
/// time.
class EditForecast
{
public:
    /// @param site as it is now; its paths must outlive this object
    /// @param places as StorageUsage::places() tells them, of the same groups or of older ones
    /// @param day that is not over; invalid: nobody knows which days count
    EditForecast(GroupSite site, QList<UsagePlace> places, const QDate &day);

    /// Carries @p requests out on the copy, each as the ones before left it.
    /// @param refusal the return code with which nothing can be written at the moment
    /// @param areSeveral an error's index is the place of its request
    void apply(const QList<EditRequest> &requests, const std::optional<QString> &refusal, bool areSeveral);

    /// Return code, errors, groups and volumes, as the command "station.forecast" answers.
    QVariantMap map();

private:
    using FiguresOfGroups = QHash<QString, GroupFigures>; // by id

    const RecordingGroup *groupBefore(const QString &id) const;
    QList<UsagePlace> placesOf(const QList<RecordingGroup> &groups);
    UsagePlace placeOf(const RecordingGroup &group, const GroupPath &path);
    void askFor(UsagePlace &place, const GroupPath &path);
    FiguresOfGroups figuresOf(const QList<UsagePlace> &places) const;
    GroupFigures figuresThen(const RecordingGroup &group, GroupFigures told, const FiguresOfGroups &now) const;
    QVariantList groupList(const QList<UsagePlace> &before, const QList<UsagePlace> &after) const;
    QVariantList volumeList(const QList<UsagePlace> &now, const QList<UsagePlace> &then) const;

    QList<RecordingGroup> m_before;
    GroupSite m_site; // as the edits leave it
    QList<UsagePlace> m_places;
    QDate m_day;
    QString m_returnCode;
    QList<EditError> m_errors;
    QStringList m_edited; // ids of groups, in order
    QHash<std::pair<int, QString>, PathFacts> m_asked; // by kind and path
};
