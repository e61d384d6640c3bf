#pragma once

#include <QDateTime>
#include <QMetaType>
#include <QString>
#include <QVariant>

#include <chrono>

/// What a station is asked to do. The names and the shape of @p data are those of docs/station-protocol.md.
struct StationCommand
{
    QString name; ///< as in a vocabulary
    QVariant data; ///< invalid: none
    /// The sender's own name for this command, unique among all: an edit that arrives twice under it takes effect once
    /// and is answered twice alike. Empty: each arrival is a command of its own.
    QString id = {};
    QString client = {}; ///< the program that sends it, as it calls itself; may be empty
    /// On whose behalf it runs: told by the station's side of a link, of the operating system where the client is on
    /// the same machine, else as the broker knows it. Empty: unknown.
    QString user = {};
    /// How long its sender waits for an answer; 0: it does not say. Known on the sender's side alone.
    std::chrono::milliseconds timeLimit{0};
};

/// What a station answers. A command may be answered in several parts; only the last one has @p finish set.
struct StationReply
{
    QString returnCode; ///< ReturnCode::Success, else a word that says why not
    QVariant data; ///< invalid: none
    bool finish = true; ///< no other part follows
};

/// What a station says unasked.
struct StationEvent
{
    QString name; ///< as in a vocabulary
    QVariant data; ///< invalid: none
    QDateTime at = {}; ///< when it was said, in UTC; over a broker, which may keep it for a while; else invalid
};

Q_DECLARE_METATYPE(StationCommand)
Q_DECLARE_METATYPE(StationReply)
Q_DECLARE_METATYPE(StationEvent)
