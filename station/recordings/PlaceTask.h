#pragma once

#include <QString>

/// A place of recordings that no group names, as work on its disk needs it.
struct PlaceTask
{
    qint64 number = 0; ///< of the place, see RecordingPlaces.h
    QString path; ///< that the group had
    QString folder; ///< of the group in it; empty: the path itself
    quint64 device = 0; ///< of the file system that the path was seen on

    QString root() const { return folder.isEmpty() ? path : path + u'/' + folder; }
};
