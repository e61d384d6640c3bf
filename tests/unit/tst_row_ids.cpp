#include "RowIds.h"

#include <QRegularExpression>
#include <QSet>
#include <QTest>

/// Identifiers look like those of QUuid::createUuid() and never come twice.
class RowIdsTest : public QObject
{
    Q_OBJECT

private slots:
    void areRandomUuids();
    void neverComeTwice();
    void everyOtherBitVaries();
};

void RowIdsTest::areRandomUuids()
{
    static const QRegularExpression form(
        QStringLiteral("^\\{[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}\\}$"));
    RowIds ids;
    for (int i = 0; i < 1000; ++i) {
        const QUuid id = ids.next();
        QCOMPARE(id.version(), QUuid::Random);
        QCOMPARE(id.variant(), QUuid::DCE);
        QVERIFY2(form.match(id.toString()).hasMatch(), qPrintable(id.toString()));
    }
}

void RowIdsTest::neverComeTwice()
{
    constexpr int count = 100'000;
    QSet<QUuid> seen;
    RowIds first;
    RowIds second;
    for (int i = 0; i < count; ++i) {
        seen.insert(first.next());
        seen.insert(second.next());
    }
    QCOMPARE(seen.size(), 2 * count);
}

void RowIdsTest::everyOtherBitVaries()
{
    QByteArray ones(16, '\0');
    QByteArray zeros(16, '\0');
    RowIds ids;
    for (int i = 0; i < 1000; ++i) {
        const QByteArray bytes = ids.next().toRfc4122();
        for (qsizetype byte = 0; byte < bytes.size(); ++byte) {
            ones[byte] = static_cast<char>(ones.at(byte) | bytes.at(byte));
            zeros[byte] = static_cast<char>(zeros.at(byte) | ~bytes.at(byte));
        }
    }
    // The version and the variant alone are the same in all.
    QCOMPARE(ones.toHex(), "ffffffffffff4fffbfffffffffffffff");
    QCOMPARE(zeros.toHex(), "ffffffffffffbfff7fffffffffffffff");
}

QTEST_APPLESS_MAIN(RowIdsTest)
#include "tst_row_ids.moc"
