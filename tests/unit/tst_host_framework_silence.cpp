#include "HostSite.h"
#include "ServerVocabulary.h"
#include "framework/HostReturnCode.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// The framework answers for a station that is silent, or that no link leads to.
class HostFrameworkSilenceTest : public QObject, private HostSite
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void silentStationIsAnsweredFor();
    void lateAnswerIsDropped();
    void lateOutcomeOfAnEditIsTold();
    void lateOutcomeOfAnEditInParts_data();
    void lateOutcomeOfAnEditInParts();
    void anEditInTimeHasNoLateOutcome();
    void aLostStationEndsTheWaitForAnOutcome();
    void anEditThatWasNeverSentIsTold();
    void nobodyHearsOfAnOutcomeAfterTheEnd();
    void partRestartsTheTimeLimit();
    void silenceAfterAPartIsAnsweredFor();
    void laterTimeLimitIsWatchedToo();
    void shorterTimeLimitHoldsForTheNextCommand();
    void timeLimitIsAtLeastOneMillisecond();
    void linkDownIsAnsweredLater();
    void aCommandMayWaitForTheStation();
    void linkGoingDownAnswersWhatIsOutstanding();
    void commandSentWhileTheLinkGoesDownIsAnswered();
    void everyConnectionIsTold();
    void connectionIsToldAtOnceWhenTheLinkIsUp();
    void everyContextComesBackOnce();

private:
    void sendEditAndGiveUp();
};

void HostFrameworkSilenceTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    setUp();
}

void HostFrameworkSilenceTest::cleanup()
{
    tearDown();
}

void HostFrameworkSilenceTest::silentStationIsAnsweredFor()
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

void HostFrameworkSilenceTest::lateAnswerIsDropped()
{
    m_framework->setReplyTimeout(5ms);
    const QSignalSpy outcomes(m_framework.get(), &HostFramework::lateOutcomeCame);
    QVERIFY(m_plugin->send(u"getVolume"_s));
    QTRY_COMPARE(m_plugin->log.size(), 1);
    m_link->answerPart(0, 1);
    m_link->answer(0, u"0"_s);
    QCOMPARE(m_plugin->log, QStringList{u"getVolume NoAnswer last"_s});
    QVERIFY(outcomes.isEmpty()); // it changes nothing
}

/// An edit, and the answer that there is none.
void HostFrameworkSilenceTest::sendEditAndGiveUp()
{
    m_framework->setReplyTimeout(5ms);
    QVERIFY(m_plugin->send(ServerCommand::removeRecordingGroup, u"Gate"_s));
    QTRY_COMPARE(m_plugin->log.size(), 1);
    QCOMPARE(m_plugin->log, QStringList{u"removeRecordingGroup NoAnswer last"_s});
}

void HostFrameworkSilenceTest::lateOutcomeOfAnEditIsTold()
{
    QSignalSpy outcomes(m_framework.get(), &HostFramework::lateOutcomeCame);
    m_framework->setDescribe([](const StationCommand &command) { return u"about "_s + command.data.toString(); });
    const QDateTime before = QDateTime::currentDateTimeUtc();
    sendEditAndGiveUp();
    QVERIFY(outcomes.isEmpty());
    m_link->answer(0, u"0"_s);
    QCOMPARE(outcomes.size(), 1);
    auto outcome = outcomes.front().front().value<LateOutcome>();
    QVERIFY(outcome.timedOutAt >= before && outcome.timedOutAt <= QDateTime::currentDateTimeUtc());
    outcome.timedOutAt = {};
    QCOMPARE(outcome, (LateOutcome{ServerCommand::removeRecordingGroup, u"about Gate"_s, {}, {}, u"0"_s, false}));
    m_link->answer(0, u"0"_s); // once too often
    QCOMPARE(outcomes.size(), 1);
    QCOMPARE(m_plugin->log.size(), 1); // it was told that there is no answer
}

void HostFrameworkSilenceTest::lateOutcomeOfAnEditInParts_data()
{
    QTest::addColumn<QStringList>("inTime");
    QTest::addColumn<QStringList>("late");
    QTest::addColumn<QString>("returnCode");
    QTest::addColumn<bool>("isDoneInPart");
    QTest::newRow("refused") << QStringList{} << QStringList{u"A"_s} << u"A"_s << false;
    QTest::newRow("all refused") << QStringList{} << QStringList{u"A"_s, u"B"_s} << u"A"_s << false;
    QTest::newRow("all done") << QStringList{u"0"_s} << QStringList{u"0"_s, u"0"_s} << u"0"_s << false;
    QTest::newRow("the last refused") << QStringList{u"0"_s} << QStringList{u"A"_s} << u"A"_s << true;
    QTest::newRow("the first refused") << QStringList{u"A"_s} << QStringList{u"0"_s} << u"A"_s << true;
}

void HostFrameworkSilenceTest::lateOutcomeOfAnEditInParts()
{
    QFETCH(const QStringList, inTime);
    QFETCH(const QStringList, late);
    QSignalSpy outcomes(m_framework.get(), &HostFramework::lateOutcomeCame);
    m_framework->setReplyTimeout(5ms);
    QVERIFY(m_plugin->send(ServerCommand::removeRecordingGroup));
    for (const QString &returnCode : inTime)
        m_link->answer(0, returnCode, {}, false);
    QTRY_COMPARE(m_plugin->log.size(), inTime.size() + 1);
    for (qsizetype part = 0; part < late.size(); ++part) {
        QVERIFY(outcomes.isEmpty());
        m_link->answer(0, late.at(part), {}, part == late.size() - 1);
    }
    QCOMPARE(outcomes.size(), 1);
    const auto outcome = outcomes.front().front().value<LateOutcome>();
    QTEST(outcome.returnCode, "returnCode");
    QTEST(outcome.isDoneInPart, "isDoneInPart");
}

void HostFrameworkSilenceTest::anEditInTimeHasNoLateOutcome()
{
    const QSignalSpy outcomes(m_framework.get(), &HostFramework::lateOutcomeCame);
    m_framework->setReplyTimeout(1h);
    QVERIFY(m_plugin->send(ServerCommand::removeRecordingGroup));
    m_link->answer(0, u"0"_s);
    m_link->answer(0, u"0"_s);
    QVERIFY(outcomes.isEmpty());
}

void HostFrameworkSilenceTest::aLostStationEndsTheWaitForAnOutcome()
{
    QSignalSpy outcomes(m_framework.get(), &HostFramework::lateOutcomeCame);
    sendEditAndGiveUp();
    m_link->setState({StationState::Kind::Connecting});
    QCOMPARE(outcomes.size(), 1);
    QCOMPARE(outcomes.front().front().value<LateOutcome>().returnCode, HostReturnCode::StationLost);
    m_link->setUp(true);
    m_link->answer(0, u"0"_s); // of another command under this number
    QCOMPARE(outcomes.size(), 1);
}

void HostFrameworkSilenceTest::anEditThatWasNeverSentIsTold()
{
    QSignalSpy outcomes(m_framework.get(), &HostFramework::lateOutcomeCame);
    m_link->setState({StationState::Kind::Connecting});
    sendEditAndGiveUp();
    QVERIFY(outcomes.isEmpty());
    m_link->setState({StationState::Kind::Down});
    QCOMPARE(outcomes.size(), 1);
    QCOMPARE(outcomes.front().front().value<LateOutcome>().returnCode, HostReturnCode::LinkDown);

    m_link->setState({StationState::Kind::Connecting});
    m_plugin->log.clear();
    sendEditAndGiveUp();
    m_link->setState({StationState::Kind::Up}); // now it is sent
    m_link->setState({StationState::Kind::Down});
    QCOMPARE(outcomes.size(), 2);
    QCOMPARE(outcomes.back().front().value<LateOutcome>().returnCode, HostReturnCode::StationLost);
}

void HostFrameworkSilenceTest::nobodyHearsOfAnOutcomeAfterTheEnd()
{
    const QSignalSpy outcomes(m_framework.get(), &HostFramework::lateOutcomeCame);
    sendEditAndGiveUp();
    m_framework->close();
    m_link->answer(0, u"0"_s);
    m_link->setUp(false);
    QVERIFY(outcomes.isEmpty());
}

void HostFrameworkSilenceTest::partRestartsTheTimeLimit()
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

void HostFrameworkSilenceTest::silenceAfterAPartIsAnsweredFor()
{
    m_framework->setReplyTimeout(5ms);
    QVERIFY(m_plugin->send(u"inParts"_s));
    m_link->answerPart(0, 1);
    const QStringList expected{u"inParts 0 part"_s, u"inParts NoAnswer last"_s};
    QTRY_COMPARE(m_plugin->log, expected);
}

void HostFrameworkSilenceTest::laterTimeLimitIsWatchedToo()
{
    m_framework->setReplyTimeout(5ms);
    QVERIFY(m_plugin->send(u"hasty"_s));
    m_framework->setReplyTimeout(50ms);
    QVERIFY(m_plugin->send(u"patient"_s));
    QTRY_COMPARE(m_plugin->log, (QStringList{u"hasty NoAnswer last"_s, u"patient NoAnswer last"_s}));
}

void HostFrameworkSilenceTest::shorterTimeLimitHoldsForTheNextCommand()
{
    m_framework->setReplyTimeout(1h);
    QVERIFY(m_plugin->send(u"patient"_s));
    m_framework->setReplyTimeout(5ms);
    QVERIFY(m_plugin->send(u"hasty"_s));
    QTRY_COMPARE(m_plugin->log, QStringList{u"hasty NoAnswer last"_s});
}

void HostFrameworkSilenceTest::timeLimitIsAtLeastOneMillisecond()
{
    m_framework->setReplyTimeout(-1s);
    QVERIFY(m_plugin->send(u"getVolume"_s));
    QVERIFY(m_plugin->log.isEmpty());
    QTRY_COMPARE(m_plugin->log, QStringList{u"getVolume NoAnswer last"_s});
}

void HostFrameworkSilenceTest::linkDownIsAnsweredLater()
{
    m_link->setUp(false);
    int context = 0;
    QVERIFY(m_plugin->send(u"getVolume"_s, {}, &context));
    QVERIFY(m_plugin->log.isEmpty());
    QTRY_COMPARE(m_plugin->log, QStringList{u"getVolume LinkDown last"_s});
    QCOMPARE(m_plugin->replies.front().context, &context);
    QVERIFY(m_link->sent.isEmpty());
}

void HostFrameworkSilenceTest::aCommandMayWaitForTheStation()
{
    m_link->setUp(false);
    QVERIFY(m_plugin->send(u"getVolume"_s));
    m_link->setUp(true);
    QCOMPARE(m_link->sent.size(), 1);
    m_link->answer(0, u"0"_s);
    QCOMPARE(m_plugin->log, (QStringList{u"connected"_s, u"getVolume 0 last"_s}));
}

void HostFrameworkSilenceTest::linkGoingDownAnswersWhatIsOutstanding()
{
    QVERIFY(m_plugin->send(u"one"_s));
    QVERIFY(m_plugin->send(u"two"_s));
    QVERIFY(m_plugin->send(u"three"_s));
    m_link->answer(1, u"0"_s);
    m_link->setUp(false);
    m_link->answer(0, u"0"_s);
    m_link->answer(2, u"0"_s);
    QCOMPARE(m_plugin->log, (QStringList{u"two 0 last"_s, u"one StationLost last"_s, u"three StationLost last"_s}));
}

void HostFrameworkSilenceTest::commandSentWhileTheLinkGoesDownIsAnswered()
{
    QVERIFY(m_plugin->send(u"one"_s));
    QVERIFY(m_plugin->send(u"two"_s));
    m_plugin->duringReply = [this] { QVERIFY(m_plugin->send(u"again"_s)); };
    m_link->setUp(false);
    const QStringList expected{u"one StationLost last"_s, u"two StationLost last"_s, u"again LinkDown last"_s};
    QTRY_COMPARE(m_plugin->log, expected);
}

void HostFrameworkSilenceTest::everyConnectionIsTold()
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

void HostFrameworkSilenceTest::connectionIsToldAtOnceWhenTheLinkIsUp()
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

void HostFrameworkSilenceTest::everyContextComesBackOnce()
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

QTEST_GUILESS_MAIN(HostFrameworkSilenceTest)
#include "tst_host_framework_silence.moc"
