#include "RequestFingerprint.h"

#include "ServerVocabulary.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QIODevice>
#include <QVariantList>
#include <QVariantMap>

#include <cmath>

namespace {
enum Kind : quint8 { Nothing, Map, List, Boolean, Whole, Fraction, Text, Other };

void write(QDataStream &stream, const QVariant &value);

void writeNumber(QDataStream &stream, const QVariant &value)
{
    constexpr double limit = 9007199254740992.0; // up to here doubles have every whole number
    const double number = value.toDouble();
    const bool isFloating = value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float;
    if (isFloating && !(std::trunc(number) == number && std::abs(number) <= limit))
        stream << Fraction << number;
    else
        stream << Whole << value.toLongLong();
}

void writeMap(QDataStream &stream, const QVariantMap &map)
{
    stream << Map;
    for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
        if (entry.key() == FieldKey::password)
            continue;
        stream << Text << entry.key();
        write(stream, *entry);
    }
    stream << Nothing;
}

void writeList(QDataStream &stream, const QVariantList &list)
{
    stream << List << qint64(list.size());
    for (const QVariant &entry : list)
        write(stream, entry);
}

void write(QDataStream &stream, const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
        stream << Nothing;
        break;
    case QMetaType::QVariantMap:
        writeMap(stream, value.toMap());
        break;
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        writeList(stream, value.toList());
        break;
    case QMetaType::Bool:
        stream << Boolean << value.toBool();
        break;
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
        writeNumber(stream, value);
        break;
    case QMetaType::QString:
        stream << Text << value.toString();
        break;
    default: // no command takes it
        stream << Other << QByteArray(value.typeName()) << value.toString();
    }
}
} // namespace

QByteArray requestFingerprint(const StationCommand &command)
{
    QByteArray text;
    QDataStream stream(&text, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_4);
    stream << command.name;
    write(stream, command.data);
    return QCryptographicHash::hash(text, QCryptographicHash::Sha256);
}
