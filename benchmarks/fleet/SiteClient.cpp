#include "SiteClient.h"

#include "ConsolePages.h"
#include "ConsoleTypes.h"
#include "Figures.h"
#include "Fleet.h"
#include "FollowClient.h"
#include "Lines.h"
#include "Measuring.h"
#include "Program.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "link/MqttLink.h"
#include "link/StationCalls.h"

#include <QAbstractItemModel>
#include <QCoreApplication>
#include <QQuickWindow>
#include <QRandomGenerator>

#include <algorithm>

using namespace std::chrono_literals;

namespace {
constexpr auto pulse = 5ms;
constexpr auto editInterval = 100ms;
const QString directStation = Fleet::stationId(1); // which the URL names
} // namespace

SiteClient::SiteClient(const Options &options)
    : m_options(options)
{
    m_pulse.setTimerType(Qt::PreciseTimer);
    m_pulse.setInterval(pulse);
    m_pulse.callOnTimeout(this, &SiteClient::tick);
    m_editTimer.setInterval(editInterval);
    m_editTimer.callOnTimeout(this, &SiteClient::sendEdit);
}

SiteClient::~SiteClient()
{
    m_engine.reset(); // before the models that it shows
}

void SiteClient::start()
{
    m_session = std::make_unique<ClientSession>();
    ClientSession::Options options;
    options.pluginFolders = QStringList{QStringLiteral(PLUGIN_FOLDER)};
    options.url = m_options.url;
    options.linkKinds = MqttLink::kinds();
    options.figuresPause = ClientSession::figuresPauseOfWindows;
    printLine({{"started", true}});
    require(m_session->start(options), m_session->error().toStdString());
    connect(m_session.get(), &ClientSession::connectedChanged, this, [this](bool isConnected) {
        if (!isConnected)
            m_heard.clear();
    });
    connect(m_session->framework(), &HostFramework::eventDelivered, this,
            [this](const QString &event, const QVariant &, const QString &source) { takeEvent(event, source); });
    if (m_options.hasWindow)
        openWindow();
    m_lastTick = wallSeconds();
    m_lastTickCpu = threadSeconds();
    m_pulse.start();
}

void SiteClient::openWindow()
{
    m_console = std::make_unique<ConsoleSession>();
    followClient(*m_session, *m_console);
    m_engine = std::make_unique<QQmlApplicationEngine>();
    prepareConsoleEngine(*m_engine);
    const QString page = QStringLiteral("stations");
    m_engine->setInitialProperties({
        {"recording", QVariant::fromValue(m_session->plugin())},
        {"session", QVariant::fromValue(m_console.get())},
        {"settings", QVariant::fromValue(&m_settings)},
        {"startPage", ConsolePages::keys().contains(page) ? page : QStringLiteral("usage")},
        {"startSize", QSizeF(1280, 800)},
    });
    m_engine->load(QUrl(QStringLiteral("qrc:/qt/qml/RecordingConsole/Main.qml")));
    require(!m_engine->rootObjects().isEmpty(), "the console's window could not be loaded");
}

void SiteClient::takeEvent(const QString &event, const QString &source)
{
    if (event != ServerEvent::VolumeChanged)
        return;
    ++m_events;
    const qsizetype before = m_heard.size();
    m_heard.insert(source.isEmpty() ? directStation : source);
    if (m_heard.size() > before && m_heard.size() == m_options.stations)
        printLine({{"inView", true}, {"withoutRows", stationsWithoutRows()}});
}

/// The stations whose usage model has not a row for each of their recording groups.
QString SiteClient::stationsWithoutRows() const
{
    QStringList missing;
    for (int number = 1; number <= m_options.stations; ++number) {
        const QString id = Fleet::stationId(number);
        QObject *object = nullptr;
        QMetaObject::invokeMethod(m_session->plugin(), "getStorageUsageModel", Q_RETURN_ARG(QObject *, object),
                                  Q_ARG(QString, id == directStation ? QString() : id));
        const auto *model = qobject_cast<QAbstractItemModel *>(object);
        if (!model || model->rowCount() != Figures::groupCount)
            missing.append(id);
    }
    return missing.join(u' ');
}

void SiteClient::tick()
{
    const double now = wallSeconds();
    const double nowCpu = threadSeconds();
    constexpr double expected = std::chrono::duration<double>(pulse).count();
    m_longestTurn = std::max(m_longestTurn, now - m_lastTick - expected);
    m_longestTurnCpu = std::max(m_longestTurnCpu, nowCpu - m_lastTickCpu);
    m_lastTick = now;
    m_lastTickCpu = nowCpu;
}

SiteClient::Load SiteClient::load() const
{
    return {wallSeconds(), processSeconds(), residentBytes("self"), heapInUse(), m_events};
}

void SiteClient::obey(const QString &word)
{
    if (word == QStringLiteral("begin")) {
        m_longestTurn = 0;
        m_longestTurnCpu = 0;
        m_begin = load();
    } else if (word == QStringLiteral("end")) {
        end();
    } else if (word == QStringLiteral("edit")) {
        m_editTimer.start();
    } else if (word == QStringLiteral("finish")) {
        m_editTimer.stop();
        m_isFinishing = true;
        reportFinished();
    } else if (word == QStringLiteral("check")) {
        check();
    }
}

void SiteClient::end()
{
    const Load now = load();
    const double seconds = now.wall - m_begin.wall;
    printLine({
        {"ended", true},
        {"cores", (now.cpu - m_begin.cpu) / seconds},
        {"longestTurn", m_longestTurn},
        {"longestTurnCpu", m_longestTurnCpu},
        {"resident", now.resident},
        {"residentGrown", now.resident - m_begin.resident},
        {"heapGrown", now.heap - m_begin.heap},
        {"events", static_cast<double>(now.events - m_begin.events) / seconds},
    });
}

void SiteClient::sendEdit()
{
    const QString station = Fleet::stationId(QRandomGenerator::global()->bounded(m_options.stations) + 1);
    const QString camera = QStringLiteral("Camera %1-%2").arg(QCoreApplication::applicationPid()).arg(++m_sent);
    const auto take = [this, station, camera](const StationReply &reply) {
        ++m_codes[reply.returnCode];
        if (reply.returnCode == ReturnCode::Success)
            m_acknowledged[station].append(camera);
        --m_outstanding;
        reportFinished();
    };
    ++m_outstanding;
    m_session->stationCalls()->send(StationCommandName::addCamera,
                                    QVariantMap{{FieldKey::camName, camera}, {StationKey::streams, 1}}, this, take,
                                    station);
}

void SiteClient::reportFinished()
{
    if (!m_isFinishing || m_outstanding > 0)
        return;
    m_isFinishing = false;
    QJsonObject codes;
    for (auto code = m_codes.cbegin(); code != m_codes.cend(); ++code)
        codes.insert(code.key(), code.value());
    printLine({{"finished", true}, {"sent", m_sent}, {"codes", codes}});
}

void SiteClient::check()
{
    struct Findings
    {
        qsizetype stations = 0; // that have not answered
        int wrong = 0;
    };
    const auto findings = std::make_shared<Findings>();
    findings->stations = m_acknowledged.size();
    const auto report = [findings] {
        if (findings->stations == 0)
            printLine({{"checked", true}, {"wrong", findings->wrong}});
    };
    for (auto station = m_acknowledged.cbegin(); station != m_acknowledged.cend(); ++station) {
        const auto take = [findings, report, expected = station.value()](const StationReply &reply) {
            QStringList names;
            const QVariantList cameras = reply.data.toList();
            for (const QVariant &camera : cameras)
                names.append(camera.toMap().value(FieldKey::camName).toString());
            for (const QString &name : expected)
                findings->wrong += names.count(name) == 1 ? 0 : 1;
            --findings->stations;
            report();
        };
        m_session->stationCalls()->send(StationCommandName::listCameras, {}, this, take, station.key());
    }
    report();
}
