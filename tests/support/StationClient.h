#pragma once

#include "FakeVolumes.h"
#include "Station.h"
#include "TypedText.h"

#include <QTest>

/// A station in a folder of a test's own, asked as its link does.
class StationClient
{
public:
    StationClient(const QString &dataFolder, const QList<Volume> &volumes, const QString &relayPath = {})
        : m_station(StationSettings{dataFolder, relayPath, std::make_unique<FakeVolumes>(volumes)})
    {
    }

    /// Every part of the reply.
    QList<StationReply> parts(const QString &command, const QVariant &data = {})
    {
        QList<StationReply> parts;
        m_station.handle({command, data}, [&parts](const StationReply &part) { parts.append(part); });
        return parts;
    }

    /// The reply; "not one part" as its code where it comes in several.
    StationReply ask(const QString &command, const QVariant &data = {})
    {
        const QList<StationReply> all = parts(command, data);
        return all.size() == 1 && all.front().finish ? all.front() : StationReply{QStringLiteral("not one part"), {}};
    }

    /// The reply as text, with its types: "code data".
    QString text(const QString &command, const QVariant &data = {}) { return replyText(ask(command, data)); }

    static QString replyText(const StationReply &reply)
    {
        return reply.returnCode + u' ' + typedText(reply.data) + (reply.finish ? QString() : QStringLiteral(" ..."));
    }

private:
    Station m_station;
};
