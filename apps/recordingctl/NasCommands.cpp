#include "NasCommands.h"

#include "CommandRun.h"
#include "JsonFields.h"
#include "ModelPrinter.h"
#include "Output.h"
#include "PasswordArgument.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "Units.h"
#include "VolumeTable.h"

#include <QAbstractItemModel>
#include <QJsonArray>
#include <QJsonObject>

#include <functional>
#include <optional>

namespace {

const QString list = QStringLiteral("getNASServers");

/// How to log on to a server. The password may be the station's token for one that it knows.
struct LogOn
{
    QString id;
    QString host;
    QString domain = QStringLiteral("Host");
    QString user = QStringLiteral("Guest");
    QString password;
};

/// Capitals and the usual port aside, as the station compares them.
bool isSameHost(const QString &one, const QString &other)
{
    const auto key = [](const QString &host) {
        const QString usualPort = QStringLiteral(":445");
        return (host.endsWith(usualPort) ? host.chopped(usualPort.size()) : host).toLower();
    };
    return key(one) == key(other);
}

QList<LogOn> serversIn(const QAbstractItemModel &model)
{
    const QHash<int, QByteArray> roles = model.roleNames();
    QList<LogOn> servers;
    for (int row = 0; row < model.rowCount(); ++row) {
        const auto value = [&](const char *role) { return model.index(row, 0).data(roles.key(role)).toString(); };
        servers.append({value("idRole"), value("nameRole"), value("logonDomainRole"), value("userNameRole"),
                        value("passwordRole")});
    }
    return servers;
}

/// @p known with what --user, --domain and --password say in its place; none when the password could not be read, and
/// then @p error says why.
std::optional<LogOn> withOptions(const CommandLine &line, const LogOn &known, QString *error)
{
    LogOn logOn = known;
    logOn.host = line.value(QStringLiteral("host"), known.host);
    logOn.user = line.value(QStringLiteral("user"), known.user);
    logOn.domain = line.value(QStringLiteral("domain"), known.domain);
    if (line.has(QStringLiteral("password"))) {
        const ConvertedArgument password =
            passwordArgument(line.value(QStringLiteral("password")), QStringLiteral("--password"));
        *error = password.error;
        if (!error->isEmpty())
            return {};
        logOn.password = password.value.toString();
    }
    return logOn;
}

/// Fetches the servers and gives @p use the one that the first argument names, by its id or host.
ExitCode withServer(CommandRun &run, const std::function<ExitCode(const LogOn &server)> &use)
{
    const CallOutcome outcome = run.call(list);
    if (!outcome.model)
        return run.end(outcome);
    const QString text = run.line().arguments.first();
    QList<LogOn> found;
    const QList<LogOn> servers = serversIn(*outcome.model);
    for (const LogOn &server : servers) {
        if (server.id == text)
            return use(server);
        if (server.host == text)
            found.append(server);
    }
    if (found.size() == 1)
        return use(found.first());
    const QString problem = found.isEmpty() ? QStringLiteral("%1: there is no NAS server \"%2\"; \"nas\" lists them")
                                            : QStringLiteral("%1: several NAS servers are on \"%2\"; give the id");
    return run.refused(ToolErrorCode::NotFound, problem.arg(run.line().command, text));
}

/// Calls @p name with the path that the first argument names and a log-on: that of the options, else that of the server
/// on the path's host, else a guest's.
ExitCode withPath(CommandRun &run, const QString &name,
                  const std::function<ResultView(const CallOutcome &outcome)> &view)
{
    const CommandLine &line = run.line();
    const QString path = line.arguments.first();
    LogOn known;
    if (!line.has(QStringLiteral("user")) && !line.has(QStringLiteral("password"))) {
        const CallOutcome outcome = run.call(list);
        const QList<LogOn> servers = outcome.model ? serversIn(*outcome.model) : QList<LogOn>();
        for (const LogOn &server : servers) {
            if (server.host.compare(hostOfNasPath(path), Qt::CaseInsensitive) == 0) {
                known = server;
                break;
            }
        }
    }
    QString error;
    const std::optional<LogOn> logOn = withOptions(line, known, &error);
    if (!logOn)
        return run.wrongUse(error);
    const CallOutcome outcome = run.call(name, {path, logOn->domain, logOn->user, logOn->password});
    return run.end(outcome, view(outcome));
}

QJsonObject idJson(const QString &id)
{
    return {{QStringLiteral("id"), id}};
}

QJsonArray serversJson(const QList<LogOn> &servers)
{
    QJsonArray array;
    for (const LogOn &server : servers)
        array.append(QJsonObject{{QStringLiteral("id"), server.id},
                                 {QStringLiteral("host"), server.host},
                                 {QStringLiteral("domain"), textJson(server.domain)},
                                 {QStringLiteral("user"), textJson(server.user)}});
    return array;
}

} // namespace

TextTable nasServerTable(const QAbstractItemModel &servers)
{
    TextTable table({QStringLiteral("Host"), QStringLiteral("User"), QStringLiteral("Domain"), QStringLiteral("Id")});
    const QList<LogOn> rows = serversIn(servers);
    for (const LogOn &server : rows)
        table.addRow({server.host, server.user, server.domain, server.id});
    return table;
}

QString hostOfNasPath(const QString &path)
{
    QString plain = QString(path).replace(u'\\', u'/');
    if (plain.startsWith(QStringLiteral("smb:"), Qt::CaseInsensitive))
        plain.remove(0, 4);
    return plain.startsWith(QStringLiteral("//")) ? plain.section(u'/', 2, 2) : QString();
}

ExitCode showNasServers(CommandRun &run)
{
    const CallOutcome outcome = run.call(list);
    return run.end(outcome,
                   {[&outcome] { return serversJson(serversIn(*outcome.model)); },
                    [&outcome] { printText(nasServerTable(*outcome.model).toString()); }});
}

ExitCode addNasServer(CommandRun &run)
{
    const QString name = QStringLiteral("addNASServer");
    LogOn added;
    added.host = run.line().arguments.first();
    QString error;
    const std::optional<LogOn> logOn = withOptions(run.line(), added, &error);
    if (!logOn)
        return run.wrongUse(error);
    const CallOutcome outcome = run.call(name, {logOn->host, logOn->domain, logOn->user, logOn->password});
    const QString id = outcome.answered("srvId").toString();
    return run.end(outcome, {[&id] { return idJson(id); }, [&id] { printLine(id); }});
}

ExitCode updateNasServer(CommandRun &run)
{
    const CommandLine &line = run.line();
    bool changes = false;
    for (const char *option : {"host", "user", "domain", "password"})
        changes = changes || line.has(QLatin1String(option));
    if (!changes)
        return run.wrongUse(QStringLiteral("nas-update: one of --host, --user, --domain and --password was expected"));
    return withServer(run, [&run, &line](const LogOn &server) {
        QString error;
        std::optional<LogOn> logOn = withOptions(line, server, &error);
        if (!logOn)
            return run.wrongUse(error);
        if (!isSameHost(server.host, logOn->host) && !line.has(QStringLiteral("password"))) {
            if (logOn->user.compare(LogOn().user, Qt::CaseInsensitive) != 0) {
                return run.wrongUse(QStringLiteral("nas-update: another --host needs --password, too: the station sends"
                                                   " the password that it keeps to no other host"));
            }
            logOn->password.clear();
        }
        const QString name = QStringLiteral("updateNASServer");
        return run.end(run.call(name, {server.id, logOn->host, logOn->domain, logOn->user, logOn->password}),
                       {[&server] { return idJson(server.id); }, {}});
    });
}

ExitCode removeNasServer(CommandRun &run)
{
    return withServer(run, [&run](const LogOn &server) {
        const QString name = QStringLiteral("removeNASServer");
        return run.end(run.call(name, {server.id}), {[&server] { return idJson(server.id); }, {}});
    });
}

ExitCode showNasFolders(CommandRun &run)
{
    return withPath(run, QStringLiteral("getNASServerDir"), [](const CallOutcome &outcome) {
        return ResultView{[&outcome] { return namesJson(*outcome.model); },
                          [&outcome] { printText(nameLines(*outcome.model)); }};
    });
}

ExitCode showNasCapacity(CommandRun &run)
{
    return withPath(run, QStringLiteral("getNASServerCapacity"), [&run](const CallOutcome &outcome) {
        const qlonglong total = outcome.answered("total").toLongLong(); // KB
        const qlonglong used = outcome.answered("used").toLongLong();
        const auto print = [=] {
            TextTable table({QStringLiteral("Size"), QStringLiteral("Free"), QStringLiteral("Used")});
            for (const int column : {0, 1, 2})
                table.setRightAligned(column);
            table.addRow({sizeText(total), sizeText(total - used), usedText(total, total - used)});
            printText(table.toString());
        };
        const auto json = [=, path = run.line().arguments.first()] {
            constexpr qlonglong kilobyte = 1024;
            return fieldsJson({{QStringLiteral("path"), path},
                               {QStringLiteral("sizeBytes"), total * kilobyte},
                               {QStringLiteral("usedBytes"), used * kilobyte},
                               {QStringLiteral("availableBytes"), (total - used) * kilobyte}});
        };
        return ResultView{json, print};
    });
}

ExitCode addNasVolumes(CommandRun &run)
{
    const CallOutcome outcome = run.call(QStringLiteral("addNASPathsToVolume"), {QVariant(run.line().arguments)});
    const ExitCode exitCode = run.end(outcome,
                                      {[&outcome] { return modelJson(*outcome.model, outcome.modelGetter); },
                                       [&outcome] { printText(volumeTable(*outcome.model).toString()); }});
    if (exitCode != ExitCode::Done)
        return exitCode;
    QStringList left = run.line().arguments;
    for (const StationReply &part : outcome.parts) {
        const QVariantList disks = part.data.toList();
        for (const QVariant &disk : disks)
            left.removeAll(disk.toMap().value(FieldKey::diskName).toString());
    }
    for (const QString &path : std::as_const(left)) {
        run.refused(ToolErrorCode::NotAVolume,
                    QStringLiteral("%1 is no volume: the station could not ask for its capacity").arg(path));
        run.addRefusedElement({{StationKey::element, FieldKey::path},
                               {StationKey::index, run.line().arguments.indexOf(path)},
                               {StationKey::value, path},
                               {QStringLiteral("code"), ToolErrorCode::NotAVolume},
                               {StationKey::reason, QJsonValue()}});
    }
    return left.isEmpty() ? ExitCode::Done : ExitCode::Refused;
}
