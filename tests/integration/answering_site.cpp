#include "FakeSite.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "Tool.h"

#include <QTimer>

namespace {

/// The figures of a station with one group, Yard, that is short of its ten days unless it has @p recorded of them.
QVariantList figures(int recorded)
{
    return {QVariantMap{{FieldKey::recordingGroupID, QStringLiteral("1")},
                        {FieldKey::recordingGroupName, QStringLiteral("Yard")},
                        {FieldKey::recordingGroupReservedTime, 10 * 1440},
                        {FieldKey::recordingPath, QStringLiteral("/srv")},
                        {FieldKey::volumeName, QStringLiteral("Disk")},
                        {FieldKey::volumeSize, 100'000},
                        {FieldKey::volumeAvailableSize, 2048},
                        {FieldKey::volumeOneDayUsage, 1024 * 1024},
                        {FieldKey::volumeRecordedDays, recorded}}};
}

/// A site of twelve stations that are up, "yard-1" to "yard-12", and one, "gate", that was ended. "yard-2" is short of
/// days and takes no cameras, "yard-3" has told no figures.
class AnsweringSite : public FakeSite
{
public:
    explicit AnsweringSite(const QString &station)
        : m_first(station)
    {
    }

    void start() override
    {
        setState(m_first, StationState::Kind::Connecting);
        QTimer::singleShot(0, this, [this] {
            const QDateTime since = QDateTime::fromString(QStringLiteral("2026-03-20T12:00:00Z"), Qt::ISODate);
            setState(QStringLiteral("gate"), StationState::Kind::Down, since);
            for (int number = 1; number <= 12; ++number)
                setState(QStringLiteral("yard-%1").arg(number), StationState::Kind::Up, since);
            for (int number = 1; number <= 12; ++number) {
                if (number != 3)
                    tell(QStringLiteral("yard-%1").arg(number), number == 2 ? 3 : 8);
            }
            tell(QStringLiteral("gate"), 9);
        });
    }

    void send(quint64 correlation, const QString &relayPath, const StationCommand &command) override
    {
        const QString station = relayPath.isEmpty() ? directStation() : relayPath;
        QTimer::singleShot(0, this, [this, correlation, station, command] {
            const bool isRefused = command.name == StationCommandName::addCamera && station == QStringLiteral("yard-2");
            if (isRefused)
                emit replyReceived(correlation, {StationReturnCode::CameraExists, {}});
            else
                emit replyReceived(correlation, {ReturnCode::Success, answerTo(command)});
        });
    }

private:
    void tell(const QString &station, int recorded)
    {
        emit eventReceived(station, {ServerEvent::VolumeChanged, figures(recorded)});
    }

    static QVariant answerTo(const StationCommand &command)
    {
        if (command.name == StationCommandName::listAlarms)
            return QVariantMap{{StationKey::alarms, QVariantList()}, {StationKey::pending, QVariantList()}};
        if (command.name == StationCommandName::listCameras)
            return QVariantList{QVariantMap{{FieldKey::camName, QStringLiteral("Gate")}, {StationKey::streams, 1}}};
        return QVariantList();
    }

    QString m_first;
};

} // namespace

/// recordingctl, the whole of it, with that site: "site:ID".
int main(int argc, char **argv)
{
    ClientSession::Options options;
    options.pluginFolders = QStringList{QStringLiteral(PLUGIN_FOLDER)};
    const auto open = [](const QString &place, const StationLink::Client &client, QString *) {
        return std::make_unique<AnsweringSite>(client.station.isEmpty() ? place : client.station);
    };
    options.linkKinds = {{QStringLiteral("site"), QStringLiteral("site:ID"), open}};
    return runTool(argc, argv, options);
}
