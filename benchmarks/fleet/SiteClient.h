#pragma once

#include "ClientSession.h"
#include "ConsoleSession.h"
#include "ConsoleSettings.h"

#include <QHash>
#include <QJsonObject>
#include <QObject>
#include <QQmlApplicationEngine>
#include <QSet>
#include <QString>
#include <QTimer>

#include <memory>

/// A client of a site, with or without the console's window, that tells what it goes through in lines of JSON:
/// "started" when it begins to connect, "inView" whenever it has figures of all stations, of now and in the plug-in's
/// models, and what the words of obey() ask for.
class SiteClient : public QObject
{
    Q_OBJECT
public:
    struct Options
    {
        QString url;
        int stations = 1;
        bool hasWindow = false;
    };

    explicit SiteClient(const Options &options);
    ~SiteClient() override;

    /// Throws std::runtime_error where it fails.
    void start();

    /// "begin" and "end": measure in between. "edit": adds a camera to some station ten times a second; "finish": no
    /// more, and "finished" follows when the last one is answered. "check": whether each station has each camera that
    /// it was said to have, once; "checked" follows.
    void obey(const QString &word);

private:
    struct Load
    {
        double wall = 0;
        double cpu = 0;
        double resident = 0;
        double heap = 0;
        qint64 events = 0;
    };

    void openWindow();
    void takeEvent(const QString &event, const QString &source);
    QString stationsWithoutRows() const;
    void tick();
    Load load() const;
    void end();
    void sendEdit();
    void reportFinished();
    void check();

    Options m_options;
    std::unique_ptr<ClientSession> m_session;
    std::unique_ptr<ConsoleSession> m_console;
    ConsoleSettings m_settings{QString()};
    std::unique_ptr<QQmlApplicationEngine> m_engine;
    QSet<QString> m_heard; // stations, since the connection came up
    qint64 m_events = 0;

    QTimer m_pulse; // comes late where a turn of the event loop is long
    double m_lastTick = 0;
    double m_lastTickCpu = 0;
    double m_longestTurn = 0;
    double m_longestTurnCpu = 0;
    Load m_begin;

    QTimer m_editTimer;
    int m_sent = 0;
    int m_outstanding = 0;
    bool m_isFinishing = false;
    QHash<QString, int> m_codes;
    QHash<QString, QStringList> m_acknowledged; // cameras, by station
};
