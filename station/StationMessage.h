#pragma once

#include <QMetaType>
#include <QString>
#include <QVariant>

/// What a station is asked to do. The names and the shape of @p data are those of docs/station-protocol.md.
struct StationCommand
{
    QString name;
    QVariant data;
};

/// What a station answers. A command may be answered in several parts; only the last one has @p finish set.
struct StationReply
{
    QString returnCode; ///< "0" for success, else a word of StationReturnCode
    QVariant data;
    bool finish = true;
};

/// What a station says unasked.
struct StationEvent
{
    QString name;
    QVariant data;
};

Q_DECLARE_METATYPE(StationCommand)
Q_DECLARE_METATYPE(StationReply)
Q_DECLARE_METATYPE(StationEvent)
