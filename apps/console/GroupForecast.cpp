#include "GroupForecast.h"

#include "EditRequestData.h"
#include "MissingDays.h"
#include "RefusalText.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "framework/HostReturnCode.h"

#include <QJSValue>

#include <algorithm>
#include <tuple>

namespace {
constexpr int usualMoment = 300; // milliseconds

/// Days and what is missing of a group at one time; everything unknown where it is not there then.
struct Figures
{
    explicit Figures(const QVariant &value)
    {
        const QVariantMap map = value.toMap();
        if (map.isEmpty())
            return;
        name = map.value(FieldKey::recordingGroupName).toString();
        const qint64 recorded = map.value(StationKey::recordedDays, -1).toLongLong();
        const qint64 remaining = map.value(StationKey::remainingDays, -1).toLongLong();
        const qint64 reserved = map.value(FieldKey::recordingGroupReservedTime, -1).toLongLong();
        days = recorded < 0 || remaining < 0 ? -1 : recorded + remaining;
        reservedDays = std::max<qint64>(reserved, 0) / (24 * 60);
        missing = missingDays(reserved, recorded, remaining);
        bytesPerDay = map.value(StationKey::bytesPerDay, -1).toLongLong();
    }

    QString name;
    qint64 days = -1;
    qint64 reservedDays = 0;
    qint64 missing = -1;
    qint64 bytesPerDay = -1;
};

QVariantMap groupMap(const QVariantMap &entry, const QSet<QString> &editedIds)
{
    const QString id = entry.value(FieldKey::recordingGroupID).toString();
    const Figures now(entry.value(StationKey::now));
    const Figures then(entry.value(StationKey::then));
    return {{QStringLiteral("id"), id},
            {QStringLiteral("name"), entry.contains(StationKey::then) ? then.name : now.name},
            {QStringLiteral("edited"), editedIds.contains(id)},
            {QStringLiteral("isNew"), !entry.contains(StationKey::now)},
            {QStringLiteral("daysNow"), double(now.days)},
            {QStringLiteral("daysThen"), double(then.days)},
            {QStringLiteral("reservedDays"), double(then.reservedDays)},
            {QStringLiteral("missingNow"), double(now.missing)},
            {QStringLiteral("missingThen"), double(then.missing)},
            {QStringLiteral("bytesPerDay"), double(then.bytesPerDay)}};
}

QVariantMap volumeMap(const QVariantMap &entry)
{
    const auto reserved = [&entry](const QString &when) {
        constexpr double bytesPerMegabyte = 1024 * 1024;
        return entry.value(when).toMap().value(FieldKey::reserveSpace).toDouble() * bytesPerMegabyte;
    };
    return {{FieldKey::volumePath, entry.value(FieldKey::volumePath)},
            {FieldKey::volumeName, entry.value(FieldKey::volumeName)},
            {StationKey::size, entry.value(StationKey::size, -1).toDouble()},
            {QStringLiteral("reservedNow"), reserved(StationKey::now)},
            {QStringLiteral("reservedThen"), reserved(StationKey::then)}};
}

/// Groups that come to fall short, then those that do already, then the edited one.
void sortWorstFirst(QVariantList &groups)
{
    const auto rank = [](const QVariant &value) {
        const QVariantMap group = value.toMap();
        const double missing = group.value(QStringLiteral("missingThen")).toDouble();
        const bool isShort = missing > 0;
        const bool wasShort = group.value(QStringLiteral("missingNow")).toDouble() > 0;
        return std::tuple(!isShort, isShort && wasShort, !group.value(QStringLiteral("edited")).toBool(),
                          isShort ? -missing : 0.0);
    };
    std::stable_sort(groups.begin(), groups.end(),
                     [&rank](const QVariant &left, const QVariant &right) { return rank(left) < rank(right); });
}

/// A value that came from QML, without anything of its engine in it.
QVariant plainValue(const QVariant &value)
{
    return value.userType() == qMetaTypeId<QJSValue>() ? value.value<QJSValue>().toVariant() : value;
}

QVariant requestData(const QString &invokable, const QVariantList &arguments)
{
    QVariantList values;
    for (const QVariant &argument : arguments)
        values.append(plainValue(argument));
    return editRequestData(invokable, values);
}

QString groupIdOf(const QVariant &data)
{
    return data.toMap().value(FieldKey::recordingGroupID).toString();
}
} // namespace

GroupForecast::GroupForecast(QObject *parent)
    : QObject(parent)
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(usualMoment);
    connect(&m_timer, &QTimer::timeout, this, &GroupForecast::send);
}

void GroupForecast::setSession(ConsoleSession *session)
{
    if (m_session == session)
        return;
    if (m_session)
        m_session->disconnect(this);
    m_session = session;
    if (session) {
        connect(session, &ConsoleSession::groupsEdited, this, &GroupForecast::refresh);
        connect(session, &ConsoleSession::connectedChanged, this, &GroupForecast::refresh);
    }
    emit sessionChanged();
}

void GroupForecast::setMoment(int milliseconds)
{
    if (moment() == milliseconds)
        return;
    m_timer.setInterval(milliseconds);
    emit momentChanged();
}

void GroupForecast::ask(const QString &invokable, const QVariantList &arguments)
{
    const QVariant data = requestData(invokable, arguments);
    want(invokable, data, {groupIdOf(data)});
}

void GroupForecast::askAll(const QString &invokable, const QVariantList &argumentLists)
{
    QVariantList edits;
    QSet<QString> editedIds;
    for (const QVariant &arguments : argumentLists) {
        edits.append(requestData(invokable, plainValue(arguments).toList()));
        editedIds.insert(groupIdOf(edits.constLast()));
    }
    want(invokable, edits, editedIds);
}

void GroupForecast::want(const QString &invokable, const QVariant &data, const QSet<QString> &editedIds)
{
    const QVariantMap wanted{{StationKey::command, invokable}, {StationKey::data, data}};
    if (m_wanted == wanted)
        return;
    m_wanted = wanted;
    m_editedIds = editedIds;
    refresh();
}

void GroupForecast::clear()
{
    m_wanted.reset();
    m_isOutdated = m_isUnderWay;
    m_timer.stop();
    if (m_state != Nothing)
        show(Nothing);
}

void GroupForecast::refresh()
{
    if (!m_wanted)
        return;
    m_isOutdated = m_isUnderWay;
    m_timer.start();
    show(Pending, {}, m_groups);
}

void GroupForecast::send()
{
    if (!m_wanted || m_isUnderWay)
        return; // the answer that is outstanding sends it
    if (!m_session || !m_session->isConnected()) {
        show(Failed, refusalText(HostReturnCode::LinkDown));
        return;
    }
    m_isUnderWay = true;
    m_isOutdated = false;
    m_session->callStation(StationCommandName::forecast, *m_wanted, this,
                           [this](const QString &returnCode, const QVariant &data) { take(returnCode, data); });
}

void GroupForecast::take(const QString &returnCode, const QVariant &data)
{
    m_isUnderWay = false;
    if (m_isOutdated) {
        m_isOutdated = false;
        if (!m_timer.isActive())
            send();
        return;
    }
    if (returnCode != ReturnCode::Success) {
        show(Failed, refusalText(returnCode));
        return;
    }
    const QVariantMap forecast = data.toMap();
    const QString outcome = forecast.value(StationKey::returnCode).toString();
    if (outcome.isEmpty()) {
        show(Failed, tr("The station's answer cannot be read."));
        return;
    }
    QVariantList groups;
    for (const QVariant &entry : forecast.value(StationKey::groups).toList())
        groups.append(groupMap(entry.toMap(), m_editedIds));
    sortWorstFirst(groups);
    QVariantList volumes;
    for (const QVariant &entry : forecast.value(StationKey::volumes).toList())
        volumes.append(volumeMap(entry.toMap()));
    if (outcome == ReturnCode::Success)
        show(Known, {}, groups, {}, volumes);
    else
        show(Refused, refusalText(outcome), groups, forecast.value(StationKey::errors).toList(), volumes);
}

void GroupForecast::show(State state, const QString &reason, const QVariantList &groups, const QVariantList &errors,
                         const QVariantList &volumes)
{
    m_state = state;
    m_reason = reason;
    m_groups = groups;
    m_errors = errors;
    m_volumes = volumes;
    emit changed();
}
