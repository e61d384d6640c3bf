#include "ConfigFile.h"
#include "ConfigReload.h"
#include "CoreDumps.h"
#include "ServiceLog.h"
#include "ServiceManager.h"
#include "ServiceRun.h"
#include "StartOptions.h"
#include "StationCheck.h"
#include "files/PrivateFolder.h"
#include "service/LocalSocket.h"
#include "service/StationThread.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <cstdlib>
#include <optional>

#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr int WrongUse = 2;
constexpr int defaultLinger = 60; // seconds

int refuse(const QString &error)
{
    writeError(error);
    return WrongUse;
}

QStringList argumentList(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return arguments;
}

/// How long a station that a client started stays without clients; -1 where $RECORDING_STATION_LINGER is no number.
int lingerSeconds()
{
    if (!qEnvironmentVariableIsSet("RECORDING_STATION_LINGER"))
        return defaultLinger;
    bool isNumber = false;
    const int seconds = qEnvironmentVariable("RECORDING_STATION_LINGER").toInt(&isNumber);
    return isNumber && seconds >= 0 && seconds <= 24 * 60 * 60 ? seconds : -1;
}

int serve(int argc, char **argv, const ServiceOptions &options, const ReportStart &reportStart)
{
    const QCoreApplication application(argc, argv);
    const int exitCode = runService(options, reportStart);
    std::fflush(nullptr);
    if (StationThread::isAnythingLeftBehind())
        std::_Exit(exitCode);
    return exitCode;
}

/// Why this user may start no station for @p dataFolder; empty where it may. A station of root's in the folder of a
/// service would leave files there that the service cannot write.
QString whyNotForThisUser(const QString &dataFolder)
{
    struct stat facts = {};
    if (stat(QFile::encodeName(dataFolder).constData(), &facts) != 0 || facts.st_uid == geteuid())
        return {};
    return QStringLiteral("The data folder %1 belongs to %2, whose station does not run. Start it as %2; where it is a "
                          "service: systemctl start recording-stationd.")
        .arg(dataFolder, userName(facts.st_uid));
}

/// Its log is a file, and whoever manages the client that started it is not its manager.
int serveOnDemand(int argc, char **argv, ServiceOptions &options, const QString &dataFolder)
{
    const int linger = lingerSeconds();
    if (linger < 0)
        return refuse(QStringLiteral("RECORDING_STATION_LINGER has to be a number of seconds, at most a day"));
    options.linger = std::chrono::seconds(linger);
    if (!QFileInfo::exists(dataFolder) && !PrivateFolder::make(dataFolder)) {
        std::fprintf(stderr, "The folder %s cannot be made.\n", qUtf8Printable(dataFolder));
        return EXIT_FAILURE;
    }
    if (const QString reason = whyNotForThisUser(dataFolder); !reason.isEmpty()) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(reason));
        return EXIT_FAILURE;
    }
    ServiceManager::leave();
    return runDetached(dataFolder + QStringLiteral("/station.log"),
                       [&](const ReportStart &reportStart) { return serve(argc, argv, options, reportStart); });
}

int check(int argc, char **argv, const StartOptions &start)
{
    const QCoreApplication application(argc, argv);
    QList<CheckResult> results;
    StationConfig config;
    try {
        if (!start.configFile.isEmpty()) {
            config = readConfig(start.configFile);
            results.append({true, QStringLiteral("the configuration %1").arg(start.configFile)});
        }
    } catch (const ConfigError &error) {
        results.append({false, error.text()});
    }
    const bool isConfigSound = results.isEmpty() || results.constFirst().isSound;
    const QString folder = dataFolderOf(start.dataFolder, config.dataFolder);
    if (!isConfigSound && start.dataFolder.isEmpty())
        results.append({false,
                        QStringLiteral("without its configuration the station's data is not known; mend the file, "
                                       "or name the folder with --data")});
    else if (folder.isEmpty())
        results.append({false, QStringLiteral("there is no data folder: HOME is not set; name one with --data")});
    else
        results += checkStation(folder, config);
    return printChecks(results);
}

int run(int argc, char **argv, const StartOptions &start)
{
    StationConfig config;
    try {
        if (!start.configFile.isEmpty())
            config = readConfig(start.configFile);
    } catch (const ConfigError &error) {
        return refuse(error.text());
    }
    addChosen(config, start);
    const QString dataFolder = dataFolderOf(start.dataFolder, config.dataFolder);
    if (dataFolder.isEmpty())
        return refuse(
            QStringLiteral("there is no folder for the station's data: HOME is not set; name one with --data"));
    ConfigReload reload(start, config);
    ServiceOptions options;
    QString brokerError;
    options.broker = brokerSettings(config, &brokerError);
    if (!brokerError.isEmpty())
        return refuse(brokerError);
    options.stationSettings = [config, dataFolder] { return stationSettings(config, dataFolder); };
    options.service = serviceSettings(config);
    options.readAgain = [&reload] { return reload.readAgain(); };
    if (start.task == StartOptions::Task::ServeOnDemand)
        return serveOnDemand(argc, argv, options, dataFolder);
    return serve(argc, argv, options, [](const QString &error) {
        if (!error.isEmpty())
            writeError(error);
    });
}
} // namespace

int main(int argc, char **argv)
{
    using Task = StartOptions::Task;
    forbidCoreDumps();
    QCoreApplication::setApplicationName(QStringLiteral("recording-stationd"));
    QCoreApplication::setApplicationVersion(QStringLiteral(RECORDING_VERSION));
    const StartOptions start = readStartOptions(argumentList(argc, argv));
    startServiceLog(start.task == Task::ServeOnDemand ? LogForm::Plain : wantedLogForm());
    if (!start.error.isEmpty())
        return refuse(start.error);
    if (start.task == Task::Help) {
        const QCoreApplication application(argc, argv);
        std::fputs(qPrintable(helpText()), stdout);
        return EXIT_SUCCESS;
    }
    if (start.task == Task::Version) {
        std::printf("recording-stationd %s\n", RECORDING_VERSION);
        return EXIT_SUCCESS;
    }
    return start.task == Task::Check ? check(argc, argv, start) : run(argc, argv, start);
}
