#include "Station.h"

#include "MountedVolumes.h"
#include "StationVocabulary.h"
#include "history/UsageSamples.h"
#include "store/Database.h"

#include <utility>

namespace {
/// @p answer, deaf after the last part; may be none.
Answer untilFinished(const Answer &answer)
{
    return [answer, isFinished = std::make_shared<bool>(false)](const StationReply &part) {
        if (std::exchange(*isFinished, *isFinished || part.finish))
            return;
        if (answer)
            answer(part);
    };
}
} // namespace

Station::Station(StationSettings settings, QObject *parent)
    : QObject(parent)
    , m_volumes(settings.volumes ? std::move(settings.volumes) : std::make_unique<MountedVolumes>())
    , m_data(settings.dataFolder)
    , m_activity(m_data)
    , m_edits({m_data, settings.records, [this](const Activity &activity) { takeActivity(activity); },
               [this](const DatabaseError &error) { takeFailure(error); }})
    , m_pruning(m_data, settings.records)
    , m_localPaths(*m_volumes)
    , m_volumeCommands(*m_volumes)
    , m_nasAccounts(m_data, KeyFile::of(settings.keyFile, m_data.folder()))
    , m_nasWork(settings.nasTimeLimit)
    , m_hostPaths(PathKind::NetHost, m_nasAccounts, m_nasWork)
    , m_domainPaths(PathKind::NetDomain, m_nasAccounts, m_nasWork)
    , m_usage(*m_volumes, m_data, m_nasAccounts, m_nasWork, settings.usage)
    , m_history(m_data, settings.usage,
                [this]() -> std::optional<QList<UsageSample>> {
                    if (!m_usage.isClockTrusted())
                        return {};
                    const QList<UsagePlace> places = m_usage.places();
                    return samplesOf(places, usageEntries(places, m_usage.currentDay()), m_volumes->volumes());
                })
    , m_groupCommands(
          m_data, PathChecks{&m_localPaths, &m_hostPaths, &m_domainPaths}, settings.relayPath,
          {[this] { m_usage.groupsChanged(); },
           [this](const QString &path, const QString &folder) { return m_usage.countedBytes(path, folder); }})
    , m_cameraCommands(m_data)
    , m_nasRegistry(m_nasAccounts, m_nasWork, settings.relayPath)
    , m_nasShares(m_nasAccounts, m_nasWork, settings.relayPath)
    , m_sampleSite(m_data, *m_volumes, [this] { m_usage.groupsChanged(); })
    , m_alarms(m_data, settings.records, settings.usage.volumeInterval, [this] { return m_usage.isSettled(); })
    , m_storageCommands(*m_volumes, m_data, m_usage, PathChecks{&m_localPaths, &m_hostPaths, &m_domainPaths},
                        [this] {
                            m_alarms.update();
                            return m_alarms.troubles();
                        })
    , m_recordingCommands(m_data, m_usage, settings.usage, settings.records)
{
    m_volumeCommands.enterInto(m_commands);
    m_usage.enterInto(m_commands);
    m_history.enterInto(m_commands);
    m_groupCommands.enterInto(m_commands);
    m_cameraCommands.enterInto(m_commands);
    m_nasRegistry.enterInto(m_commands);
    m_nasShares.enterInto(m_commands);
    m_sampleSite.enterInto(m_commands);
    m_alarms.enterInto(m_commands);
    m_storageCommands.enterInto(m_commands);
    m_recordingCommands.enterInto(m_commands);
    m_activity.enterInto(m_commands);
    m_alarms.addSource([this] {
        m_data.look();
        return m_data.troubles();
    });
    m_alarms.addSource([this] { return m_volumes->troubles(); });
    m_alarms.addSource([this] { return m_usage.troubles(); });
    connect(&m_usage, &StorageUsage::troublesChanged, &m_alarms, &StationAlarms::update);
    connect(&m_usage, &StorageUsage::eventRaised, this, &Station::eventRaised);
    connect(&m_recordingCommands, &RecordingCommands::eventRaised, this, &Station::eventRaised);
    connect(&m_alarms, &StationAlarms::eventRaised, this, &Station::eventRaised);
    connect(&m_activity, &ActivityLog::eventRaised, this, &Station::eventRaised);
}

Station::~Station() = default;

void Station::recordingGroupsChanged()
{
    m_usage.groupsChanged();
}

void Station::handle(const StationCommand &command, const Answer &answer)
{
    const Answer part = untilFinished(answer);
    answerFailures(command.name, part, [&] {
        const auto handler = m_commands.constFind(command.name);
        if (handler == m_commands.constEnd())
            part(lastPart(StationReturnCode::UnknownCommand));
        else if (const auto *edit = std::get_if<EditHandler>(&*handler))
            m_edits.carryOut(command, *edit, part);
        else
            carryOut(std::get<CommandHandler>(*handler), command.data, part);
    });
}

QSet<QString> Station::editCommands() const
{
    QSet<QString> edits;
    for (auto command = m_commands.cbegin(); command != m_commands.cend(); ++command) {
        if (std::holds_alternative<EditHandler>(*command))
            edits.insert(command.key());
    }
    return edits;
}

void Station::carryOut(const CommandHandler &handler, const QVariant &data, const Answer &part)
{
    try {
        handler(data, part);
    } catch (const DatabaseError &error) {
        takeFailure(error);
        throw;
    }
}

/// What a command meets troubles the station from then on, not only the one who sent it.
void Station::takeFailure(const DatabaseError &error)
{
    m_data.note(error);
    if (error.trouble() == DatabaseTrouble::Damaged)
        m_usage.leaveDatabase(error);
    QMetaObject::invokeMethod(&m_alarms, &StationAlarms::update, Qt::QueuedConnection);
}

void Station::takeActivity(const Activity &activity)
{
    constexpr qint64 entriesBetween = 1000; // so that many edits in one day do not fill the disk
    m_activity.add(activity);
    if (activity.number > 0 && activity.number % entriesBetween == 0)
        m_pruning.prune();
}
