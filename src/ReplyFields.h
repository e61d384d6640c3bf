#pragma once

#include <QVariant>
#include <QVariantMap>

#include <array>
#include <initializer_list>

/// Replies and events are lists of records, records are maps. These read them in place: a value of the expected type is
/// not copied, any other is converted as QVariant converts it.

/// The map in @p value; @p converted keeps what a conversion made.
const QVariantMap &mapIn(const QVariant &value, QVariantMap &converted);

/// The value of @p key; an invalid one where the record lacks it.
const QVariant &fieldIn(const QVariantMap &record, const QString &key);

/// The text in @p value; @p converted keeps what a conversion made.
const QString &textIn(const QVariant &value, QString &converted);

// Values for rows. Each holds a value of its type, whatever @p value holds.

QVariant asText(const QVariant &value); ///< QString
QVariant asNumber(const QVariant &value); ///< qlonglong
QVariant asTextList(const QVariant &value); ///< QStringList
QVariant trueOrNothing(const QVariant &value); ///< true, or invalid where the value is false

/// Reads the same fields out of one record after the other, each record in one walk along its keys. It allocates
/// nothing unless a record has to be converted.
class RecordReader
{
public:
    static constexpr std::size_t mostKeys = 11;

    /// @param keys not owned; at most mostKeys, different ones, in any order
    RecordReader(std::initializer_list<const QString *> keys);

    /// Takes @p record, a map, as the next one; it must live as long as its values are asked for.
    void read(const QVariant &record);

    /// The value of the key at @p position of the constructor's list; an invalid one where the record lacks it.
    const QVariant &operator[](std::size_t position) const { return *m_values[position]; }

private:
    struct Field
    {
        const QString *key;
        std::size_t position;
    };

    std::size_t m_count = 0;
    std::array<Field, mostKeys> m_fields = {}; // in the order of maps
    std::array<const QVariant *, mostKeys> m_values = {}; // not owned
    QVariantMap m_converted;
    QVariant m_missing;
};
