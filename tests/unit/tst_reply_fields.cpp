#include "ReplyFields.h"

#include <QTest>

#include <utility>

/// Reading in place gives what the conversions give, and copies nothing that needs none.
class ReplyFieldsTest : public QObject
{
    Q_OBJECT

private slots:
    void mapsAndTextsAreReadInPlace();
    void everythingElseIsConverted();
    void missingFieldIsInvalid();
    void oddValuesAreConverted_data();
    void oddValuesAreConverted();
    void readerFindsFieldsInAnyOrder();
    void readerForgetsTheRecordBefore();
    void readerTakesWhatIsNoMapAsEmpty();
};

void ReplyFieldsTest::mapsAndTextsAreReadInPlace()
{
    const QVariant map = QVariantMap{{"a", "text"}};
    QVariantMap convertedMap;
    QString convertedText;
    const QVariantMap &read = mapIn(map, convertedMap);
    QCOMPARE(static_cast<const void *>(&read), map.constData());
    const QString key = "a";
    const QVariant &field = fieldIn(read, key);
    QCOMPARE(static_cast<const void *>(&textIn(field, convertedText)), field.constData());
}

void ReplyFieldsTest::everythingElseIsConverted()
{
    QVariantMap convertedMap;
    QString convertedText;
    const QVariant hash = QVariantHash{{"a", 1}};
    QCOMPARE(mapIn(hash, convertedMap), hash.toMap());
    QCOMPARE(mapIn(QVariant(5), convertedMap), QVariantMap());
    QCOMPARE(textIn(QVariant(5), convertedText), "5");
    QCOMPARE(textIn(QVariant(QByteArray("b")), convertedText), "b");
    QCOMPARE(textIn(QVariant(), convertedText), QString());
}

void ReplyFieldsTest::missingFieldIsInvalid()
{
    QVERIFY(!fieldIn(QVariantMap{{"a", 1}}, "b").isValid());
    QVERIFY(!fieldIn({}, "b").isValid());
}

void ReplyFieldsTest::oddValuesAreConverted_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("missing") << QVariant();
    QTest::newRow("text") << QVariant("text");
    QTest::newRow("empty text") << QVariant("");
    QTest::newRow("text without data") << QVariant(QString());
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

void ReplyFieldsTest::oddValuesAreConverted()
{
    QFETCH(QVariant, value);
    const std::pair<QVariant, QVariant> conversions[] = {
        {asText(value), value.toString()},
        {asNumber(value), value.toLongLong()},
        {asTextList(value), value.toStringList()},
        {trueOrNothing(value), value.toBool() ? QVariant(true) : QVariant()},
    };
    for (const auto &[actual, expected] : conversions) {
        QCOMPARE(actual.metaType(), expected.metaType());
        QCOMPARE(actual, expected);
        QCOMPARE(actual.isNull(), expected.isNull());
        QCOMPARE(actual.toString().isNull(), expected.toString().isNull());
    }
}

void ReplyFieldsTest::readerFindsFieldsInAnyOrder()
{
    const QString names[] = {"m", "b", "z", "a"};
    RecordReader reader({&names[0], &names[1], &names[2], &names[3]});
    const QVariant all = QVariantMap{{"a", 1}, {"aa", 2}, {"b", 3}, {"m", 4}, {"n", 5}, {"z", 6}, {"zz", 7}};
    reader.read(all);
    QCOMPARE(reader[0], QVariant(4));
    QCOMPARE(reader[1], QVariant(3));
    QCOMPARE(reader[2], QVariant(6));
    QCOMPARE(reader[3], QVariant(1));
    const QVariant some = QVariantMap{{"aa", 2}, {"m", 4}};
    reader.read(some);
    QCOMPARE(reader[0], QVariant(4));
    for (const std::size_t missing : {1U, 2U, 3U})
        QVERIFY(!reader[missing].isValid());
}

void ReplyFieldsTest::readerForgetsTheRecordBefore()
{
    const QString name = "a";
    RecordReader reader({&name});
    const QVariant first = QVariantMap{{"a", 1}};
    const QVariant second = QVariantMap{{"b", 2}};
    reader.read(first);
    reader.read(second);
    QVERIFY(!reader[0].isValid());
}

void ReplyFieldsTest::readerTakesWhatIsNoMapAsEmpty()
{
    const QString name = "a";
    RecordReader reader({&name});
    reader.read(QVariant("a"));
    QVERIFY(!reader[0].isValid());
    const QVariant hash = QVariantHash{{"a", 1}};
    reader.read(hash);
    QCOMPARE(reader[0], QVariant(1));
}

QTEST_APPLESS_MAIN(ReplyFieldsTest)
#include "tst_reply_fields.moc"
