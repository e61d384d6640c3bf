#pragma once

#include "MessageStream.h"
#include "StationLink.h"
#include "StationProgram.h"

#include <QDeadlineTimer>
#include <QLocalSocket>
#include <QTimer>

#include <chrono>
#include <deque>

/// The way to the station of a data folder on this machine, a process of its own, which is started where none runs. It
/// is the directly connected one: its events carry the empty relay path.
///
/// A station that dies is started again at once; one that was told to end is not before the next command.
class LocalLink : public StationLink
{
    Q_OBJECT
public:
    LocalLink(QString folder, Client client, QObject *parent = nullptr); ///< @p folder: the station's data
    ~LocalLink() override;

    /// "local:DIR"; "local:" is this user's folder, defaultStationFolder().
    static Kind kind();

    void start() override;
    StationState state(const QString &relayPath) const override;
    QList<StationPresence> stations() const override; ///< with what it said of itself when it was connected last
    QString directStation() const override { return m_relayPath; } ///< known once it is connected
    void send(quint64 correlation, const QString &relayPath, const StationCommand &command) override;

private:
    struct Waiting
    {
        quint64 correlation;
        QString relayPath;
        StationCommand command;
    };

    void connectToStation(bool mayStartIt);
    void connectSocket();
    void connectToNextSocket();
    void takeError(QLocalSocket::LocalSocketError error);
    void takeStart(const QString &error);
    void greet();
    void read();
    void take(const StationMessage &message);
    void welcome(const Welcome &station);
    void tryAgain();
    void retryLater();
    void closeSocket();
    void lose();
    void fail(const QString &reason, bool mayStartIt = true);
    void setState(const StationState &state);
    void write(const Waiting &command);
    void answerLater(quint64 correlation, const QString &returnCode);

    QString m_folder;
    Client m_client;
    StationState m_state;
    QLocalSocket m_socket;
    QStringList m_sockets; // to be tried yet
    MessageStream m_stream;
    StationProgram m_program;
    QTimer m_answerTimer; // for the station's first words
    QTimer m_retryTimer;
    QDeadlineTimer m_attempt;
    std::chrono::milliseconds m_pause;
    std::deque<Waiting> m_waiting;
    QString m_relayPath; // of the station, as are its name and version
    QString m_name;
    QString m_version;
    QDateTime m_since; // it has been in this state
    bool m_mayStart = false;
    bool m_mayRestart = true;
};
