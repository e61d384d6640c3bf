#include "StationOverview.h"

#include <QElapsedTimer>

#include <algorithm>
#include <utility>

namespace {
constexpr qint64 turn = 8; // milliseconds
constexpr int mostInserted = 200; // rows in a turn

StationOverview::State stateOf(const StationDirectory::Record &record)
{
    switch (record.presence.state.kind) {
    case StationState::Kind::Up:
        return StationOverview::Up;
    case StationState::Kind::Down:
        return record.presence.state.isSilent ? StationOverview::NotHeardOf : StationOverview::Down;
    case StationState::Kind::Connecting:
        return StationOverview::Connecting;
    case StationState::Kind::Unknown:
        break;
    }
    return StationOverview::NotHeardOf;
}

int missingDays(const StationFigures &figures)
{
    const bool isKnown = figures.isTold() && (figures.missingDays > 0 || figures.unknownGroups == 0);
    return isKnown ? figures.missingDays : -1;
}

/// Whether everything was told that a station is sorted by: what comes later is a change.
bool isKnown(const StationDirectory::Record &record)
{
    return !record.isUp() || (record.areAlarmsTold && record.figures.isTold());
}

QDateTime figuresAt(const StationDirectory::Record &record)
{
    if (record.isUp() || (!record.figures.isTold() && record.alarms == 0))
        return {};
    const QDateTime &since = record.presence.since;
    return (since.isValid() ? since : record.toldAt).toLocalTime();
}
} // namespace

StationOverview::StationOverview(QObject *parent)
    : QAbstractListModel(parent)
{
    m_later.setSingleShot(true);
    m_later.callOnTimeout(this, &StationOverview::applySome);
}

void StationOverview::setActive(bool active)
{
    if (std::exchange(m_isActive, active) == active)
        return;
    if (active) {
        m_settlesNext = true;
        m_later.start(0);
    }
    emit activeChanged();
}

QString StationOverview::nameOf(const QString &relayPath) const
{
    const QString name = m_names.value(relayPath, relayPath);
    return m_nameUses.value(name) > 1 ? QStringLiteral("%1 (%2)").arg(name, relayPath) : name;
}

QString StationOverview::label(const QString &source) const
{
    const QString &station = source.isEmpty() ? m_direct : source;
    return m_isSite || (!source.isEmpty() && source != m_direct) ? nameOf(station) : QString();
}

int StationOverview::rowOf(const QString &relayPath) const
{
    return m_places.value(relayPath, -1);
}

QString StationOverview::relayPathAt(int row) const
{
    return row >= 0 && row < m_rows.size() ? m_rows.at(row).record.presence.relayPath : QString();
}

void StationOverview::choose(const QString &relayPath)
{
    dismissFailure();
    if (relayPath != m_direct)
        emit chosen(relayPath);
}

void StationOverview::dismissFailure()
{
    if (!std::exchange(m_failure, {}).isEmpty())
        emit failureChanged();
}

void StationOverview::refuse(const QString &sentence)
{
    m_failure = sentence;
    emit failureChanged();
}

void StationOverview::take(const QStringList &relayPaths, const RecordOf &recordOf)
{
    m_recordOf = recordOf;
    const QString before = directName();
    bool areOthersNamed = false;
    for (const QString &relayPath : relayPaths) {
        const QString name = recordOf(relayPath).presence.name;
        if (!name.isEmpty())
            areOthersNamed = noteName(relayPath, name) || areOthersNamed;
        m_pending.insert(relayPath);
    }
    if (areOthersNamed && !m_rows.isEmpty())
        emit dataChanged(index(0), index(static_cast<int>(m_rows.size()) - 1), {Name});
    if (directName() != before)
        emit directChanged();
    if (m_isActive && !m_later.isActive())
        m_later.start(0);
}

/// True where stations of the same name are shown in another way from now on.
bool StationOverview::noteName(const QString &relayPath, const QString &name)
{
    QString &known = m_names[relayPath];
    if (known == name)
        return false;
    const bool wasShared = !known.isEmpty() && --m_nameUses[known] == 1;
    known = name;
    return ++m_nameUses[name] == 2 || wasShared;
}

void StationOverview::setCounts(int count, int notUp, int untold)
{
    if (count == m_count && notUp == m_notUp && untold == m_untold)
        return;
    m_count = count;
    m_notUp = notUp;
    m_untold = untold;
    m_isSite = m_isSite || count > 1; // nothing goes that was in view
    emit changed();
}

void StationOverview::setSite()
{
    if (!std::exchange(m_isSite, true))
        emit changed();
}

void StationOverview::setDirect(const QString &relayPath)
{
    const QString before = std::exchange(m_direct, relayPath);
    if (before == relayPath)
        return;
    for (const QString &station : {before, relayPath}) {
        if (const int row = rowOf(station); row >= 0)
            emit dataChanged(index(row), index(row), {Direct});
    }
    emit directChanged();
}

void StationOverview::applySome()
{
    QElapsedTimer clock;
    clock.start();
    QList<StationDirectory::Record> added;
    const int unsettledBefore = unsettled();
    for (auto station = m_pending.begin(); station != m_pending.end();) {
        if (clock.elapsed() >= turn || added.size() >= mostInserted) {
            m_later.start(0);
            break;
        }
        const StationDirectory::Record record = m_recordOf(*station);
        if (const int row = rowOf(*station); row >= 0)
            update(row, record);
        else
            added.append(record);
        station = m_pending.erase(station);
    }
    if (!added.isEmpty())
        insert(added);
    if (m_pending.isEmpty() && std::exchange(m_settlesNext, false))
        settle();
    else if (unsettled() != unsettledBefore)
        emit unsettledChanged();
}

void StationOverview::insert(const QList<StationDirectory::Record> &records)
{
    const int first = static_cast<int>(m_rows.size());
    beginInsertRows({}, first, first + static_cast<int>(records.size()) - 1);
    for (const StationDirectory::Record &record : records) {
        m_places.insert(record.presence.relayPath, static_cast<int>(m_rows.size()));
        m_rows.append({record, orderOf(record)});
    }
    endInsertRows();
}

void StationOverview::update(int row, const StationDirectory::Record &record)
{
    const StationDirectory::Record before = std::exchange(m_rows[row].record, record);
    QList<int> roles;
    if (!isKnown(before)) {
        m_rows[row].order = orderOf(record);
        roles += {BadnessOrder, MissingOrder, FreeOrder, AlarmsOrder};
    }
    noteOrder(row);
    const auto compare = [&roles](bool isOther, std::initializer_list<int> ofThat) {
        if (isOther)
            roles += ofThat;
    };
    compare(before.presence.name != record.presence.name, {Name});
    compare(before.presence.address != record.presence.address, {Address});
    compare(before.presence.version != record.presence.version, {Version});
    compare(!(before.presence.state == record.presence.state), {StateRole, Reason, FiguresAt});
    compare(before.presence.since != record.presence.since, {Since, FiguresAt});
    compare(!(before.figures == record.figures), {MissingDays, ShortGroups, UnknownGroups, Free, FiguresAt});
    compare(before.alarms != record.alarms, {Alarms, FiguresAt});
    compare(before.errors != record.errors, {Errors});
    compare(before.areAlarmsTold != record.areAlarmsTold, {AlarmsKnown});
    if (!roles.isEmpty())
        emit dataChanged(index(row), index(row), roles);
}

/// Down is worse than broken, broken than short of days, and that than a warning.
StationOverview::Order StationOverview::orderOf(const StationDirectory::Record &record)
{
    constexpr double rank = 1e6;
    const int missing = missingDays(record.figures);
    const double days = std::clamp(missing, 0, 100'000);
    const bool isDown = record.presence.state.kind == StationState::Kind::Down;
    const double badness = isDown              ? 6 * rank
        : !record.isUp()                       ? 5 * rank
        : record.errors > 0                    ? 4 * rank + days
        : missing > 0                          ? 3 * rank + days
        : record.alarms > 0                    ? 2 * rank
        : !record.areAlarmsTold || missing < 0 ? rank
                                               : 0;
    return {badness, missing, record.figures.freeBytes, record.areAlarmsTold ? record.alarms : -1};
}

void StationOverview::noteOrder(int row)
{
    const Row &station = m_rows.at(row);
    if (orderOf(station.record).badness == station.order.badness)
        m_unsettled.remove(station.record.presence.relayPath);
    else
        m_unsettled.insert(station.record.presence.relayPath);
}

void StationOverview::settle()
{
    for (Row &row : m_rows)
        row.order = orderOf(row.record);
    if (!m_rows.isEmpty())
        emit dataChanged(index(0), index(static_cast<int>(m_rows.size()) - 1),
                         {BadnessOrder, MissingOrder, FreeOrder, AlarmsOrder});
    m_unsettled.clear();
    emit unsettledChanged();
}

int StationOverview::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant StationOverview::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row &row = m_rows.at(index.row());
    const StationDirectory::Record &record = row.record;
    const StationPresence &presence = record.presence;
    switch (role) {
    case RelayPath:
        return presence.relayPath;
    case Name:
        return nameOf(presence.relayPath);
    case Address:
        return presence.address;
    case Version:
        return presence.version;
    case StateRole:
        return stateOf(record);
    case Since:
        return presence.since.toLocalTime();
    case Reason:
        return presence.state.reason;
    case MissingDays:
        return missingDays(record.figures);
    case ShortGroups:
        return record.figures.isTold() ? record.figures.shortGroups : -1;
    case UnknownGroups:
        return record.figures.unknownGroups;
    case Free:
        return record.figures.freeBytes;
    case Alarms:
        return record.alarms;
    case Errors:
        return record.errors;
    case AlarmsKnown:
        return record.areAlarmsTold;
    case FiguresAt:
        return figuresAt(record);
    case Direct:
        return presence.relayPath == m_direct;
    case BadnessOrder:
        return row.order.badness;
    case MissingOrder:
        return row.order.missing;
    case FreeOrder:
        return row.order.free;
    case AlarmsOrder:
        return row.order.alarms;
    default:
        return {};
    }
}

QHash<int, QByteArray> StationOverview::roleNames() const
{
    return {{RelayPath, "relayPathRole"},
            {Name, "nameRole"},
            {Address, "addressRole"},
            {Version, "versionRole"},
            {StateRole, "stateRole"},
            {Since, "sinceRole"},
            {Reason, "reasonRole"},
            {MissingDays, "missingDaysRole"},
            {ShortGroups, "shortGroupsRole"},
            {UnknownGroups, "unknownGroupsRole"},
            {Free, "freeRole"},
            {Alarms, "alarmsRole"},
            {Errors, "errorsRole"},
            {AlarmsKnown, "alarmsKnownRole"},
            {FiguresAt, "figuresAtRole"},
            {Direct, "directRole"},
            {BadnessOrder, "badnessOrderRole"},
            {MissingOrder, "missingOrderRole"},
            {FreeOrder, "freeOrderRole"},
            {AlarmsOrder, "alarmsOrderRole"}};
}
