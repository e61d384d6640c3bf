#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>

#include <chrono>
#include <functional>

/// How the station finds and tells its usage figures.
struct UsageSettings
{
    /// The backup area, `<backup folder>/<camera folder>/<yyyy-mm-dd>/file`; empty: the station has none.
    QString backupFolder = {};
    /// The least time between two events that tell of a change.
    std::chrono::milliseconds tellInterval = std::chrono::seconds(1);
    /// How often the volumes are looked at.
    std::chrono::milliseconds volumeInterval = std::chrono::seconds(5);
    /// How often NAS servers are asked for the capacity of the groups' paths on them.
    std::chrono::milliseconds nasInterval = std::chrono::minutes(1);
    /// How often the newest recordings on NAS servers are counted.
    std::chrono::milliseconds nasRecordingsInterval = std::chrono::minutes(5);
    /// How often all recordings on NAS servers are.
    std::chrono::milliseconds nasFullInterval = std::chrono::hours(24);
    /// How long changes in folders are gathered before the folders are read.
    std::chrono::milliseconds settleTime = std::chrono::milliseconds(300);
    /// How long folders are read before the reading thread looks for what else there is to do.
    std::chrono::milliseconds sliceTime = std::chrono::milliseconds(50);
    /// How long a run through the folders lasts before its progress is told, and how often it is told then.
    std::chrono::milliseconds progressInterval = std::chrono::milliseconds(500);
    /// After what time a database that failed is tried again at first; later pauses grow.
    std::chrono::milliseconds retryTime = std::chrono::seconds(1);
    /// How long the reading of one folder may take until the folder counts as not answering.
    std::chrono::milliseconds folderPatience = std::chrono::seconds(5);
    /// How often it is looked whether a sample of the figures is missing.
    std::chrono::milliseconds historyInterval = std::chrono::minutes(1);
    /// The day that is not over yet; empty: the machine's.
    std::function<QDate()> today = {};
    /// What the clock says; empty: the machine's.
    std::function<QDateTime()> now = {};
};
