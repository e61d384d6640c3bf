#pragma once

#include <QDateTime>

#include <chrono>
#include <functional>

/// How long the station keeps what it did, and by which clock.
struct RecordSettings
{
    /// How long the id of an edit and its answer are kept.
    std::chrono::milliseconds requestAge = std::chrono::hours(24);
    /// How long activity and past alarms are kept.
    std::chrono::milliseconds activityAge = std::chrono::hours(24 * 365);
    /// Of each of them no more than that; the oldest go first.
    qint64 mostRows = 100'000;
    /// How often what is too old is removed, from the start on.
    std::chrono::milliseconds pruneInterval = std::chrono::hours(24);
    /// What the clock says, in UTC; empty: the machine's.
    std::function<QDateTime()> now = {};

    QDateTime currentTime() const { return now ? now().toUTC() : QDateTime::currentDateTimeUtc(); }
};
