#pragma once

#include "VolumeSource.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

/// A recording group of the sample site. Every camera has one stream.
struct SampleGroup
{
    QString name;
    QStringList cameras;
    int reservedDays = 0;
    int recordedDays = 0; ///< today is the last of them
    qint64 reservedMegabytes = 0;
    qint64 bytesPerDay = 0; ///< of all its cameras together, about
};

/// A recorded file of the sample site.
struct SampleFile
{
    QString name;
    qint64 bytes = 0;
    QDateTime writtenAt;
};

/// The groups of the sample site for a station that records onto @p volume: whatever the size of that is, they have
/// room for some weeks, but for one that is short of its reserved days.
QList<SampleGroup> sampleGroups(const Volume &volume);

/// The files of one camera of @p group on the day @p date, one for each hour that began before @p now. The same for the
/// same @p seed.
QList<SampleFile> sampleFiles(const SampleGroup &group, const QDate &date, const QDateTime &now, quint32 seed);
