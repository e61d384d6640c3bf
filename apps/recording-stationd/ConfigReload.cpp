#include "ConfigReload.h"

#include "ConfigFile.h"
#include "ServiceLog.h"

#include <utility>

ConfigReload::ConfigReload(StartOptions start, const StationConfig &config)
    : m_start(std::move(start))
    , m_started(config)
{
    addChosen(m_started, m_start);
    m_current = m_started;
}

std::optional<ServiceSettings> ConfigReload::readAgain()
{
    if (m_start.configFile.isEmpty()) {
        qCWarning(serviceLog, "SIGHUP: there is no configuration file to be read again");
        return {};
    }
    StationConfig read;
    try {
        read = readConfig(m_start.configFile);
        addChosen(read, m_start);
    } catch (const ConfigError &error) {
        qCCritical(serviceLog, "%s. The configuration stays as it is", error.what());
        return {};
    }
    for (const ConfigKey &key : configKeys()) {
        const QString value = key.text(read);
        const QString shown = value.isEmpty() ? key.defaultText : value;
        if (key.isTakenWhileRunning && value != key.text(m_current))
            qCInfo(serviceLog, "%s is %s now", qUtf8Printable(key.name), qUtf8Printable(shown));
        else if (!key.isTakenWhileRunning && value != key.text(m_started))
            qCWarning(serviceLog, "%s waits for the next start to become %s", qUtf8Printable(key.name),
                      qUtf8Printable(shown));
    }
    m_current = read;
    return serviceSettings(read);
}

ServiceSettings serviceSettings(const StationConfig &config)
{
    constexpr qsizetype megabyte = 1024 * 1024;
    ServiceSettings settings;
    settings.stationName = config.stationName;
    settings.relayPath = config.stationId;
    settings.version = QStringLiteral(RECORDING_VERSION);
    settings.messages.bytes = config.messageLimit * megabyte;
    settings.clientLimit = config.clientLimit;
    return settings;
}

void addChosen(StationConfig &config, const StartOptions &start)
{
    if (!start.dataFolder.isEmpty())
        config.dataFolder = start.dataFolder;
    if (!start.stationId.isEmpty())
        config.stationId = start.stationId;
    if (!start.broker.isEmpty())
        config.broker = start.broker;
}

std::optional<BrokerSettings> brokerSettings(const StationConfig &config, QString *error)
{
    if (config.broker.isEmpty())
        return {};
    const std::optional<MqttUrl> url = readBrokerUrl(config.broker, error);
    if (!url)
        return {};
    if (config.stationId.isEmpty()) {
        *error = QStringLiteral("a station behind a broker needs an ID: --id, or station-id of the configuration");
        return {};
    }
    const ServiceSettings service = serviceSettings(config);
    BrokerSettings settings;
    settings.mqtt = url->settings;
    const auto set = [](QString &value, const QString &configured) {
        if (!configured.isEmpty())
            value = configured;
    };
    set(settings.mqtt.user, config.brokerUser);
    set(settings.mqtt.passwordFile, config.brokerPasswordFile);
    set(settings.mqtt.caFile, config.brokerCa);
    set(settings.mqtt.certificateFile, config.brokerCertificate);
    set(settings.mqtt.keyFile, config.brokerKey);
    settings.stationId = config.stationId;
    settings.stationName = service.stationName;
    settings.version = service.version;
    settings.messages = service.messages;
    settings.heartbeat = std::chrono::seconds(config.brokerHeartbeat);
    settings.rolesFile = config.brokerRoles;
    *error = mqttSettingsError(settings.mqtt);
    return settings;
}

StationSettings stationSettings(const StationConfig &config, const QString &dataFolder)
{
    StationSettings settings;
    settings.dataFolder = dataFolder;
    settings.relayPath = config.stationId;
    settings.nasTimeLimit = config.nasTimeLimit;
    settings.usage.backupFolder = config.backupFolder;
    settings.keyFile = config.keyFile;
    return settings;
}
