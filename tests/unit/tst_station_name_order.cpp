#include "NameOrder.h"

#include <QRegularExpression>
#include <QTest>

/// The order of names in a list of folders.
class StationNameOrderTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void namesComeInThisOrder_data();
    void namesComeInThisOrder();
};

void StationNameOrderTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
}

void StationNameOrderTest::namesComeInThisOrder_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::newRow("capitals beside small letters")
        << QStringList{QStringLiteral("Archive"), QStringLiteral("archive"), QStringLiteral("Backup"),
                       QStringLiteral("cam"), QStringLiteral("Zoo")};
    QTest::newRow("numbers by their value")
        << QStringList{QStringLiteral("2"),       QStringLiteral("10"),       QStringLiteral("cam"),
                       QStringLiteral("cam2"),    QStringLiteral("Cam9"),     QStringLiteral("cam10"),
                       QStringLiteral("cam10-2"), QStringLiteral("cam10-11"), QStringLiteral("camera")};
    QTest::newRow("numbers longer than any integer")
        << QStringList{QStringLiteral("n9"), QStringLiteral("n99999999999999999999998"),
                       QStringLiteral("n99999999999999999999999"), QStringLiteral("n100000000000000000000000")};
    QTest::newRow("leading zeros decide last")
        << QStringList{QStringLiteral("day0"),   QStringLiteral("day01"), QStringLiteral("day1"),
                       QStringLiteral("day01b"), QStringLiteral("day02"), QStringLiteral("day2")};
    QTest::newRow("umlauts and Chinese") << QStringList{QStringLiteral("Zoo"),       QStringLiteral("Übersicht"),
                                                        QStringLiteral("übersicht"), QStringLiteral("录像"),
                                                        QStringLiteral("录像2"),     QStringLiteral("录像10")};
}

void StationNameOrderTest::namesComeInThisOrder()
{
    QFETCH(QStringList, names);
    for (qsizetype left = 0; left < names.size(); ++left) {
        for (qsizetype right = 0; right < names.size(); ++right) {
            QVERIFY2(nameLess(names[left], names[right]) == (left < right),
                     qPrintable(names[left] + QStringLiteral(" and ") + names[right]));
        }
    }
}

QTEST_GUILESS_MAIN(StationNameOrderTest)
#include "tst_station_name_order.moc"
