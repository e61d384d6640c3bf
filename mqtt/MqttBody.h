#pragma once

#include "MessageCodec.h"

#include <QByteArray>
#include <QVariantMap>

#include <optional>

/// How a body is written.
enum class BodyForm {
    Cbor, ///< as encodeMessage() writes values, deflated where it is large
    Json, ///< for those who look by hand; never deflated
};

/// The payload of a message, and the content type that says how it is to be read.
struct MqttBody
{
    QByteArray bytes;
    QString contentType;
};

/// The content types of MQTT 5 that are known.
namespace ContentType {
extern const QString Cbor; ///< "application/cbor"; where a message names none, it is this
extern const QString DeflatedCbor; ///< "application/cbor+deflate": the same in the zlib format (RFC 1950)
extern const QString Json; ///< "application/json"
} // namespace ContentType

/// CBOR above this size, in bytes, is deflated.
constexpr qsizetype deflateAbove = 1024;

/// The form that @p contentType names; none where it is unknown.
std::optional<BodyForm> bodyForm(const QString &contentType);

/// @p map as the body of a message. Throws MessageError where a type in it cannot travel, and where it would be larger
/// than @p limits allow.
MqttBody encodeBody(const QVariantMap &map, BodyForm form = BodyForm::Cbor, const MessageLimits &limits = {});

/// The map in @p bytes. Throws MessageError where they are something else, or more than @p limits allow, also while
/// they are inflated.
QVariantMap decodeBody(const QByteArray &bytes, const QString &contentType, const MessageLimits &limits = {});
