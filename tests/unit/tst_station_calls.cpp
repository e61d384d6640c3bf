#include "FakeLink.h"
#include "framework/HostFramework.h"
#include "framework/HostReturnCode.h"
#include "link/StationCalls.h"

#include <QRegularExpression>
#include <QTest>

using namespace std::chrono_literals;

namespace {

/// Writes down what comes back.
class AskingPlugin : public PluginBase
{
public:
    bool InitialPluginBase(QQmlContext *context, void *, FrameworkWrapperBase *) override { return Init(context); }
    bool Init(QQmlContext *) override { return true; }
    void EventProcessor(QString, qint64, int, int, QVariant, const QString &) override { }
    void EventProcessorEx(QString, ConfigBase *, qint64, int, int, QVariant, const QString &) override { }
    void CommandProcessor(QString command, QVariant, void *, QString returnCode, QString, bool,
                          const QString &) override
    {
        replies.append(command + u' ' + returnCode);
    }
    void CommandProcessorEx(QString, ConfigBase *, QVariant, void *, QString, QString, bool, const QString &) override
    {
    }

    QStringList replies;
};

} // namespace

class TestStationCalls : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void commandTravelsAndItsAnswerComesBack();
    void answerInParts();
    void frameworkAndCallsIgnoreEachOther();
    void linkDownIsAnsweredLater();
    void linkGoingDownAnswersWhatIsOutstanding();
    void silentStationIsAnsweredFor();
    void lateAnswerIsDropped();
    void endOfTheContextEndsTheCall();
    void closeAnswersWhatIsOutstanding();
    void closeFromWithinAPart();

private:
    bool send(const QString &command, const QVariant &data = {}, const QString &relayPath = {})
    {
        return m_calls->send(
            command, data, m_context.get(),
            [this, command](const StationReply &part) {
                m_answers.append(QStringList{command, part.returnCode, part.data.toString(),
                                             part.finish ? QStringLiteral("last") : QStringLiteral("more")}
                                     .join(u' '));
            },
            relayPath);
    }

    std::unique_ptr<FakeLink> m_link;
    std::unique_ptr<StationCalls> m_calls;
    std::unique_ptr<QObject> m_context;
    QStringList m_answers;
};

void TestStationCalls::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_calls.reset();
    m_link = std::make_unique<FakeLink>();
    m_calls = std::make_unique<StationCalls>(*m_link);
    m_context = std::make_unique<QObject>();
    m_answers.clear();
}

void TestStationCalls::commandTravelsAndItsAnswerComesBack()
{
    QVERIFY(send("station.addCamera", QVariantMap{{"camName", "Gate"}}, "relay-7"));
    QCOMPARE(m_link->sent.size(), 1);
    const FakeLink::Sent &sent = m_link->sent.first();
    QCOMPARE(sent.command.name, "station.addCamera");
    QCOMPARE(sent.command.data, QVariant(QVariantMap{{"camName", "Gate"}}));
    QCOMPARE(sent.relayPath, "relay-7");
    QCOMPARE(m_answers, QStringList{});
    m_link->answer(0, "CameraExists", "why");
    QCOMPARE(m_answers, QStringList{"station.addCamera CameraExists why last"});
}

void TestStationCalls::answerInParts()
{
    QVERIFY(send("x"));
    m_link->answerPart(0, "a");
    m_link->answerPart(0, "b");
    m_link->answer(0, "0", "c");
    m_link->answer(0, "0", "d");
    QCOMPARE(m_answers, (QStringList{"x 0 a more", "x 0 b more", "x 0 c last"}));
}

void TestStationCalls::frameworkAndCallsIgnoreEachOther()
{
    AskingPlugin plugin;
    HostFramework framework(*m_link);
    QVERIFY(framework.attach(&plugin, "plug-in"));
    QVERIFY(framework.SendCommand(nullptr, "plug-in", "getVolume", {}, nullptr, false, {}));
    QVERIFY(send("station.listCameras"));
    QCOMPARE(m_link->sent.size(), 2);
    QVERIFY(m_link->sent.at(0).correlation != m_link->sent.at(1).correlation);
    QCOMPARE(m_link->sent.at(1).correlation >> 63, 1U);
    m_link->answer(1, "0");
    QCOMPARE(plugin.replies, QStringList{});
    QCOMPARE(m_answers, QStringList{"station.listCameras 0  last"});
    m_link->answer(0, "0");
    QCOMPARE(plugin.replies, QStringList{"getVolume 0"});
    QCOMPARE(m_answers.size(), 1);
}

void TestStationCalls::linkDownIsAnsweredLater()
{
    m_link->setUp(false);
    QVERIFY(send("x"));
    QCOMPARE(m_answers, QStringList{});
    QTRY_COMPARE(m_answers, QStringList{"x LinkDown  last"});
    QVERIFY(m_link->sent.isEmpty());
}

void TestStationCalls::linkGoingDownAnswersWhatIsOutstanding()
{
    QVERIFY(send("x"));
    QVERIFY(send("y"));
    m_link->setUp(false);
    QCOMPARE(m_answers, (QStringList{"x StationLost  last", "y StationLost  last"}));
}

void TestStationCalls::silentStationIsAnsweredFor()
{
    m_calls->setReplyTimeout(1ms);
    QVERIFY(send("x"));
    QTRY_COMPARE(m_answers, QStringList{"x NoAnswer  last"});
}

void TestStationCalls::lateAnswerIsDropped()
{
    m_calls->setReplyTimeout(1ms);
    QVERIFY(send("x"));
    QTRY_COMPARE(m_answers.size(), 1);
    m_link->answer(0, "0");
    QCOMPARE(m_answers.size(), 1);
}

void TestStationCalls::endOfTheContextEndsTheCall()
{
    QVERIFY(send("x"));
    m_link->answerPart(0, "a");
    m_context.reset();
    m_link->answer(0, "0", "b");
    QCOMPARE(m_answers, QStringList{"x 0 a more"});
}

void TestStationCalls::closeAnswersWhatIsOutstanding()
{
    QVERIFY(send("x"));
    m_calls.reset();
    QCOMPARE(m_answers, QStringList{"x Closing  last"});
    m_link->answer(0, "0");
    QCOMPARE(m_answers.size(), 1);
}

void TestStationCalls::closeFromWithinAPart()
{
    m_calls->send("x", {}, m_context.get(), [this](const StationReply &part) {
        m_answers.append(part.returnCode);
        m_calls->close();
        QVERIFY(!send("y"));
    });
    m_link->answerPart(0, {});
    QCOMPARE(m_answers, (QStringList{"0", HostReturnCode::Closing}));
    QCOMPARE(m_link->sent.size(), 1);
}

QTEST_GUILESS_MAIN(TestStationCalls)
#include "tst_station_calls.moc"
