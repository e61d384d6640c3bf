#pragma once

#include <QString>

#include <chrono>
#include <span>

/// What an administrator may set of a station that runs as a service.
struct StationConfig
{
    QString dataFolder; ///< an absolute path; empty: not set
    QString stationName; ///< empty: the name of the machine
    QString stationId; ///< the relay path that the station also answers under; empty: none
    QString backupFolder; ///< an absolute path; empty: no backup area
    QString keyFile; ///< an absolute path; empty: see KeyFile
    std::chrono::seconds nasTimeLimit{10};
    int messageLimit = 64; ///< megabytes of 1024 * 1024 bytes
    int clientLimit = 100;
    QString broker; ///< its URL, without a station; empty: none
    QString brokerUser; ///< empty: the one of the URL, or none
    QString brokerPasswordFile; ///< this and the following are absolute paths; empty: none
    QString brokerCa; ///< empty: the system's
    QString brokerCertificate;
    QString brokerKey;
    int brokerHeartbeat = 3; ///< seconds
    QString brokerRoles; ///< empty: whomever the broker lets in is an operator
};

/// A key of the configuration file. The table of configKeys() is all that is known of it, and what docs/service.md
/// shows.
struct ConfigKey
{
    QString name;
    QString meaning; ///< what it sets
    QString expected; ///< what a value has to be
    QString defaultText; ///< what holds where the key is not set
    bool isTakenWhileRunning; ///< whether SIGHUP is enough; otherwise it waits for the next start
    bool (*take)(StationConfig &config, const QString &value); ///< false, and nothing changed, for a bad value
    QString (*text)(const StationConfig &config); ///< the value as it stands in a file; empty where it is not set
};

/// Every key, in the order in which they are documented.
std::span<const ConfigKey> configKeys();
