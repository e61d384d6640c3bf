#include "FakeLink.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "framework/HostReturnCode.h"
#include "link/CommandRoute.h"
#include "link/CommandSender.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
StationState state(StationState::Kind kind, bool keepsCommands)
{
    return {kind, u"why"_s, {}, keepsCommands};
}
} // namespace

/// Which station a command goes to, and what becomes of it over a link that keeps commands.
class CommandSenderTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void stationOfACommand_data();
    void stationOfACommand();
    void dataIsTheEnvelopeOfItsStation();
    void theTimeLimitIsTold();
    void keptCommandsAreAnsweredLater();
    void keptCommandsAreLostInTheEnd();
    void unsentCommandsAreRefusedWhenTheStationIsDown();
    void keptEditsAreToldLate();

private:
    int send(const QString &command, const QVariant &data = {}, const QString &relayPath = {})
    {
        const int number = static_cast<int>(m_codes.size());
        m_codes.append(QString());
        m_sender->send(relayPath, {command, data},
                       [this, number](quint64, const StationReply &part) { m_codes[number] += part.returnCode; });
        return number;
    }

    std::unique_ptr<FakeLink> m_link;
    std::unique_ptr<CommandSender> m_sender;
    QStringList m_codes;
};

void CommandSenderTest::init()
{
    m_link = std::make_unique<FakeLink>();
    m_sender = std::make_unique<CommandSender>(*m_link, CommandSender::Range::Station);
    m_codes.clear();
}

void CommandSenderTest::cleanup()
{
    m_sender->close();
    m_sender.reset();
    m_link.reset();
}

void CommandSenderTest::stationOfACommand_data()
{
    QTest::addColumn<QString>("relayPath");
    QTest::addColumn<QString>("command");
    QTest::addColumn<QVariant>("data");
    QTest::addColumn<QString>("station");
    const QVariant map = QVariantMap{{FieldKey::relayPath, u"south"_s}};
    QTest::newRow("nothing") << QString() << ServerCommand::getVolume << QVariant() << QString();
    QTest::newRow("envelope") << u"north"_s << ServerCommand::getVolume << QVariant() << u"north"_s;
    QTest::newRow("data") << QString() << ServerCommand::AddNasServer << map << u"south"_s;
    QTest::newRow("envelope before data") << u"north"_s << ServerCommand::AddNasServer << map << u"north"_s;
    QTest::newRow("text") << QString() << ServerCommand::GetNasServers << QVariant(u"south"_s) << u"south"_s;
    QTest::newRow("another command's text")
        << QString() << ServerCommand::getServerDir << QVariant(u"/a"_s) << QString();
    QTest::newRow("map without") << QString() << ServerCommand::GetNasDir << QVariant(QVariantMap()) << QString();
}

void CommandSenderTest::stationOfACommand()
{
    QFETCH(QString, relayPath);
    QFETCH(QString, command);
    QFETCH(QVariant, data);
    QTEST(stationOf(relayPath, {command, data}), "station");
}

void CommandSenderTest::dataIsTheEnvelopeOfItsStation()
{
    send(ServerCommand::GetNasServers, u"south"_s);
    QCOMPARE(m_link->sent.constLast().relayPath, u"south"_s);
    QCOMPARE(m_link->sent.constLast().command.data, QVariant(u"south"_s));
    send(ServerCommand::getVolume);
    QCOMPARE(m_link->sent.constLast().relayPath, QString());
}

void CommandSenderTest::theTimeLimitIsTold()
{
    m_sender->setReplyTimeout(std::chrono::seconds(7));
    send(ServerCommand::getVolume);
    QCOMPARE(m_link->sent.constLast().command.timeLimit, std::chrono::milliseconds(7000));
}

void CommandSenderTest::keptCommandsAreAnsweredLater()
{
    send(ServerCommand::getVolume);
    m_link->setState(state(StationState::Kind::Connecting, true));
    m_link->setState(state(StationState::Kind::Down, true));
    QCOMPARE(m_codes, QStringList{QString()});
    m_link->setState({StationState::Kind::Up});
    m_link->answer(0, ReturnCode::Success);
    QCOMPARE(m_codes, QStringList{ReturnCode::Success});
}

void CommandSenderTest::keptCommandsAreLostInTheEnd()
{
    send(ServerCommand::getVolume);
    m_link->setState(state(StationState::Kind::Connecting, true));
    m_link->setState(state(StationState::Kind::Down, false));
    QCOMPARE(m_codes, QStringList{HostReturnCode::StationLost});
}

void CommandSenderTest::unsentCommandsAreRefusedWhenTheStationIsDown()
{
    m_link->setState(state(StationState::Kind::Connecting, true));
    send(ServerCommand::getVolume);
    QCOMPARE(m_codes, QStringList{QString()});
    m_link->setState(state(StationState::Kind::Down, true));
    QCOMPARE(m_codes, QStringList{HostReturnCode::LinkDown});
}

void CommandSenderTest::keptEditsAreToldLate()
{
    QSignalSpy late(m_sender.get(), &CommandSender::lateOutcomeCame);
    m_sender->setReplyTimeout(std::chrono::milliseconds(1));
    send(StationCommandName::addCamera);
    QTRY_COMPARE(m_codes, QStringList{HostReturnCode::NoAnswer});
    m_link->setState(state(StationState::Kind::Connecting, true));
    m_link->setState(state(StationState::Kind::Down, true));
    QCOMPARE(late.size(), 0);
    m_link->setState({StationState::Kind::Up});
    m_link->answer(0, ReturnCode::Success);
    QCOMPARE(late.size(), 1);
    QCOMPARE(late.constFirst().constFirst().value<LateOutcome>().returnCode, ReturnCode::Success);
}

QTEST_GUILESS_MAIN(CommandSenderTest)
#include "tst_command_sender.moc"
