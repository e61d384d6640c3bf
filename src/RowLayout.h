#pragma once

#include "ReplyFields.h"
#include "RowIds.h"
#include "RowItems.h"

#include <QVariant>

#include <memory>
#include <vector>

/// What one role of a row holds.
struct RowField
{
    enum Value {
        NewIdText, ///< an identifier made for the row, as text
        NewId, ///< an identifier made for the row, QUuid
        Text, ///< the record's value as QString
        Number, ///< the record's value as qlonglong
        Flag, ///< the record's value as bool
        TextList, ///< the record's value as QStringList
        AsItIs, ///< the record's value, of whatever type; invalid where the record lacks it
        Constant, ///< the same in every row
    };

    int role;
    Value value;
    const QString *key = nullptr; ///< in the record; not owned, null where the record is not asked
    QVariant constant = {};
};

/// The roles of a row, in the order in which they are stored; at most RecordReader::mostKeys of them have a key, each
/// another one.
using RowLayout = std::vector<RowField>;

const RowLayout &volumeRow(); ///< of a "getVolume" reply
const RowLayout &groupVolumeRow(); ///< of a "VolumeChanged" event
const RowLayout &recordingGroupRow(); ///< of a "getRecordingGroup" reply; figures are 0
const RowLayout &nasServerRow(); ///< of a "GetNasServers" reply
const RowLayout &treeGroupRow(); ///< a recording group below its station

/// Makes the rows of one reply out of its records.
///
/// The roles are laid out once, in a first item that each row is a copy of: only what varies is set.
class RowMaker
{
public:
    explicit RowMaker(const RowLayout &layout);

    /// A row out of @p record, a map; null when memory ran out.
    RowItem row(const QVariant &record) noexcept;

    /// What reads the records, for who needs more of a record than its row: read one with it, then make the row.
    RecordReader &record() { return m_record; }
    /// A row out of the record that was read last; null when memory ran out.
    RowItem row() noexcept;

private:
    const QStandardItem *pattern();
    void fill(QStandardItem &item, const RowField &field, const QVariant &value);

    const RowLayout &m_layout; // not owned
    RecordReader m_record; // the keys of the layout first, in its order
    RowItem m_pattern;
    RowIds m_ids;
};
