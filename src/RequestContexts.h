#pragma once

#include <QString>
#include <QVariantMap>

/// Travels with an "AddNasServer" command; the handler of its reply destroys it.
struct AddNASServerContext
{
    QString host;
    QString logonDomain;
    QString userName;
    QString password;
    QString requestId; ///< tells a reply to the newest add from a stale one
};

/// Travels with "UpdateNASServer" and "RemoveNASServer": a copy of the request. The handler of the reply destroys it.
using NASServerRequestContext = QVariantMap;

/// Travels with "getRecordingGroup": the id of the request. The handler of a successful reply destroys it.
using RequestIdContext = QString;

/// Travels with a "GetNasCapacity" that shall add the path to the volumes: the path. The handler destroys it.
using NASPathContext = QString;
