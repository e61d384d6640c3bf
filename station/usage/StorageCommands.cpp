#include "StorageCommands.h"

#include "EditForecast.h"
#include "RequestMap.h"
#include "ServerVocabulary.h"
#include "StationData.h"
#include "StationLog.h"
#include "StationVocabulary.h"
#include "StorageOverview.h"
#include "StorageUsage.h"
#include "groups/GroupStore.h"
#include "store/Database.h"

#include <utility>

namespace {
/// The return code with which every edit is refused at the moment.
std::optional<QString> writeRefusal(Database &database)
{
    const std::optional<DatabaseError> error =
        database.limitation() ? database.limitation() : database.whyDiskTakesNothing();
    return error ? std::optional(returnCodeOf(error->trouble())) : std::nullopt;
}

/// Likewise as editRequests(), of the data of several commands as well, in their order.
std::optional<QList<EditRequest>> forecastRequests(const QString &command, const QVariant &data)
{
    if (data.typeId() != QMetaType::QVariantList)
        return editRequests(command, data);
    QList<EditRequest> all;
    for (const QVariant &edit : data.toList()) {
        const std::optional<QList<EditRequest>> requests = editRequests(command, edit);
        if (!requests)
            return std::nullopt;
        all.append(*requests);
    }
    if (all.isEmpty())
        throw BadRequest(QStringLiteral("data: at least one edit is expected"));
    return all;
}
} // namespace

StorageCommands::StorageCommands(const VolumeSource &volumes, StationData &data, StorageUsage &usage,
                                 const PathChecks &paths, std::function<QList<StationTrouble>()> troubles)
    : m_volumes(volumes)
    , m_data(data)
    , m_usage(usage)
    , m_paths(paths)
    , m_troubles(std::move(troubles))
{
}

void StorageCommands::enterInto(CommandTable &table)
{
    table.insert(StationCommandName::listStorage,
                 [this](const QVariant &data, const Answer &answer) { listStorage(data, answer); });
    table.insert(StationCommandName::forecast,
                 [this](const QVariant &data, const Answer &answer) { forecast(data, answer); });
}

void StorageCommands::listStorage(const QVariant &data, const Answer &answer)
{
    if (!data.isNull())
        return answer(lastPart(StationReturnCode::BadRequest));
    m_usage.useLatestGroups();
    const QList<Volume> volumes = m_volumes.volumes();
    answer(
        lastPart(ReturnCode::Success, storageOverview(volumes, m_usage.places(), m_usage.currentDay(), m_troubles())));
}

void StorageCommands::forecast(const QVariant &data, const Answer &answer)
{
    const QString command = RequestMap(data).string(StationKey::command);
    std::optional<QList<EditRequest>> requests;
    try {
        requests = forecastRequests(command, data.toMap().value(StationKey::data));
    } catch (const BadRequest &error) {
        qCInfo(stationLog, "%s: %s", qPrintable(command), error.what());
        return answer(lastPart(ReturnCode::Success,
                               QVariantMap{{StationKey::returnCode, StationReturnCode::BadRequest},
                                           {StationKey::errors, QVariantList()},
                                           {StationKey::groups, QVariantList()},
                                           {StationKey::volumes, QVariantList()}}));
    }
    if (!requests)
        return answer(lastPart(StationReturnCode::ForecastRefused));
    GroupSite site{{}, {}, m_paths};
    std::optional<QString> refusal;
    if (m_data.isDatabaseThere()) { // asking makes none
        Database &database = m_data.database();
        const Snapshot snapshot(database);
        const GroupStore store(database);
        site.groups = store.groups();
        site.cameras = store.cameras();
        refusal = writeRefusal(database);
    }
    EditForecast forecast(site, m_usage.places(), m_usage.currentDay());
    const bool areSeveral = data.toMap().value(StationKey::data).typeId() == QMetaType::QVariantList;
    forecast.apply(*requests, refusal, areSeveral || requests->size() > 1);
    answer(lastPart(ReturnCode::Success, forecast.map()));
}
