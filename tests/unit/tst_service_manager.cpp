#include "NotifySocket.h"
#include "ServiceManager.h"
#include "Station.h"
#include "service/StationThread.h"

#include <QScopeGuard>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// What the service manager hears of a station, and what it does not.
class ServiceManagerTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void nobodyListens();
    void theWatchdogHearsNothingOfAStationThatHangs();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

void ServiceManagerTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    qunsetenv("NOTIFY_SOCKET");
    qunsetenv("WATCHDOG_USEC");
    qunsetenv("WATCHDOG_PID");
    QTest::failOnWarning(QRegularExpression(u".*"_s));
}

void ServiceManagerTest::nobodyListens()
{
    StationThread station([] { return std::unique_ptr<Station>(); });
    ServiceManager manager(station);
    manager.tellReady();
    manager.tellClients(1);
    manager.tellStopping();
}

void ServiceManagerTest::theWatchdogHearsNothingOfAStationThatHangs()
{
    const QString path = m_folder->filePath(u"notify"_s);
    NotifySocket socket(path);
    QVERIFY(socket.isBound());
    qputenv("NOTIFY_SOCKET", QFile::encodeName(path));
    qputenv("WATCHDOG_USEC", "20000");
    const auto hang = std::make_shared<QSemaphore>();
    StationThread station([hang] {
        hang->acquire();
        return std::unique_ptr<Station>();
    });
    const auto release = qScopeGuard([&hang] { hang->release(); }); // also where the test fails
    station.start();
    ServiceManager manager(station);
    manager.tellReady();
    QTimer manyPauses;
    manyPauses.setSingleShot(true);
    QSignalSpy passed(&manyPauses, &QTimer::timeout);
    manyPauses.start(300ms);
    QTRY_COMPARE(passed.count(), 1);
    QCOMPARE(socket.lines(), QStringList(u"READY=1"_s));
    hang->release();
    QTRY_VERIFY(socket.lines().count(u"WATCHDOG=1"_s) > 1);
}

QTEST_GUILESS_MAIN(ServiceManagerTest)
#include "tst_service_manager.moc"
