#include "ConsoleSettings.h"

#include <QFile>
#include <QJsonValue>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

/// What the console remembers from one start to the next.
class tst_console_settings : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void valueComesBack_data();
    void valueComesBack();
    void withoutAFileNothingIsWritten();
    void nothingYet();
    void anotherTypeIsNotUsed_data();
    void anotherTypeIsNotUsed();
    void damagedFileIsNotUsed();
    void userFileIsThatOfTheTest();

private:
    QString file() const { return m_folder.filePath(u"console.ini"_s); }
    void write(const QByteArray &text) const
    {
        QFile out(file());
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(text);
    }

    QTemporaryDir m_folder;
};

void tst_console_settings::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    QVERIFY(m_folder.isValid());
    QFile::remove(file());
}

void tst_console_settings::valueComesBack_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("otherwise");
    QTest::newRow("number") << QVariant(150) << QVariant(100);
    QTest::newRow("fraction") << QVariant(1.25) << QVariant(0);
    QTest::newRow("truth") << QVariant(true) << QVariant(false);
    QTest::newRow("text") << QVariant(u"dark, \"Größe\"\n[x]"_s) << QVariant(QString());
    QTest::newRow("list") << QVariant(QVariantList{u"{a}"_s, u"{b}"_s}) << QVariant(QVariantList());
    QTest::newRow("map") << QVariant(QVariantMap{{u"x"_s, -20}, {u"width"_s, 1280}}) << QVariant(QVariantMap());
}

void tst_console_settings::valueComesBack()
{
    QFETCH(const QVariant, value);
    QFETCH(const QVariant, otherwise);
    {
        ConsoleSettings settings(file());
        settings.setValue(u"window/x"_s, otherwise);
        settings.setValue(u"window/x"_s, value);
        QCOMPARE(QJsonValue::fromVariant(settings.value(u"window/x"_s, otherwise)), QJsonValue::fromVariant(value));
    }
    const ConsoleSettings settings(file());
    QCOMPARE(QJsonValue::fromVariant(settings.value(u"window/x"_s, otherwise)), QJsonValue::fromVariant(value));
    QCOMPARE(settings.value(u"window/y"_s, 7), QVariant(7));
}

void tst_console_settings::withoutAFileNothingIsWritten()
{
    ConsoleSettings settings;
    settings.setValue(u"window/theme"_s, u"dark"_s);
    QCOMPARE(settings.value(u"window/theme"_s, QString()), QVariant(u"dark"_s));
    const ConsoleSettings others;
    QCOMPARE(others.value(u"window/theme"_s, u"light"_s), QVariant(u"light"_s));
}

void tst_console_settings::nothingYet()
{
    {
        const ConsoleSettings settings(file());
        QCOMPARE(settings.value(u"window/theme"_s, u"light"_s), QVariant(u"light"_s));
    }
    QVERIFY2(!QFile::exists(file()), "to look something up makes no file");
}

void tst_console_settings::anotherTypeIsNotUsed_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("text") << QByteArray("textSize=\"[\\\"large\\\"]\"");
    QTest::newRow("no JSON") << QByteArray("textSize=150");
    QTest::newRow("bare list") << QByteArray("textSize=1, 2");
    QTest::newRow("nothing") << QByteArray("textSize=");
    QTest::newRow("null") << QByteArray("textSize=\"[null]\"");
}

void tst_console_settings::anotherTypeIsNotUsed()
{
    QFETCH(const QByteArray, line);
    write("[window]\n" + line + '\n');
    const ConsoleSettings settings(file());
    QCOMPARE(settings.value(u"window/textSize"_s, 100), QVariant(100));
}

void tst_console_settings::damagedFileIsNotUsed()
{
    write(QByteArray("\0\xff[[[\nnonsense\n=\n", 16));
    const ConsoleSettings settings(file());
    QCOMPARE(settings.value(u"window/textSize"_s, 100), QVariant(100));
}

void tst_console_settings::userFileIsThatOfTheTest()
{
    const QString folder = qEnvironmentVariable("XDG_CONFIG_HOME");
    QVERIFY2(folder.endsWith(u".config"_s) && folder.contains(u"tst_console_settings"_s), qPrintable(folder));
    QCOMPARE(ConsoleSettings::userFile(), folder + u"/recording-console.ini"_s);
}

QTEST_GUILESS_MAIN(tst_console_settings)
#include "tst_console_settings.moc"
