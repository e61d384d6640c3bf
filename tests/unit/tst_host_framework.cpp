#include "HostSite.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

/// The framework between plug-ins and a link: who gets which command, answer and event.
class HostFrameworkTest : public QObject, private HostSite
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
    void eventsReachEveryPlugin();
    void repliesReachTheirSenderAlone();
    void pluginThatDoesNotInitialiseIsNotAttached();
    void pluginMaySendWhileItInitialises();
    void identifierInUseIsRefused();
    void pluginObjectsAreFoundByIdentifier();
    void answersAreSignalled();
};

void HostFrameworkTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    setUp();
}

void HostFrameworkTest::cleanup()
{
    tearDown();
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
    QVERIFY(!m_framework->attach(&second, FakePlugin::ownId));
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
    QCOMPARE(m_framework->GetPluginObject(m_plugin->handle, FakePlugin::ownId), m_plugin.get());
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
    QCOMPARE(answered.at(1), (QVariantList{u"removeRecordingGroup"_s, u"StationLost"_s, QVariant(), true}));
}

QTEST_GUILESS_MAIN(HostFrameworkTest)
#include "tst_host_framework.moc"
