#include "ServiceRun.h"

#include "ServiceLog.h"
#include "ServiceManager.h"
#include "Station.h"
#include "UnixSignals.h"
#include "broker/BrokerService.h"
#include "files/PrivateFolder.h"
#include "service/FolderLock.h"
#include "service/LocalSocket.h"
#include "service/StationServer.h"
#include "service/StationThread.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QThread>

#include <algorithm>
#include <cstdlib>

using namespace std::chrono_literals;

namespace {
/// Another station may be about to end, or about to start: then it serves the clients.
enum class Turn { Ours, Others, Refused };

Turn takeTurn(const QString &folder, std::optional<FolderLock> &lock)
{
    constexpr auto patience = 6s; // longer than a station takes to end
    const QDeadlineTimer deadline(patience);
    while (true) {
        lock.emplace(folder);
        if (lock->isHeld())
            return Turn::Ours;
        if (!lock->isTaken() || deadline.hasExpired())
            return Turn::Refused;
        if (isListening(folder))
            return Turn::Others;
        QThread::msleep(20);
    }
}
BrokerRoles readRoles(const ServiceOptions &options)
{
    const bool hasTable = options.broker && !options.broker->rolesFile.isEmpty();
    return hasTable ? BrokerRoles::read(options.broker->rolesFile) : BrokerRoles();
}

void applySettings(const ServiceSettings &settings, StationServer &server, BrokerService *broker)
{
    server.setSettings(settings);
    if (!broker)
        return;
    broker->setName(settings.stationName);
    broker->setLimits(settings.messages);
}

/// A table with an error changes nothing.
void readRolesAgain(const ServiceOptions &options, BrokerService &broker)
{
    try {
        broker.setRoles(readRoles(options));
    } catch (const RolesError &error) {
        qCCritical(serviceLog, "%s. The roles stay as they are", error.what());
    }
}
} // namespace

int runService(const ServiceOptions &options, const ReportStart &reportStart)
{
    const QString folder = options.stationSettings().dataFolder;
    const auto refuse = [&reportStart](const QString &error) {
        reportStart(error);
        return EXIT_FAILURE;
    };
    BrokerRoles roles;
    try {
        roles = readRoles(options);
    } catch (const RolesError &error) {
        return refuse(error.text());
    }
    if (!QFileInfo::exists(folder) && !PrivateFolder::make(folder))
        return refuse(QStringLiteral("The folder %1 cannot be made.").arg(folder));
    std::optional<FolderLock> lock;
    switch (takeTurn(folder, lock)) {
    case Turn::Ours:
        break;
    case Turn::Others:
        if (!options.linger)
            return refuse(lock->reason());
        reportStart({});
        return EXIT_SUCCESS;
    case Turn::Refused:
        return refuse(lock->reason());
    }

    UnixSignals unixSignals;
    StationThread station([&options] { return std::make_unique<Station>(options.stationSettings()); });
    StationServer server(station, options.service);
    std::unique_ptr<BrokerService> broker;
    if (options.broker) {
        broker = std::make_unique<BrokerService>(station, *options.broker);
        broker->setRoles(roles);
    }
    ServiceManager manager(station);
    QTimer lingering;
    lingering.setSingleShot(true);
    lingering.callOnTimeout(&server, &StationServer::stop);
    const auto linger = [&options, &lingering](int clients) {
        if (clients > 0)
            lingering.stop();
        else if (options.linger)
            lingering.start(*options.linger);
    };
    int exitCode = EXIT_SUCCESS;
    bool isServing = false;
    int left = broker ? 2 : 1; // that have to stop
    const auto stop = [&] {
        isServing = false;
        manager.tellStopping();
        server.stop();
        if (broker)
            broker->stop();
    };
    const auto noteStop = [&left] {
        if (--left == 0)
            QCoreApplication::quit();
    };
    QObject::connect(&server, &StationServer::clientsChanged, &lingering, linger);
    QObject::connect(&server, &StationServer::clientsChanged, &manager, &ServiceManager::tellClients);
    QObject::connect(&unixSignals, &UnixSignals::endWanted, &server, stop);
    QObject::connect(&unixSignals, &UnixSignals::settingsWanted, &server, [&] {
        if (isServing)
            manager.tellReloading();
        if (const auto settings = options.readAgain ? options.readAgain() : std::nullopt)
            applySettings(*settings, server, broker.get());
        if (broker)
            readRolesAgain(options, *broker);
        if (isServing)
            manager.tellReady();
    });
    QObject::connect(&server, &StationServer::stopped, &server, noteStop);
    if (broker) {
        QObject::connect(broker.get(), &BrokerService::stopped, &server, noteStop);
        QObject::connect(broker.get(), &BrokerService::servingChanged, &server, [&options](bool serving) {
            if (serving)
                qCInfo(serviceLog, "Clients are served over the broker %s under the ID %s",
                       qUtf8Printable(options.broker->mqtt.host), qUtf8Printable(options.broker->stationId));
        });
        QObject::connect(broker.get(), &BrokerService::idTaken, &server, [&] {
            exitCode = EXIT_FAILURE;
            stop();
        });
    }
    QObject::connect(&station, &StationThread::started, &server, [&] {
        if (server.listen(folder)) {
            reportStart({});
            isServing = true;
            if (broker)
                broker->start();
            manager.tellReady();
            manager.tellClients(server.clients());
            if (options.linger) // the first client is on its way
                lingering.start(std::max<std::chrono::milliseconds>(*options.linger, 10s));
            return;
        }
        reportStart(server.error());
        exitCode = EXIT_FAILURE;
        QCoreApplication::exit(exitCode);
    });
    station.start();
    QCoreApplication::exec();
    return exitCode;
}
