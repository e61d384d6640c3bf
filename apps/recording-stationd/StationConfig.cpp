#include "StationConfig.h"

#include "mqtt/MqttSettings.h"
#include "mqtt/MqttTopics.h"

#include <algorithm>
#include <array>

namespace {
constexpr int longestNasTime = 20; // seconds: well within the pause that a service manager's watchdog allows
constexpr int largestMessage = 64; // megabytes: clients take no more
constexpr int mostClients = 10'000;
constexpr int longestHeartbeat = 3600; // seconds
constexpr qsizetype longestName = 200;

template<QString StationConfig::*member>
bool takeFolder(StationConfig &config, const QString &value)
{
    if (!value.startsWith(u'/'))
        return false;
    config.*member = value;
    return true;
}

template<QString StationConfig::*member>
bool takeName(StationConfig &config, const QString &value)
{
    if (value.size() > longestName)
        return false;
    config.*member = value;
    return true;
}

bool takeBroker(StationConfig &config, const QString &value)
{
    QString error;
    const std::optional<MqttUrl> url = readBrokerUrl(value, &error);
    if (!url)
        return false;
    config.broker = value;
    return true;
}

bool takeBrokerUser(StationConfig &config, const QString &value)
{
    if (!MqttTopics::canBeUser(value))
        return false;
    config.brokerUser = value;
    return true;
}

template<QString StationConfig::*member>
QString text(const StationConfig &config)
{
    return config.*member;
}

/// Digits alone: toInt() takes signs and spaces too.
bool readNumber(const QString &value, int least, int most, int &number)
{
    const bool areDigits =
        std::all_of(value.begin(), value.end(), [](QChar digit) { return digit >= u'0' && digit <= u'9'; });
    bool isNumber = false;
    const int found = value.toInt(&isNumber);
    if (!areDigits || !isNumber || found < least || found > most)
        return false;
    number = found;
    return true;
}

bool takeNasTimeLimit(StationConfig &config, const QString &value)
{
    int seconds = 0;
    if (!readNumber(value, 1, longestNasTime, seconds))
        return false;
    config.nasTimeLimit = std::chrono::seconds(seconds);
    return true;
}

template<int StationConfig::*member, int most>
bool takeNumber(StationConfig &config, const QString &value)
{
    return readNumber(value, 1, most, config.*member);
}

template<int StationConfig::*member>
QString number(const StationConfig &config)
{
    return QString::number(config.*member);
}

const QString path = QStringLiteral("an absolute path");
const QString name = QStringLiteral("a text of at most %1 characters").arg(longestName);

QString numberUpTo(int most, const QString &unit)
{
    return QStringLiteral("a whole number of %1 from 1 to %2").arg(unit).arg(most);
}
} // namespace

std::span<const ConfigKey> configKeys()
{
    using Config = StationConfig;
    static const std::array keys{
        ConfigKey{QStringLiteral("data-folder"), QStringLiteral("the folder that the station keeps its data in"), path,
                  QStringLiteral("the service's state folder, else the user's own"), false,
                  takeFolder<&Config::dataFolder>, text<&Config::dataFolder>},
        ConfigKey{QStringLiteral("station-name"), QStringLiteral("the name that clients show"), name,
                  QStringLiteral("the machine's name"), true, takeName<&Config::stationName>,
                  text<&Config::stationName>},
        ConfigKey{QStringLiteral("station-id"), QStringLiteral("the relay path that the station also answers under"),
                  name, QStringLiteral("none"), false, takeName<&Config::stationId>, text<&Config::stationId>},
        ConfigKey{QStringLiteral("backup-folder"), QStringLiteral("the folder of the backup area"), path,
                  QStringLiteral("none"), false, takeFolder<&Config::backupFolder>, text<&Config::backupFolder>},
        ConfigKey{QStringLiteral("key-file"), QStringLiteral("the file with the key of the stored passwords"), path,
                  QStringLiteral("the service manager's credential, else nas.key in the data folder"), false,
                  takeFolder<&Config::keyFile>, text<&Config::keyFile>},
        ConfigKey{QStringLiteral("nas-time-limit"),
                  QStringLiteral("how long a NAS server may take for one command, in seconds"),
                  numberUpTo(longestNasTime, QStringLiteral("seconds")), QStringLiteral("10"), false, takeNasTimeLimit,
                  [](const Config &config) { return QString::number(config.nasTimeLimit.count()); }},
        ConfigKey{QStringLiteral("message-limit"), QStringLiteral("the largest message, in MB of 1024 * 1024 bytes"),
                  numberUpTo(largestMessage, QStringLiteral("MB")), QStringLiteral("64"), true,
                  takeNumber<&Config::messageLimit, largestMessage>, number<&Config::messageLimit>},
        ConfigKey{QStringLiteral("client-limit"), QStringLiteral("how many clients are taken at a time"),
                  numberUpTo(mostClients, QStringLiteral("clients")), QStringLiteral("100"), true,
                  takeNumber<&Config::clientLimit, mostClients>, number<&Config::clientLimit>},
        ConfigKey{QStringLiteral("broker"), QStringLiteral("the broker that the station connects out to"),
                  QStringLiteral("mqtts://BROKER[:PORT], or mqtt:// on this machine"), QStringLiteral("none"), false,
                  takeBroker, text<&Config::broker>},
        ConfigKey{QStringLiteral("broker-user"), QStringLiteral("the user that it logs on to the broker as"),
                  QStringLiteral("a text without + # /"), QStringLiteral("that of the URL, else none"), false,
                  takeBrokerUser, text<&Config::brokerUser>},
        ConfigKey{QStringLiteral("broker-password-file"),
                  QStringLiteral("the file with that user's password in its first line"), path, QStringLiteral("none"),
                  false, takeFolder<&Config::brokerPasswordFile>, text<&Config::brokerPasswordFile>},
        ConfigKey{QStringLiteral("broker-ca"),
                  QStringLiteral("the file with the certificates that the broker's has to be signed by"), path,
                  QStringLiteral("those of the system"), false, takeFolder<&Config::brokerCa>, text<&Config::brokerCa>},
        ConfigKey{QStringLiteral("broker-certificate"), QStringLiteral("the file with the station's own certificate"),
                  path, QStringLiteral("none"), false, takeFolder<&Config::brokerCertificate>,
                  text<&Config::brokerCertificate>},
        ConfigKey{QStringLiteral("broker-key"), QStringLiteral("the file with the key of that certificate"), path,
                  QStringLiteral("none"), false, takeFolder<&Config::brokerKey>, text<&Config::brokerKey>},
        ConfigKey{
            QStringLiteral("broker-heartbeat"),
            QStringLiteral("after how long without a word it tells the broker's clients that it lives, in seconds"),
            numberUpTo(longestHeartbeat, QStringLiteral("seconds")), QStringLiteral("3"), false,
            takeNumber<&Config::brokerHeartbeat, longestHeartbeat>, number<&Config::brokerHeartbeat>},
        ConfigKey{QStringLiteral("broker-roles"),
                  QStringLiteral("the file that says who of the broker's users may look, and who may edit"), path,
                  QStringLiteral("everybody whom the broker lets in may edit"), false, takeFolder<&Config::brokerRoles>,
                  text<&Config::brokerRoles>},
    };
    return keys;
}
