#include "AnswerTable.h"
#include "PluginCaller.h"
#include "PluginInterface.h"
#include "PluginRecordingManagement.h"
#include "TraceRecorder.h"
#include "framework/HostFramework.h"
#include "framework/HostReturnCode.h"

#include <QAbstractItemModel>
#include <QRegularExpression>
#include <QTest>

#include <memory>

using namespace std::chrono_literals;

namespace {

/// A station that gives the answers it was told to, later and in order; a command without one is refused as unknown.
class ScriptedLink : public StationLink
{
public:
    void start() override { }
    StationState state(const QString &) const override { return m_state; }

    void send(quint64 correlation, const QString &relayPath, const StationCommand &command) override
    {
        sent.append(command.name);
        relayPaths.append(relayPath);
        const auto deliver = [this, correlation, name = command.name] {
            QList<StationReply> replies{{QStringLiteral("UnknownCommand"), {}}};
            QList<QList<StationReply>> &prepared = answers[name];
            if (!prepared.isEmpty())
                replies = prepared.takeFirst();
            for (const StationReply &reply : replies)
                emit replyReceived(correlation, reply);
            if (eventAfter == name && ++answered > 1) // the plug-in's own request comes first
                emit eventReceived({}, {QStringLiteral("VolumeChanged"), {}});
        };
        QMetaObject::invokeMethod(this, deliver, Qt::QueuedConnection);
    }

    void goUp()
    {
        m_state = {StationState::Kind::Up};
        emit stateChanged({}, m_state);
    }

    QHash<QString, QList<QList<StationReply>>> answers;
    QString eventAfter; // the name of a command
    int answered = 0;
    QStringList sent;
    QStringList relayPaths;

private:
    StationState m_state;
};

const StationReply success{QStringLiteral("0"), {}};
const StationReply refusal{QStringLiteral("Refused"), {}};

} // namespace

class TestPluginCaller : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void tableFitsThePlugin();
    void answeredCommandGivesItsSignalAndModel();
    void refusedCommandGivesTheReturnCode();
    void refusalWithoutASignalIsNotWaitedFor_data();
    void refusalWithoutASignalIsNotWaitedFor();
    void answersToThePluginsOwnRequestsAreNotTakenForOurs();
    void waitsForTheLastPart();
    void firstRefusedPartCounts();
    void usageIsAnsweredByAnEvent();
    void refusedByThePlugin();
    void aForeignTraceLibraryTellsNoFact();
    void answeredWithinTheCall();
    void silenceEndsWithNoAnswer_data();
    void silenceEndsWithNoAnswer();
    void queryIsPrecededByWhatFillsIt();
    void queryFailsWithWhatFillsIt();
    void queryGivesItsResult();

private:
    CallOutcome call(const QString &name, const QVariantList &arguments = {})
    {
        const QMetaMethod method = PluginInterface(*m_plugin->metaObject()).find(name, arguments.size());
        return m_caller->call(method, arguments);
    }

    std::unique_ptr<ScriptedLink> m_link;
    std::unique_ptr<HostFramework> m_framework;
    std::unique_ptr<PluginRecordingManagement> m_plugin;
    std::unique_ptr<PluginCaller> m_caller;
};

void TestPluginCaller::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_link = std::make_unique<ScriptedLink>();
    m_framework = std::make_unique<HostFramework>(*m_link);
    m_plugin = std::make_unique<PluginRecordingManagement>();
    QVERIFY(m_framework->attach(m_plugin.get(), QStringLiteral("8F33495A224D49ABB8F9E875984A1443")));
    m_caller = std::make_unique<PluginCaller>(*m_plugin, *m_framework, 20s);
    m_link->goUp();
}

void TestPluginCaller::cleanup()
{
    m_framework->close();
    m_caller.reset();
    m_plugin.reset();
    m_framework.reset();
    m_link.reset();
}

void TestPluginCaller::tableFitsThePlugin()
{
    const PluginInterface interface(*m_plugin->metaObject());
    QStringList signalNames;
    for (const QMetaMethod &signal : interface.signalMethods())
        signalNames.append(QString::fromLatin1(signal.name()));
    for (const Invokable &invokable : interface.invokables()) {
        const auto answer = answerOf(invokable.name(), *m_plugin->metaObject());
        // Whatever may refuse a request returns bool or an id; nothing else does.
        const int type = invokable.full().returnMetaType().id();
        QCOMPARE(answer.has_value(), type == QMetaType::Bool || type == QMetaType::QString);
        if (answer) {
            QVERIFY2(signalNames.contains(QLatin1String(answer->signal)), answer->signal.constData());
            QVERIFY2(!answer->model || interface.find(QLatin1String(answer->model), 0).isValid(), answer->model);
        }
        for (const QString &request : requestsBefore(invokable.name()))
            QVERIFY2(answerOf(request, *m_plugin->metaObject()) && interface.find(request, 0).isValid(),
                     qPrintable(request));
    }
    QCOMPARE(m_link->sent, commandsOnConnect());
}

void TestPluginCaller::answeredCommandGivesItsSignalAndModel()
{
    const QVariantMap reply{{"basePath", "/srv"}, {"dirFolderList", QStringList{"a", "b"}}};
    m_link->answers["getServerDir"] = {{{"0", reply}}};

    const CallOutcome outcome = call("getServerDir", {"/srv"});

    QCOMPARE(outcome.exitCode, ExitCode::Done);
    QCOMPARE(outcome.error, QString());
    QCOMPARE(outcome.returnCode, "0");
    QCOMPARE(outcome.result, true);
    QCOMPARE(outcome.answers.size(), 1);
    QCOMPARE(outcome.answers.first().signal.name(), "getServerDirResponded");
    QCOMPARE(outcome.answers.first().arguments, (QVariantList{"/srv"}));
    QVERIFY(outcome.model);
    QCOMPARE(outcome.model->rowCount(), 2);
}

void TestPluginCaller::refusedCommandGivesTheReturnCode()
{
    m_link->answers["createDirectory"] = {{refusal}};

    const CallOutcome outcome = call("createDirectory", {"/srv/a"});

    QCOMPARE(outcome.exitCode, ExitCode::Refused);
    QCOMPARE(outcome.error, "createDirectory: the station refused: Refused");
    QCOMPARE(outcome.answers.size(), 1);
    QCOMPARE(outcome.answers.first().arguments, (QVariantList{false}));
}

void TestPluginCaller::refusalWithoutASignalIsNotWaitedFor_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("getRecordingGroup") << "getRecordingGroup";
    QTest::newRow("reloadStorageUsageInfo") << "reloadStorageUsageInfo";
}

void TestPluginCaller::refusalWithoutASignalIsNotWaitedFor()
{
    QFETCH(const QString, name);
    m_link->answers[name] = {{success}, {refusal}}; // the first one goes to the plug-in's own request

    const CallOutcome outcome = call(name);

    QCOMPARE(outcome.exitCode, ExitCode::Refused);
    QCOMPARE(outcome.error, name + ": the station refused: Refused");
    QVERIFY(outcome.answers.isEmpty());
}

void TestPluginCaller::answersToThePluginsOwnRequestsAreNotTakenForOurs()
{
    m_link->answers["getRecordingGroup"] = {{refusal}, {success}};

    const CallOutcome outcome = call("getRecordingGroup");

    QCOMPARE(outcome.exitCode, ExitCode::Done);
    QCOMPARE(outcome.answers.size(), 1);
    QCOMPARE(outcome.answers.first().arguments, (QVariantList{outcome.result}));
    QVERIFY(!outcome.result.toString().isEmpty());
}

void TestPluginCaller::waitsForTheLastPart()
{
    m_link->answers["removeRecordingGroup"] = {{{"0", {}, false}, {"0", {}, false}, {"0", {}, true}}};

    const CallOutcome outcome = call("removeRecordingGroup", {QStringList{"a", "b", "c"}});

    QCOMPARE(outcome.exitCode, ExitCode::Done);
    QCOMPARE(outcome.answers.size(), 3);
    QCOMPARE(outcome.answers.at(1).arguments, (QVariantList{true, false}));
    QCOMPARE(outcome.answers.at(2).arguments, (QVariantList{true, true}));
}

void TestPluginCaller::firstRefusedPartCounts()
{
    m_link->answers["removeRecordingGroup"] = {{{"0", {}, false}, {"InUse", "b", false}, {"0", {}, true}}};

    const CallOutcome outcome = call("removeRecordingGroup", {QStringList{"a", "b", "c"}});

    QCOMPARE(outcome.exitCode, ExitCode::Refused);
    QCOMPARE(outcome.returnCode, "InUse");
    QCOMPARE(outcome.answers.size(), 3);
    QCOMPARE(outcome.parts.size(), 3);
    QCOMPARE(outcome.parts.at(1).returnCode, "InUse");
    QCOMPARE(outcome.parts.at(1).data, QVariant("b"));
    QVERIFY(outcome.parts.at(2).finish);
}

void TestPluginCaller::usageIsAnsweredByAnEvent()
{
    m_link->answers["reloadStorageUsageInfo"] = {{success}, {success}};
    m_link->eventAfter = "reloadStorageUsageInfo";

    const CallOutcome outcome = call("reloadStorageUsageInfo");

    QCOMPARE(outcome.exitCode, ExitCode::Done);
    QCOMPARE(outcome.answers.size(), 1);
    QCOMPARE(outcome.answers.first().signal.name(), "volumeInfoChanged");
}

void TestPluginCaller::refusedByThePlugin()
{
    const CallOutcome outcome = call("removeRecordingGroup", {QStringList{}});

    QCOMPARE(outcome.exitCode, ExitCode::Refused);
    QCOMPARE(
        outcome.error,
        "removeRecordingGroup: the plug-in refused and sent nothing; with RECORDING_TRACE_LEVEL=error it says why");
    QVERIFY(!m_link->sent.contains("removeRecordingGroup"));
}

void TestPluginCaller::aForeignTraceLibraryTellsNoFact()
{
    const PluginErrors errors(QStringLiteral(TRACE_RECORDER));
    const CallOutcome outcome = call("addNASServer", {"", "Host", "anna", "s3 cret"});
    QVERIFY(outcome.error.contains("RECORDING_TRACE_LEVEL"));
    QCOMPARE(errors.lastFact(), QString());
    QCOMPARE(takeErrorLines().last(), "PluginRecordingManagement::addNASServer, host is empty");
}

void TestPluginCaller::answeredWithinTheCall()
{
    const CallOutcome outcome = call("addNASPathsToVolume", {QStringList{}});

    QCOMPARE(outcome.exitCode, ExitCode::Done);
    QCOMPARE(outcome.answers.size(), 1);
    QCOMPARE(outcome.answers.first().arguments, (QVariantList{true}));
}

void TestPluginCaller::silenceEndsWithNoAnswer_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QList<StationReply>>("replies");
    QTest::newRow("nothing comes") << "getVolume" << QList<StationReply>{};
    QTest::newRow("the last part is missing") << "getVolume" << QList<StationReply>{{"0", {}, false}};
    QTest::newRow("the host gave up") << "getVolume" << QList<StationReply>{{HostReturnCode::NoAnswer, {}}};
    QTest::newRow("the event is missing") << "reloadStorageUsageInfo" << QList<StationReply>{success};
    QTest::newRow("the plug-in's own request is not answered") << "GetNasServers" << QList<StationReply>{};
}

void TestPluginCaller::silenceEndsWithNoAnswer()
{
    QFETCH(const QString, name);
    QFETCH(const QList<StationReply>, replies);
    cleanup();
    m_link = std::make_unique<ScriptedLink>();
    m_framework = std::make_unique<HostFramework>(*m_link);
    m_plugin = std::make_unique<PluginRecordingManagement>();
    QVERIFY(m_framework->attach(m_plugin.get(), QStringLiteral("8F33495A224D49ABB8F9E875984A1443")));
    m_caller = std::make_unique<PluginCaller>(*m_plugin, *m_framework, 10ms);
    m_link->answers[name] = {replies, replies};
    m_link->goUp();

    const bool isOwn = name == QStringLiteral("GetNasServers");
    const QString invokable = isOwn ? QStringLiteral("getVolume") : name;
    const CallOutcome outcome = call(invokable);

    QCOMPARE(outcome.exitCode, ExitCode::NoAnswer);
    QCOMPARE(outcome.error, invokable + ": no answer within 0.01 s");
    QVERIFY(!outcome.model);
    QCOMPARE(m_link->sent.contains("getVolume"), invokable == "getVolume" && !isOwn);
}

void TestPluginCaller::queryIsPrecededByWhatFillsIt()
{
    const QVariantMap volume{{"volumePath", "/srv"}, {"volumeSize", 2048}, {"volumeAvailableSize", 1024}};
    m_link->answers["getVolume"] = {{{"0", QVariantList{volume}}}};

    const CallOutcome outcome = call("getVolumeInfo", {"/srv/a", "relay-7"});

    QCOMPARE(outcome.exitCode, ExitCode::Done);
    QCOMPARE(outcome.result.toMap().value("size"), 2048);
    QCOMPARE(m_link->sent.last(), "getVolume");
    QCOMPARE(m_link->relayPaths.last(), "relay-7");
}

void TestPluginCaller::queryFailsWithWhatFillsIt()
{
    m_link->answers["getVolume"] = {{refusal}};

    const CallOutcome outcome = call("getVolumeModel");

    QCOMPARE(outcome.exitCode, ExitCode::Refused);
    QCOMPARE(outcome.error, "getVolumeModel needs getVolume first: getVolume: the station refused: Refused");
    QVERIFY(!outcome.model);
}

void TestPluginCaller::queryGivesItsResult()
{
    const CallOutcome model = call("getServerDirModel");
    QCOMPARE(model.exitCode, ExitCode::Done);
    QVERIFY(model.model);

    const CallOutcome nothing = call("clearRecordingGroupDataList");
    QCOMPARE(nothing.exitCode, ExitCode::Done);
    QVERIFY(!nothing.result.isValid());
}

QTEST_GUILESS_MAIN(TestPluginCaller)
#include "tst_plugin_caller.moc"
