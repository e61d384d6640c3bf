#include "StationDirectory.h"

#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "companions/StatusMonitorPlugin.h"
#include "link/StationCalls.h"

#include <QAbstractItemModel>

#include <algorithm>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {
constexpr auto moment = 100ms;
constexpr int mostAsked = 32; // stations at a time
} // namespace

StationDirectory::StationDirectory(StationLink &link, StationCalls &calls, StatusMonitorPlugin &monitor,
                                   QObject &plugin)
    : m_link(link)
    , m_calls(calls)
    , m_monitor(monitor)
    , m_plugin(plugin)
{
    m_later.setSingleShot(true);
    m_later.callOnTimeout(this, &StationDirectory::flush);
    connect(&m_link, &StationLink::completenessChanged, this, &StationDirectory::completenessChanged);
    connect(&m_link, &StationLink::presenceChanged, this, &StationDirectory::touch);
    connect(&m_link, &StationLink::directStationChanged, this, &StationDirectory::touch);
    const auto touchState = [this](const QString &relayPath, const StationState &state) {
        const QString station = relayPath.isEmpty() ? m_link.directStation() : relayPath;
        if (state.kind == StationState::Kind::Up)
            m_alarmsTold.remove(station); // what it raised meanwhile was not heard
        touch(station);
    };
    connect(&m_link, &StationLink::stateChanged, this, touchState);
    const auto touchAlarm = [this](const StatusMonitorPlugin::Alarm &alarm) { touch(alarm.source); };
    connect(&m_monitor, &StatusMonitorPlugin::raised, this, touchAlarm);
    connect(&m_monitor, &StatusMonitorPlugin::withdrawn, this, touchAlarm);
    const QList<StationPresence> known = m_link.stations();
    for (const StationPresence &presence : known)
        follow(presence);
    flush();
}

void StationDirectory::setAsksForAlarms(bool asks)
{
    m_toAsk.clear();
    m_asksForAlarms = asks;
    for (auto station = m_records.cbegin(); asks && station != m_records.cend(); ++station) {
        if (station->isUp())
            m_toAsk.append(station.key());
    }
    askSome();
}

QStringList StationDirectory::relayPaths() const
{
    return m_records.keys();
}

StationDirectory::Record StationDirectory::record(const QString &relayPath) const
{
    return m_records.value(relayPath);
}

void StationDirectory::touch(const QString &relayPath)
{
    m_touched.insert(relayPath);
    if (!m_later.isActive())
        m_later.start(moment);
}

void StationDirectory::flush()
{
    const QSet<QString> touched = std::exchange(m_touched, {});
    const bool wasSite = isSite();
    const QList<StationPresence> stations = m_link.stations(); // once for all of them
    for (const StationPresence &presence : stations) {
        if (touched.contains(presence.relayPath))
            follow(presence);
    }
    const auto isNameless = [](const StationPresence &presence) { return presence.relayPath.isEmpty(); };
    if (std::none_of(stations.cbegin(), stations.cend(), isNameless))
        update({}, {}, false); // the link's one station has told its relay path meanwhile
    QStringList known;
    for (const QString &relayPath : touched) {
        if (m_records.contains(relayPath))
            known.append(relayPath);
    }
    if (wasSite != isSite())
        emit siteChanged();
    if (!known.isEmpty())
        emit changed(known);
    askSome();
}

void StationDirectory::follow(const StationPresence &presence)
{
    Record record = m_records.value(presence.relayPath);
    const bool wasUp = record.isUp();
    record.presence = presence;
    if (record.isUp() && !wasUp && m_asksForAlarms)
        m_toAsk.append(presence.relayPath);
    const StatusMonitorPlugin::Count count = m_monitor.count(presence.relayPath);
    record.alarms = count.all;
    record.errors = count.errors;
    record.areAlarmsTold = m_alarmsTold.contains(presence.relayPath) && record.figures.isTold();
    update(presence.relayPath, record);
}

void StationDirectory::update(const QString &relayPath, const Record &record, bool isKept)
{
    const auto add = [this](const Record &counted, int number) {
        m_notUp += counted.isUp() ? 0 : number;
        m_untold += counted.isUp() && !counted.areAlarmsTold ? number : 0;
    };
    if (const auto before = m_records.constFind(relayPath); before != m_records.cend())
        add(*before, -1);
    m_records.remove(relayPath);
    if (!isKept)
        return;
    add(record, 1);
    m_records.insert(relayPath, record);
}

void StationDirectory::noteEvent(const QString &event, const QVariant &data, const QString &station)
{
    if (event == StationEventName::AlarmsChanged) {
        noteAlarmsTold(station);
        return;
    }
    if (event != ServerEvent::VolumeChanged)
        return;
    QObject *model = nullptr;
    const QString source = station == m_link.directStation() ? QString() : station;
    QMetaObject::invokeMethod(&m_plugin, "getStorageUsageModel", Qt::DirectConnection, Q_RETURN_ARG(QObject *, model),
                              Q_ARG(QString, source));
    const auto *const usage = qobject_cast<const QAbstractItemModel *>(model);
    if (!usage)
        return;
    Record record = m_records.value(station);
    record.presence.relayPath = station;
    record.figures = StationFigures::of(*usage, data);
    const QDateTime toldAt = m_link.presence(station).figuresAt;
    record.toldAt = toldAt.isValid() ? toldAt : QDateTime::currentDateTimeUtc();
    update(station, record);
    touch(station);
}

void StationDirectory::noteAlarmsTold(const QString &relayPath)
{
    m_alarmsTold.insert(relayPath);
    touch(relayPath);
}

void StationDirectory::askSome()
{
    while (m_asksForAlarms && m_asked < mostAsked && !m_toAsk.isEmpty()) {
        const QString station = m_toAsk.takeFirst();
        if (m_alarmsTold.contains(station) || station == m_link.directStation() || !m_link.isUp(station))
            continue; // the client asks the directly connected one itself
        const auto take = [this, station](const StationReply &reply) {
            --m_asked;
            if (reply.returnCode == ReturnCode::Success) {
                m_monitor.setStationAlarms(station, reply.data.toMap().value(StationKey::alarms).toList());
                noteAlarmsTold(station);
            }
            askSome();
        };
        if (!m_calls.send(StationCommandName::listAlarms, {}, this, take, station))
            return;
        ++m_asked;
    }
}
