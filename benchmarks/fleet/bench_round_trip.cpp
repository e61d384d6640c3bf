#include "BareClient.h"
#include "Benchmarks.h"
#include "Fleet.h"
#include "Measuring.h"
#include "Program.h"
#include "Site.h"
#include "StationVocabulary.h"
#include "link/CommandSender.h"
#include "link/MqttLink.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

namespace {
const QByteArray askTopic = "recording/1/bare/commands";
const QByteArray answerTopic = "recording/1/bare/replies";

/// Runs the event loop until @p isSo.
void waitFor(const bool &isSo, const char *what)
{
    const QDeadlineTimer deadline(std::chrono::seconds(30));
    QTimer beat; // the loop comes round although nothing else happens
    beat.start(std::chrono::seconds(1));
    while (!isSo) {
        require(!deadline.hasExpired(), what);
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

std::unique_ptr<StationLink> openLink(const QString &url)
{
    QString error;
    std::unique_ptr<StationLink> link =
        StationLink::open(url, MqttLink::kinds(), {QStringLiteral("fleet-benchmark"), QStringLiteral("1"), {}}, &error);
    require(link != nullptr, error.toStdString());
    bool isUp = false;
    QObject::connect(link.get(), &StationLink::stateChanged, link.get(),
                     [&isUp, opened = link.get()] { isUp = opened->isUp(); });
    link->start();
    waitFor(isUp, "the station cannot be reached");
    QObject::disconnect(link.get(), &StationLink::stateChanged, nullptr, nullptr);
    return link;
}

/// "ours" from this process to a station in another and back; "bare" as many bytes of body there and back over the same
/// broker, by the library alone at both ends; "codec" the two bodies made and read alone. In microseconds, the variants
/// in turn within each round.
void roundTrip(benchmark::State &state, int rounds)
{
    Site site(1);
    const std::unique_ptr<StationLink> link = openLink(site.broker().url(Fleet::stationId(1)));
    CommandSender sender(*link, CommandSender::Range::Station);
    StationCommand command{QStringLiteral("benchmark.nothing"), {}};
    const auto askStation = [&] {
        bool isAnswered = false;
        QString code;
        sender.send({}, command, [&](quint64, const StationReply &reply) {
            isAnswered = true;
            code = reply.returnCode;
        });
        waitFor(isAnswered, "a command is not answered");
        require(code == StationReturnCode::UnknownCommand, "the reply is not that of the station");
    };
    command.id = QStringLiteral("00000000-0000-4000-8000-000000000000-1"); // as long as the sender's own
    const QByteArray ask = encodeBody(commandMap(command)).bytes;
    const QByteArray reply = encodeBody(replyMap({0, {StationReturnCode::UnknownCommand, {}}})).bytes;
    command.id.clear();
    Child echo(QCoreApplication::applicationFilePath(),
               {QStringLiteral("--echo"), QString::number(site.broker().port()), QString::fromUtf8(askTopic),
                QString::fromUtf8(answerTopic), QString::number(reply.size())});
    echo.hear(QStringLiteral("listening"));
    BareClient bare(site.broker().port(), answerTopic);
    const auto askBare = [&] {
        bare.publish(askTopic, ask);
        require(bare.next().size() == reply.size(), "a bare message is not answered");
    };
    const auto encodeAndRead = [&] {
        const StationCommand read =
            commandFromMap(decodeBody(encodeBody(commandMap(command)).bytes, ContentType::Cbor));
        const ReplyPart answer{0, {StationReturnCode::UnknownCommand, {}}};
        const ReplyPart part = replyFromMap(decodeBody(encodeBody(replyMap(answer)).bytes, ContentType::Cbor));
        require(read.name == command.name && part.reply.finish, "a body is read as something else");
    };
    measure(state, {{"ours", askStation}, {"bare", askBare}, {"codec", encodeAndRead}},
            {.rounds = rounds, .cpuSeconds = wallSeconds});
    state.counters["ours/(bare+codec)"] = state.counters["ours"] / (state.counters["bare"] + state.counters["codec"]);
    bare.publish(askTopic, {}); // it ends with that
    sender.close();
}
} // namespace

void addRoundTrip(const Scale &scale)
{
    add("round trip", [scale](benchmark::State &state) { roundTrip(state, scale.isSmoke ? 20 : 4001); });
}
