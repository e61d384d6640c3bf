#pragma once

#include <QDateTime>
#include <QString>
#include <QVariantMap>

/// What an edit was about; what does not apply is empty.
struct ActivitySubject
{
    QString groupId; ///< empty also where there is no such group yet
    QString groupName;
    QString object; ///< a camera's name, a NAS server's host, a folder's path
};

/// An edit that somebody asked for, and what came of it. Never a password.
struct Activity
{
    qint64 number = 0; ///< rises with each; 0: it could not be kept
    QDateTime time; ///< when it was answered
    QString client;
    QString user;
    QString command;
    ActivitySubject subject;
    QString returnCode;
    qint64 duration = 0; ///< milliseconds
};

/// As "station.listActivity" and "station.ActivityAdded" have it.
QVariantMap activityMap(const Activity &activity);
/// As a line of the station's log.
QString activityLine(const Activity &activity);
