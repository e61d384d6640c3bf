#include "Loopback.h"
#include "RecordedSite.h"
#include "SambaServer.h"
#include "SmbRelay.h"
#include "StationCall.h"
#include "nas/NasAccounts.h"
#include "nas/PasswordVault.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>
#include <QUuid>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// A station with a NAS server that says nothing and one that lives.
class NasSilenceTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void aLivingServerIsAnsweredInItsUsualTime();
    void whatNobodyWaitsForIsNotAsked();
    void theStationEndsAtOnce();

private:
    void start(std::chrono::milliseconds limit);
    void addServer(quint16 port);
    StationCall listing(quint16 port, const QString &below = {}) const;

    SambaServer m_server;
    std::unique_ptr<RecordedSite> m_site;
    std::unique_ptr<Station> m_station;
};

void NasSilenceTest::initTestCase()
{
    m_server.addShare(u"video"_s);
    QVERIFY2(m_server.start(), qPrintable(m_server.error()));
}

void NasSilenceTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_site = std::make_unique<RecordedSite>();
}

void NasSilenceTest::cleanup()
{
    m_station.reset();
    m_site.reset();
}

void NasSilenceTest::addServer(quint16 port)
{
    StationData data(m_site->dataFolder());
    NasAccounts accounts(data, KeyFile::of({}, data.folder()));
    const QByteArray sealed = accounts.vault().encrypted(m_server.password());
    accounts.store().insert(
        {QUuid::createUuid().toString(), u"127.0.0.1:%1"_s.arg(port), u"Host"_s, m_server.userName(), sealed});
}

void NasSilenceTest::start(std::chrono::milliseconds limit)
{
    StationSettings settings = m_site->settings(QDate(2026, 3, 20));
    settings.nasTimeLimit = limit;
    m_station = std::make_unique<Station>(std::move(settings));
}

StationCall NasSilenceTest::listing(quint16 port, const QString &below) const
{
    const QVariantMap data{{u"basePath"_s, u"//127.0.0.1:%1/video%2"_s.arg(port).arg(below)},
                           {u"logonDomain"_s, u"Host"_s},
                           {u"userName"_s, m_server.userName()},
                           {u"password"_s, m_server.password()},
                           {u"relayPath"_s, QString()}};
    return {*m_station, u"GetNasDir"_s, data};
}

/// First in the process, so that the library is not prepared by a server that lives.
void NasSilenceTest::aLivingServerIsAnsweredInItsUsualTime()
{
    const SilentServer silent;
    addServer(silent.port());
    addServer(m_server.port());
    RecordingGroup group = RecordedSite::group(u"Doors"_s, {});
    for (int i = 0; i < 41; ++i)
        group.paths.append({u"//127.0.0.1:%1/video/%2"_s.arg(silent.port()).arg(i), PathKind::NetHost, 0, false});
    {
        Database database(m_site->dataFolder());
        GroupStore(database).insert(group);
    }
    start(20s);
    std::vector<StationCall> dead;
    for (int i = 0; i < 300; ++i)
        dead.push_back(listing(silent.port(), u"/%1"_s.arg(i)));
    for (int round = 0; round < 3; ++round) {
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(listing(m_server.port()).reply().returnCode, u"0"_s);
        QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    }
    for (const StationCall &call : dead)
        QVERIFY(!call.isAnswered());
}

void NasSilenceTest::whatNobodyWaitsForIsNotAsked()
{
    SmbRelay relay(m_server.port());
    relay.failAfter(0, SmbRelay::Fault::Silence);
    start(1s);
    std::vector<StationCall> calls;
    for (int i = 0; i < 60; ++i)
        calls.push_back(listing(relay.port()));
    for (const StationCall &call : calls)
        QCOMPARE(call.reply().returnCode, u"NasServerNotResponding"_s);
    relay.failAfter(0, SmbRelay::Fault::None);
    QTRY_COMPARE_WITH_TIMEOUT(listing(relay.port()).reply().returnCode, u"0"_s, 20'000);
    // Each of the four has tried; none of the 56 others did.
    QVERIFY2(relay.connections() < 20, qPrintable(QString::number(relay.connections())));
}

void NasSilenceTest::theStationEndsAtOnce()
{
    const SilentServer silent;
    start(20s);
    std::vector<StationCall> calls;
    for (int i = 0; i < 20; ++i)
        calls.push_back(listing(silent.port()));
    QCOMPARE(listing(m_server.port()).reply().returnCode, u"0"_s);
    QElapsedTimer timer;
    timer.start();
    m_station.reset();
    QVERIFY2(timer.elapsed() < 1500, qPrintable(QString::number(timer.elapsed())));
}

QTEST_GUILESS_MAIN(NasSilenceTest)
#include "tst_nas_silence.moc"
