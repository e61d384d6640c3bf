#include "GroupMap.h"

#include <QTest>

/// Values stand under their ids, in whatever order these come.
class GroupMapTest : public QObject
{
    Q_OBJECT

private slots:
    void countsEveryId_data();
    void countsEveryId();
    void valuesStayInPlace();
};

void GroupMapTest::countsEveryId_data()
{
    QTest::addColumn<QStringList>("ids");
    QTest::newRow("none") << QStringList();
    QTest::newRow("one") << QStringList{"a"};
    QTest::newRow("in runs") << QStringList{"b", "b", "a", "a", "a", "b"};
    QTest::newRow("in rounds") << QStringList{"c", "a", "b", "c", "a", "b", "c", "a", "b"};
    QTest::newRow("rounds with gaps") << QStringList{"c", "a", "b", "a", "c", "b", "b", "c"};
    QTest::newRow("empty id") << QStringList{"", "a", QString(), "a", ""};
    QTest::newRow("same length") << QStringList{"ab", "ac", "bb", "ab", "bb", "ac"};
}

void GroupMapTest::countsEveryId()
{
    QFETCH(QStringList, ids);
    GroupMap<int> counts;
    QMap<QString, int> expected;
    for (const QString &id : ids) {
        ++counts[id];
        ++expected[id];
    }
    QList<QPair<QString, int>> counted;
    counts.forEach([&counted](const QString &id, int count) { counted.append({id, count}); });
    QList<QPair<QString, int>> inOrder;
    for (auto entry = expected.cbegin(); entry != expected.cend(); ++entry)
        inOrder.append({entry.key(), entry.value()});
    QCOMPARE(counted, inOrder);
    for (const QString &id : ids)
        QCOMPARE(*counts.find(id), expected.value(id));
    QVERIFY(!counts.find("never"));
}

void GroupMapTest::valuesStayInPlace()
{
    GroupMap<int> values;
    int *const first = &values["m"];
    for (int i = 0; i < 1000; ++i)
        values[QString::number(i)] = i;
    QCOMPARE(&values["m"], first);
    QCOMPARE(values["500"], 500);
}

QTEST_APPLESS_MAIN(GroupMapTest)
#include "tst_group_map.moc"
