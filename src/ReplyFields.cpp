#include "ReplyFields.h"

#include <QStringList>

#include <algorithm>

namespace {

template<typename Type>
const Type *held(const QVariant &value)
{
    return value.metaType() == QMetaType::fromType<Type>() ? static_cast<const Type *>(value.constData()) : nullptr;
}

// A typed null is no value of its type yet.
template<typename Type>
bool holds(const QVariant &value)
{
    return held<Type>(value) && !value.isNull();
}

} // namespace

const QVariantMap &mapIn(const QVariant &value, QVariantMap &converted)
{
    if (const auto *map = held<QVariantMap>(value))
        return *map;
    converted = value.toMap();
    return converted;
}

const QVariant &fieldIn(const QVariantMap &record, const QString &key)
{
    static const QVariant missing;
    const auto field = record.constFind(key);
    return field == record.cend() ? missing : *field;
}

const QString &textIn(const QVariant &value, QString &converted)
{
    if (const auto *text = held<QString>(value))
        return *text;
    converted = value.toString();
    return converted;
}

QVariant asText(const QVariant &value)
{
    return holds<QString>(value) ? value : QVariant(value.toString());
}

QVariant asNumber(const QVariant &value)
{
    return holds<qlonglong>(value) ? value : QVariant(value.toLongLong());
}

QVariant asTextList(const QVariant &value)
{
    return holds<QStringList>(value) ? value : QVariant(value.toStringList());
}

QVariant trueOrNothing(const QVariant &value)
{
    return value.toBool() ? QVariant(true) : QVariant();
}

RecordReader::RecordReader(std::initializer_list<const QString *> keys)
{
    Q_ASSERT(keys.size() <= mostKeys);
    for (const QString *key : keys) {
        m_fields[m_count] = {key, m_count};
        ++m_count;
    }
    std::sort(m_fields.begin(), m_fields.begin() + m_count,
              [](const Field &left, const Field &right) { return *left.key < *right.key; });
}

void RecordReader::read(const QVariant &record)
{
    const QVariantMap &map = mapIn(record, m_converted);
    auto entry = map.cbegin();
    for (std::size_t i = 0; i < m_count; ++i) {
        const Field &field = m_fields[i];
        auto found = entry;
        while (found != map.cend() && found.key() != *field.key)
            ++found;
        m_values[field.position] = found == map.cend() ? &m_missing : &*found;
        if (found != map.cend())
            entry = ++found;
    }
}
