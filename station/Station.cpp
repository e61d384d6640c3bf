#include "Station.h"

#include "MountedVolumes.h"
#include "StationProtocol.h"
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
    , m_localPaths(*m_volumes)
    , m_volumeCommands(*m_volumes)
    , m_nasAccounts(m_data, KeyFile::of(settings.keyFile, m_data.folder()))
    , m_nasWork(settings.nasTimeLimit)
    , m_hostPaths(PathKind::NetHost, m_nasAccounts, m_nasWork)
    , m_domainPaths(PathKind::NetDomain, m_nasAccounts, m_nasWork)
    , m_usage(*m_volumes, m_data, m_nasAccounts, m_nasWork, settings.usage)
    , m_groupCommands(
          m_data, PathChecks{&m_localPaths, &m_hostPaths, &m_domainPaths}, settings.relayPath,
          {[this] { m_usage.groupsChanged(); },
           [this](const QString &path, const QString &folder) { return m_usage.countedBytes(path, folder); }})
    , m_cameraCommands(m_data)
    , m_nasRegistry(m_nasAccounts, m_nasWork, settings.relayPath)
    , m_nasShares(m_nasAccounts, m_nasWork, settings.relayPath)
    , m_sampleSite(m_data, *m_volumes, [this] { m_usage.groupsChanged(); })
    , m_alarms(settings.usage.volumeInterval)
{
    m_volumeCommands.enterInto(m_commands);
    m_usage.enterInto(m_commands);
    m_groupCommands.enterInto(m_commands);
    m_cameraCommands.enterInto(m_commands);
    m_nasRegistry.enterInto(m_commands);
    m_nasShares.enterInto(m_commands);
    m_sampleSite.enterInto(m_commands);
    m_alarms.enterInto(m_commands);
    m_alarms.addSource([this] {
        m_data.look();
        return m_data.troubles();
    });
    m_alarms.addSource([this] { return m_volumes->troubles(); });
    m_alarms.addSource([this] { return m_usage.troubles(); });
    connect(&m_usage, &StorageUsage::troublesChanged, &m_alarms, &StationAlarms::update);
    connect(&m_usage, &StorageUsage::eventRaised, this, &Station::eventRaised);
    connect(&m_alarms, &StationAlarms::eventRaised, this, &Station::eventRaised);
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
        else
            carryOut(*handler, command.data, part);
    });
}

/// What a command meets troubles the station from then on, not only the one who sent it.
void Station::carryOut(const CommandHandler &handler, const QVariant &data, const Answer &part)
{
    try {
        handler(data, part);
    } catch (const DatabaseError &error) {
        m_data.note(error);
        if (error.trouble() == DatabaseTrouble::Damaged)
            m_usage.leaveDatabase(error);
        QMetaObject::invokeMethod(&m_alarms, &StationAlarms::update, Qt::QueuedConnection);
        throw;
    }
}
