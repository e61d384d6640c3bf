#include "StationCalls.h"

#include <QPointer>

#include <utility>

StationCalls::StationCalls(StationLink &link, QObject *parent)
    : QObject(parent)
    , m_sender(link, CommandSender::Range::Station)
{
    connect(&m_sender, &CommandSender::lateOutcomeCame, this, &StationCalls::lateOutcomeCame);
}

StationCalls::~StationCalls()
{
    close();
}

void StationCalls::setReplyTimeout(std::chrono::milliseconds timeout)
{
    m_sender.setReplyTimeout(timeout);
}

void StationCalls::setDescribe(const CommandSender::Describe &describe)
{
    m_sender.setDescribe(describe);
}

bool StationCalls::send(const QString &command, const QVariant &data, QObject *context, const OnPart &onPart,
                        const QString &relayPath)
{
    Q_ASSERT(context);
    if (m_closed)
        return false;
    m_sender.send(relayPath, {command, data}, [asker = QPointer(context), onPart](quint64, const StationReply &part) {
        if (asker)
            onPart(part);
    });
    return true;
}

void StationCalls::close()
{
    if (!std::exchange(m_closed, true))
        m_sender.close();
}
