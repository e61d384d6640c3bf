#include "StatusMonitorPlugin.h"

#include "ServerVocabulary.h"
#include "StationVocabulary.h"

#include <algorithm>
#include <tuple>
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
    if (word == StationAlarmKind::InsufficientRecordingDays)
        return Kind::InsufficientRecordingDays;
    return severity == StationSeverity::warning ? Kind::StationWarning : Kind::StationError;
}

StatusMonitorPlugin::Alarm stationAlarm(const QString &source, const QVariantMap &map)
{
    const auto text = [&map](const QString &key) { return map.value(key).toString(); };
    StatusMonitorPlugin::Alarm alarm;
    alarm.source = source;
    alarm.word = text(StationKey::kind);
    alarm.kind = kindOf(alarm.word, text(StationKey::severity));
    alarm.groupId = text(FieldKey::recordingGroupID);
    alarm.since = QDateTime::fromString(text(StationKey::since), Qt::ISODateWithMs).toLocalTime();
    alarm.subject = text(StationKey::subject);
    alarm.text = text(StationKey::text);
    alarm.remedy = text(StationKey::remedy);
    alarm.acknowledgedAt = QDateTime::fromString(text(StationKey::acknowledgedAt), Qt::ISODateWithMs).toLocalTime();
    alarm.acknowledgedBy = text(StationKey::acknowledgedBy);
    alarm.note = text(StationKey::note);
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
    case AcknowledgedAtRole:
        return alarm.acknowledgedAt;
    case AcknowledgedByRole:
        return alarm.acknowledgedBy;
    case NoteRole:
        return alarm.note;
    case WordRole:
        return alarm.word;
    default:
        return {};
    }
}

QHash<int, QByteArray> StatusMonitorPlugin::roleNames() const
{
    return {{SourceRole, "sourceRole"},
            {KindRole, "kindRole"},
            {GroupIdRole, "groupIdRole"},
            {GroupNameRole, "groupNameRole"},
            {SinceRole, "sinceRole"},
            {SubjectRole, "subjectRole"},
            {TextRole, "textRole"},
            {RemedyRole, "remedyRole"},
            {AcknowledgedAtRole, "acknowledgedAtRole"},
            {AcknowledgedByRole, "acknowledgedByRole"},
            {NoteRole, "noteRole"},
            {WordRole, "wordRole"}};
}

void StatusMonitorPlugin::setDirectStation(const QString &relayPath)
{
    m_direct = relayPath;
}

QString StatusMonitorPlugin::stationOf(const QString &source) const
{
    return source.isEmpty() ? m_direct : source;
}

StatusMonitorPlugin::Count StatusMonitorPlugin::count(const QString &source) const
{
    Count count;
    const QList<qsizetype> rows = rowsOf(stationOf(source));
    for (const qsizetype row : rows) {
        ++count.all;
        count.errors += m_alarms.at(row).isError() ? 1 : 0;
    }
    return count;
}

void StatusMonitorPlugin::removeVolumeError(const QString &source)
{
    const QString station = stationOf(source);
    if (find(station, VolumeError, {}) < 0)
        return;
    m_unconfirmed.insert(station);
    QMetaObject::invokeMethod(this, &StatusMonitorPlugin::settleVolumeErrors, Qt::QueuedConnection);
}

void StatusMonitorPlugin::monitorVolumeStatus(const QString &source)
{
    const QString station = stationOf(source);
    m_unconfirmed.remove(station);
    if (find(station, VolumeError, {}) < 0 && !isNamed(station))
        raise({station, VolumeError, {}, {}, QDateTime::currentDateTime()});
}

void StatusMonitorPlugin::monitorSufficientRecordingGroup(const QString &source, const QString &groupId)
{
    const QString station = stationOf(source);
    if (m_shortGroups.remove({station, groupId}) > 0)
        withdraw(find(station, InsufficientRecordingDays, groupId));
}

void StatusMonitorPlugin::monitorInsufficientRecordingDays(const QString &source, const QString &groupName,
                                                           const QString &groupId)
{
    const QString station = stationOf(source);
    const auto known = m_shortGroups.find({station, groupId});
    if (known == m_shortGroups.end()) {
        m_shortGroups.insert({station, groupId}, groupName);
        Alarm alarm = m_groupFacts.value(station).value(groupId);
        if (!alarm.since.isValid())
            alarm.since = QDateTime::currentDateTime();
        alarm.source = station;
        alarm.kind = InsufficientRecordingDays;
        alarm.groupId = groupId;
        alarm.groupName = groupName;
        raise(alarm);
    } else if (*known != groupName) {
        *known = groupName;
        const qsizetype row = find(station, InsufficientRecordingDays, groupId);
        m_alarms[row].groupName = groupName;
        const QModelIndex changed = index(static_cast<int>(row));
        emit dataChanged(changed, changed, {GroupNameRole});
    }
}

void StatusMonitorPlugin::keepGroups(const QString &source, const QSet<QString> &groupIds)
{
    const QString station = stationOf(source);
    QStringList gone;
    const QList<qsizetype> rows = rowsOf(station);
    for (const qsizetype row : rows) {
        const Alarm &alarm = m_alarms.at(row);
        if (alarm.kind == InsufficientRecordingDays && !groupIds.contains(alarm.groupId))
            gone.append(alarm.groupId);
    }
    for (const QString &groupId : std::as_const(gone))
        monitorSufficientRecordingGroup(station, groupId);
}

void StatusMonitorPlugin::setStationAlarms(const QString &source, const QVariantList &alarms)
{
    using Key = std::pair<QString, QString>; // kind and subject
    const QString station = stationOf(source);
    QList<Alarm> told;
    QHash<QString, Alarm> groupFacts;
    for (const QVariant &value : alarms) {
        const Alarm alarm = stationAlarm(station, value.toMap());
        if (alarm.kind == InsufficientRecordingDays)
            groupFacts.insert(alarm.groupId, alarm);
        else
            told.append(alarm);
    }
    QSet<Key> keys;
    for (const Alarm &alarm : std::as_const(told))
        keys.insert({alarm.word, alarm.subject});
    const QList<qsizetype> before = rowsOf(station);
    for (qsizetype last = before.size() - 1; last >= 0; --last) {
        const qsizetype row = before.at(last);
        const Alarm &known = m_alarms.at(row);
        if (known.word.isEmpty() || known.kind == InsufficientRecordingDays)
            continue;
        if (!keys.contains({known.word, known.subject}))
            withdraw(row);
    }
    QHash<Key, qsizetype> rows;
    const QList<qsizetype> kept = rowsOf(station);
    for (const qsizetype row : kept)
        rows.insert({m_alarms.at(row).word, m_alarms.at(row).subject}, row);
    for (const Alarm &alarm : std::as_const(told)) {
        if (const auto row = rows.constFind({alarm.word, alarm.subject}); row != rows.cend())
            update(*row, alarm);
        else
            raise(alarm);
    }
    setGroupFacts(station, std::move(groupFacts));
    if (const qsizetype unnamed = find(station, VolumeError, {}); unnamed >= 0 && isNamed(station))
        withdraw(unnamed);
}

bool StatusMonitorPlugin::isNamed(const QString &source) const
{
    const QList<qsizetype> rows = rowsOf(source);
    return std::any_of(rows.cbegin(), rows.cend(), [this](qsizetype row) {
        return m_alarms.at(row).kind == VolumeError && !m_alarms.at(row).word.isEmpty();
    });
}

/// The plug-in alone raises and withdraws the alarm of a group; what the station said of it goes when the station no
/// longer says it, but for the time.
void StatusMonitorPlugin::setGroupFacts(const QString &source, QHash<QString, Alarm> facts)
{
    if (facts.isEmpty())
        m_groupFacts.remove(source);
    else
        m_groupFacts.insert(source, facts);
    const QList<qsizetype> rows = rowsOf(source);
    for (const qsizetype row : rows) {
        const Alarm &known = m_alarms.at(row);
        if (known.kind != InsufficientRecordingDays)
            continue;
        Alarm alarm = facts.value(known.groupId);
        if (!alarm.since.isValid())
            alarm.since = known.since;
        alarm.source = source;
        alarm.kind = InsufficientRecordingDays;
        alarm.groupId = known.groupId;
        alarm.groupName = known.groupName;
        update(row, alarm);
    }
}

void StatusMonitorPlugin::update(qsizetype row, const Alarm &alarm)
{
    Alarm &known = m_alarms[row];
    const auto changeable = [](const Alarm &of) {
        return std::tie(of.since, of.subject, of.text, of.remedy, of.acknowledgedAt, of.acknowledgedBy, of.note,
                        of.word);
    };
    if (changeable(known) == changeable(alarm))
        return;
    const quint64 number = known.number;
    known = alarm;
    known.number = number;
    const QModelIndex changed = index(static_cast<int>(row));
    emit dataChanged(
        changed, changed,
        {SinceRole, SubjectRole, TextRole, RemedyRole, AcknowledgedAtRole, AcknowledgedByRole, NoteRole, WordRole});
}

qsizetype StatusMonitorPlugin::rowOf(quint64 number) const
{
    const auto found = std::lower_bound(m_alarms.cbegin(), m_alarms.cend(), number,
                                        [](const Alarm &alarm, quint64 wanted) { return alarm.number < wanted; });
    return found - m_alarms.cbegin();
}

QList<qsizetype> StatusMonitorPlugin::rowsOf(const QString &source) const
{
    QList<qsizetype> rows;
    const QList<quint64> numbers = m_numbers.value(source);
    for (const quint64 number : numbers)
        rows.append(rowOf(number));
    return rows;
}

qsizetype StatusMonitorPlugin::find(const QString &source, Kind kind, const QString &groupId) const
{
    const QList<qsizetype> rows = rowsOf(source);
    const auto found = std::find_if(rows.cbegin(), rows.cend(), [&](qsizetype row) {
        const Alarm &alarm = m_alarms.at(row);
        const bool isOfPlugin = alarm.word.isEmpty() || alarm.kind == InsufficientRecordingDays;
        return alarm.kind == kind && alarm.groupId == groupId && isOfPlugin;
    });
    return found == rows.cend() ? -1 : *found;
}

void StatusMonitorPlugin::raise(Alarm alarm)
{
    const auto row = static_cast<int>(m_alarms.size());
    alarm.number = ++m_lastNumber;
    beginInsertRows({}, row, row);
    m_alarms.append(alarm);
    m_numbers[alarm.source].append(alarm.number);
    endInsertRows();
    emit raised(alarm);
}

void StatusMonitorPlugin::withdraw(qsizetype row)
{
    beginRemoveRows({}, static_cast<int>(row), static_cast<int>(row));
    const Alarm alarm = m_alarms.takeAt(row);
    QList<quint64> &numbers = m_numbers[alarm.source];
    numbers.removeOne(alarm.number);
    if (numbers.isEmpty())
        m_numbers.remove(alarm.source);
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
