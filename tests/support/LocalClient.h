#pragma once

#include "LocalEndpoint.h"
#include "link/CommandSender.h"
#include "link/LocalLink.h"
#include "link/StationPresence.h"

#include <QFile>
#include <QHash>
#include <QList>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

/// A client of the station of a folder: its link, and what it was told.
class LocalClient
{
public:
    explicit LocalClient(const QString &folder)
        : m_link(folder, {QStringLiteral("test"), QStringLiteral("1"), {}})
        , m_sender(m_link, CommandSender::Range::Station)
    {
        QObject::connect(&m_link, &StationLink::eventReceived, &m_link,
                         [this](const QString &, const StationEvent &event) {
                             events.append(event.name);
                             lastData.insert(event.name, event.data);
                         });
        QObject::connect(&m_sender, &CommandSender::lateOutcomeCame, &m_link,
                         [this](const LateOutcome &outcome) { outcomes.append(outcome); });
        m_link.start();
    }
    ~LocalClient() { m_sender.close(); }

    void setReplyTimeout(std::chrono::milliseconds timeout) { m_sender.setReplyTimeout(timeout); }

    void send(const QString &command, const QVariant &data = {}, const QString &id = {})
    {
        m_sender.send({}, {command, data, id}, [this](quint64, const StationReply &part) { replies.append(part); });
    }

    QStringList codes() const
    {
        QStringList list;
        for (const StationReply &reply : replies)
            list.append(reply.returnCode);
        return list;
    }

    bool isUp() const { return m_link.isUp(); }
    StationState state() const { return m_link.state({}); }
    StationPresence presence() const { return m_link.stations().constFirst(); }

    QList<StationReply> replies;
    QStringList events;
    QHash<QString, QVariant> lastData; ///< of the last event of each name
    QList<LateOutcome> outcomes;

private:
    LocalLink m_link;
    CommandSender m_sender;
};

/// The process that serves @p folder; 0 where none does.
inline pid_t stationProcess(const QString &folder)
{
    static const QRegularExpression number(QStringLiteral("\\(process (\\d+)\\)"));
    return number.match(stationHolder(folder)).captured(1).toInt();
}

/// Whether no station serves @p folder.
inline bool isFolderFree(const QString &folder)
{
    const int lock = open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool isFree = lock < 0 || flock(lock, LOCK_EX | LOCK_NB) == 0;
    if (lock >= 0)
        close(lock);
    return isFree;
}
