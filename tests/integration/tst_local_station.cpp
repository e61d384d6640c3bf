#include "GroupRequests.h"
#include "LocalClient.h"
#include "MessageStream.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "VolumeFolder.h"
#include "framework/HostReturnCode.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {
constexpr int patience = 30'000; // milliseconds

QVariantMap camera(const QString &name)
{
    return {{FieldKey::camName, name}, {StationKey::streams, 2}};
}
} // namespace

/// The station as a process of its own: found, started, shared, killed, hung and told to end.
class LocalStationTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void isStartedForItsFirstClient();
    void isSharedByAllClients();
    void anEditIsToldToAllBeforeTheirNextAnswer();
    void whatChangesOnTheDiskIsToldToAll();
    void goesOnWithoutTheClientThatStartedIt();
    void endsWhenNobodyIsLeft();
    void isStartedAgainWhenItDies();
    void aCommandUnderWayIsAnsweredWhenItDies();
    void anEditSentAgainAfterAKillTakesEffectOnce();
    void oneThatHangsIsNamed();
    void endsCleanlyWhenTold();
    void comesBackForTheNextCommandOnly();
    void aFolderThatCannotBeMadeIsToldInWords();
    void noneIsStartedInTheFolderOfAnotherUser();
    void aLongPathNeedsAnotherPlaceForTheSocket();
    void onlyItsUserMayConnect();
    void hostileClientsAreSentAway_data();
    void hostileClientsAreSentAway();
    void anOlderClientIsToldWhatToDo();
    void aClientThatNeverReadsHoldsUpNobody();
    void aBadUrlGetsALine_data();
    void aBadUrlGetsALine();

private:
    QString folder() const { return m_folder->filePath(u"station"_s); }
    pid_t process() const { return stationProcess(folder()); }
    bool isFree() const { return isFolderFree(folder()); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void LocalStationTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_folder = std::make_unique<QTemporaryDir>(onAVolume(u"local-XXXXXX"_s));
    QVERIFY(m_folder->isValid());
}

/// No station is left.
void LocalStationTest::cleanup()
{
    QTRY_VERIFY_WITH_TIMEOUT(isFree(), 10'000);
    m_folder.reset();
}

void LocalStationTest::isStartedForItsFirstClient()
{
    LocalClient client(folder());
    QCOMPARE(client.state().kind, StationState::Kind::Connecting);
    client.send(ServerCommand::getVolume);
    QTRY_COMPARE_WITH_TIMEOUT(client.codes(), QStringList{u"0"_s}, patience);
    QVERIFY(!client.replies.front().data.toList().isEmpty());
    QVERIFY(client.isUp());
    QCOMPARE(client.presence().name, QSysInfo::machineHostName());
    QVERIFY(!client.presence().version.isEmpty());
    QVERIFY(client.presence().since.isValid());
    QVERIFY(process() > 0);
    QVERIFY(process() != getpid());
}

void LocalStationTest::isSharedByAllClients()
{
    LocalClient one(folder());
    LocalClient other(folder());
    QTRY_VERIFY_WITH_TIMEOUT(one.isUp() && other.isUp(), patience);
    one.send(StationCommandName::addCamera, camera(u"Yard"_s));
    QTRY_COMPARE_WITH_TIMEOUT(one.codes(), QStringList{u"0"_s}, patience);
    other.send(StationCommandName::listCameras);
    QTRY_COMPARE_WITH_TIMEOUT(other.codes(), QStringList{u"0"_s}, patience);
    QCOMPARE(other.replies.front().data.toList().size(), 1);
    other.events.clear();
    one.send(ServerCommand::reloadStorageUsageInfo);
    QTRY_VERIFY(other.events.contains(ServerEvent::VolumeChanged)); // told to all
    QCOMPARE(other.replies.size(), 1); // answered to one
}

/// Events and answers come in one order, so that who asks after another one's answer has heard of the edit.
void LocalStationTest::anEditIsToldToAllBeforeTheirNextAnswer()
{
    LocalClient one(folder());
    LocalClient other(folder());
    QTRY_VERIFY_WITH_TIMEOUT(one.isUp() && other.isUp(), patience);
    QVERIFY(QDir().mkpath(m_folder->filePath(u"rec"_s)));
    QVariantMap group = pathMap(QFileInfo(m_folder->filePath(u"rec"_s)).canonicalFilePath());
    group.insert(FieldKey::recordingGroupName, u"Yard"_s);
    one.send(ServerCommand::addRecordingGroup, group);
    QTRY_COMPARE_WITH_TIMEOUT(one.codes(), QStringList{u"0"_s}, patience);
    other.send(ServerCommand::getRecordingGroup);
    QTRY_COMPARE_WITH_TIMEOUT(other.codes(), QStringList{u"0"_s}, patience);
    QCOMPARE(other.events.count(StationEventName::ActivityAdded), 1);
    const QVariantMap told = other.lastData.value(StationEventName::ActivityAdded).toMap();
    QCOMPARE(told.value(FieldKey::recordingGroupName).toString(), u"Yard"_s);
    QCOMPARE(told.value(FieldKey::recordingGroupID),
             one.replies.constFirst().data.toMap().value(FieldKey::recordingGroupID));
    QCOMPARE(other.replies.constFirst().data.toList().size(), 1);
}

void LocalStationTest::whatChangesOnTheDiskIsToldToAll()
{
    LocalClient one(folder());
    LocalClient other(folder());
    QTRY_VERIFY_WITH_TIMEOUT(one.isUp() && other.isUp(), patience);
    const QString day = QDate::currentDate().toString(u"yyyy-MM-dd"_s);
    QVERIFY(QDir().mkpath(m_folder->filePath(u"rec"_s)) && QDir().mkpath(m_folder->filePath(u"new/Gate/"_s + day)));
    QFile file(m_folder->filePath(u"new/Gate/%1/a.mp4"_s.arg(day)));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("recorded") > 0);
    file.close();
    QVariantMap group = pathMap(QFileInfo(m_folder->filePath(u"rec"_s)).canonicalFilePath());
    group.insert(FieldKey::recordingGroupName, u"Yard"_s);
    one.send(ServerCommand::addRecordingGroup, group);
    QTRY_COMPARE_WITH_TIMEOUT(one.codes(), QStringList{u"0"_s}, patience);
    const auto days = [](const LocalClient &client) {
        const QVariantList entries = client.lastData.value(ServerEvent::VolumeChanged).toList();
        return entries.isEmpty() ? QVariant() : entries.constFirst().toMap().value(FieldKey::volumeRecordedDays);
    };
    QTRY_COMPARE_WITH_TIMEOUT(days(one), QVariant(0), 30'000);
    QTRY_COMPARE_WITH_TIMEOUT(days(other), QVariant(0), 30'000);
    QVERIFY(QDir().rename(m_folder->filePath(u"new"_s), m_folder->filePath(u"rec/Yard"_s)));
    QTRY_COMPARE_WITH_TIMEOUT(days(one), QVariant(1), 30'000);
    QTRY_COMPARE_WITH_TIMEOUT(days(other), QVariant(1), 30'000);
}

void LocalStationTest::goesOnWithoutTheClientThatStartedIt()
{
    auto first = std::make_unique<LocalClient>(folder());
    QTRY_VERIFY_WITH_TIMEOUT(first->isUp(), patience);
    const pid_t station = process();
    LocalClient second(folder());
    QTRY_VERIFY_WITH_TIMEOUT(second.isUp(), patience);
    first.reset();
    second.send(ServerCommand::getVolume);
    QTRY_COMPARE_WITH_TIMEOUT(second.codes(), QStringList{u"0"_s}, patience);
    QCOMPARE(process(), station);
}

void LocalStationTest::endsWhenNobodyIsLeft()
{
    auto client = std::make_unique<LocalClient>(folder());
    QTRY_VERIFY_WITH_TIMEOUT(client->isUp(), patience);
    QVERIFY(!isFree());
    client.reset();
    QTRY_VERIFY(isFree());
    QVERIFY(!QFile::exists(stationSocketPaths(folder()).constFirst()));
}

void LocalStationTest::isStartedAgainWhenItDies()
{
    LocalClient client(folder());
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    const pid_t first = process();
    kill(first, SIGKILL);
    // Down, or up again already: that may take less than a look.
    QTRY_VERIFY_WITH_TIMEOUT(!client.isUp() || process() != first, patience);
    QElapsedTimer timer;
    timer.start();
    client.send(ServerCommand::getVolume);
    QTRY_COMPARE_WITH_TIMEOUT(client.codes(), QStringList{u"0"_s}, patience);
    QVERIFY(process() != first);
    qInfo("answered %lld ms after the station was killed", static_cast<long long>(timer.elapsed()));
}

void LocalStationTest::aCommandUnderWayIsAnsweredWhenItDies()
{
    LocalClient client(folder());
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    kill(process(), SIGSTOP); // so that the command is under way for certain
    client.send(ServerCommand::getVolume);
    QTest::qWait(0); // it goes out
    kill(process(), SIGKILL);
    QTRY_COMPARE_WITH_TIMEOUT(client.codes(), QStringList{HostReturnCode::StationLost}, patience);
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
}

void LocalStationTest::anEditSentAgainAfterAKillTakesEffectOnce()
{
    LocalClient client(folder());
    constexpr int edits = 12;
    int lost = 0;
    for (int edit = 0; edit < edits; ++edit) {
        QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
        const auto send = [&client, edit] {
            client.replies.clear();
            client.send(StationCommandName::addCamera, camera(u"Camera %1"_s.arg(edit)), u"edit-%1"_s.arg(edit));
        };
        send();
        QTest::qWait(edit); // a later moment of the edit each time
        kill(process(), SIGKILL);
        QTRY_COMPARE_WITH_TIMEOUT(client.replies.size(), 1, patience);
        while (client.codes() == QStringList{HostReturnCode::StationLost}) {
            ++lost;
            send();
            QTRY_COMPARE_WITH_TIMEOUT(client.replies.size(), 1, patience);
        }
        QCOMPARE(client.codes(), QStringList{u"0"_s});
    }
    QVERIFY(lost > 0);
    do { // the last kill may be heard of now
        client.replies.clear();
        client.send(StationCommandName::listCameras);
        QTRY_COMPARE_WITH_TIMEOUT(client.replies.size(), 1, patience);
    } while (client.codes() == QStringList{HostReturnCode::StationLost});
    QCOMPARE(client.codes(), QStringList{u"0"_s});
    QCOMPARE(client.replies.front().data.toList().size(), edits);
}

void LocalStationTest::oneThatHangsIsNamed()
{
    LocalClient first(folder());
    QTRY_VERIFY_WITH_TIMEOUT(first.isUp(), patience);
    const pid_t station = process();
    kill(station, SIGSTOP);
    LocalClient second(folder());
    second.send(ServerCommand::getVolume);
    QTRY_COMPARE_WITH_TIMEOUT(second.codes(), QStringList{HostReturnCode::LinkDown}, 15'000);
    const QString reason = second.state().reason;
    kill(station, SIGCONT);
    QVERIFY2(reason.contains(u"recording-stationd (process %1)"_s.arg(station)), qPrintable(reason));
    QTRY_VERIFY_WITH_TIMEOUT(second.isUp(), 15'000);
    QCOMPARE(process(), station);
}

void LocalStationTest::endsCleanlyWhenTold()
{
    LocalClient client(folder());
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    client.send(StationCommandName::addCamera, camera(u"Yard"_s));
    QTRY_COMPARE_WITH_TIMEOUT(client.codes(), QStringList{u"0"_s}, patience);
    QElapsedTimer timer;
    timer.start();
    kill(process(), SIGTERM);
    QTRY_COMPARE(client.state().kind, StationState::Kind::Down);
    QCOMPARE(client.state().reason, u"The station was told to end."_s);
    QTRY_VERIFY(isFree());
    QVERIFY(timer.elapsed() < 5000);
}

void LocalStationTest::comesBackForTheNextCommandOnly()
{
    LocalClient client(folder());
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    kill(process(), SIGTERM);
    QTRY_COMPARE(client.state().kind, StationState::Kind::Down);
    QTRY_VERIFY(isFree());
    QTest::qWait(600); // longer than the first pauses: nobody starts it unasked
    QVERIFY(isFree());
    client.send(ServerCommand::getVolume);
    QTRY_COMPARE_WITH_TIMEOUT(client.codes(), QStringList{u"0"_s}, patience);
}

void LocalStationTest::aFolderThatCannotBeMadeIsToldInWords()
{
    QFile file(folder());
    QVERIFY(file.open(QIODevice::WriteOnly));
    LocalClient client(folder() + u"/below"_s);
    client.send(ServerCommand::getVolume);
    QTRY_COMPARE_WITH_TIMEOUT(client.codes(), QStringList{HostReturnCode::LinkDown}, patience);
    QCOMPARE(client.state().reason, u"The folder %1/below cannot be made."_s.arg(normalizedFolder(folder())));
}

void LocalStationTest::noneIsStartedInTheFolderOfAnotherUser()
{
    constexpr uid_t nobody = 65534;
    QString foreign = u"/"_s; // root's
    if (geteuid() == 0) {
        foreign = folder() + u"/foreign"_s;
        QVERIFY(QDir().mkpath(foreign));
        QCOMPARE(chown(QFile::encodeName(foreign).constData(), nobody, gid_t(-1)), 0);
    }
    LocalClient client(foreign);
    client.send(ServerCommand::getVolume);
    QTRY_COMPARE_WITH_TIMEOUT(client.codes(), QStringList{HostReturnCode::LinkDown}, patience);
    const QString start = u"The data folder %1 belongs to "_s.arg(normalizedFolder(foreign));
    QVERIFY2(client.state().reason.startsWith(start)
                 && client.state().reason.contains(u"systemctl start recording-stationd"_s),
             qPrintable(client.state().reason));
    if (geteuid() == 0)
        QVERIFY(QDir(foreign).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot));
}

void LocalStationTest::aLongPathNeedsAnotherPlaceForTheSocket()
{
    const QTemporaryDir runtimeFolder;
    const QString runtime = runtimeFolder.path();
    const QString deep = folder() + u'/' + QString(120, u'x');
    const QByteArray before = qgetenv("XDG_RUNTIME_DIR");
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime));
    {
        LocalClient client(deep);
        client.send(ServerCommand::getVolume);
        QTRY_COMPARE_WITH_TIMEOUT(client.codes(), QStringList{u"0"_s}, patience);
        QCOMPARE(client.state().reason, QString());
        QVERIFY(stationSocketPaths(deep).constFirst().startsWith(normalizedFolder(runtime) + u"/recording-station/"_s)
                || stationSocketPaths(deep).constFirst().startsWith(runtime + u"/recording-station/"_s));
        LocalClient other(deep);
        QTRY_VERIFY_WITH_TIMEOUT(other.isUp(), patience);
        struct stat status = {};
        QCOMPARE(lstat(QFile::encodeName(QFileInfo(stationSocketPaths(deep).constFirst()).path()).constData(), &status),
                 0);
        QCOMPARE(status.st_mode & 0777U, 0700U);
    }
    qputenv("XDG_RUNTIME_DIR", before);
    QTRY_VERIFY_WITH_TIMEOUT(isFolderFree(deep), patience); // it takes its socket along
    QCOMPARE(QDir(runtime + u"/recording-station"_s).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot),
             QStringList());
}

void LocalStationTest::onlyItsUserMayConnect()
{
    LocalClient client(folder());
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    struct stat status = {};
    QCOMPARE(lstat(QFile::encodeName(stationSocketPaths(folder()).constFirst()).constData(), &status), 0);
    QCOMPARE(status.st_mode & 0777U, 0600U);
    QCOMPARE(lstat(QFile::encodeName(folder()).constData(), &status), 0);
    QCOMPARE(status.st_mode & 0777U, 0700U);
}

void LocalStationTest::hostileClientsAreSentAway_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("code");
    const QByteArray hello = framedMessage(Hello{protocolVersion, u"x"_s, u"1"_s});
    QTest::newRow("no message") << QByteArray(64, '\0') << GoodbyeCode::BadMessage;
    QTest::newRow("too large") << QByteArray::fromHex("ffffffff") << GoodbyeCode::BadMessage;
    QTest::newRow("no hello") << framedMessage(CommandMessage{1, {u"getVolume"_s, {}}}) << GoodbyeCode::BadMessage;
    QTest::newRow("two hellos") << hello + hello << GoodbyeCode::BadMessage;
    QTest::newRow("a reply") << hello + framedMessage(ReplyMessage{1, {u"0"_s, {}}}) << GoodbyeCode::BadMessage;
    const QByteArray command = framedMessage(CommandMessage{1, {ServerCommand::getServerDir, u"/"_s}});
    QTest::newRow("one number twice") << hello + command + command << GoodbyeCode::BadMessage;
}

void LocalStationTest::hostileClientsAreSentAway()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, code);
    LocalClient client(folder());
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    QLocalSocket socket;
    socket.connectToServer(stationSocketPaths(folder()).constFirst());
    QVERIFY(socket.waitForConnected());
    socket.write(bytes);
    MessageStream stream;
    std::optional<Goodbye> goodbye;
    connect(&socket, &QLocalSocket::readyRead, &socket, [&] {
        stream.append(socket.readAll());
        while (const auto message = stream.next()) {
            if (std::holds_alternative<Goodbye>(*message))
                goodbye = std::get<Goodbye>(*message);
        }
    });
    QTRY_VERIFY(goodbye);
    QCOMPARE(goodbye->code, code);
    QTRY_COMPARE(socket.state(), QLocalSocket::UnconnectedState);
    client.send(ServerCommand::getVolume);
    QTRY_COMPARE_WITH_TIMEOUT(client.codes(), QStringList{u"0"_s}, patience);
}

void LocalStationTest::anOlderClientIsToldWhatToDo()
{
    LocalClient client(folder());
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    QLocalSocket socket;
    socket.connectToServer(stationSocketPaths(folder()).constFirst());
    QVERIFY(socket.waitForConnected());
    socket.write(framedMessage(Hello{protocolVersion + 7, u"older"_s, u"0.0.1"_s}));
    QTRY_COMPARE(socket.state(), QLocalSocket::UnconnectedState);
    MessageStream stream;
    stream.append(socket.readAll());
    const auto goodbye = std::get<Goodbye>(stream.next().value());
    QCOMPARE(goodbye.code, GoodbyeCode::OtherVersion);
    QVERIFY(goodbye.text.contains(u"older is version 0.0.1 and speaks protocol %1"_s.arg(protocolVersion + 7)));
}

void LocalStationTest::aClientThatNeverReadsHoldsUpNobody()
{
    LocalClient client(folder());
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    QLocalSocket deaf;
    deaf.connectToServer(stationSocketPaths(folder()).constFirst());
    QVERIFY(deaf.waitForConnected());
    deaf.setReadBufferSize(1);
    QByteArray commands = framedMessage(Hello{protocolVersion, u"deaf"_s, u"1"_s});
    for (quint64 number = 1; number <= 20'000; ++number)
        commands += framedMessage(CommandMessage{number, {ServerCommand::getVolume, {}}});
    deaf.write(commands);
    QTest::qWait(0);
    for (int round = 0; round < 5; ++round) {
        client.replies.clear();
        client.send(ServerCommand::getVolume);
        QTRY_COMPARE_WITH_TIMEOUT(client.codes(), QStringList{u"0"_s}, patience);
    }
}

void LocalStationTest::aBadUrlGetsALine_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("error");
    QTest::newRow("nothing") << u""_s << u"\"\" names no station: expected local:DIR."_s;
    QTest::newRow("a folder") << u"/srv"_s << u"\"/srv\" names no station: expected local:DIR."_s;
    QTest::newRow("unknown") << u"ftp:x"_s
                             << u"\"ftp:x\" names a station in an unknown way, \"ftp:\": expected local:DIR."_s;
    QTest::newRow("a host") << u"local://nas/x"_s
                            << u"\"local://nas/x\" has two slashes, as if it named a host: expected local:DIR, a "
                               "folder of this machine."_s;
}

void LocalStationTest::aBadUrlGetsALine()
{
    QFETCH(const QString, url);
    QString error;
    QVERIFY(!StationLink::open(url, {LocalLink::kind()}, {}, &error));
    QTEST(error, "error");
}

QTEST_GUILESS_MAIN(LocalStationTest)
#include "tst_local_station.moc"
