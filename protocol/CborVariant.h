#pragma once

#include "MessageCodec.h"

#include <QVariant>

/// @p value as CBOR. Throws MessageError where a type in it cannot travel; see encodeMessage().
QByteArray cborFromVariant(const QVariant &value);

/// The value that @p bytes are; the reverse. Throws MessageError unless they are one well-formed CBOR value within
/// @p limits, with text keys in every map and none of them twice. Sets no memory aside for what the bytes only claim.
QVariant variantFromCbor(QByteArrayView bytes, const MessageLimits &limits);
