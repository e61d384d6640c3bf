#include "Fleet.h"
#include "Lines.h"
#include "OpenFiles.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace {
enum ExitCode { Done = 0, Failed = 1, WrongUse = 2 };

int refuse(const QString &error)
{
    std::fprintf(stderr, "recording-fleet: %s\n", qPrintable(error));
    return WrongUse;
}

/// None, with a sentence in @p error, for a number that is missing or out of bounds.
std::optional<int> numberOf(const QCommandLineParser &parser, const QString &option, int largest, QString *error)
{
    bool isNumber = false;
    const int number = parser.value(option).toInt(&isNumber);
    if (isNumber && number >= 1 && number <= largest)
        return number;
    *error = QStringLiteral("--%1 is \"%2\", expected a number from 1 to %3.")
                 .arg(option, parser.value(option))
                 .arg(largest);
    return {};
}
} // namespace

/// Many stations in one process: see --help. Prints a line of JSON whenever all of them can be reached, or not all any
/// more; "report" on standard input is answered with what they have done; the end of standard input ends it.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("recording-fleet"));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Many stations behind a broker, in one process and each with a connection of its own: station-1, "
        "station-2 and so on. What goes over the broker is that of real stations, the figures are made "
        "up: ten recording groups on two paths each."));
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("broker"), QStringLiteral("The broker: mqtt://BROKER[:PORT] or mqtts://[USER@]BROKER[:PORT]."),
         QStringLiteral("URL")},
        {QStringLiteral("stations"), QStringLiteral("How many; 1000 unless said."), QStringLiteral("N"),
         QStringLiteral("1000")},
        {QStringLiteral("threads"), QStringLiteral("That they are spread over; 4 unless said."), QStringLiteral("N"),
         QStringLiteral("4")},
        {QStringLiteral("interval"),
         QStringLiteral("From one event of a station to its next, in milliseconds; 1000 unless said."),
         QStringLiteral("MS"), QStringLiteral("1000")},
    });
    parser.process(application);

    QString error;
    const auto stations = numberOf(parser, QStringLiteral("stations"), 100'000, &error);
    const auto threads = numberOf(parser, QStringLiteral("threads"), 64, &error);
    const auto interval = numberOf(parser, QStringLiteral("interval"), 3'600'000, &error);
    if (!stations || !threads || !interval)
        return refuse(error);
    const QString url = parser.value(QStringLiteral("broker"));
    const bool isEncrypted = url.startsWith(QStringLiteral("mqtts:"));
    if (!isEncrypted && !url.startsWith(QStringLiteral("mqtt:")))
        return refuse(
            QStringLiteral("--broker is \"%1\", expected mqtt://BROKER[:PORT] or mqtts://[USER@]BROKER[:PORT].")
                .arg(url));
    std::optional<MqttUrl> broker = readMqttUrl(url.section(u':', 1), isEncrypted, &error);
    if (!broker)
        return refuse(error);
    addMqttEnvironment(broker->settings);
    if (const QString wrong = mqttSettingsError(broker->settings); !wrong.isEmpty())
        return refuse(wrong);
    try {
        requireConnections(*stations);
    } catch (const std::runtime_error &tooMany) {
        std::fprintf(stderr, "recording-fleet: %s\n", tooMany.what());
        return Failed;
    }

    Fleet fleet({broker->settings, *stations, *threads, std::chrono::milliseconds(*interval)});
    QObject::connect(&fleet, &Fleet::completeChanged, &application, [](bool isComplete) {
        printLine({{isComplete ? "complete" : "incomplete", true}});
    });
    const InputLines input([&fleet](const QString &line) {
        if (line != QStringLiteral("report"))
            return;
        const LightStation::Counts counts = fleet.counts();
        printLine({{"report", true},
                   {"ready", fleet.ready()},
                   {"events", static_cast<qint64>(counts.events)},
                   {"commands", static_cast<qint64>(counts.commands)},
                   {"edits", static_cast<qint64>(counts.edits)},
                   {"repeated", static_cast<qint64>(counts.repeated)},
                   {"unreadable", static_cast<qint64>(counts.unreadable)}});
    });
    fleet.start();
    return QCoreApplication::exec();
}
