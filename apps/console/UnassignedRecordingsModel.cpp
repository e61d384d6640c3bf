#include "UnassignedRecordingsModel.h"

#include "RefusalText.h"
#include "ServerVocabulary.h"
#include "StationStorage.h"
#include "StationVocabulary.h"

#include <QCoreApplication>
#include <QDate>
#include <QLocale>
#include <QSet>

#include <algorithm>
#include <utility>

namespace {
QString nameOf(const QVariantMap &place)
{
    return place.value(StationKey::place).toString();
}

QString translated(const char *text)
{
    return QCoreApplication::translate("UnassignedRecordings", text);
}

UnassignedRecordingsModel::Standing standingOf(const QVariantMap &place)
{
    if (place.value(StationKey::kind) == StationVolumeKind::NAS)
        return UnassignedRecordingsModel::OnNas;
    const QString state = place.value(StationKey::state).toString();
    if (state == StationVolumeState::there)
        return UnassignedRecordingsModel::There;
    if (state == StationVolumeState::readOnly)
        return UnassignedRecordingsModel::ReadOnly;
    if (state == StationVolumeState::gone)
        return UnassignedRecordingsModel::Gone;
    return state == StationVolumeState::notAnswering ? UnassignedRecordingsModel::NotAnswering
                                                     : UnassignedRecordingsModel::NotLookedAt;
}

double numberIn(const QVariantMap &place, const QString &key)
{
    return static_cast<double>(place.value(key, -1).toLongLong());
}

QString dayText(const QVariantMap &place, const QString &key)
{
    const QDate day = QDate::fromString(place.value(key).toString(), Qt::ISODate);
    return day.isValid() ? QLocale().toString(day, QLocale::ShortFormat) : QString();
}

QString confirmationOf(const QVariantMap &place)
{
    const QString folder = place.value(StationKey::folder).toString();
    return folder.isEmpty() ? place.value(FieldKey::path).toString().section(u'/', -1) : folder;
}

QString lastDeletionText(const QVariantMap &place)
{
    const QVariantMap deletion = place.value(StationKey::deletion).toMap();
    if (deletion.isEmpty() || deletion.value(StationKey::running).toBool())
        return {};
    const QString code = deletion.value(StationKey::returnCode).toString();
    if (code.isEmpty())
        return translated(QT_TRANSLATE_NOOP("UnassignedRecordings", "The station ended while it deleted here."));
    if (code == ReturnCode::Success)
        return translated(
            QT_TRANSLATE_NOOP("UnassignedRecordings", "Deleted; the station has to count again what is here."));
    return translated(QT_TRANSLATE_NOOP("UnassignedRecordings", "Last deletion: %1")).arg(refusalText(code));
}
} // namespace

UnassignedRecordingsModel::UnassignedRecordingsModel(const StationStorage &storage, QObject *parent)
    : QAbstractListModel(parent)
    , m_storage(storage)
{
    using namespace std::chrono_literals;
    m_later.setSingleShot(true);
    m_later.setInterval(2s);
    connect(&m_later, &QTimer::timeout, this, [this] {
        if (m_isWatched)
            refresh();
    });
}

void UnassignedRecordingsModel::setWatched(bool watched)
{
    if (m_isWatched == watched)
        return;
    m_isWatched = watched;
    emit watchedChanged();
    if (watched)
        refresh();
}

void UnassignedRecordingsModel::setConnected(bool connected)
{
    m_isConnected = connected;
    m_isAsked = m_isAskedAgain = false;
    if (!connected)
        return emit changed();
    if (m_isWatched || m_deletion.isRunning())
        refresh();
}

void UnassignedRecordingsModel::forget()
{
    m_later.stop();
    m_isAsked = m_isAskedAgain = m_isKnown = false;
    m_failure.clear();
    m_deletion.leave();
    show({});
    emit changed();
}

void UnassignedRecordingsModel::refresh()
{
    if (!m_isConnected)
        return;
    if (m_isAsked) {
        m_isAskedAgain = true;
        return;
    }
    m_isAsked = true;
    m_later.stop();
    emit changed();
    emit requested(StationCommandName::listUnassignedRecordings, {});
}

double UnassignedRecordingsModel::recordedBytes() const
{
    double sum = 0;
    for (const QVariantMap &place : m_places)
        sum += std::max(numberIn(place, StationKey::recordedBytes), 0.0);
    return sum;
}

int UnassignedRecordingsModel::unknownCount() const
{
    return static_cast<int>(std::count_if(m_places.cbegin(), m_places.cend(), [](const QVariantMap &place) {
        return numberIn(place, StationKey::recordedBytes) < 0;
    }));
}

QVariantList UnassignedRecordingsModel::takersOf(const QString &place) const
{
    const int row = rowOf(place);
    if (row < 0)
        return {};
    const QVariantMap &recordings = m_places.at(row);
    QVariantList takers;
    const QVariantList volumes = m_storage.volumes();
    for (const QVariant &entry : volumes) {
        const QVariantMap volume = entry.toMap();
        if (volume.value(FieldKey::volumePath) != recordings.value(FieldKey::volumePath)
            || volume.value(StationKey::kind) != recordings.value(StationKey::kind))
            continue;
        const QVariantList groups = volume.value(StationKey::groups).toList();
        for (const QVariant &value : groups) {
            const QVariantMap group = value.toMap();
            const QStringList paths = group.value(StationKey::paths).toStringList();
            const QString own = recordings.value(FieldKey::path).toString();
            takers.append(QVariantMap{{QStringLiteral("id"), group.value(FieldKey::recordingGroupID)},
                                      {QStringLiteral("name"), group.value(FieldKey::recordingGroupName)},
                                      {QStringLiteral("path"), paths.contains(own) ? own : paths.value(0)}});
        }
    }
    std::stable_sort(takers.begin(), takers.end(), [](const QVariant &left, const QVariant &right) {
        const auto name = [](const QVariant &taker) { return taker.toMap().value(QStringLiteral("name")).toString(); };
        return QString::localeAwareCompare(name(left), name(right)) < 0;
    });
    return takers;
}

int UnassignedRecordingsModel::rowOf(const QString &place) const
{
    for (qsizetype row = 0; row < m_places.size(); ++row) {
        if (nameOf(m_places.at(row)) == place)
            return static_cast<int>(row);
    }
    return -1;
}

QVariant UnassignedRecordingsModel::valueOf(const QString &place, const QString &role) const
{
    const int row = rowOf(place);
    return row < 0 ? QVariant() : data(index(row), roleNames().key(role.toUtf8(), -1));
}

void UnassignedRecordingsModel::assign(const QString &place, const QString &groupId)
{
    emit requested(StationCommandName::assignRecordings,
                   {{StationKey::place, place}, {FieldKey::recordingGroupID, groupId}});
}

void UnassignedRecordingsModel::remove(const QString &place, const QString &confirmation)
{
    emit requested(StationCommandName::deleteRecordings,
                   {{StationKey::place, place}, {StationKey::confirmation, confirmation}});
}

void UnassignedRecordingsModel::cancelDeletion()
{
    if (!m_deletion.isRunning() || m_deletion.isCancelling())
        return;
    m_deletion.beginCancel();
    emit requested(StationCommandName::cancelDeletion, {{StationKey::place, m_deletion.place()}});
}

void UnassignedRecordingsModel::noteEvent(const QString &event, const QVariant &data)
{
    if (event == StationEventName::DeletionProgress)
        m_deletion.takeProgress(data.toMap());
    const bool hasEnded = event == StationEventName::DeletionProgress && !m_deletion.isRunning();
    if (m_isWatched && (hasEnded || event == ServerEvent::VolumeChanged || event == StationEventName::ActivityAdded))
        refresh();
}

void UnassignedRecordingsModel::takeReply(const QString &command, const QVariantMap &request, const QString &returnCode,
                                          const QVariant &data)
{
    if (command == StationCommandName::listUnassignedRecordings)
        takeList(returnCode, data.toList());
    else if (command == StationCommandName::assignRecordings)
        takeAssignment(request, returnCode, data.toMap());
    else if (command == StationCommandName::deleteRecordings)
        takeDeletion(request, returnCode, data.toMap());
    else if (command == StationCommandName::cancelDeletion && returnCode != ReturnCode::Success)
        m_deletion.refuseCancel(refusalText(returnCode));
}

void UnassignedRecordingsModel::takeList(const QString &returnCode, const QVariantList &places)
{
    if (!m_isConnected)
        return;
    m_isAsked = false;
    m_failure = refusalText(returnCode);
    if (returnCode == ReturnCode::Success) {
        m_isKnown = true;
        show(places);
        m_deletion.compareWith(places);
    }
    emit changed();
    if (std::exchange(m_isAskedAgain, false))
        refresh();
    else if (isStillCounted())
        m_later.start();
}

/// On volumes that are there; others are as they were.
bool UnassignedRecordingsModel::isStillCounted() const
{
    return std::any_of(m_places.cbegin(), m_places.cend(), [](const QVariantMap &place) {
        const QVariant outcome = place.value(StationKey::deletion).toMap().value(StationKey::returnCode);
        const Standing standing = standingOf(place);
        return (standing == There || standing == ReadOnly || standing == NotLookedAt)
            && (!place.value(StationKey::counted).toBool() || outcome == ReturnCode::Success);
    });
}

void UnassignedRecordingsModel::takeAssignment(const QVariantMap &request, const QString &returnCode,
                                               const QVariantMap &data)
{
    QStringList inTheWay;
    const QVariantList errors = data.value(FieldKey::errorAction).toList();
    for (const QVariant &error : errors)
        inTheWay.append(error.toMap().value(StationKey::value).toString());
    emit assigned(request.value(StationKey::place).toString(),
                  refusalText(returnCode) + outcomeHint(StationCommandName::assignRecordings, returnCode), inTheWay,
                  data.value(FieldKey::path).toString());
    refresh();
}

void UnassignedRecordingsModel::takeDeletion(const QVariantMap &request, const QString &returnCode,
                                             const QVariantMap &data)
{
    if (returnCode == ReturnCode::Success)
        m_deletion.begin(data);
    emit deletionAnswered(request.value(StationKey::place).toString(),
                          refusalText(returnCode) + outcomeHint(StationCommandName::deleteRecordings, returnCode));
    refresh();
}

/// Rows that stay are changed, not replaced: a view keeps its selection.
void UnassignedRecordingsModel::show(const QVariantList &places)
{
    QSet<QString> wanted;
    for (const QVariant &place : places)
        wanted.insert(nameOf(place.toMap()));
    for (int row = count() - 1; row >= 0; --row) {
        if (wanted.contains(nameOf(m_places.at(row))))
            continue;
        beginRemoveRows({}, row, row);
        m_places.removeAt(row);
        endRemoveRows();
    }
    for (int row = 0; row < places.size(); ++row) {
        const QVariantMap place = places.at(row).toMap();
        if (row >= count() || nameOf(m_places.at(row)) != nameOf(place))
            moveOrInsert(place, row);
        if (m_places.at(row) == place)
            continue;
        m_places[row] = place;
        emit dataChanged(index(row), index(row));
    }
}

void UnassignedRecordingsModel::moveOrInsert(const QVariantMap &place, int row)
{
    const int present = rowOf(nameOf(place));
    if (present < 0) {
        beginInsertRows({}, row, row);
        m_places.insert(row, place);
        endInsertRows();
        return;
    }
    beginMoveRows({}, present, present, {}, row);
    m_places.move(present, row);
    endMoveRows();
}

int UnassignedRecordingsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant UnassignedRecordingsModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const QVariantMap &place = m_places.at(index.row());
    const Standing standing = standingOf(place);
    switch (role) {
    case Place:
        return place.value(StationKey::place);
    case Folder:
        return place.value(StationKey::folder);
    case Confirmation:
        return confirmationOf(place);
    case VolumePath:
        return place.value(FieldKey::volumePath);
    case VolumeName:
        return place.value(FieldKey::volumeName);
    case Location:
        return standing;
    case Editable:
        return (standing == There || standing == NotLookedAt) && numberIn(place, StationKey::recordedBytes) >= 0
            && !place.value(StationKey::deletion).toMap().value(StationKey::running).toBool();
    case RecordedBytes:
        return numberIn(place, StationKey::recordedBytes);
    case RecordedFiles:
        return numberIn(place, StationKey::recordedFiles);
    case RecordedDays:
        return numberIn(place, StationKey::recordedDays);
    case FirstDay:
        return dayText(place, StationKey::oldestDay);
    case LastDay:
        return dayText(place, StationKey::newestDay);
    case Cameras:
        return place.value(StationKey::cameras).toStringList();
    case Counted:
        return place.value(StationKey::counted).toBool();
    case CountedAt:
        return place.value(StationKey::countedAt).toString();
    case LastDeletion:
        return lastDeletionText(place);
    default:
        return {};
    }
}

QHash<int, QByteArray> UnassignedRecordingsModel::roleNames() const
{
    return {{Place, "place"},
            {Folder, "folder"},
            {Confirmation, "confirmation"},
            {VolumePath, "volumePath"},
            {VolumeName, "volumeName"},
            {Location, "location"},
            {Editable, "editable"},
            {RecordedBytes, "recordedBytes"},
            {RecordedFiles, "recordedFiles"},
            {RecordedDays, "recordedDays"},
            {FirstDay, "firstDay"},
            {LastDay, "lastDay"},
            {Cameras, "cameras"},
            {Counted, "counted"},
            {CountedAt, "countedAt"},
            {LastDeletion, "lastDeletion"}};
}
