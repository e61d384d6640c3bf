#include "HeapWatch.h"
#include "ItemRoles.h"
#include "RowItems.h"

#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

#include <new>
#include <stdexcept>

namespace {

// The whole row, roles without a value included.
QMap<int, QVariant> stored(RowItem item)
{
    QStandardItemModel model;
    model.appendRow(item.release());
    return model.itemData(model.index(0, 0));
}

void add(RowBatch &rows, const QString &name)
{
    QVERIFY(rows.add([&] { return directoryRows().row(name, name); }));
}

QStringList names(const QStandardItemModel &model)
{
    QStringList names;
    for (int row = 0; row < model.rowCount(); ++row)
        names.append(model.index(row, 0).data(DirectoryRole::Name).toString());
    return names;
}

} // namespace

/// Rows hold what they are given, and a batch of them is appended or freed, whatever happens meanwhile.
class RowItemsTest : public QObject
{
    Q_OBJECT

private slots:
    void valuesStandInTheOrderOfTheCells();
    void defaultsStayWhereNothingIsGiven();
    void invalidValuesAreStoredToo();
    void typesAndNullsAreKept();
    void rowsAreIndependent();
    void failedFirstItemCostsOneRow();
    void failedCopyCostsOneRow();
    void batchIsOneInsertion();
    void missingParentLosesEveryRow();
    void parentMayGoWhileItsColumnIsMade_data();
    void parentMayGoWhileItsColumnIsMade();
    void slotThatThrowsBeforeTheInsertion_data();
    void slotThatThrowsBeforeTheInsertion();
    void slotThatThrowsAfterTheInsertion();
    void clearingIsCompletedWhenItIsBrokenOff();
    void clearingEndsWithTheRowsWhenASlotThrows();
};

void RowItemsTest::valuesStandInTheOrderOfTheCells()
{
    RowMaker maker = volumeRows();
    const QMap<int, QVariant> row =
        stored(maker.row("{1}", "D:/Rec", "Data", qlonglong(100), qlonglong(40), true, true));
    const QMap<int, QVariant> expected{
        {VolumeRole::Id, "{1}"},
        {VolumeRole::RootPath, "D:/Rec"},
        {VolumeRole::Name, "Data"},
        {VolumeRole::Size, qlonglong(100)},
        {VolumeRole::AvailableSize, qlonglong(40)},
        {VolumeRole::IsSystem, true},
        {VolumeRole::IsNas, true},
    };
    QCOMPARE(row, expected);
}

void RowItemsTest::defaultsStayWhereNothingIsGiven()
{
    RowMaker volumes = volumeRows();
    stored(volumes.row("{1}", "D:/", "", 1, 1, true));
    const QMap<int, QVariant> volume = stored(volumes.row("{2}", "E:/", "", 1, 1, QVariant()));
    QCOMPARE(volume.value(VolumeRole::IsSystem), QVariant(false)); // true was one row's alone
    QCOMPARE(volume.value(VolumeRole::IsNas), QVariant(false));

    const QMap<int, QVariant> group = stored(recordingGroupRows().row("{1}", "North"));
    for (const int role :
         {RecordingGroupRole::PathList, RecordingGroupRole::NodeIdList, RecordingGroupRole::NasPathList})
        QCOMPARE(group.value(role), QVariant(QStringList()));
    for (const int role :
         {RecordingGroupRole::RecordedDays, RecordingGroupRole::RemainDays, RecordingGroupRole::ReserveTime})
        QCOMPARE(group.value(role), QVariant(0));
    QCOMPARE(group.value(RecordingGroupRole::OneDayUsage), QVariant(qlonglong(0)));
}

void RowItemsTest::invalidValuesAreStoredToo()
{
    const QMap<int, QVariant> row = stored(treeGroupRows().row("id", QVariant(), "st1", QVariant()));
    QCOMPARE(
        row.keys(),
        (QList<int>{TreeRole::Id, TreeRole::Name, TreeRole::RelayPath, TreeRole::Type, TreeRole::RecordingGroupId}));
    QVERIFY(!row.value(TreeRole::Name).isValid());
    QVERIFY(!row.value(TreeRole::RecordingGroupId).isValid());
    QCOMPARE(row.value(TreeRole::Type), QVariant("RecordingGroup"));
}

void RowItemsTest::typesAndNullsAreKept()
{
    RowMaker maker = treeGroupRows();
    for (const QVariant &value : {QVariant(5), QVariant("5"), QVariant(QString()), QVariant(""),
                                  QVariant(QMetaType::fromType<QString>()), QVariant::fromValue(nullptr)}) {
        const QVariant actual = stored(maker.row("id", value)).value(TreeRole::Name);
        QCOMPARE(actual.metaType().name(), value.metaType().name());
        QCOMPARE(actual, value);
        QCOMPARE(actual.isNull(), value.isNull());
        QCOMPARE(actual.toString().isNull(), value.toString().isNull());
    }
}

void RowItemsTest::rowsAreIndependent()
{
    RowMaker maker = volumeRows();
    const RowItem first = maker.row("{1}", "/a", "", 1);
    const RowItem second = maker.row("{2}", "/b", "", 2);
    first->setData("changed", VolumeRole::Name);
    QCOMPARE(first->data(VolumeRole::RootPath), QVariant("/a"));
    QCOMPARE(second->data(VolumeRole::RootPath), QVariant("/b"));
    QCOMPARE(second->data(VolumeRole::Name), QVariant(""));
}

void RowItemsTest::failedFirstItemCostsOneRow()
{
    RowMaker maker = volumeRows();
    RowBatch rows;
    const QVariant path = "/a";
    const auto make = [&] { return maker.row(path, path); };
    {
        const AllocationFailure failure(0, AllocationFailure::Kind::Throwing);
        QVERIFY(!rows.add(make));
        QVERIFY(failure.happened());
    }
    QVERIFY(rows.add(make));
}

void RowItemsTest::failedCopyCostsOneRow()
{
    RowMaker maker = volumeRows();
    RowBatch rows;
    const QVariant path = "/a";
    const auto make = [&] { return maker.row(path, path); };
    QVERIFY(rows.add(make));
    {
        const AllocationFailure failure(0, AllocationFailure::Kind::Throwing, sizeof(QStandardItem));
        QVERIFY(!rows.add(make));
        QVERIFY(failure.happened());
    }
    QVERIFY(rows.add(make));
    QStandardItemModel model;
    QCOMPARE(rows.append(&model), 0);
    QCOMPARE(model.rowCount(), 2);
}

void RowItemsTest::batchIsOneInsertion()
{
    QStandardItemModel model;
    QSignalSpy insertions(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    RowBatch rows;
    add(rows, "a");
    add(rows, "b");
    QCOMPARE(rows.append(&model), 0);
    QCOMPARE(rows.append(&model), 0); // they are gone
    QCOMPARE(names(model), (QStringList{"a", "b"}));
    QCOMPARE(insertions.size(), 1);
    QCOMPARE(changes.size(), 0);
}

void RowItemsTest::missingParentLosesEveryRow()
{
    RowBatch rows;
    add(rows, "a");
    add(rows, "b");
    QCOMPARE(rows.append(nullptr), 2);
    QCOMPARE(rows.append(nullptr), 0);
}

void RowItemsTest::parentMayGoWhileItsColumnIsMade_data()
{
    QTest::addColumn<int>("times");
    QTest::addColumn<QStringList>("kept");
    QTest::addRow("once") << 1 << QStringList{"a", "b"};
    QTest::addRow("always") << 100 << QStringList{};
}

void RowItemsTest::parentMayGoWhileItsColumnIsMade()
{
    QFETCH(int, times);
    QFETCH(QStringList, kept);
    QStandardItemModel model;
    connect(&model, &QAbstractItemModel::columnsInserted, this, [&] {
        if (--times >= 0)
            model.clear();
    });
    RowBatch rows;
    add(rows, "a");
    add(rows, "b");
    QCOMPARE(rows.append(&model), 2 - kept.size());
    QCOMPARE(names(model), kept);
}

void RowItemsTest::slotThatThrowsBeforeTheInsertion_data()
{
    QTest::addColumn<int>("times");
    QTest::addColumn<QStringList>("kept");
    QTest::addRow("once") << 1 << QStringList{"a", "b", "c"};
    QTest::addRow("for the first row, too") << 2 << QStringList{"b", "c"};
    QTest::addRow("always") << 100 << QStringList{};
}

void RowItemsTest::slotThatThrowsBeforeTheInsertion()
{
    QFETCH(int, times);
    QFETCH(QStringList, kept);
    QStandardItemModel model;
    connect(&model, &QAbstractItemModel::rowsAboutToBeInserted, this, [&] {
        if (--times >= 0)
            throw std::runtime_error("a slot's own");
    });
    RowBatch rows;
    for (const char *const name : {"a", "b", "c"})
        add(rows, name);
    const QStandardItem *watched = nullptr;
    {
        RowBatch last;
        QVERIFY(last.add([&] {
            RowItem row = directoryRows().row("d", "d");
            watched = row.get();
            watchAllocation(watched);
            return row;
        }));
        QCOMPARE(rows.append(&model), 3 - kept.size());
        QCOMPARE(names(model), kept);
        QVERIFY(!isFreed(watched));
    }
    QVERIFY(isFreed(watched)); // what was not appended at all is freed with its batch
}

void RowItemsTest::slotThatThrowsAfterTheInsertion()
{
    QStandardItemModel model;
    connect(&model, &QAbstractItemModel::rowsInserted, this, [] { throw std::runtime_error("a slot's own"); });
    RowBatch rows;
    add(rows, "a");
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, rows.append(&model));
    QCOMPARE(names(model), QStringList{"a"});
}

void RowItemsTest::clearingIsCompletedWhenItIsBrokenOff()
{
    QStandardItemModel model;
    model.appendRow(new QStandardItem);
    QSignalSpy begun(&model, &QAbstractItemModel::modelAboutToBeReset);
    QSignalSpy ended(&model, &QAbstractItemModel::modelReset);
    {
        const AllocationFailure failure(0, AllocationFailure::Kind::Throwing, sizeof(QStandardItem));
        clearRows(&model);
        QVERIFY(failure.happened());
    }
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(begun.size(), 2);
    QCOMPARE(ended.size(), 2);
}

void RowItemsTest::clearingEndsWithTheRowsWhenASlotThrows()
{
    QStandardItemModel model;
    model.appendRow(new QStandardItem);
    connect(&model, &QAbstractItemModel::modelReset, this, [] { throw std::runtime_error("a slot's own"); });
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, clearRows(&model));
    QCOMPARE(model.rowCount(), 0);
}

QTEST_GUILESS_MAIN(RowItemsTest)
#include "tst_row_items.moc"
