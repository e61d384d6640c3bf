#pragma once

#include <QByteArray>
#include <QByteArrayView>

/// @p bytes in the zlib format (RFC 1950).
QByteArray deflated(QByteArrayView bytes);

/// What was deflated to @p bytes. Throws MessageError where they are no zlib stream, where bytes follow it, and where
/// it would have more than @p limit bytes: no more than that is ever set aside.
QByteArray inflated(QByteArrayView bytes, qsizetype limit);
