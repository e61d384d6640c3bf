#pragma once

#include "usage/UsageFigures.h"

#include <string>

/// What reading a tree of recordings costs without a station.

/// The bytes of all files below @p path: every folder listed and every file asked for its size, as the system's calls
/// do it, and nothing kept.
qint64 walk(const std::string &path);

/// Days with their files and bytes, by the group's folder: Qt's iterator over everything below @p path.
QMap<QString, DaySums> readPlainly(const QString &path);
