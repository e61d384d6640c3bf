#include "Site.h"

#include "Fleet.h"
#include "Measuring.h"
#include "OpenFiles.h"
#include "Program.h"

#include <QCoreApplication>

namespace {
constexpr std::chrono::minutes patience{3};

int checked(int stations)
{
    requireConnections(stations);
    return stations;
}
} // namespace

Site::Site(int stations, std::chrono::milliseconds interval)
    : m_stations(checked(stations))
    , m_fleet(QStringLiteral(FLEET_PROGRAM),
              {QStringLiteral("--broker"), m_broker.url(), QStringLiteral("--stations"), QString::number(stations),
               QStringLiteral("--interval"), QString::number(interval.count())})
{
    const double start = wallSeconds();
    m_fleet.hear(QStringLiteral("complete"), patience);
    m_arrival = wallSeconds() - start;
}

double Site::addClient(bool hasWindow)
{
    QStringList arguments{QStringLiteral("--client"), m_broker.url(Fleet::stationId(1)), QString::number(m_stations)};
    if (hasWindow)
        arguments.append(QStringLiteral("window"));
    m_clients.push_back(std::make_unique<Child>(QCoreApplication::applicationFilePath(), arguments));
    Child &client = *m_clients.back();
    const double start = client.hear(QStringLiteral("started")).value(QStringLiteral("at")).toDouble();
    const QJsonObject seen = client.hear(QStringLiteral("inView"), patience);
    const std::string missing = seen.value(QStringLiteral("withoutRows")).toString().toStdString();
    require(missing.empty(), "a client has no figures of " + missing);
    return seen.value(QStringLiteral("at")).toDouble() - start;
}
