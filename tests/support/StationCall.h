#pragma once

#include "Station.h"

#include <QTest>

/// One command to a station, and what comes back of it, now or later.
class StationCall
{
public:
    StationCall(Station &station, const QString &name, const QVariant &data)
        : m_parts(std::make_shared<QList<StationReply>>())
    {
        station.handle({name, data}, [parts = m_parts](const StationReply &part) { parts->append(part); });
    }

    bool isAnswered() const { return !m_parts->isEmpty() && m_parts->back().finish; }
    const QList<StationReply> &parts() const { return *m_parts; }

    /// Waits for the answer; a reply without a code when there is none in time.
    StationReply reply() const
    {
        constexpr int patience = 20000; // milliseconds
        if (!QTest::qWaitFor([this] { return isAnswered(); }, patience))
            return {};
        return m_parts->back();
    }

private:
    std::shared_ptr<QList<StationReply>> m_parts;
};
