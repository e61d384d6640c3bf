#pragma once

#include <QVariant>
#include <QVariantMap>

#include <array>
#include <initializer_list>

/// Replies and events are lists of records, records are maps. These read them where they stand: nothing is copied that
/// has the expected type, everything else is converted as QVariant converts it.

/// left == right, without QString's comparison, which can sort and costs more.
bool sameText(const QString &left, const QString &right);

/// The map in @p value; @p converted keeps what a conversion made.
const QVariantMap &mapIn(const QVariant &value, QVariantMap &converted);

/// The value of @p key; an invalid one where the record lacks it.
const QVariant &fieldIn(const QVariantMap &record, const QString &key);

/// The text in @p value; @p converted keeps what a conversion made.
const QString &textIn(const QVariant &value, QString &converted);

/// Reads the same fields out of one record after the other, each record in one walk along its keys. It allocates
/// nothing unless a record has to be converted.
class RecordReader
{
public:
    static constexpr std::size_t mostKeys = 8;

    RecordReader() = default;
    /// @param keys not owned; at most mostKeys, in any order
    RecordReader(std::initializer_list<const QString *> keys);

    /// Reads @p key, too; not owned. Returns its position; a key that is read already keeps the one it has.
    std::size_t add(const QString &key);

    /// Takes @p record, a map, as the next one; it must live as long as its values are asked for.
    void read(const QVariant &record);

    /// The value of the key that was added at @p position; an invalid one where the record lacks it.
    const QVariant &operator[](std::size_t position) const { return *m_values[position]; }

private:
    struct Field
    {
        const QString *key;
        std::size_t position;
    };

    std::size_t m_count = 0;
    std::array<Field, mostKeys> m_fields; // in the order of maps
    std::array<const QVariant *, mostKeys> m_values; // not owned
    QVariantMap m_converted;
    QVariant m_missing;
};
