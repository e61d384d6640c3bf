#include "ReplyFields.h"

#include <QTest>

/// Reading in place gives what the conversions give, and copies nothing that needs none.
class ReplyFieldsTest : public QObject
{
    Q_OBJECT

private slots:
    void mapsAndTextsAreReadInPlace();
    void everythingElseIsConverted();
    void missingFieldIsInvalid();
    void readerFindsFieldsInAnyOrder();
    void readerKeepsTheKeysItHas();
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

void ReplyFieldsTest::readerKeepsTheKeysItHas()
{
    const QString first = "first";
    const QString second = "second";
    const QString secondAgain = "second";
    RecordReader reader({&second, &first});
    QCOMPARE(reader.add(secondAgain), std::size_t(0));
    QCOMPARE(reader.add(first), std::size_t(1));
    const QString third = "third";
    QCOMPARE(reader.add(third), std::size_t(2));
    reader.read(QVariantMap{{"first", 1}, {"second", 2}, {"third", 3}});
    QCOMPARE(reader[0].toInt(), 2);
    QCOMPARE(reader[1].toInt(), 1);
    QCOMPARE(reader[2].toInt(), 3);
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
