#pragma once

#include "alarms/StationTrouble.h"

#include <QDate>
#include <QDateTime>
#include <QList>
#include <QString>

#include <functional>
#include <optional>

/// Whether the machine's clock can be believed: it is held against the latest time that the station ever saw, which the
/// file "latest-time" in its data folder keeps, and against the days of the recordings.
class ClockWatch
{
public:
    using Now = std::function<QDateTime()>;

    /// @param folder of the station's data
    /// @param now empty: the machine's clock
    ClockWatch(const QString &folder, Now now);

    /// Takes up what the clock says now. Nothing is written before there is a data folder.
    /// @param newest day of all recordings that are not of the future; invalid without one
    void look(const QDate &newest);

    /// The clock was ahead of what it says now: which days are over is not known.
    bool isBehind() const { return m_isBehind; }
    QList<StationTrouble> troubles() const;

private:
    QDateTime stored() const;
    void store(const QDateTime &time);

    QString m_file;
    Now m_now;
    std::optional<QDateTime> m_latest; // none: not looked yet; invalid: the station is new
    QDateTime m_stored;
    QDateTime m_seen; // by the last look
    QDate m_newest;
    bool m_isBehind = false;
    bool m_isAhead = false;
};
