#include "HeapWatch.h"
#include "ItemRoles.h"
#include "RowLayout.h"

#include <QStandardItemModel>
#include <QTest>

/// Rows hold what the record's values are converted to, whatever they are.
class RowLayoutTest : public QObject
{
    Q_OBJECT

private slots:
    void oddValuesAreConverted_data();
    void oddValuesAreConverted();
    void flagsAreOfOneRowAlone();
    void asItIsKeepsTheType();
    void asItIsStoresWhatIsMissing();
    void rowsAreIndependent();
    void failedFirstItemCostsOneRow();
    void failedCopyCostsOneRow();
};

namespace {

const QString key = "key";

RowLayout one(RowField::Value value)
{
    return {{Qt::UserRole + 1, value, &key}};
}

// The whole row, roles without a value included.
QMap<int, QVariant> stored(RowItem item)
{
    QStandardItemModel model;
    model.appendRow(item.release());
    return model.itemData(model.index(0, 0));
}

QVariant converted(const QVariant &value, RowField::Value to)
{
    switch (to) {
    case RowField::Text:
        return value.toString();
    case RowField::Number:
        return value.toLongLong();
    case RowField::Flag:
        return value.toBool();
    default:
        return value.toStringList();
    }
}

} // namespace

void RowLayoutTest::oddValuesAreConverted_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("missing") << QVariant();
    QTest::newRow("text") << QVariant("text");
    QTest::newRow("empty text") << QVariant("");
    QTest::newRow("text of a number") << QVariant("12");
    QTest::newRow("text that is true") << QVariant("true");
    QTest::newRow("bytes") << QVariant(QByteArray("7"));
    QTest::newRow("int") << QVariant(-3);
    QTest::newRow("64 bits") << QVariant(qlonglong(1) << 40);
    QTest::newRow("unsigned") << QVariant(~qulonglong(0));
    QTest::newRow("fraction") << QVariant(2.5);
    QTest::newRow("flag") << QVariant(true);
    QTest::newRow("list") << QVariant(QVariantList{1, "b", QVariant()});
    QTest::newRow("texts") << QVariant(QStringList{"a", "b"});
    QTest::newRow("map") << QVariant(QVariantMap{{"a", 1}});
    QTest::newRow("null text") << QVariant(QMetaType::fromType<QString>());
    QTest::newRow("null number") << QVariant(QMetaType::fromType<qlonglong>());
    QTest::newRow("null flag") << QVariant(QMetaType::fromType<bool>());
    QTest::newRow("null texts") << QVariant(QMetaType::fromType<QStringList>());
}

void RowLayoutTest::oddValuesAreConverted()
{
    QFETCH(QVariant, value);
    for (const auto to : {RowField::Text, RowField::Number, RowField::Flag, RowField::TextList}) {
        const RowLayout layout = one(to);
        RowMaker maker(layout);
        const QVariantMap record = value.isValid() ? QVariantMap{{key, value}} : QVariantMap();
        const QVariant expected = converted(value, to);
        const QMap<int, QVariant> row = stored(maker.row(record));
        QCOMPARE(row.keys(), QList<int>{Qt::UserRole + 1});
        const QVariant actual = row.first();
        QCOMPARE(actual.metaType().name(), expected.metaType().name());
        QCOMPARE(actual, expected);
        QCOMPARE(actual.isNull(), expected.isNull());
        QCOMPARE(actual.toString().isNull(), expected.toString().isNull());
    }
}

void RowLayoutTest::flagsAreOfOneRowAlone()
{
    const RowLayout layout = one(RowField::Flag);
    RowMaker maker(layout);
    QCOMPARE(stored(maker.row(QVariantMap{{key, true}})).first(), QVariant(true));
    QCOMPARE(stored(maker.row(QVariantMap{{key, false}})).first(), QVariant(false));
    QCOMPARE(stored(maker.row(QVariantMap())).first(), QVariant(false));
}

void RowLayoutTest::asItIsKeepsTheType()
{
    const RowLayout layout = one(RowField::AsItIs);
    RowMaker maker(layout);
    for (const QVariant &value :
         {QVariant(5), QVariant("5"), QVariant(QMetaType::fromType<QString>()), QVariant::fromValue(nullptr)}) {
        const QVariant actual = stored(maker.row(QVariantMap{{key, value}})).first();
        QCOMPARE(actual.metaType().name(), value.metaType().name());
        QCOMPARE(actual, value);
        QCOMPARE(actual.isNull(), value.isNull());
    }
}

void RowLayoutTest::asItIsStoresWhatIsMissing()
{
    RowMaker maker(treeGroupRow());
    const QMap<int, QVariant> row = stored(maker.row(QVariantMap{{"relayPath", "st1"}}));
    QCOMPARE(
        row.keys(),
        (QList<int>{TreeRole::Id, TreeRole::Name, TreeRole::RelayPath, TreeRole::Type, TreeRole::RecordingGroupId}));
    QVERIFY(!row.value(TreeRole::Name).isValid());
    QVERIFY(!row.value(TreeRole::RecordingGroupId).isValid());
    QCOMPARE(row.value(TreeRole::RelayPath), QVariant("st1"));
}

void RowLayoutTest::rowsAreIndependent()
{
    RowMaker maker(volumeRow());
    const RowItem first = maker.row(QVariantMap{{"volumePath", "/a"}, {"volumeSize", 1}});
    const RowItem second = maker.row(QVariantMap{{"volumePath", "/b"}});
    first->setData("changed", VolumeRole::Name);
    QCOMPARE(first->data(VolumeRole::RootPath), QVariant("/a"));
    QCOMPARE(second->data(VolumeRole::RootPath), QVariant("/b"));
    QCOMPARE(second->data(VolumeRole::Name), QVariant(QString()));
    QCOMPARE(second->data(VolumeRole::Size), QVariant(qlonglong(0)));
    QVERIFY(first->data(VolumeRole::Id) != second->data(VolumeRole::Id));
}

void RowLayoutTest::failedFirstItemCostsOneRow()
{
    RowMaker maker(volumeRow());
    {
        const AllocationFailure failure(0);
        QVERIFY(!maker.row(QVariantMap{{"volumePath", "/a"}}));
        QVERIFY(failure.happened());
    }
    const RowItem next = maker.row(QVariantMap{{"volumePath", "/b"}});
    QVERIFY(next);
    QCOMPARE(next->data(VolumeRole::RootPath), QVariant("/b"));
}

void RowLayoutTest::failedCopyCostsOneRow()
{
    RowMaker maker(volumeRow());
    {
        const AllocationFailure failure(0, AllocationFailure::Kind::Throwing, sizeof(QStandardItem));
        QVERIFY(!maker.row(QVariantMap{{"volumePath", "/a"}}));
        QVERIFY(failure.happened());
    }
    QVERIFY(maker.row(QVariantMap{{"volumePath", "/b"}}));
}

QTEST_GUILESS_MAIN(RowLayoutTest)
#include "tst_row_layout.moc"
