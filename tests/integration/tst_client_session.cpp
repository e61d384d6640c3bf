#include "ClientSession.h"
#include "GatedVolumes.h"
#include "Station.h"
#include "VolumeFolder.h"
#include "companions/StatusMonitorPlugin.h"
#include "embedded/EmbeddedLink.h"
#include "framework/HostReturnCode.h"
#include "link/StationCalls.h"

#include <QAbstractItemModel>
#include <QDir>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// The plug-in as it is built, with the host and a station around it, used as a client's pages use it.
class ClientSessionTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void nothingIsThereBeforeTheStart();
    void startLoadsThePluginAndConnects();
    void alarmsAreKnownOnceTheyWereTold();
    void pluginAsksForItsListsOnceConnected();
    void secondStartIsRefused();
    void missingPluginIsAClearError();
    void startAfterAFailure();
    void sessionsFollowEachOther();

    void volumesOfThisMachine();
    void foldersOfThisMachine();
    void folderIsMade();
    void refusedFolderTellsWhy();

    void stationIsTheRootOfTheTree();
    void stationAnswersItsOwnCommands();
    void alarmsFollowTheStation();
    void stationUnderItsRelayPath();
    void slowStationLeavesTheEventLoopFree();
    void silentStationIsAnsweredFor();
    void lateOutcomesOfEditsAreTold();
    void endAnswersWhatIsOutstanding();

private:
    void start(const ClientSession::Options &options);
    std::unique_ptr<Station> gatedStation();
    ClientSession::Options gated();
    bool call(const char *method, const QString &argument = {});
    QList<QVariantMap> rows(const char *modelGetter);

    std::unique_ptr<Gate> m_gate;
    std::unique_ptr<ClientSession> m_session;
};

namespace {

ClientSession::Options builtPlugin()
{
    ClientSession::Options options;
    options.pluginFolders = QStringList{QStringLiteral(PLUGIN_FOLDER)};
    options.url = u"embedded:"_s;
    options.linkKinds = {EmbeddedLink::kind()};
    return options;
}

} // namespace

void ClientSessionTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_gate = std::make_unique<Gate>();
    m_session = std::make_unique<ClientSession>();
}

void ClientSessionTest::cleanup()
{
    m_session.reset();
    m_gate.reset();
}

void ClientSessionTest::start(const ClientSession::Options &options)
{
    QVERIFY2(m_session->start(options), qPrintable(m_session->error()));
    QTRY_VERIFY(m_session->isConnected());
}

std::unique_ptr<Station> ClientSessionTest::gatedStation()
{
    return std::make_unique<Station>(StationSettings{{}, {}, std::make_unique<GatedVolumes>(*m_gate)});
}

/// The built plug-in and a station whose volumes wait for the gate.
ClientSession::Options ClientSessionTest::gated()
{
    ClientSession::Options options = builtPlugin();
    options.linkKinds = {EmbeddedLink::kind([this] { return gatedStation(); })};
    return options;
}

bool ClientSessionTest::call(const char *method, const QString &argument)
{
    bool accepted = false;
    return QMetaObject::invokeMethod(m_session->plugin(), method, Q_RETURN_ARG(bool, accepted),
                                     Q_ARG(QString, argument))
        && accepted;
}

/// The rows of a model as a page sees them, by role name.
QList<QVariantMap> ClientSessionTest::rows(const char *modelGetter)
{
    QObject *object = nullptr;
    QMetaObject::invokeMethod(m_session->plugin(), modelGetter, Q_RETURN_ARG(QObject *, object));
    const auto *model = qobject_cast<QAbstractItemModel *>(object);
    if (!model)
        return {};
    const QHash<int, QByteArray> roles = model->roleNames();
    QList<QVariantMap> list;
    for (int row = 0; row < model->rowCount(); ++row) {
        QVariantMap values;
        for (auto role = roles.cbegin(); role != roles.cend(); ++role)
            values.insert(QString::fromLatin1(role.value()), model->index(row, 0).data(role.key()));
        list.append(values);
    }
    return list;
}

void ClientSessionTest::nothingIsThereBeforeTheStart()
{
    QVERIFY(!m_session->plugin());
    QVERIFY(!m_session->framework());
    QVERIFY(!m_session->stationCalls());
    QVERIFY(!m_session->statusMonitor());
    QVERIFY(!m_session->isConnected());
    QVERIFY(m_session->error().isEmpty());
}

void ClientSessionTest::startLoadsThePluginAndConnects()
{
    const QSignalSpy connections(m_session.get(), &ClientSession::connectedChanged);
    QVERIFY2(m_session->start(builtPlugin()), qPrintable(m_session->error()));
    QVERIFY(m_session->plugin());
    QCOMPARE(m_session->plugin()->metaObject()->className(), "PluginRecordingManagement");
    QVERIFY(m_session->framework());
    QVERIFY(!m_session->isConnected());
    QTRY_COMPARE(connections.size(), 1);
    QCOMPARE(connections.front(), QVariantList{true});
    QVERIFY(m_session->isConnected());
}

void ClientSessionTest::alarmsAreKnownOnceTheyWereTold()
{
    const QSignalSpy known(m_session.get(), &ClientSession::alarmsKnownChanged);
    QVERIFY(m_session->start(builtPlugin()));
    QVERIFY(!m_session->areAlarmsKnown());
    const QSignalSpy figures(m_session->plugin(), SIGNAL(volumeInfoChanged()));
    qsizetype figuresBefore = -1;
    connect(m_session.get(), &ClientSession::alarmsKnownChanged, this,
            [&figures, &figuresBefore] { figuresBefore = figures.size(); });
    QTRY_VERIFY(m_session->areAlarmsKnown());
    QCOMPARE(known.size(), 1);
    QVERIFY2(figuresBefore > 0, "the plug-in has judged by the station's figures");
}

void ClientSessionTest::pluginAsksForItsListsOnceConnected()
{
    QVERIFY(m_session->start(builtPlugin()));
    const QSignalSpy answered(m_session->framework(), &HostFramework::commandAnswered);
    QTRY_COMPARE(answered.size(), 3);
    const QStringList expected{u"GetNasServers"_s, u"getRecordingGroup"_s, u"reloadStorageUsageInfo"_s};
    for (int index = 0; index < 3; ++index)
        QCOMPARE(answered.at(index).front().toString(), expected.at(index));
}

void ClientSessionTest::secondStartIsRefused()
{
    start(builtPlugin());
    QObject *const plugin = m_session->plugin();
    QVERIFY(!m_session->start(builtPlugin()));
    QCOMPARE(m_session->error(), u"The session was started already."_s);
    QCOMPARE(m_session->plugin(), plugin);
    QVERIFY(m_session->isConnected());
}

void ClientSessionTest::missingPluginIsAClearError()
{
    const QTemporaryDir empty;
    ClientSession::Options options;
    options.pluginFolders = QStringList{empty.path()};
    QVERIFY(!m_session->start(options));
    QVERIFY2(m_session->error().contains(empty.path()), qPrintable(m_session->error()));
    QVERIFY(!m_session->plugin());
    QVERIFY(!m_session->framework());
    QVERIFY(!m_session->isConnected());
}

void ClientSessionTest::startAfterAFailure()
{
    ClientSession::Options nowhere;
    nowhere.pluginFolders = QStringList{u"/no/such/folder"_s};
    QVERIFY(!m_session->start(nowhere));
    start(builtPlugin());
    QVERIFY(m_session->error().isEmpty());
}

void ClientSessionTest::sessionsFollowEachOther()
{
    for (int round = 0; round < 3; ++round) {
        m_session = std::make_unique<ClientSession>();
        start(builtPlugin());
        QSignalSpy responded(m_session->plugin(), SIGNAL(getVolumeResponded(bool)));
        QVERIFY(call("getVolume"));
        QTRY_COMPARE(responded.size(), 1);
    }
    ClientSession other; // the plug-in's one object is taken
    QVERIFY(!other.start(builtPlugin()));
    QVERIFY2(other.error().contains(u"in use"_s), qPrintable(other.error()));
}

void ClientSessionTest::volumesOfThisMachine()
{
    start(builtPlugin());
    QSignalSpy responded(m_session->plugin(), SIGNAL(getVolumeResponded(bool)));
    QVERIFY(call("getVolume"));
    QTRY_COMPARE(responded.size(), 1);
    QCOMPARE(responded.front(), QVariantList{true});
    QList<QVariantMap> roots = rows("getVolumeModel");
    roots.removeIf([](const QVariantMap &row) { return row.value(u"rootPathRole"_s) != u"/"_s; });
    QCOMPARE(roots.size(), 1);
    const QVariantMap root = roots.front();
    QVERIFY(!root.value(u"nameRole"_s).toString().isEmpty());
    QCOMPARE(root.value(u"isSystemRole"_s), QVariant(true));
    QCOMPARE(root.value(u"isNASRole"_s), QVariant(false));
    QVERIFY(root.value(u"sizeRole"_s).toLongLong() > 0);
    QVERIFY(root.value(u"availableSizeRole"_s).toLongLong() <= root.value(u"sizeRole"_s).toLongLong());
}

void ClientSessionTest::foldersOfThisMachine()
{
    const QTemporaryDir dir;
    QVERIFY(QDir(dir.path()).mkpath(u"archive/2024"_s));
    QVERIFY(QDir(dir.path()).mkpath(u"Recordings"_s));
    start(builtPlugin());
    QSignalSpy responded(m_session->plugin(), SIGNAL(getServerDirResponded(QString)));
    QVERIFY(call("getServerDir", dir.path()));
    QTRY_COMPARE(responded.size(), 1);
    QCOMPARE(responded.front(), QVariantList{dir.path()});
    QStringList names;
    for (const QVariantMap &folder : rows("getServerDirModel"))
        names.append(folder.value(u"nameRole"_s).toString());
    QCOMPARE(names, (QStringList{u"archive"_s, u"Recordings"_s}));
}

void ClientSessionTest::folderIsMade()
{
    const QTemporaryDir dir(onAVolume(u"folder-XXXXXX"_s));
    const QString path = dir.path() + u"/cameras/gate 1"_s;
    start(builtPlugin());
    QSignalSpy responded(m_session->plugin(), SIGNAL(createDirectoryResponded(bool)));
    QVERIFY(call("createDirectory", path));
    QTRY_COMPARE(responded.size(), 1);
    QCOMPARE(responded.front(), QVariantList{true});
    QVERIFY(QDir(path).exists());
}

void ClientSessionTest::refusedFolderTellsWhy()
{
    start(builtPlugin());
    QSignalSpy responded(m_session->plugin(), SIGNAL(createDirectoryResponded(bool)));
    QString words;
    connect(m_session->framework(), &HostFramework::commandAnswered, this,
            [&words](const QString &command, const QString &returnCode) {
                if (command == u"createDirectory")
                    words = returnCode;
            });
    QVERIFY(call("createDirectory", u"not/absolute"_s));
    QTRY_COMPARE(responded.size(), 1);
    QCOMPARE(responded.front(), QVariantList{false});
    QVERIFY(!words.isEmpty());
    QVERIFY(words != u"0");
    QVERIFY(words != HostReturnCode::LinkDown);
}

void ClientSessionTest::stationIsTheRootOfTheTree()
{
    ClientSession::Options options = builtPlugin();
    options.relayPath = u"relay-7"_s;
    options.stationName = u"North"_s;
    start(options);
    bool accepted = false;
    QVERIFY(QMetaObject::invokeMethod(m_session->plugin(), "retrieveRecordingGroupTreeModel",
                                      Q_RETURN_ARG(bool, accepted)));
    QVERIFY(accepted);
    const QList<QVariantMap> stations = rows("getRecordingGroupTreeModel");
    QCOMPARE(stations.size(), 1);
    QCOMPARE(stations.first().value(u"nameRole"_s), QVariant(u"North"_s));
    QCOMPARE(stations.first().value(u"relayPathRole"_s), QVariant(u"relay-7"_s));
}

void ClientSessionTest::stationAnswersItsOwnCommands()
{
    start(builtPlugin());
    QStringList codes;
    const auto note = [&codes](const StationReply &part) { codes.append(part.returnCode); };
    QVERIFY(m_session->stationCalls()->send(u"getVolume"_s, {}, m_session.get(), note));
    QVERIFY(m_session->stationCalls()->send(u"station.dance"_s, {}, m_session.get(), note));
    QTRY_COMPARE(codes, (QStringList{u"0"_s, u"UnknownCommand"_s}));
    QVERIFY(m_session->stationCalls()->send(u"getVolume"_s, {}, m_session.get(), note, u"relay-8"_s));
    QTRY_COMPARE(codes.size(), 3);
    QCOMPARE(codes.last(), u"UnknownStation"_s);
}

void ClientSessionTest::alarmsFollowTheStation()
{
    std::atomic<Station *> station = nullptr;
    ClientSession::Options options = gated();
    options.linkKinds = {EmbeddedLink::kind([this, &station] {
        auto made = gatedStation();
        station = made.get();
        return made;
    })};
    start(options);
    const auto change = [&station](const QVariantList &entries) {
        Station *const raiser = station;
        const auto raise = [raiser, entries] { emit raiser->eventRaised({u"VolumeChanged"_s, entries}); };
        QMetaObject::invokeMethod(raiser, raise, Qt::QueuedConnection);
    };
    const auto group = [](const QString &id) {
        return QVariantMap{{u"recordingGroupID"_s, id},      {u"recordingGroupReservedTime"_s, 4320},
                           {u"volumeRecordedDays"_s, 1},     {u"volumeOneDayUsage"_s, 1024 * 1024},
                           {u"volumeAvailableSize"_s, 1024}, {u"volumeSize"_s, 0}};
    };
    StatusMonitorPlugin *const monitor = m_session->statusMonitor();
    // Said again until it is heard: the station itself says once that it has no groups.
    const auto alarmsAfter = [&change, monitor](const QVariantList &entries) {
        change(entries);
        return monitor->alarms().size();
    };
    QTRY_COMPARE(alarmsAfter({group(u"1"_s), group(u"2"_s)}), 2);
    QTRY_COMPARE(alarmsAfter({group(u"2"_s)}), 1); // the first was removed
    QCOMPARE(monitor->alarms().first().groupId, u"2"_s);
}

void ClientSessionTest::stationUnderItsRelayPath()
{
    ClientSession::Options options = gated();
    options.relayPath = u"relay-7"_s;
    start(options);
    m_gate->open.release();
    QSignalSpy responded(m_session->plugin(), SIGNAL(getVolumeResponded(bool)));
    QVERIFY(call("getVolume", u"relay-7"_s));
    QTRY_COMPARE(responded.size(), 1);
    QCOMPARE(responded.at(0), QVariantList{true});
    const QSignalSpy answered(m_session->framework(), &HostFramework::commandAnswered);
    QVERIFY(call("getVolume", u"relay-8"_s));
    QTRY_COMPARE(responded.size(), 2);
    QCOMPARE(responded.at(1), QVariantList{false});
    QCOMPARE(answered.back().at(1).toString(), HostReturnCode::UnknownStation);
}

void ClientSessionTest::slowStationLeavesTheEventLoopFree()
{
    start(gated());
    QSignalSpy responded(m_session->plugin(), SIGNAL(getVolumeResponded(bool)));
    QVERIFY(call("getVolume"));
    QTRY_COMPARE(m_gate->entered.load(), 1);
    QTimer timer;
    const QSignalSpy ticks(&timer, &QTimer::timeout);
    timer.start(0);
    QTRY_VERIFY(ticks.size() >= 10);
    QVERIFY(responded.isEmpty());
    QCOMPARE(m_gate->left.load(), 0);
    m_gate->open.release();
    QTRY_COMPARE(responded.size(), 1);
    QCOMPARE(rows("getVolumeModel").front().value(u"rootPathRole"_s).toString(), u"/gated"_s);
}

void ClientSessionTest::silentStationIsAnsweredFor()
{
    ClientSession::Options options = gated();
    options.replyTimeout = 20ms;
    start(options);
    QSignalSpy responded(m_session->plugin(), SIGNAL(getVolumeResponded(bool)));
    QSignalSpy answered(m_session->framework(), &HostFramework::commandAnswered);
    QVERIFY(call("getVolume"));
    QTRY_COMPARE(responded.size(), 1);
    QCOMPARE(responded.front(), QVariantList{false});
    QCOMPARE(answered.back().at(0).toString(), u"getVolume"_s);
    QCOMPARE(answered.back().at(1).toString(), HostReturnCode::NoAnswer);
    QCOMPARE(m_gate->left.load(), 0);

    m_gate->open.release(); // the late answer
    QTRY_COMPARE(m_gate->left.load(), 1);
    QVERIFY(call("getVolume", u"nobody"_s)); // its refusal is queued behind that answer
    QTRY_COMPARE(responded.size(), 2);
    QCOMPARE(responded.back(), QVariantList{false});
    QCOMPARE(answered.back().at(1).toString(), HostReturnCode::UnknownStation);
}

/// Of the plug-in's edits and of those that no plug-in sends, once the station answers at last.
void ClientSessionTest::lateOutcomesOfEditsAreTold()
{
    const QTemporaryDir data;
    ClientSession::Options options = builtPlugin();
    options.linkKinds = {EmbeddedLink::kind([this, folder = data.filePath(u"station"_s)] {
        return std::make_unique<Station>(StationSettings{folder, {}, std::make_unique<GatedVolumes>(*m_gate)});
    })};
    options.replyTimeout = 20ms;
    start(options);
    QSignalSpy outcomes(m_session.get(), &ClientSession::lateOutcomeCame);
    QStringList codes;
    const QVariantMap camera{{u"camName"_s, u"Yard"_s}, {u"streams"_s, 1}};
    QVERIFY(call("getVolume")); // the station hangs from here on
    QTRY_COMPARE(m_gate->entered.load(), 1);
    for (int time = 0; time < 2; ++time) {
        m_session->stationCalls()->send(u"station.addCamera"_s, camera, this,
                                        [&codes](const StationReply &part) { codes.append(part.returnCode); });
    }
    QVERIFY(call("createDirectory", u"/proc/rec"_s));
    QTRY_COMPARE(codes, (QStringList{HostReturnCode::NoAnswer, HostReturnCode::NoAnswer}));
    QVERIFY(outcomes.isEmpty());
    m_gate->open.release(100);
    QTRY_COMPARE(outcomes.size(), 3);
    QStringList told;
    for (const QVariantList &arguments : std::as_const(outcomes)) {
        const auto outcome = arguments.front().value<LateOutcome>();
        told.append(QStringList{outcome.command, outcome.subject, outcome.returnCode}.join(u' '));
    }
    QCOMPARE(told.mid(0, 2), (QStringList{u"station.addCamera Yard 0"_s, u"station.addCamera Yard CameraExists"_s}));
    QVERIFY2(told.at(2).startsWith(u"createDirectory /proc/rec "_s) && !told.at(2).endsWith(u" 0"_s),
             qPrintable(told.at(2)));
    QCOMPARE(codes.size(), 2); // who asked was told that there is no answer
}

void ClientSessionTest::endAnswersWhatIsOutstanding()
{
    start(gated());
    QObject *const plugin = m_session->plugin();
    QStringList order;
    QSignalSpy responded(plugin, SIGNAL(getVolumeResponded(bool)));
    connect(m_session->framework(), &HostFramework::commandAnswered, this,
            [&order](const QString &command, const QString &returnCode) {
                if (command == u"getVolume")
                    order.append(returnCode);
            });
    connect(plugin, &QObject::destroyed, this, [&order] { order.append(u"plug-in ends"_s); });
    connect(m_session->framework(), &QObject::destroyed, this, [&order] { order.append(u"framework ends"_s); });
    QVERIFY(call("getVolume"));
    QTRY_COMPARE(m_gate->entered.load(), 1);
    m_session.reset();
    QCOMPARE(order, (QStringList{u"Closing"_s, u"plug-in ends"_s, u"framework ends"_s}));
    QCOMPARE(responded.size(), 1);
    QCOMPARE(responded.front(), QVariantList{false});
    QVERIFY(m_gate->gone);
}

QTEST_GUILESS_MAIN(ClientSessionTest)

#include "tst_client_session.moc"
