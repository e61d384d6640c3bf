#include "MqttBody.h"

#include "CborVariant.h"
#include "Deflate.h"

#include <QJsonDocument>
#include <QJsonObject>

const QString ContentType::Cbor = QStringLiteral("application/cbor");
const QString ContentType::DeflatedCbor = QStringLiteral("application/cbor+deflate");
const QString ContentType::Json = QStringLiteral("application/json");

namespace {
void requireSize(qsizetype size, const MessageLimits &limits)
{
    if (size > limits.bytes)
        throw MessageError(QStringLiteral("the message has %1 bytes; at most %2 travel").arg(size).arg(limits.bytes));
}

QVariantMap mapFromJson(const QByteArray &bytes)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError)
        throw MessageError(QStringLiteral("no JSON: %1").arg(error.errorString()));
    if (!document.isObject())
        throw MessageError(QStringLiteral("a message has to be an object"));
    return document.object().toVariantMap();
}
} // namespace

std::optional<BodyForm> bodyForm(const QString &contentType)
{
    if (contentType.isEmpty() || contentType == ContentType::Cbor || contentType == ContentType::DeflatedCbor)
        return BodyForm::Cbor;
    if (contentType == ContentType::Json)
        return BodyForm::Json;
    return {};
}

MqttBody encodeBody(const QVariantMap &map, BodyForm form, const MessageLimits &limits)
{
    QByteArray cbor = cborFromVariant(map); // of JSON, too: the same types travel in both
    requireSize(cbor.size(), limits);
    if (form == BodyForm::Json)
        return {QJsonDocument(QJsonObject::fromVariantMap(map)).toJson(QJsonDocument::Compact), ContentType::Json};
    if (cbor.size() <= deflateAbove)
        return {cbor, ContentType::Cbor};
    return {deflated(cbor), ContentType::DeflatedCbor};
}

QVariantMap decodeBody(const QByteArray &bytes, const QString &contentType, const MessageLimits &limits)
{
    const std::optional<BodyForm> form = bodyForm(contentType);
    if (!form)
        throw MessageError(QStringLiteral("the content type \"%1\" is not known").arg(contentType.left(80)));
    requireSize(bytes.size(), limits);
    if (form == BodyForm::Json)
        return mapFromJson(bytes);
    const bool isDeflated = contentType == ContentType::DeflatedCbor;
    const QVariant value = variantFromCbor(isDeflated ? inflated(bytes, limits.bytes) : bytes, limits);
    if (value.typeId() != QMetaType::QVariantMap)
        throw MessageError(QStringLiteral("a message has to be a map"));
    return value.toMap();
}
