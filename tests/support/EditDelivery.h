#pragma once

#include "Station.h"
#include "StationClient.h"

#include <QStringList>

#include <memory>

/// A command under an id, delivered to a station as a link does it, and the parts that came back so far, as text.
class EditDelivery
{
public:
    EditDelivery(Station &station, const StationCommand &command)
    {
        station.handle(command, [parts = m_parts](const StationReply &part) { parts->append(part); });
    }

    const QList<StationReply> &parts() const { return *m_parts; }
    bool isAnswered() const { return !m_parts->isEmpty() && m_parts->constLast().finish; }
    QString text() const
    {
        QStringList texts;
        for (const StationReply &part : *m_parts)
            texts.append(StationClient::replyText(part));
        return texts.join(u'\n');
    }

private:
    std::shared_ptr<QList<StationReply>> m_parts = std::make_shared<QList<StationReply>>();
};
