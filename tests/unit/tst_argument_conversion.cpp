#include "ArgumentConversion.h"

#include <QRegularExpression>
#include <QTemporaryFile>
#include <QTest>

class TestArgumentConversion : public QObject
{
    Q_OBJECT
public:
    enum Kind { Local = 0, Remote = 1, Both = 3 };
    Q_ENUM(Kind)

    Q_INVOKABLE void logOn(const QString &user, const QString &password, Kind kind)
    {
        Q_UNUSED(user)
        Q_UNUSED(password)
        Q_UNUSED(kind)
    }

private slots:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void convertsByType_data();
    void convertsByType();
    void refusesWithOneLine_data();
    void refusesWithOneLine();
    void convertsTheArgumentsOfAMethod();
    void namesTheFirstWrongArgument();
    void passwordComesFromAFile();
    void aPasswordInAFileIsBounded();
    void emptyPasswordMayBeTyped();
    void refusesPasswords_data();
    void refusesPasswords();

private:
    static QMetaMethod logOnMethod()
    {
        const QMetaObject &metaObject = staticMetaObject;
        for (int index = 0; index < metaObject.methodCount(); ++index) {
            if (metaObject.method(index).name() == "logOn")
                return metaObject.method(index);
        }
        return {};
    }
};

void TestArgumentConversion::convertsByType_data()
{
    QTest::addColumn<QMetaType>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("value");

    const auto string = QMetaType::fromType<QString>();
    QTest::newRow("text") << string << " a b " << QVariant(" a b ");
    QTest::newRow("text that looks like JSON") << string << "[1]" << QVariant("[1]");
    QTest::newRow("empty text") << string << "" << QVariant("");

    const auto truth = QMetaType::fromType<bool>();
    for (const char *word : {"true", "1", "yes", "Yes"})
        QTest::addRow("truth value %s", word) << truth << word << QVariant(true);
    for (const char *word : {"false", "0", "no", "FALSE"})
        QTest::addRow("truth value %s", word) << truth << word << QVariant(false);

    QTest::newRow("int") << QMetaType::fromType<int>() << "-12" << QVariant(-12);
    QTest::newRow("greatest int") << QMetaType::fromType<int>() << "2147483647" << QVariant(2147483647);
    QTest::newRow("qlonglong") << QMetaType::fromType<qlonglong>() << "9223372036854775807"
                               << QVariant(9223372036854775807LL);

    const auto kind = QMetaType::fromType<Kind>();
    QTest::newRow("enumerator by name") << kind << "Both" << QVariant::fromValue(Both);
    QTest::newRow("enumerator by number") << kind << "1" << QVariant::fromValue(Remote);

    const auto texts = QMetaType::fromType<QStringList>();
    QTest::newRow("texts") << texts << R"(["a", "b c"])" << QVariant(QStringList{"a", "b c"});
    QTest::newRow("no texts") << texts << "[]" << QVariant(QStringList{});
    QTest::newRow("one plain text") << texts << "/srv/a, b" << QVariant(QStringList{"/srv/a, b"});
    QTest::newRow("one empty text") << texts << "" << QVariant(QStringList{""});

    QTest::newRow("list") << QMetaType::fromType<QVariantList>() << R"([{"path": "/srv", "size": 2048}, true])"
                          << QVariant(QVariantList{QVariantMap{{"path", "/srv"}, {"size", 2048LL}}, true});
    QTest::newRow("map") << QMetaType::fromType<QVariantMap>() << R"({"name": "Yard", "days": [1, 2]})"
                         << QVariant(QVariantMap{{"name", "Yard"}, {"days", QVariantList{1LL, 2LL}}});
}

void TestArgumentConversion::convertsByType()
{
    QFETCH(const QMetaType, type);
    QFETCH(const QString, text);
    QFETCH(const QVariant, value);

    const ConvertedArgument converted = convertArgument(text, QStringLiteral("parameter"), type);

    QCOMPARE(converted.error, QString());
    QCOMPARE(converted.value.metaType(), type);
    QCOMPARE(converted.value, value);
}

void TestArgumentConversion::refusesWithOneLine_data()
{
    QTest::addColumn<QMetaType>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("error");

    QTest::newRow("truth value") << QMetaType::fromType<bool>() << "maybe"
                                 << "p must be true or false (or yes, no, 1, 0), not \"maybe\"";
    const auto range = QStringLiteral("p must be a whole number from -2147483648 to 2147483647, not \"%1\"");
    QTest::newRow("no number") << QMetaType::fromType<int>() << "2k" << range.arg("2k");
    QTest::newRow("a fraction") << QMetaType::fromType<int>() << "2.5" << range.arg("2.5");
    QTest::newRow("nothing") << QMetaType::fromType<int>() << "" << range.arg("");
    QTest::newRow("beyond int") << QMetaType::fromType<int>() << "2147483648" << range.arg("2147483648");
    QTest::newRow("beyond qlonglong")
        << QMetaType::fromType<qlonglong>() << "9223372036854775808"
        << "p must be a whole number from -9223372036854775808 to 9223372036854775807, not \"9223372036854775808\"";
    const auto kinds = QStringLiteral("p must be Local, Remote or Both (or 0, 1 or 3), not \"%1\"");
    QTest::newRow("unknown enumerator") << QMetaType::fromType<Kind>() << "local" << kinds.arg("local");
    QTest::newRow("number of no enumerator") << QMetaType::fromType<Kind>() << "2" << kinds.arg("2");
    QTest::newRow("texts, broken")
        << QMetaType::fromType<QStringList>() << "[\"a\""
        << R"(p must be one text or a JSON array of texts such as ["a", "b"], not "["a"" (unterminated string))";
    QTest::newRow("texts with a number")
        << QMetaType::fromType<QStringList>() << R"(["a", 2])"
        << R"(p must be one text or a JSON array of texts such as ["a", "b"], not "["a", 2]" (element 2 is no text))";
    QTest::newRow("list, plain") << QMetaType::fromType<QVariantList>() << "a"
                                 << R"(p must be a JSON array such as ["a", 1], not "a" (illegal value))";
    QTest::newRow("list, an object") << QMetaType::fromType<QVariantList>() << "{}"
                                     << R"(p must be a JSON array such as ["a", 1], not "{}")";
    QTest::newRow("map, an array") << QMetaType::fromType<QVariantMap>() << "[]"
                                   << R"(p must be a JSON object such as {"key": "value"}, not "[]")";
    QTest::newRow("long text")
        << QMetaType::fromType<bool>() << QString(100, 'x')
        << QStringLiteral("p must be true or false (or yes, no, 1, 0), not \"%1…\"").arg(QString(60, 'x'));
    QTest::newRow("type without a form") << QMetaType::fromType<QObject *>() << "a"
                                         << "p is of type QObject*, which cannot be typed on a command line";
}

void TestArgumentConversion::refusesWithOneLine()
{
    QFETCH(const QMetaType, type);
    QFETCH(const QString, text);
    QFETCH(const QString, error);

    const ConvertedArgument converted = convertArgument(text, QStringLiteral("p"), type);

    QCOMPARE(converted.error, error);
    QVERIFY(!converted.value.isValid());
}

void TestArgumentConversion::convertsTheArgumentsOfAMethod()
{
    QString error;
    const QVariantList values = convertArguments({"anna", "", "Remote"}, logOnMethod(), &error);

    QCOMPARE(error, QString());
    QCOMPARE(values, (QVariantList{"anna", "", QVariant::fromValue(Remote)}));
}

void TestArgumentConversion::namesTheFirstWrongArgument()
{
    QString error;
    const QVariantList values = convertArguments({"anna", "", "Far"}, logOnMethod(), &error);

    QCOMPARE(error, "kind must be Local, Remote or Both (or 0, 1 or 3), not \"Far\"");
    QVERIFY(values.isEmpty());
}

void TestArgumentConversion::passwordComesFromAFile()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write("s3 cret\r\nsecond line\n");
    file.close();

    QString error;
    const QVariantList values = convertArguments({"anna", '@' + file.fileName(), "0"}, logOnMethod(), &error);

    QCOMPARE(error, QString());
    QCOMPARE(values.value(1), "s3 cret");
}

void TestArgumentConversion::aPasswordInAFileIsBounded()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(QByteArray(4096, 'x'));
    QVERIFY(file.flush());
    QString error;
    const QStringList arguments{"anna", '@' + file.fileName(), "0"};
    QCOMPARE(convertArguments(arguments, logOnMethod(), &error).value(1).toString().size(), 4096);

    file.write("x");
    QVERIFY(file.flush());
    QVERIFY(convertArguments(arguments, logOnMethod(), &error).isEmpty());
    QCOMPARE(error, "password is longer than 4096 bytes; one line was expected");
}

void TestArgumentConversion::emptyPasswordMayBeTyped()
{
    QString error;
    QCOMPARE(convertArguments({"anna", "", "0"}, logOnMethod(), &error).value(1), "");
}

void TestArgumentConversion::refusesPasswords_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("error");
    QTest::newRow("typed openly") << "hunter2"
                                  << "password must not stand on the command line, where everyone on this machine can "
                                     "read it; give - to read it from standard input, or @FILE to read it from a file";
    QTest::newRow("file that is not there")
        << "@/no/such/file"
        << "password was to be read from the file \"/no/such/file\": No such file or directory";
    QTest::newRow("a device")
        << "@/dev/zero"
        << "password was to be read from the file \"/dev/zero\": it is neither a plain file nor a pipe";
}

void TestArgumentConversion::refusesPasswords()
{
    QFETCH(const QString, typed);
    QFETCH(const QString, error);

    QString given;
    QVERIFY(convertArguments({"anna", typed, "0"}, logOnMethod(), &given).isEmpty());
    QCOMPARE(given, error);
    QVERIFY(!given.contains("hunter2"));
}

QTEST_GUILESS_MAIN(TestArgumentConversion)
#include "tst_argument_conversion.moc"
