#pragma once

#include "files/OpenFile.h"

#include <QString>

/// A socket that clients connect to, or what was in the way.
struct ListeningSocket
{
    OpenFile descriptor;
    QString path;
    QString error; ///< an English sentence
};

/// Makes the socket of the station of @p folder, for this user alone. The caller holds the folder's lock: a socket that
/// is there is one that a station left.
ListeningSocket listenFor(const QString &folder);

/// Whether a station of @p folder takes clients at the moment.
bool isListening(const QString &folder);

/// The name of the user with the number @p user, or the number.
QString userName(unsigned int user);

/// Who is at the other end of a connected local socket.
struct Peer
{
    QString name; ///< of the user
    bool isAllowed = false; ///< this user, or root
};
Peer peerOf(qintptr descriptor);
