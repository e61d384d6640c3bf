#include "HostSite.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// The end of the framework or of a plug-in, from within a reply too.
class HostFrameworkEndTest : public QObject, private HostSite
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void closeAnswersWhatIsOutstanding();
    void destructorAnswersWhatIsOutstanding();
    void closedFrameworkIsSilent();
    void commandFromWithinAReply();
    void closeFromWithinAReply();
    void closeFromWithinASlotOfAPart();
    void pluginEndsWithinAReply();
    void pluginEndsWithinASlot();
    void endOfThePluginLeavesNothingToDeliver();
};

void HostFrameworkEndTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    setUp();
}

void HostFrameworkEndTest::cleanup()
{
    tearDown();
}

void HostFrameworkEndTest::closeAnswersWhatIsOutstanding()
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

void HostFrameworkEndTest::destructorAnswersWhatIsOutstanding()
{
    int context = 0;
    QVERIFY(m_plugin->send(u"one"_s, {}, &context));
    m_link->setUp(false);
    QVERIFY(m_plugin->send(u"two"_s, {}, &context));
    m_framework.reset();
    QCOMPARE(m_plugin->log, (QStringList{u"one StationLost last"_s, u"two Closing last"_s}));
}

void HostFrameworkEndTest::closedFrameworkIsSilent()
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

void HostFrameworkEndTest::commandFromWithinAReply()
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

void HostFrameworkEndTest::closeFromWithinAReply()
{
    QVERIFY(m_plugin->send(u"one"_s));
    QVERIFY(m_plugin->send(u"two"_s));
    QVERIFY(m_plugin->send(u"three"_s));
    m_plugin->duringReply = [this] {
        m_framework->close();
        QVERIFY(!m_plugin->send(u"four"_s));
    };
    m_link->setUp(false);
    QCOMPARE(m_plugin->log, (QStringList{u"one StationLost last"_s, u"two Closing last"_s, u"three Closing last"_s}));
}

void HostFrameworkEndTest::closeFromWithinASlotOfAPart()
{
    connect(m_framework.get(), &HostFramework::commandAnswered, m_framework.get(), &HostFramework::close);
    QVERIFY(m_plugin->send(u"inParts"_s));
    m_link->answerPart(0, 1);
    QCOMPARE(m_plugin->log, QStringList{u"inParts Closing last"_s});
}

void HostFrameworkEndTest::pluginEndsWithinAReply()
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

void HostFrameworkEndTest::pluginEndsWithinASlot()
{
    QVERIFY(m_plugin->send(u"one"_s));
    connect(m_framework.get(), &HostFramework::commandAnswered, this, [this] { m_plugin.reset(); });
    m_link->answer(0, u"0"_s);
    QVERIFY(!m_plugin);
}

void HostFrameworkEndTest::endOfThePluginLeavesNothingToDeliver()
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
    QVERIFY(!m_framework->GetPluginObject(nullptr, FakePlugin::ownId));

    m_plugin = std::make_unique<FakePlugin>();
    QVERIFY(m_framework->attach(m_plugin.get(), FakePlugin::ownId));
}

QTEST_GUILESS_MAIN(HostFrameworkEndTest)
#include "tst_host_framework_end.moc"
