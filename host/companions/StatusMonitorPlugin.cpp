#include "StatusMonitorPlugin.h"

#include "StationProtocol.h"

#include <algorithm>
#include <utility>

namespace {
using Kind = StatusMonitorPlugin::Kind;

Kind kindOf(const QString &word, const QString &severity)
{
    static const QSet<QString> ofVolumes{StationAlarmKind::VolumeGone,        StationAlarmKind::VolumeNotAnswering,
                                         StationAlarmKind::ShareNotAnswering, StationAlarmKind::ShareRefused,
                                         StationAlarmKind::ShareMissing,      StationAlarmKind::PathNotWritable,
                                         StationAlarmKind::NasKeyUnusable};
    if (ofVolumes.contains(word))
        return Kind::VolumeError;
    return severity == StationSeverity::warning ? Kind::StationWarning : Kind::StationError;
}

StatusMonitorPlugin::Alarm stationAlarm(const QString &source, const QVariantMap &map)
{
    const auto text = [&map](const QString &key) { return map.value(key).toString(); };
    StatusMonitorPlugin::Alarm alarm;
    alarm.source = source;
    alarm.word = text(StationKey::kind);
    alarm.kind = kindOf(alarm.word, text(StationKey::severity));
    alarm.since = QDateTime::fromString(text(StationKey::since), Qt::ISODateWithMs).toLocalTime();
    alarm.subject = text(StationKey::subject);
    alarm.text = text(StationKey::text);
    alarm.remedy = text(StationKey::remedy);
    return alarm;
}
} // namespace

const QString StatusMonitorPlugin::pluginId = QStringLiteral("{CA5B02D6-F3E0-4FD7-A55C-17F425D5B415}");

int StatusMonitorPlugin::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_alarms.size());
}

QVariant StatusMonitorPlugin::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Alarm &alarm = m_alarms.at(index.row());
    switch (role) {
    case SourceRole:
        return alarm.source;
    case KindRole:
        return QVariant::fromValue(alarm.kind);
    case GroupIdRole:
        return alarm.groupId;
    case GroupNameRole:
        return alarm.groupName;
    case SinceRole:
        return alarm.since;
    case SubjectRole:
        return alarm.subject;
    case TextRole:
        return alarm.text;
    case RemedyRole:
        return alarm.remedy;
    default:
        return {};
    }
}

QHash<int, QByteArray> StatusMonitorPlugin::roleNames() const
{
    return {{SourceRole, "sourceRole"},       {KindRole, "kindRole"},    {GroupIdRole, "groupIdRole"},
            {GroupNameRole, "groupNameRole"}, {SinceRole, "sinceRole"},  {SubjectRole, "subjectRole"},
            {TextRole, "textRole"},           {RemedyRole, "remedyRole"}};
}

void StatusMonitorPlugin::removeVolumeError(const QString &source)
{
    m_unconfirmed.insert(source);
    QMetaObject::invokeMethod(this, &StatusMonitorPlugin::settleVolumeErrors, Qt::QueuedConnection);
}

void StatusMonitorPlugin::monitorVolumeStatus(const QString &source)
{
    m_unconfirmed.remove(source);
    if (find(source, VolumeError, {}) < 0 && !isNamed(source))
        raise({source, VolumeError, {}, {}, QDateTime::currentDateTime()});
}

void StatusMonitorPlugin::monitorSufficientRecordingGroup(const QString &source, const QString &groupId)
{
    if (m_shortGroups.remove({source, groupId}) > 0)
        withdraw(find(source, InsufficientRecordingDays, groupId));
}

void StatusMonitorPlugin::monitorInsufficientRecordingDays(const QString &source, const QString &groupName,
                                                           const QString &groupId)
{
    const auto known = m_shortGroups.find({source, groupId});
    if (known == m_shortGroups.end()) {
        m_shortGroups.insert({source, groupId}, groupName);
        raise({source, InsufficientRecordingDays, groupId, groupName, QDateTime::currentDateTime()});
    } else if (*known != groupName) {
        *known = groupName;
        const qsizetype row = find(source, InsufficientRecordingDays, groupId);
        m_alarms[row].groupName = groupName;
        const QModelIndex changed = index(static_cast<int>(row));
        emit dataChanged(changed, changed, {GroupNameRole});
    }
}

void StatusMonitorPlugin::keepGroups(const QString &source, const QSet<QString> &groupIds)
{
    QStringList gone;
    for (const Alarm &alarm : std::as_const(m_alarms)) {
        if (alarm.kind == InsufficientRecordingDays && alarm.source == source && !groupIds.contains(alarm.groupId))
            gone.append(alarm.groupId);
    }
    for (const QString &groupId : std::as_const(gone))
        monitorSufficientRecordingGroup(source, groupId);
}

void StatusMonitorPlugin::setStationAlarms(const QString &source, const QVariantList &alarms)
{
    QList<Alarm> told;
    for (const QVariant &alarm : alarms)
        told.append(stationAlarm(source, alarm.toMap()));
    const auto isSame = [](const Alarm &left, const Alarm &right) {
        return left.source == right.source && left.word == right.word && left.subject == right.subject;
    };
    for (qsizetype row = m_alarms.size() - 1; row >= 0; --row) {
        const Alarm &known = m_alarms.at(row);
        const bool isTold =
            std::any_of(told.cbegin(), told.cend(), [&](const Alarm &alarm) { return isSame(alarm, known); });
        if (known.source == source && !known.word.isEmpty() && !isTold)
            withdraw(row);
    }
    for (const Alarm &alarm : std::as_const(told)) {
        const auto known =
            std::find_if(m_alarms.cbegin(), m_alarms.cend(), [&](const Alarm &other) { return isSame(alarm, other); });
        if (known == m_alarms.cend())
            raise(alarm);
        else
            update(known - m_alarms.cbegin(), alarm);
    }
    if (const qsizetype unnamed = find(source, VolumeError, {}); unnamed >= 0 && isNamed(source))
        withdraw(unnamed);
}

bool StatusMonitorPlugin::isNamed(const QString &source) const
{
    return std::any_of(m_alarms.cbegin(), m_alarms.cend(), [&source](const Alarm &alarm) {
        return alarm.source == source && alarm.kind == VolumeError && !alarm.word.isEmpty();
    });
}

void StatusMonitorPlugin::update(qsizetype row, const Alarm &alarm)
{
    Alarm &known = m_alarms[row];
    if (known.text == alarm.text && known.remedy == alarm.remedy && known.since == alarm.since)
        return;
    known = alarm;
    const QModelIndex changed = index(static_cast<int>(row));
    emit dataChanged(changed, changed, {SinceRole, TextRole, RemedyRole});
}

qsizetype StatusMonitorPlugin::find(const QString &source, Kind kind, const QString &groupId) const
{
    const auto found = std::find_if(m_alarms.cbegin(), m_alarms.cend(), [&](const Alarm &alarm) {
        return alarm.kind == kind && alarm.source == source && alarm.groupId == groupId && alarm.word.isEmpty();
    });
    return found == m_alarms.cend() ? -1 : found - m_alarms.cbegin();
}

void StatusMonitorPlugin::raise(const Alarm &alarm)
{
    const auto row = static_cast<int>(m_alarms.size());
    beginInsertRows({}, row, row);
    m_alarms.append(alarm);
    endInsertRows();
    emit raised(alarm);
}

void StatusMonitorPlugin::withdraw(qsizetype row)
{
    beginRemoveRows({}, static_cast<int>(row), static_cast<int>(row));
    const Alarm alarm = m_alarms.takeAt(row);
    endRemoveRows();
    emit withdrawn(alarm);
}

void StatusMonitorPlugin::settleVolumeErrors()
{
    const QSet<QString> sources = std::exchange(m_unconfirmed, {});
    for (const QString &source : sources) {
        const qsizetype row = find(source, VolumeError, {});
        if (row >= 0)
            withdraw(row);
    }
}
