#include "FakeLink.h"
#include "framework/HostFramework.h"
#include "framework/HostReturnCode.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <functional>
#include <utility>

namespace {

const QString pluginId = QStringLiteral("plug-in");

/// Writes down, as text, everything that the framework tells it.
class FakePlugin : public PluginBase
{
public:
    struct Reply
    {
        QString command;
        QVariant data;
        void *context;
        QString returnCode;
        bool finish;
        QString relayPath;
    };

    bool InitialPluginBase(QQmlContext *context, void *givenHandle, FrameworkWrapperBase *givenFramework) override
    {
        handle = givenHandle;
        framework = givenFramework;
        return Init(context);
    }

    bool Init(QQmlContext *) override
    {
        if (duringInit)
            duringInit();
        return initSucceeds;
    }

    void EventProcessor(QString event, qint64 one, int two, int three, QVariant data, const QString &source) override
    {
        log.append(QStringLiteral("event %1 %2 from %3").arg(event, data.toString(), source));
        QCOMPARE(one + two + three, 0);
    }

    void CommandProcessor(QString command, QVariant data, void *context, QString returnCode, QString, bool finish,
                          const QString &relayPath) override
    {
        QVERIFY(!sending); // an answer never comes from within SendCommand()
        log.append(QStringLiteral("%1 %2 %3").arg(command, returnCode, finish ? u"last" : u"part"));
        replies.append({command, data, context, returnCode, finish, relayPath});
        if (finish)
            ++lastParts[context];
        const auto react = std::exchange(duringReply, {}); // survives the end of the plug-in
        if (react)
            react();
    }

    void EventProcessorEx(QString, ConfigBase *, qint64, int, int, QVariant, const QString &) override { }
    void CommandProcessorEx(QString, ConfigBase *, QVariant, void *, QString, QString, bool, const QString &) override
    {
    }

    void PluginServerConnected() override { log.append(QStringLiteral("connected")); }

    bool send(const QString &command, const QVariant &data = {}, void *context = nullptr, const QString &relayPath = {},
              const QString &id = pluginId)
    {
        sending = true;
        const bool accepted = framework->SendCommand(handle, id, command, data, context, false, relayPath);
        sending = false;
        return accepted;
    }

    FrameworkWrapperBase *framework = nullptr;
    void *handle = nullptr;
    bool initSucceeds = true;
    bool sending = false;
    std::function<void()> duringInit;
    std::function<void()> duringReply; // once
    QStringList log;
    QList<Reply> replies;
    QHash<void *, int> lastParts; // by context
};

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

} // namespace

/// The framework between a plug-in and a link that the test plays.
class HostFrameworkTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void commandTravelsWithDataAndRelayPath();
    void replyComesBackWithContextAndRelayPath();
    void repliesAndEventsKeepTheOrderOfTheLink();
    void commandsOfOneNameAreToldApart();
    void failureOfTheStationIsHandedOnAsItIs();
    void unknownPluginIsRefused();

    void answerInPartsEndsWithTheLastPart();
    void secondAnswerIsDropped();
    void answerToNoCommandIsDropped();

    void silentStationIsAnsweredFor();
    void lateAnswerIsDropped();
    void partRestartsTheTimeLimit();
    void silenceAfterAPartIsAnsweredFor();
    void laterTimeLimitIsWatchedToo();
    void shorterTimeLimitHoldsForTheNextCommand();
    void timeLimitIsAtLeastOneMillisecond();

    void linkDownIsAnsweredLater();
    void linkGoingDownAnswersWhatIsOutstanding();
    void commandSentWhileTheLinkGoesDownIsAnswered();
    void everyConnectionIsTold();
    void connectionIsToldAtOnceWhenTheLinkIsUp();

    void closeAnswersWhatIsOutstanding();
    void destructorAnswersWhatIsOutstanding();
    void closedFrameworkIsSilent();

    void commandFromWithinAReply();
    void closeFromWithinAReply();
    void closeFromWithinASlotOfAPart();
    void pluginEndsWithinAReply();
    void pluginEndsWithinASlot();
    void endOfThePluginLeavesNothingToDeliver();

    void everyContextComesBackOnce();

    void eventsReachEveryPlugin();
    void repliesReachTheirSenderAlone();
    void pluginThatDoesNotInitialiseIsNotAttached();
    void pluginMaySendWhileItInitialises();
    void identifierInUseIsRefused();
    void pluginObjectsAreFoundByIdentifier();
    void answersAreSignalled();

private:
    std::unique_ptr<FakeLink> m_link;
    std::unique_ptr<HostFramework> m_framework;
    std::unique_ptr<FakePlugin> m_plugin;
};

void HostFrameworkTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_link = std::make_unique<FakeLink>();
    m_framework = std::make_unique<HostFramework>(*m_link);
    m_plugin = std::make_unique<FakePlugin>();
    QVERIFY(m_framework->attach(m_plugin.get(), pluginId));
    QCOMPARE(m_plugin->log, QStringList{u"connected"_s});
    m_plugin->log.clear();
}

void HostFrameworkTest::cleanup()
{
    m_framework.reset();
    m_plugin.reset();
    m_link.reset();
}

void HostFrameworkTest::commandTravelsWithDataAndRelayPath()
{
    const QVariantMap data{{u"path"_s, u"/srv/rec"_s}};
    QVERIFY(m_plugin->send(u"createDirectory"_s, data, nullptr, u"relay-7"_s));
    QCOMPARE(m_link->sent.size(), 1);
    QCOMPARE(m_link->sent.front().command.name, u"createDirectory"_s);
    QCOMPARE(m_link->sent.front().command.data, QVariant(data));
    QCOMPARE(m_link->sent.front().relayPath, u"relay-7"_s);
    QVERIFY(m_plugin->log.isEmpty());
}

void HostFrameworkTest::replyComesBackWithContextAndRelayPath()
{
    int context = 0;
    QVERIFY(m_plugin->send(u"getVolume"_s, {}, &context, u"relay-7"_s));
    m_link->answer(0, u"0"_s, QVariantList{1, 2});
    QCOMPARE(m_plugin->replies.size(), 1);
    const FakePlugin::Reply reply = m_plugin->replies.front();
    QCOMPARE(reply.command, u"getVolume"_s);
    QCOMPARE(reply.data, QVariant(QVariantList{1, 2}));
    QCOMPARE(reply.context, &context);
    QCOMPARE(reply.returnCode, u"0"_s);
    QCOMPARE(reply.finish, true);
    QCOMPARE(reply.relayPath, u"relay-7"_s);
}

void HostFrameworkTest::repliesAndEventsKeepTheOrderOfTheLink()
{
    QVERIFY(m_plugin->send(u"one"_s));
    QVERIFY(m_plugin->send(u"two"_s));
    QVERIFY(m_plugin->send(u"three"_s));
    m_link->answer(1, u"0"_s);
    emit m_link->eventReceived(u"relay-7"_s, {u"VolumeChanged"_s, u"first"_s});
    m_link->answer(0, u"0"_s);
    emit m_link->eventReceived({}, {u"VolumeChanged"_s, u"second"_s});
    m_link->answer(2, u"0"_s);
    const QStringList expected{u"two 0 last"_s, u"event VolumeChanged first from relay-7"_s, u"one 0 last"_s,
                               u"event VolumeChanged second from "_s, u"three 0 last"_s};
    QCOMPARE(m_plugin->log, expected);
}

void HostFrameworkTest::commandsOfOneNameAreToldApart()
{
    int first = 0;
    int second = 0;
    QVERIFY(m_plugin->send(u"getNasDir"_s, {}, &first));
    QVERIFY(m_plugin->send(u"getNasDir"_s, {}, &second));
    m_link->answer(1, u"0"_s);
    m_link->answer(0, u"0"_s);
    QCOMPARE(m_plugin->replies.at(0).context, &second);
    QCOMPARE(m_plugin->replies.at(1).context, &first);
}

void HostFrameworkTest::failureOfTheStationIsHandedOnAsItIs()
{
    QVERIFY(m_plugin->send(u"AddNasServer"_s));
    m_link->answer(0, u"LogonNASServerFaled"_s, u"words"_s);
    QCOMPARE(m_plugin->log, QStringList{u"AddNasServer LogonNASServerFaled last"_s});
    QCOMPARE(m_plugin->replies.front().data, QVariant(u"words"_s));
}

void HostFrameworkTest::unknownPluginIsRefused()
{
    QVERIFY(!m_plugin->send(u"getVolume"_s, {}, nullptr, {}, u"another"_s));
    QVERIFY(!m_plugin->send(u"getVolume"_s, {}, nullptr, {}, {}));
    QVERIFY(m_link->sent.isEmpty());
}

void HostFrameworkTest::answerInPartsEndsWithTheLastPart()
{
    int context = 0;
    QVERIFY(m_plugin->send(u"removeRecordingGroup"_s, {}, &context));
    m_link->answerPart(0, 1);
    m_link->answerPart(0, 2);
    m_link->answer(0, u"failed"_s, 3);
    m_link->answerPart(0, 4);
    const QStringList expected{u"removeRecordingGroup 0 part"_s, u"removeRecordingGroup 0 part"_s,
                               u"removeRecordingGroup failed last"_s};
    QCOMPARE(m_plugin->log, expected);
    for (int part = 0; part < 3; ++part) {
        QCOMPARE(m_plugin->replies.at(part).context, &context);
        QCOMPARE(m_plugin->replies.at(part).data, QVariant(part + 1));
    }
}

void HostFrameworkTest::secondAnswerIsDropped()
{
    QVERIFY(m_plugin->send(u"getVolume"_s));
    m_link->answer(0, u"0"_s);
    m_link->answer(0, u"0"_s);
    QCOMPARE(m_plugin->log, QStringList{u"getVolume 0 last"_s});
}

void HostFrameworkTest::answerToNoCommandIsDropped()
{
    QVERIFY(m_plugin->send(u"getVolume"_s));
    emit m_link->replyReceived(m_link->sent.front().correlation + 1, {u"0"_s, {}});
    QVERIFY(m_plugin->log.isEmpty());
}

void HostFrameworkTest::silentStationIsAnsweredFor()
{
    m_framework->setReplyTimeout(5ms);
    int context = 0;
    QVERIFY(m_plugin->send(u"getVolume"_s, {}, &context));
    QVERIFY(m_plugin->send(u"getServerDir"_s));
    const QStringList expected{u"getVolume NoAnswer last"_s, u"getServerDir NoAnswer last"_s};
    QTRY_COMPARE(m_plugin->log, expected);
    QCOMPARE(m_plugin->replies.front().context, &context);
    QVERIFY(!m_plugin->replies.front().data.isValid());
    QCOMPARE(m_plugin->replies.front().returnCode, HostReturnCode::NoAnswer);
}

void HostFrameworkTest::lateAnswerIsDropped()
{
    m_framework->setReplyTimeout(5ms);
    QVERIFY(m_plugin->send(u"getVolume"_s));
    QTRY_COMPARE(m_plugin->log.size(), 1);
    m_link->answerPart(0, 1);
    m_link->answer(0, u"0"_s);
    QCOMPARE(m_plugin->log, QStringList{u"getVolume NoAnswer last"_s});
}

void HostFrameworkTest::partRestartsTheTimeLimit()
{
    m_framework->setReplyTimeout(5ms);
    QVERIFY(m_plugin->send(u"inParts"_s));
    m_framework->setReplyTimeout(1h);
    m_link->answerPart(0, 1);
    m_framework->setReplyTimeout(10ms);
    QVERIFY(m_plugin->send(u"silent"_s));
    // The first limit ends before this one does: had the part not moved it, the command would be refused before.
    const QStringList expected{u"inParts 0 part"_s, u"silent NoAnswer last"_s};
    QTRY_COMPARE(m_plugin->log.size(), 2);
    QCOMPARE(m_plugin->log, expected);
    m_link->answer(0, u"0"_s);
    QCOMPARE(m_plugin->log.last(), u"inParts 0 last"_s);
}

void HostFrameworkTest::silenceAfterAPartIsAnsweredFor()
{
    m_framework->setReplyTimeout(5ms);
    QVERIFY(m_plugin->send(u"inParts"_s));
    m_link->answerPart(0, 1);
    const QStringList expected{u"inParts 0 part"_s, u"inParts NoAnswer last"_s};
    QTRY_COMPARE(m_plugin->log, expected);
}

void HostFrameworkTest::laterTimeLimitIsWatchedToo()
{
    m_framework->setReplyTimeout(5ms);
    QVERIFY(m_plugin->send(u"hasty"_s));
    m_framework->setReplyTimeout(50ms);
    QVERIFY(m_plugin->send(u"patient"_s));
    QTRY_COMPARE(m_plugin->log, (QStringList{u"hasty NoAnswer last"_s, u"patient NoAnswer last"_s}));
}

void HostFrameworkTest::shorterTimeLimitHoldsForTheNextCommand()
{
    m_framework->setReplyTimeout(1h);
    QVERIFY(m_plugin->send(u"patient"_s));
    m_framework->setReplyTimeout(5ms);
    QVERIFY(m_plugin->send(u"hasty"_s));
    QTRY_COMPARE(m_plugin->log, QStringList{u"hasty NoAnswer last"_s});
}

void HostFrameworkTest::timeLimitIsAtLeastOneMillisecond()
{
    m_framework->setReplyTimeout(-1s);
    QVERIFY(m_plugin->send(u"getVolume"_s));
    QVERIFY(m_plugin->log.isEmpty());
    QTRY_COMPARE(m_plugin->log, QStringList{u"getVolume NoAnswer last"_s});
}

void HostFrameworkTest::linkDownIsAnsweredLater()
{
    m_link->setUp(false);
    int context = 0;
    QVERIFY(m_plugin->send(u"getVolume"_s, {}, &context));
    QVERIFY(m_plugin->log.isEmpty());
    m_link->setUp(true); // too late for the command, which the link never saw
    QTRY_COMPARE(m_plugin->log, (QStringList{u"connected"_s, u"getVolume LinkDown last"_s}));
    QCOMPARE(m_plugin->replies.front().context, &context);
    QVERIFY(m_link->sent.isEmpty());
}

void HostFrameworkTest::linkGoingDownAnswersWhatIsOutstanding()
{
    QVERIFY(m_plugin->send(u"one"_s));
    QVERIFY(m_plugin->send(u"two"_s));
    QVERIFY(m_plugin->send(u"three"_s));
    m_link->answer(1, u"0"_s);
    m_link->setUp(false);
    m_link->answer(0, u"0"_s);
    m_link->answer(2, u"0"_s);
    QCOMPARE(m_plugin->log, (QStringList{u"two 0 last"_s, u"one LinkDown last"_s, u"three LinkDown last"_s}));
}

void HostFrameworkTest::commandSentWhileTheLinkGoesDownIsAnswered()
{
    QVERIFY(m_plugin->send(u"one"_s));
    QVERIFY(m_plugin->send(u"two"_s));
    m_plugin->duringReply = [this] { QVERIFY(m_plugin->send(u"again"_s)); };
    m_link->setUp(false);
    const QStringList expected{u"one LinkDown last"_s, u"two LinkDown last"_s, u"again LinkDown last"_s};
    QTRY_COMPARE(m_plugin->log, expected);
}

void HostFrameworkTest::everyConnectionIsTold()
{
    m_link->setUp(false);
    QVERIFY(m_plugin->log.isEmpty());
    m_link->setUp(true);
    m_link->setUp(false);
    m_link->setUp(true);
    QCOMPARE(m_plugin->log, (QStringList{u"connected"_s, u"connected"_s}));
    QVERIFY(m_plugin->send(u"getVolume"_s));
    QCOMPARE(m_link->sent.size(), 1);
}

void HostFrameworkTest::connectionIsToldAtOnceWhenTheLinkIsUp()
{
    FakePlugin early;
    m_link->setUp(false);
    QVERIFY(m_framework->attach(&early, u"early"_s));
    QVERIFY(early.log.isEmpty());
    m_link->setUp(true);
    QCOMPARE(early.log, QStringList{u"connected"_s});
    FakePlugin late;
    QVERIFY(m_framework->attach(&late, u"late"_s));
    QCOMPARE(late.log, QStringList{u"connected"_s});
}

void HostFrameworkTest::closeAnswersWhatIsOutstanding()
{
    int context = 0;
    QVERIFY(m_plugin->send(u"one"_s, {}, &context));
    m_link->setUp(false);
    m_link->setUp(true);
    m_plugin->log.clear();
    QVERIFY(m_plugin->send(u"two"_s, {}, &context));
    QVERIFY(m_plugin->send(u"three"_s));
    m_link->answerPart(1, 1);
    m_framework->close();
    QCOMPARE(m_plugin->log, (QStringList{u"two 0 part"_s, u"two Closing last"_s, u"three Closing last"_s}));
    QCOMPARE(m_plugin->lastParts.value(&context), 2);
    QVERIFY(!m_plugin->send(u"four"_s));
}

void HostFrameworkTest::destructorAnswersWhatIsOutstanding()
{
    int context = 0;
    QVERIFY(m_plugin->send(u"one"_s, {}, &context));
    m_link->setUp(false);
    QVERIFY(m_plugin->send(u"two"_s, {}, &context));
    m_framework.reset();
    QCOMPARE(m_plugin->log, (QStringList{u"one LinkDown last"_s, u"two Closing last"_s}));
}

void HostFrameworkTest::closedFrameworkIsSilent()
{
    QVERIFY(m_plugin->send(u"one"_s));
    m_framework->close();
    m_plugin->log.clear();
    const QSignalSpy answered(m_framework.get(), &HostFramework::commandAnswered);
    const QSignalSpy delivered(m_framework.get(), &HostFramework::eventDelivered);
    m_link->answer(0, u"0"_s);
    emit m_link->eventReceived({}, {u"VolumeChanged"_s, {}});
    m_link->setUp(false);
    m_link->setUp(true);
    m_framework->close();
    QVERIFY(m_plugin->log.isEmpty());
    QVERIFY(answered.isEmpty());
    QVERIFY(delivered.isEmpty());
    FakePlugin other;
    QVERIFY(!m_framework->attach(&other, u"other"_s));
}

void HostFrameworkTest::commandFromWithinAReply()
{
    m_plugin->duringReply = [this] {
        QVERIFY(m_plugin->send(u"two"_s));
        m_plugin->duringReply = [this] { QVERIFY(m_plugin->send(u"three"_s)); };
    };
    QVERIFY(m_plugin->send(u"one"_s));
    m_link->answer(0, u"0"_s);
    m_link->answer(1, u"0"_s);
    m_link->answer(2, u"0"_s);
    QCOMPARE(m_plugin->log, (QStringList{u"one 0 last"_s, u"two 0 last"_s, u"three 0 last"_s}));
}

void HostFrameworkTest::closeFromWithinAReply()
{
    QVERIFY(m_plugin->send(u"one"_s));
    QVERIFY(m_plugin->send(u"two"_s));
    QVERIFY(m_plugin->send(u"three"_s));
    m_plugin->duringReply = [this] {
        m_framework->close();
        QVERIFY(!m_plugin->send(u"four"_s));
    };
    m_link->setUp(false);
    QCOMPARE(m_plugin->log, (QStringList{u"one LinkDown last"_s, u"two Closing last"_s, u"three Closing last"_s}));
}

void HostFrameworkTest::closeFromWithinASlotOfAPart()
{
    connect(m_framework.get(), &HostFramework::commandAnswered, m_framework.get(), &HostFramework::close);
    QVERIFY(m_plugin->send(u"inParts"_s));
    m_link->answerPart(0, 1);
    QCOMPARE(m_plugin->log, QStringList{u"inParts Closing last"_s});
}

void HostFrameworkTest::pluginEndsWithinAReply()
{
    QVERIFY(m_plugin->send(u"one"_s));
    QVERIFY(m_plugin->send(u"two"_s));
    m_plugin->duringReply = [this] { m_plugin.reset(); };
    const QSignalSpy answered(m_framework.get(), &HostFramework::commandAnswered);
    m_link->setUp(false);
    QVERIFY(!m_plugin);
    QCOMPARE(answered.size(), 1);
    m_link->setUp(true);
}

void HostFrameworkTest::pluginEndsWithinASlot()
{
    QVERIFY(m_plugin->send(u"one"_s));
    connect(m_framework.get(), &HostFramework::commandAnswered, this, [this] { m_plugin.reset(); });
    m_link->answer(0, u"0"_s);
    QVERIFY(!m_plugin);
}

void HostFrameworkTest::endOfThePluginLeavesNothingToDeliver()
{
    m_framework->setReplyTimeout(5ms);
    FakePlugin other;
    QVERIFY(m_framework->attach(&other, u"other"_s));
    for (const QString &command : {u"one"_s, u"two"_s, u"three"_s})
        QVERIFY(m_plugin->send(command));
    const QSignalSpy answered(m_framework.get(), &HostFramework::commandAnswered);
    m_plugin.reset();
    m_link->answerPart(0, 1);
    m_link->answer(1, u"0"_s);
    emit m_link->eventReceived({}, {u"VolumeChanged"_s, {}});
    QVERIFY(other.send(u"four"_s, {}, nullptr, {}, u"other"_s));
    QVERIFY(!other.send(u"five"_s)); // under the identifier of the plug-in that ended
    QTRY_COMPARE(other.log.last(), u"four NoAnswer last"_s); // the limits of the others ended before
    QCOMPARE(answered.size(), 1);
    m_link->setUp(false);
    QVERIFY(!m_framework->GetPluginObject(nullptr, pluginId));

    m_plugin = std::make_unique<FakePlugin>();
    QVERIFY(m_framework->attach(m_plugin.get(), pluginId));
}

void HostFrameworkTest::everyContextComesBackOnce()
{
    m_framework->setReplyTimeout(1h);
    int contexts[8] = {};
    const auto send = [&](int index) { return m_plugin->send(QString::number(index), {}, &contexts[index]); };
    for (int index = 0; index < 4; ++index)
        QVERIFY(send(index));
    m_link->answer(0, u"0"_s);
    m_link->answer(0, u"0"_s);
    m_link->answerPart(1, 1);
    m_link->answerPart(1, 2);
    m_link->answer(1, u"failed"_s);
    m_link->setUp(false); // 2, 3
    QVERIFY(send(4));
    QTRY_COMPARE(m_plugin->lastParts.size(), 5);
    m_link->setUp(true);
    m_link->answer(2, u"0"_s);
    m_framework->setReplyTimeout(5ms);
    QVERIFY(send(5));
    QTRY_COMPARE(m_plugin->lastParts.size(), 6);
    m_link->answer(4, u"0"_s);
    m_framework->setReplyTimeout(1h);
    QVERIFY(send(6));
    m_link->setUp(false);
    QVERIFY(send(7));
    m_framework->close();
    QCoreApplication::processEvents(); // what was queued for a link that is down
    QCOMPARE(m_plugin->lastParts.size(), 8);
    for (int &context : contexts)
        QCOMPARE(m_plugin->lastParts.value(&context), 1);
}

void HostFrameworkTest::eventsReachEveryPlugin()
{
    FakePlugin other;
    QVERIFY(m_framework->attach(&other, u"other"_s));
    other.log.clear();
    QSignalSpy delivered(m_framework.get(), &HostFramework::eventDelivered);
    emit m_link->eventReceived(u"relay-7"_s, {u"VolumeChanged"_s, u"data"_s});
    QCOMPARE(m_plugin->log, QStringList{u"event VolumeChanged data from relay-7"_s});
    QCOMPARE(other.log, m_plugin->log);
    QCOMPARE(delivered.size(), 1);
    QCOMPARE(delivered.front(), (QVariantList{u"VolumeChanged"_s, QVariant(u"data"_s), u"relay-7"_s}));
}

void HostFrameworkTest::repliesReachTheirSenderAlone()
{
    FakePlugin other;
    QVERIFY(m_framework->attach(&other, u"other"_s));
    other.log.clear();
    QVERIFY(other.send(u"mine"_s, {}, nullptr, {}, u"other"_s));
    m_link->answer(0, u"0"_s);
    QCOMPARE(other.log, QStringList{u"mine 0 last"_s});
    QVERIFY(m_plugin->log.isEmpty());
}

void HostFrameworkTest::pluginThatDoesNotInitialiseIsNotAttached()
{
    FakePlugin broken;
    broken.initSucceeds = false;
    QVERIFY(!m_framework->attach(&broken, u"broken"_s));
    QVERIFY(!broken.send(u"getVolume"_s, {}, nullptr, {}, u"broken"_s));
    m_link->setUp(false);
    m_link->setUp(true);
    QVERIFY(broken.log.isEmpty());
    QVERIFY(!m_framework->attach(nullptr, u"none"_s));
}

void HostFrameworkTest::pluginMaySendWhileItInitialises()
{
    FakePlugin eager;
    eager.duringInit = [&eager] { QVERIFY(eager.send(u"early"_s, {}, nullptr, {}, u"eager"_s)); };
    QVERIFY(m_framework->attach(&eager, u"eager"_s));
    m_link->answer(0, u"0"_s);
    QCOMPARE(eager.log, (QStringList{u"connected"_s, u"early 0 last"_s}));
}

void HostFrameworkTest::identifierInUseIsRefused()
{
    FakePlugin second;
    QVERIFY(!m_framework->attach(&second, pluginId));
    QVERIFY(!second.framework);
    QVERIFY(m_plugin->send(u"getVolume"_s));
    m_link->answer(0, u"0"_s);
    QCOMPARE(m_plugin->log, QStringList{u"getVolume 0 last"_s});
}

void HostFrameworkTest::pluginObjectsAreFoundByIdentifier()
{
    auto stations = std::make_unique<QObject>();
    m_framework->addPluginObject(u"stations"_s, stations.get());
    QCOMPARE(m_framework->GetPluginObject(m_plugin->handle, u"stations"_s), stations.get());
    QCOMPARE(m_framework->GetPluginObject(m_plugin->handle, pluginId), m_plugin.get());
    QVERIFY(!m_framework->GetPluginObject(m_plugin->handle, u"nobody"_s));
    stations.reset();
    QVERIFY(!m_framework->GetPluginObject(m_plugin->handle, u"stations"_s));
}

void HostFrameworkTest::answersAreSignalled()
{
    const QSignalSpy answered(m_framework.get(), &HostFramework::commandAnswered);
    qsizetype told = -1;
    connect(m_framework.get(), &HostFramework::commandAnswered, this, [&] { told = m_plugin->log.size(); });
    QVERIFY(m_plugin->send(u"removeRecordingGroup"_s));
    m_link->answerPart(0, 1);
    QCOMPARE(told, 0); // before the plug-in
    m_link->setUp(false);
    QCOMPARE(told, 1);
    QCOMPARE(answered.size(), 2);
    QCOMPARE(answered.at(0), (QVariantList{u"removeRecordingGroup"_s, u"0"_s, QVariant(1), false}));
    QCOMPARE(answered.at(1), (QVariantList{u"removeRecordingGroup"_s, u"LinkDown"_s, QVariant(), true}));
}

QTEST_GUILESS_MAIN(HostFrameworkTest)

#include "tst_host_framework.moc"
