#pragma once

#include "FakeLink.h"
#include "link/StationPresence.h"

#include <QDateTime>
#include <QMap>

/// A link to many stations, all of which the test plays: each has a state of its own.
class FakeSite : public StationLink
{
public:
    using Sent = FakeLink::Sent;

    void start() override { }
    StationState state(const QString &relayPath) const override { return m_stations.value(pathOf(relayPath)).state; }
    QList<StationPresence> stations() const override { return m_stations.values(); }
    QString directStation() const override { return m_direct; }

    bool setDirectStation(const QString &relayPath) override
    {
        if (!m_stations.contains(relayPath))
            return false;
        if (m_direct != relayPath) {
            m_direct = relayPath;
            emit directStationChanged(relayPath);
        }
        return true;
    }

    void send(quint64 correlation, const QString &relayPath, const StationCommand &command) override
    {
        sent.append({correlation, pathOf(relayPath), command}); // under the station's own path
    }

    /// The test's first station is the directly connected one.
    void setState(const QString &relayPath, StationState::Kind kind, const QDateTime &since = {})
    {
        if (m_direct.isEmpty())
            m_direct = relayPath;
        StationPresence &presence = m_stations[relayPath];
        presence.relayPath = relayPath;
        presence.name = QStringLiteral("Station %1").arg(relayPath);
        presence.address = QStringLiteral("%1.site.example").arg(relayPath);
        presence.version = QStringLiteral("1.0");
        presence.state = {kind, kind == StationState::Kind::Down ? QStringLiteral("It was ended.") : QString()};
        presence.since = since;
        emit presenceChanged(relayPath);
        if (relayPath == m_direct)
            emit stateChanged({}, presence.state);
        emit stateChanged(relayPath, presence.state);
    }

    void answer(int index, const QString &returnCode, const QVariant &data = {})
    {
        emit replyReceived(sent.at(index).correlation, {returnCode, data});
    }

    /// The commands of that name that a station was sent, by their place in sent.
    QList<int> sentTo(const QString &relayPath, const QString &command) const
    {
        QList<int> places;
        for (int place = 0; place < sent.size(); ++place) {
            if (sent.at(place).relayPath == relayPath && sent.at(place).command.name == command)
                places.append(place);
        }
        return places;
    }

    QList<Sent> sent;

private:
    QString pathOf(const QString &relayPath) const { return relayPath.isEmpty() ? m_direct : relayPath; }

    QMap<QString, StationPresence> m_stations;
    QString m_direct;
};
