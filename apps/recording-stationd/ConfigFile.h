#pragma once

#include "StationConfig.h"

#include <QByteArray>

#include <stdexcept>

/// A configuration file that cannot be used: "FILE:LINE: what is wrong, what was expected".
class ConfigError : public std::runtime_error
{
public:
    explicit ConfigError(const QString &text)
        : std::runtime_error(text.toStdString())
    {
    }
    QString text() const { return QString::fromUtf8(what()); }
};

/// The configuration in the lines of @p bytes, UTF-8: "key = value", or a comment that begins with "#". A "#" within a
/// value belongs to it. Throws ConfigError for a key that is unknown or comes twice, and for a bad value.
/// @param file the name that errors give
StationConfig parseConfig(const QByteArray &bytes, const QString &file);

/// The configuration in @p file. Throws ConfigError, also where the file cannot be read.
StationConfig readConfig(const QString &file);
