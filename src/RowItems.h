#pragma once

#include <QHash>
#include <QList>
#include <QStandardItem>
#include <QVariant>

#include <array>
#include <exception>
#include <functional>
#include <initializer_list>
#include <memory>

class QObject;
class QStandardItemModel;

/// A row of an item model: a single item whose values stand under the roles of ItemRoles.h.
using RowItem = std::unique_ptr<QStandardItem>;

/// Makes the rows of one kind. The roles are laid out once, in a first item with the values that most rows share; every
/// row is a copy of it, in which only the other values are set.
class RowMaker
{
public:
    struct Cell
    {
        int role = 0;
        QVariant value = {}; ///< of a row that brings none of its own
    };

    explicit RowMaker(std::initializer_list<Cell> cells);

    /// A row with @p values in the order of the cells; an invalid or missing one leaves the cell's own. Throws
    /// std::bad_alloc.
    template<typename... Values>
    RowItem row(const Values &...values)
    {
        RowItem item = copyOfFirst();
        std::size_t cell = 0;
        (setValue(*item, cell++, values), ...);
        return item;
    }

private:
    RowItem copyOfFirst();
    void setValue(QStandardItem &item, std::size_t cell, const QVariant &value) const;

    static constexpr std::size_t mostCells = 9;

    std::array<Cell, mostCells> m_cells; // not allocated: without memory a row is lost, not the reply
    std::size_t m_count;
    RowItem m_first; // made with the first row
};

// What the rows of each model hold, in the order in which RowMaker::row() takes the values.

RowMaker volumeRows(); ///< id, path, name, size, available size, is system (false), is NAS (false)
RowMaker recordingGroupRows(); ///< id, name, path, node-id and NAS path lists, then four figures (0)
RowMaker nasServerRows(); ///< id, host, log-on domain, user name, password
RowMaker directoryRows(); ///< the folder's name, twice
RowMaker treeStationRows(); ///< name, IP address, relay path, type, id
RowMaker treeGroupRows(); ///< id, name, relay path, group id

/// The rows of one reply, gathered first and then appended in one insertion, so that a bound view hears of them once.
/// Rows that were not appended are freed.
class RowBatch
{
public:
    RowBatch() = default;
    RowBatch(RowBatch &&) noexcept = default;
    RowBatch &operator=(RowBatch &&) = delete;
    ~RowBatch() { qDeleteAll(m_rows); }

    /// Takes what @p make returns as the next row, or nothing where it returns none; false when memory ran out.
    template<typename Make>
    bool add(Make make) noexcept
    {
        try {
            if (RowItem row = make()) {
                m_rows.append(row.get());
                row.release();
            }
            return true;
        } catch (const std::exception &) {
            return false;
        }
    }

    /// Appends what was gathered below the item that @p parent names, which is asked again after every signal. Rows
    /// that cannot be appended together are appended one by one.
    ///
    /// @return how many rows were lost for want of memory or of a parent
    /// Throws what a slot throws; the rows are in the model then.
    int append(const std::function<QStandardItem *()> &parent);
    /// As above, at the top of @p model; a missing model takes no row.
    int append(QStandardItemModel *model);

private:
    int appendOneByOne(const std::function<QStandardItem *()> &parent) noexcept;

    QList<QStandardItem *> m_rows; // owned
};

/// Removes all rows; the role names stay. A missing model is left alone. Throws what a slot throws, or std::bad_alloc;
/// then the rows may be there still.
void clearRows(QStandardItemModel *model);

/// A model without rows whose roles have @p roleNames; null when memory ran out.
QStandardItemModel *newListModel(const QHash<int, QByteArray> &roleNames, QObject *parent) noexcept;
