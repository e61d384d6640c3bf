#include "CborVariant.h"

#include <QCborStreamReader>
#include <QCborStreamWriter>
#include <QSequentialIterable>

#include <limits>

namespace {
constexpr auto highestInteger = static_cast<quint64>(std::numeric_limits<qint64>::max());

class Writer
{
public:
    explicit Writer(QByteArray *bytes)
        : m_writer(bytes)
    {
    }

    void write(const QVariant &value)
    {
        if (!value.isValid())
            return m_writer.append(QCborSimpleType::Undefined);
        if (value.isNull())
            return m_writer.append(nullptr);
        switch (value.typeId()) {
        case QMetaType::Nullptr:
            return m_writer.append(nullptr);
        case QMetaType::Bool:
            return m_writer.append(value.toBool());
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::LongLong:
        case QMetaType::Long:
        case QMetaType::Short:
        case QMetaType::UShort:
        case QMetaType::Char:
        case QMetaType::SChar:
        case QMetaType::UChar:
            return m_writer.append(value.toLongLong());
        case QMetaType::ULongLong:
        case QMetaType::ULong:
            return writeUnsigned(value.toULongLong());
        case QMetaType::Double:
        case QMetaType::Float:
            return m_writer.append(value.toDouble());
        case QMetaType::QString:
            return m_writer.append(QStringView(*static_cast<const QString *>(value.constData())));
        case QMetaType::QByteArray:
            return m_writer.append(value.toByteArray());
        case QMetaType::QVariantList:
            return writeList(*static_cast<const QVariantList *>(value.constData()));
        case QMetaType::QVariantMap:
            return writeMap(*static_cast<const QVariantMap *>(value.constData()));
        case QMetaType::QVariantHash:
            return writeMap(*static_cast<const QVariantHash *>(value.constData()));
        default:
            break;
        }
        if (!QMetaType::canConvert(value.metaType(), QMetaType::fromType<QSequentialIterable>())) {
            throw MessageError(QStringLiteral("a value of the type %1 cannot travel to or from a station")
                                   .arg(QLatin1String(value.metaType().name())));
        }
        writeList(value.value<QSequentialIterable>());
    }

private:
    void writeUnsigned(quint64 number)
    {
        if (number <= highestInteger)
            m_writer.append(number);
        else
            m_writer.append(static_cast<double>(number));
    }

    template<typename List>
    void writeList(const List &list)
    {
        m_writer.startArray(static_cast<quint64>(list.size()));
        for (const QVariant &element : list)
            write(element);
        m_writer.endArray();
    }

    template<typename Map>
    void writeMap(const Map &map)
    {
        m_writer.startMap(static_cast<quint64>(map.size()));
        for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
            m_writer.append(QStringView(entry.key()));
            write(entry.value());
        }
        m_writer.endMap();
    }

    QCborStreamWriter m_writer;
};

/// Takes CBOR apart, and counts.
class Reader
{
public:
    Reader(QByteArrayView bytes, const MessageLimits &limits)
        : m_reader(bytes.data(), bytes.size())
        , m_limits(limits)
    {
    }

    QVariant read()
    {
        takeElement();
        switch (m_reader.type()) {
        case QCborStreamReader::UnsignedInteger:
            return unsignedInteger();
        case QCborStreamReader::NegativeInteger:
            return negativeInteger();
        case QCborStreamReader::ByteArray:
            return bytes();
        case QCborStreamReader::String:
            return string();
        case QCborStreamReader::Array:
            return list();
        case QCborStreamReader::Map:
            return map();
        case QCborStreamReader::Tag:
            throw MessageError(QStringLiteral("the message has a tag, which nothing here needs"));
        case QCborStreamReader::SimpleType:
            return simple();
        case QCborStreamReader::Float16:
            return passed(static_cast<double>(static_cast<float>(m_reader.toFloat16())));
        case QCborStreamReader::Float:
            return passed(static_cast<double>(m_reader.toFloat()));
        case QCborStreamReader::Double:
            return passed(m_reader.toDouble());
        case QCborStreamReader::Invalid:
            break;
        }
        fail();
    }

    void requireEnd(qsizetype size) const
    {
        if (m_reader.currentOffset() != size)
            throw MessageError(QStringLiteral("bytes follow the message"));
    }

private:
    [[noreturn]] void fail()
    {
        throw MessageError(m_reader.lastError() == QCborError::EndOfFile
                               ? QStringLiteral("the message ends in the middle")
                               : QStringLiteral("no CBOR: %1").arg(m_reader.lastError().toString()));
    }

    void require(bool isTrue)
    {
        if (!isTrue || m_reader.lastError() != QCborError::NoError)
            fail();
    }

    void takeElement()
    {
        require(m_reader.isValid());
        if (++m_elements > m_limits.elements)
            failForElements();
    }

    [[noreturn]] void failForElements() const
    {
        throw MessageError(QStringLiteral("the message has more than %1 elements").arg(m_limits.elements));
    }

    /// Nobody here writes strings and containers in pieces.
    void requireStated() const
    {
        if (!m_reader.isLengthKnown())
            throw MessageError(QStringLiteral("a length in the message is not stated"));
    }

    /// @p value, with the reader behind it.
    QVariant passed(const QVariant &value)
    {
        require(m_reader.next(1));
        return value;
    }

    QVariant unsignedInteger()
    {
        const quint64 number = m_reader.toUnsignedInteger();
        return passed(number <= highestInteger ? QVariant(static_cast<qint64>(number))
                                               : QVariant(static_cast<double>(number)));
    }

    QVariant negativeInteger()
    {
        const quint64 below = static_cast<quint64>(m_reader.toNegativeInteger()) - 1; // -1 is 0 here
        return passed(below <= highestInteger ? QVariant(-1 - static_cast<qint64>(below))
                                              : QVariant(-1 - static_cast<double>(below)));
    }

    QVariant simple()
    {
        switch (const QCborSimpleType type = m_reader.toSimpleType()) {
        case QCborSimpleType::False:
        case QCborSimpleType::True:
            return passed(type == QCborSimpleType::True);
        case QCborSimpleType::Null:
            return passed(QVariant::fromValue(nullptr));
        case QCborSimpleType::Undefined:
            return passed({});
        }
        return passed(QVariant::fromValue(m_reader.toSimpleType()));
    }

    QString string()
    {
        requireStated();
        const auto text = m_reader.readString();
        require(text.status == QCborStreamReader::Ok);
        require(m_reader.readString().status == QCborStreamReader::EndOfString);
        return text.data;
    }

    QByteArray bytes()
    {
        requireStated();
        const auto found = m_reader.readByteArray();
        require(found.status == QCborStreamReader::Ok);
        require(m_reader.readByteArray().status == QCborStreamReader::EndOfString);
        return found.data;
    }

    void enter()
    {
        if (++m_depth > m_limits.depth)
            throw MessageError(QStringLiteral("the message is nested deeper than %1").arg(m_limits.depth));
        requireStated();
        if (m_reader.length() > static_cast<quint64>(m_limits.elements))
            failForElements();
        require(m_reader.enterContainer());
    }

    void leave()
    {
        require(m_reader.leaveContainer());
        --m_depth;
    }

    QVariantList list()
    {
        QVariantList list;
        enter();
        while (m_reader.hasNext())
            list.append(read());
        leave();
        return list;
    }

    QVariantMap map()
    {
        QVariantMap map;
        enter();
        while (m_reader.hasNext()) {
            const QString name = key();
            const qsizetype known = map.size();
            map.insert(map.cend(), name, read()); // they come in their order, mostly
            if (map.size() == known)
                throw MessageError(QStringLiteral("a key stands twice in a map of the message"));
        }
        leave();
        return map;
    }

    QString key()
    {
        takeElement();
        if (!m_reader.isString())
            throw MessageError(QStringLiteral("a key in the message is no text"));
        return string();
    }

    QCborStreamReader m_reader;
    const MessageLimits &m_limits;
    qsizetype m_elements = 0;
    int m_depth = 0;
};

} // namespace

QByteArray cborFromVariant(const QVariant &value)
{
    QByteArray bytes;
    Writer(&bytes).write(value);
    return bytes;
}

QVariant variantFromCbor(QByteArrayView bytes, const MessageLimits &limits)
{
    if (bytes.size() > limits.bytes) {
        throw MessageError(
            QStringLiteral("the message has %1 bytes; at most %2 are taken").arg(bytes.size()).arg(limits.bytes));
    }
    Reader reader(bytes, limits);
    QVariant value = reader.read();
    reader.requireEnd(bytes.size());
    return value;
}
