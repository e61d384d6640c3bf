#include "ReplyFields.h"

#include <cstring>

namespace {

template<typename Type>
const Type *held(const QVariant &value)
{
    return value.metaType() == QMetaType::fromType<Type>() ? static_cast<const Type *>(value.constData()) : nullptr;
}

} // namespace

bool sameText(const QString &left, const QString &right)
{
    return left.size() == right.size()
        && std::memcmp(left.constData(), right.constData(), static_cast<std::size_t>(left.size()) * sizeof(QChar)) == 0;
}

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

RecordReader::RecordReader(std::initializer_list<const QString *> keys)
{
    for (const QString *key : keys)
        add(*key);
}

std::size_t RecordReader::add(const QString &key)
{
    for (std::size_t i = 0; i < m_count; ++i) {
        if (*m_fields[i].key == key)
            return m_fields[i].position;
    }
    Q_ASSERT(m_count < mostKeys);
    std::size_t place = m_count;
    for (; place > 0 && key < *m_fields[place - 1].key; --place)
        m_fields[place] = m_fields[place - 1];
    m_fields[place] = {&key, m_count};
    m_values[m_count] = &m_missing;
    return m_count++;
}

void RecordReader::read(const QVariant &record)
{
    const QVariantMap &map = mapIn(record, m_converted);
    auto entry = map.cbegin();
    for (std::size_t i = 0; i < m_count; ++i) {
        const Field &field = m_fields[i];
        auto found = entry;
        while (found != map.cend() && !sameText(found.key(), *field.key))
            ++found;
        if (found == map.cend()) {
            m_values[field.position] = &m_missing;
            continue;
        }
        m_values[field.position] = &*found;
        entry = ++found;
    }
}
