#include "FakeVolumes.h"
#include "LocalEndpoint.h"
#include "MessageStream.h"
#include "ServerVocabulary.h"
#include "Station.h"
#include "service/StationServer.h"
#include "service/StationThread.h"

#include <QDir>
#include <QLocalSocket>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {
constexpr int patience = 30'000; // milliseconds

/// Keeps the station's words on clients that it cut off, and gives all others on.
class CutOffWatch
{
public:
    CutOffWatch() { s_previous = qInstallMessageHandler(&CutOffWatch::take); }
    CutOffWatch(const CutOffWatch &) = delete;
    CutOffWatch &operator=(const CutOffWatch &) = delete;
    ~CutOffWatch()
    {
        qInstallMessageHandler(s_previous);
        s_lines.clear();
    }

    qsizetype count() const { return s_lines.size(); }

private:
    static void take(QtMsgType type, const QMessageLogContext &context, const QString &message)
    {
        if (message.contains(u" is cut off: "_s))
            s_lines.append(message);
        else
            s_previous(type, context, message);
    }

    static inline QtMessageHandler s_previous = nullptr;
    static inline QStringList s_lines;
};
} // namespace

/// A client that does not read what it is sent is cut off, and told why as far as it reads at last.
class SlowClientTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void oneThatReadsAtLastIsToldWhy_data();
    void oneThatReadsAtLastIsToldWhy();
    void oneThatNeverReadsIsCutOff();

private:
    void serve(const ServiceSettings &settings);
    void connectDeafClient();
    void askForMore();

    std::unique_ptr<CutOffWatch> m_cutOff;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<StationThread> m_station;
    std::unique_ptr<StationServer> m_server;
    std::unique_ptr<QLocalSocket> m_socket;
    quint64 m_asked = 0; // commands
};

void SlowClientTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_cutOff = std::make_unique<CutOffWatch>();
    m_folder = std::make_unique<QTemporaryDir>();
    m_asked = 0;
}

void SlowClientTest::cleanup()
{
    m_socket.reset();
    m_server.reset();
    m_station.reset();
    m_folder.reset();
    m_cutOff.reset();
}

/// A station whose answer to "getVolume" is large.
void SlowClientTest::serve(const ServiceSettings &settings)
{
    const QString folder = m_folder->path();
    const Volume volume{u"/"_s, QString(20'000, u'x'), 2048, 1024, true, false};
    m_station = std::make_unique<StationThread>([folder, volume] {
        return std::make_unique<Station>(StationSettings{folder, {}, std::make_unique<FakeVolumes>(QList{volume})});
    });
    m_server = std::make_unique<StationServer>(*m_station, settings);
    m_station->start();
    QTRY_VERIFY_WITH_TIMEOUT(m_station->isStarted(), patience);
    QVERIFY2(m_server->listen(folder), qPrintable(m_server->error()));
}

/// It was welcomed, and takes nothing from here on.
void SlowClientTest::connectDeafClient()
{
    m_socket = std::make_unique<QLocalSocket>();
    m_socket->setReadBufferSize(1);
    m_socket->connectToServer(stationSocketPaths(m_folder->path()).constFirst());
    QVERIFY(m_socket->waitForConnected());
    m_socket->write(framedMessage(Hello{protocolVersion, u"deaf"_s, u"1"_s}));
    QTRY_COMPARE_WITH_TIMEOUT(m_server->clients(), 1, patience);
}

/// So many commands that their answers fill what the system holds for a socket, and more.
void SlowClientTest::askForMore()
{
    constexpr int count = 200;
    for (int number = 0; number < count; ++number)
        m_socket->write(framedMessage(CommandMessage{++m_asked, {ServerCommand::getVolume, {}}}));
}

void SlowClientTest::oneThatReadsAtLastIsToldWhy_data()
{
    QTest::addColumn<qint64>("queueLimit");
    QTest::addColumn<int>("readingTime"); // milliseconds
    QTest::addColumn<QString>("text");
    QTest::newRow("too much waits") << qint64(100'000) << 3'600'000 << u"The client does not read what it is sent."_s;
    QTest::newRow("for too long") << qint64(1'000'000'000) << 50 << u"The client has not read anything for too long."_s;
}

void SlowClientTest::oneThatReadsAtLastIsToldWhy()
{
    QFETCH(const qint64, queueLimit);
    QFETCH(const int, readingTime);
    QFETCH(const QString, text);
    ServiceSettings settings;
    settings.queueLimit = queueLimit;
    settings.readingTime = std::chrono::milliseconds(readingTime);
    settings.partingTime = 1h; // as long as the test likes
    serve(settings);
    connectDeafClient();
    askForMore();
    QTRY_COMPARE_WITH_TIMEOUT(m_cutOff->count(), 1, patience);

    MessageStream stream;
    quint64 answered = 0;
    std::optional<Goodbye> goodbye;
    const auto read = [&] {
        stream.append(m_socket->readAll());
        while (const auto message = stream.next()) {
            QVERIFY(!goodbye); // nothing follows it
            if (std::holds_alternative<ReplyMessage>(*message))
                QCOMPARE(std::get<ReplyMessage>(*message).correlation, ++answered); // whole, and none left out
            else if (std::holds_alternative<Goodbye>(*message))
                goodbye = std::get<Goodbye>(*message);
        }
    };
    m_socket->setReadBufferSize(0);
    connect(m_socket.get(), &QLocalSocket::readyRead, this, read);
    read();
    QTRY_VERIFY_WITH_TIMEOUT(goodbye, patience);
    QCOMPARE(goodbye->code, GoodbyeCode::TooSlow);
    QCOMPARE(goodbye->text, text);
    QVERIFY(answered < m_asked); // the others were dropped
    QTRY_COMPARE_WITH_TIMEOUT(m_socket->state(), QLocalSocket::UnconnectedState, patience);
    QTRY_COMPARE_WITH_TIMEOUT(m_server->clients(), 0, patience);
}

void SlowClientTest::oneThatNeverReadsIsCutOff()
{
    ServiceSettings settings;
    settings.queueLimit = 100'000;
    settings.partingTime = 1ms;
    serve(settings);
    connectDeafClient();
    askForMore();
    QTRY_COMPARE_WITH_TIMEOUT(m_server->clients(), 0, patience);
}

QTEST_GUILESS_MAIN(SlowClientTest)
#include "tst_slow_client.moc"
