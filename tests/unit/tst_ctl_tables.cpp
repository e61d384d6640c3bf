#include "ModelPrinter.h"
#include "TextTable.h"
#include "ValueText.h"
#include "VolumeTable.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QStandardItemModel>
#include <QTest>
#include <QUuid>

class TestCtlTables : public QObject
{
    Q_OBJECT
public:
    enum Kind : int { Local = 0, Remote = 1 };
    Q_ENUM(Kind)

private slots:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void tableIsAligned();
    void tableWithoutRowsHasItsHeaders();
    void controlCharactersStayOnTheLine();
    void valuesAsTextAndJson_data();
    void valuesAsTextAndJson();
    void modelAsTable();
    void modelAsJson();
    void treeIsIndented();
    void passwordsAreHidden();
    void volumesForAnOperator();
    void sizes_data();
    void sizes();

private:
    enum Role { Id = Qt::UserRole + 1, Name, Size, IsSystem, Password };

    static void setRoles(QStandardItemModel &model, const QHash<int, QByteArray> &roles)
    {
        model.setItemRoleNames(roles);
    }
    static QStandardItem *item(const QHash<int, QVariant> &values)
    {
        auto result = std::make_unique<QStandardItem>();
        for (auto value = values.cbegin(); value != values.cend(); ++value)
            result->setData(value.value(), value.key());
        return result.release(); // a model takes it
    }
};

void TestCtlTables::tableIsAligned()
{
    TextTable table({"Name", "Size"});
    table.setRightAligned(1);
    table.addRow({"a", "5"});
    table.addRow({"longer name", "12345"});
    table.addRow({"", "1"});
    QCOMPARE(table.toString(),
             "Name          Size\n"
             "a                5\n"
             "longer name  12345\n"
             "                 1\n");
}

void TestCtlTables::tableWithoutRowsHasItsHeaders()
{
    QCOMPARE(TextTable({"Name", "Size"}).toString(), "Name  Size\n");
}

void TestCtlTables::controlCharactersStayOnTheLine()
{
    TextTable table({"Name"});
    table.addRow({QStringLiteral("a\nb\tc\x1b[31m")});
    QCOMPARE(table.toString(), "Name\na\\nb\\tc\\x1b[31m\n");
}

void TestCtlTables::valuesAsTextAndJson_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QJsonValue>("json");

    QTest::newRow("invalid") << QVariant() << "" << QJsonValue();
    QTest::newRow("text") << QVariant("a b") << "a b" << QJsonValue("a b");
    QTest::newRow("truth value") << QVariant(true) << "true" << QJsonValue(true);
    QTest::newRow("number beyond 53 bits")
        << QVariant(9007199254740993LL) << "9007199254740993" << QJsonValue(qint64(9007199254740993));
    QTest::newRow("enumerator") << QVariant::fromValue(Remote) << "Remote" << QJsonValue("Remote");
    QTest::newRow("number of no enumerator") << QVariant::fromValue(Kind(7)) << "7" << QJsonValue("7");
    QTest::newRow("texts") << QVariant(QStringList{"a", "b"}) << "a, b" << QJsonValue(QJsonArray{"a", "b"});
    QTest::newRow("list") << QVariant(QVariantList{1, "a"}) << "[1,\"a\"]" << QJsonValue(QJsonArray{1, "a"});
    QTest::newRow("map with an enumerator") << QVariant(QVariantMap{{"kind", QVariant::fromValue(Local)}})
                                            << "{\"kind\":\"Local\"}" << QJsonValue(QJsonObject{{"kind", "Local"}});
    QTest::newRow("identifier") << QVariant(QUuid()) << "{00000000-0000-0000-0000-000000000000}"
                                << QJsonValue("{00000000-0000-0000-0000-000000000000}");
}

void TestCtlTables::valuesAsTextAndJson()
{
    QFETCH(const QVariant, value);
    QTEST(valueText(value), "text");
    QTEST(valueJson(value), "json");
}

void TestCtlTables::modelAsTable()
{
    QStandardItemModel model;
    setRoles(model, {{Size, "sizeRole"}, {Name, "nameRole"}, {IsSystem, "isSystemRole"}});
    model.appendRow(item({{Name, "System"}, {Size, 1000000LL}, {IsSystem, true}}));
    model.appendRow(item({{Name, "A"}, {Size, 1LL}, {IsSystem, false}}));
    QCOMPARE(modelTable(model).toString(),
             "nameRole  sizeRole  isSystemRole\n"
             "System     1000000  true\n"
             "A                1  false\n");
}

void TestCtlTables::modelAsJson()
{
    QStandardItemModel model;
    setRoles(model, {{Size, "sizeRole"}, {Name, "nameRole"}, {IsSystem, "isSystemRole"}});
    model.appendRow(item({{Name, "System"}, {Size, 1000000LL}, {IsSystem, true}}));
    QCOMPARE(modelJson(model),
             (QJsonArray{QJsonObject{{"nameRole", "System"}, {"sizeRole", 1000000}, {"isSystemRole", true}}}));
}

void TestCtlTables::treeIsIndented()
{
    QStandardItemModel model;
    setRoles(model, {{Id, "idRole"}, {Name, "nameRole"}});
    QStandardItem *station = item({{Id, "1"}, {Name, "North"}});
    station->appendRow(item({{Id, "2"}, {Name, "Yard"}}));
    model.appendRow(station);
    QCOMPARE(modelTable(model).toString(),
             "idRole  nameRole\n"
             "1       North\n"
             "  2     Yard\n");
    QCOMPARE(modelJson(model),
             (QJsonArray{QJsonObject{{"idRole", "1"},
                                     {"nameRole", "North"},
                                     {"children", QJsonArray{QJsonObject{{"idRole", "2"}, {"nameRole", "Yard"}}}}}}));
}

void TestCtlTables::passwordsAreHidden()
{
    QStandardItemModel model;
    setRoles(model, {{Name, "nameRole"}, {Password, "passwordRole"}});
    model.appendRow(item({{Name, "nas"}, {Password, "hunter2"}}));
    model.appendRow(item({{Name, "open"}, {Password, ""}}));
    QCOMPARE(modelTable(model).toString(),
             "nameRole  passwordRole\n"
             "nas       ********\n"
             "open\n");
    QCOMPARE(modelJson(model).at(0).toObject().value("passwordRole"), QJsonValue("********"));
}

void TestCtlTables::volumesForAnOperator()
{
    enum { Path = Password + 1, Available, IsNas };
    QStandardItemModel model;
    setRoles(model,
             {{Name, "nameRole"},
              {Path, "rootPathRole"},
              {Size, "sizeRole"},
              {Available, "availableSizeRole"},
              {IsSystem, "isSystemRole"},
              {IsNas, "isNASRole"}});
    model.appendRow(item({{Name, "System"}, {Path, "/"}, {Size, 1048576LL}, {Available, 262144LL}, {IsSystem, true}}));
    model.appendRow(item({{Name, "Empty"}, {Path, "/mnt"}, {Size, 0LL}, {Available, 0LL}, {IsNas, true}}));
    QCOMPARE(volumeTable(model).toString(),
             "Name    Path     Size       Free  Used  System  NAS\n"
             "System  /     1.00 GB  256.00 MB  75 %  yes     no\n"
             "Empty   /mnt  0.00 KB    0.00 KB     -  no      yes\n");
}

void TestCtlTables::sizes_data()
{
    QTest::addColumn<qlonglong>("kilobytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << 0LL << "0.00 KB";
    QTest::newRow("just below the next unit") << 1023LL << "1023.00 KB";
    QTest::newRow("next unit") << 1024LL << "1.00 MB";
    QTest::newRow("a fraction") << 1610612LL << "1.54 GB";
    QTest::newRow("beyond the last unit") << 2199023255552LL << "2048.00 TB";
}

void TestCtlTables::sizes()
{
    QFETCH(const qlonglong, kilobytes);
    QTEST(sizeText(kilobytes), "text");
}

QTEST_GUILESS_MAIN(TestCtlTables)
#include "tst_ctl_tables.moc"
