#include "StartOptions.h"

#include "LocalEndpoint.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFile>

namespace {
struct Parser
{
    QCommandLineOption help{{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help.")};
    QCommandLineOption version{{QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Show the version.")};
    QCommandLineOption data{
        QStringLiteral("data"),
        QStringLiteral("Folder that the station keeps its data in, whatever the configuration says."),
        QStringLiteral("DIR")};
    QCommandLineOption config{QStringLiteral("config"),
                              QStringLiteral("Configuration, lines \"key = value\"; SIGHUP has it read again."),
                              QStringLiteral("FILE")};
    QCommandLineOption id{QStringLiteral("id"),
                          QStringLiteral("ID that the station is reached under, whatever the configuration says."),
                          QStringLiteral("ID")};
    QCommandLineOption broker{
        QStringLiteral("broker"),
        QStringLiteral("Broker that the station connects out to, mqtts://[USER@]BROKER[:PORT], whatever the "
                       "configuration says; it needs an ID then."),
        QStringLiteral("URL")};
    QCommandLineOption check{
        QStringLiteral("check"),
        QStringLiteral("Tell whether configuration, data folder, database and key are sound, change "
                       "nothing, and end with 0 if all are.")};
    QCommandLineOption onDemand{
        QStringLiteral("on-demand"),
        QStringLiteral(
            "Return when a station serves the folder, started by this where none runs, and let it end a minute "
            "after its last client left ($RECORDING_STATION_LINGER: another number of seconds).")};
    QCommandLineParser parser;

    Parser()
    {
        parser.setApplicationDescription(QStringLiteral("A recording server that clients on this machine join."));
        parser.addOptions({data, config, id, broker, check, onDemand, help, version});
    }
};

/// Named twice, only one could hold.
QString refusalOfRepeated(const Parser &options)
{
    for (const QCommandLineOption &option : {options.data, options.config, options.id, options.broker}) {
        if (options.parser.values(option).size() > 1)
            return QStringLiteral("--%1 is given twice").arg(option.names().constFirst());
        if (options.parser.isSet(option) && options.parser.value(option).isEmpty())
            return QStringLiteral("--%1 is empty").arg(option.names().constFirst());
    }
    return {};
}
} // namespace

StartOptions readStartOptions(const QStringList &arguments)
{
    using Task = StartOptions::Task;
    Parser options;
    StartOptions found;
    if (!options.parser.parse(arguments)) {
        found.error = options.parser.errorText();
        return found;
    }
    if (options.parser.isSet(options.help))
        found.task = Task::Help;
    else if (options.parser.isSet(options.version))
        found.task = Task::Version;
    else if (options.parser.isSet(options.check))
        found.task = Task::Check;
    else if (options.parser.isSet(options.onDemand))
        found.task = Task::ServeOnDemand;
    if (found.task == Task::Help || found.task == Task::Version)
        return found;
    if (!options.parser.positionalArguments().isEmpty())
        found.error = QStringLiteral("unexpected argument \"%1\"; see --help")
                          .arg(options.parser.positionalArguments().constFirst());
    else if (options.parser.isSet(options.check) && options.parser.isSet(options.onDemand))
        found.error = QStringLiteral("--check and --on-demand do not go together");
    else if (options.parser.isSet(options.broker) && options.parser.isSet(options.onDemand))
        found.error = QStringLiteral("--broker and --on-demand do not go together");
    else
        found.error = refusalOfRepeated(options);
    found.stationId = options.parser.value(options.id);
    found.broker = options.parser.value(options.broker);
    found.dataFolder = options.parser.value(options.data);
    if (options.parser.isSet(options.config))
        found.configFile = QDir::current().absoluteFilePath(options.parser.value(options.config));
    return found;
}

QString helpText()
{
    return Parser().parser.helpText();
}

QString dataFolderOf(const QString &chosen, const QString &configured)
{
    QString folder = chosen.isEmpty() ? configured : chosen;
    const QString state = QFile::decodeName(qgetenv("STATE_DIRECTORY")).section(u':', 0, 0);
    if (folder.isEmpty() && state.startsWith(u'/'))
        folder = state;
    if (folder.isEmpty())
        folder = defaultStationFolder();
    return folder.isEmpty() ? QString() : normalizedFolder(folder);
}
