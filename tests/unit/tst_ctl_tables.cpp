#include "CommandReply.h"
#include "JsonFields.h"
#include "ModelPrinter.h"
#include "NasCommands.h"
#include "OutcomeText.h"
#include "PluginCaller.h"
#include "RecordingGroups.h"
#include "TextTable.h"
#include "Units.h"
#include "UsageCommands.h"
#include "UsageNews.h"
#include "ValueText.h"
#include "VolumeTable.h"
#include "companions/StatusMonitorPlugin.h"

#include <QDateTime>
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
    void quantitiesHaveOneForm_data();
    void quantitiesHaveOneForm();
    void repliesHaveOneShape();
    void modelAsTable();
    void modelAsJson();
    void treeIsIndented();
    void passwordsAreHidden();
    void volumesForAnOperator();
    void sizes_data();
    void sizes();
    void times();
    void usageForAnOperator();
    void usageNewsAreWhatChanged();
    void alarmsForAnOperator();
    void groupsForAnOperator();
    void groupsGoByIdOrName();
    void treeForAnOperator();
    void nasServersForAnOperator();
    void hostsOfNasPaths_data();
    void hostsOfNasPaths();
    void refusedElementsAreNamed();

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
    table.addRow({QStringLiteral("gate\u202etxt\u2066.\u200f\u2028b\u0085")});
    QCOMPARE(table.toString(), "Name\na\\nb\\tc\\x1b[31m\ngate\\u202etxt\\u2066.\\u200f\\u2028b\\x85\n");
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
    QTEST(plainJson(value), "json");
}

void TestCtlTables::quantitiesHaveOneForm_data()
{
    QTest::addColumn<QString>("scope");
    QTest::addColumn<QVariantMap>("fields");
    QTest::addColumn<QJsonObject>("json");

    const QJsonValue unknown;
    const QDateTime time = QDateTime::fromString(QStringLiteral("2026-11-21T05:10:01.776+01:00"), Qt::ISODateWithMs);
    QTest::newRow("volume") << "" << QVariantMap{{"size", 4LL}, {"availableSize", 0LL}, {"isNAS", QVariant()}}
                            << QJsonObject{{"sizeBytes", 4096}, {"availableBytes", 0}, {"isNas", false}};
    QTest::newRow("volume that is gone") << "" << QVariantMap{{"volumeSize", 0LL}, {"volumeAvailableSize", 0LL}}
                                         << QJsonObject{{"volumeSizeBytes", unknown},
                                                        {"volumeAvailableBytes", unknown}};
    QTest::newRow("free space that is not known") << "" << QVariantMap{{"size", 4LL}, {"availableSize", -1LL}}
                                                  << QJsonObject{{"sizeBytes", 4096}, {"availableBytes", unknown}};
    QTest::newRow("figures") << "" << QVariantMap{{"recordedDays", 0}, {"remainDays", -1}, {"oneDayUsage", -1LL}}
                             << QJsonObject{
                                    {"recordedDays", 0}, {"remainingDays", unknown}, {"oneDayUsageBytes", unknown}};
    QTest::newRow("by the unit in the name") << "" << QVariantMap{{"keptBytes", -1LL}, {"growthBytes", 7LL}}
                                             << QJsonObject{{"keptBytes", unknown}, {"growthBytes", 7}};
    QTest::newRow("by the scope") << "StorageScanProgress" << QVariantMap{{"done", 7LL}, {"total", -1LL}}
                                  << QJsonObject{{"doneFiles", 7}, {"totalFiles", unknown}};
    QTest::newRow("of another scope") << "" << QVariantMap{{"total", 7LL}} << QJsonObject{{"total", 7}};
    QTest::newRow("reserves") << "" << QVariantMap{{"reserveSpace", QVariantList{1024LL, -1LL}}}
                              << QJsonObject{{"reservedSpaceMegabytes", QJsonArray{1024, unknown}}};
    QTest::newRow("times") << "" << QVariantMap{{"since", "2026-11-21T05:10:01.776+01:00"}, {"begin", time}}
                           << QJsonObject{{"since", "2026-11-21T04:10:01.776Z"}, {"begin", "2026-11-21T04:10:01.776Z"}};
    QTest::newRow("no time") << "" << QVariantMap{{"since", ""}} << QJsonObject{{"since", unknown}};
    QTest::newRow("texts") << "" << QVariantMap{{"source", ""}, {"password", "s3 cret"}}
                           << QJsonObject{{"source", unknown}, {"password", "********"}};
    QTest::newRow("within") << "" << QVariantMap{{"list", QVariantList{QVariantMap{{"recordedDays", -1}}}}}
                            << QJsonObject{{"list", QJsonArray{QJsonObject{{"recordedDays", unknown}}}}};
}

void TestCtlTables::quantitiesHaveOneForm()
{
    QFETCH(const QString, scope);
    QFETCH(const QVariantMap, fields);
    QTEST(fieldsJson(fields, scope), "json");
}

void TestCtlTables::repliesHaveOneShape()
{
    CommandReply reply("volumes");
    QCOMPARE(reply.toJson(), (QJsonObject{{"command", "volumes"}, {"returnCode", "0"}, {"data", QJsonValue()}}));
    reply.setData(QJsonArray{1});
    QCOMPARE(reply.toJson(), (QJsonObject{{"command", "volumes"}, {"returnCode", "0"}, {"data", QJsonArray{1}}}));
    const QJsonObject pending{{"kind", "VolumeNotAnswering"}};
    reply.addUnknown(pending);
    QCOMPARE(reply.toJson(),
             (QJsonObject{{"command", "volumes"},
                          {"returnCode", "NotKnownYet"},
                          {"data", QJsonArray{1}},
                          {"unknown", QJsonArray{pending}}}));
    reply.addError("VolumeGone", "One is gone.");
    reply.addError("ClockBehind", "It is late.");
    const QJsonObject error{
        {"code", "VolumeGone"}, {"message", "One is gone.\nIt is late."}, {"elements", QJsonArray()}};
    QCOMPARE(reply.toJson(),
             (QJsonObject{{"command", "volumes"},
                          {"returnCode", "VolumeGone"},
                          {"data", QJsonArray{1}},
                          {"unknown", QJsonArray{pending}},
                          {"error", error}}));
    CommandReply nothing{{}};
    nothing.addError("WrongUse", "?");
    QCOMPARE(nothing.toJson().keys(), (QStringList{"command", "error", "returnCode"}));
    QVERIFY(nothing.toJson().value("command").isNull());
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
             (QJsonArray{QJsonObject{{"name", "System"}, {"sizeBytes", 1024000000}, {"isSystem", true}}}));
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
    QCOMPARE(
        modelJson(model),
        (QJsonArray{QJsonObject{
            {"id", "1"}, {"name", "North"}, {"children", QJsonArray{QJsonObject{{"id", "2"}, {"name", "Yard"}}}}}}));
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
    QCOMPARE(modelJson(model).at(0).toObject().value("password"), QJsonValue("********"));
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
    model.appendRow(item({{Name, "Slow"}, {Path, "/nas"}, {Size, 1024LL}, {Available, -1LL}, {IsNas, true}}));
    QCOMPARE(volumeTable(model).toString(),
             "Name    Path     Size       Free     Used  System  NAS\n"
             "System  /     1.00 GB  256.00 MB     75 %  yes     no\n"
             "Empty   /mnt  0.00 KB    0.00 KB        -  no      yes\n"
             "Slow    /nas  1.00 MB    unknown  unknown  no      yes\n");
    QCOMPARE(groupVolumeTable(model).toString(),
             "Name    Path     Size  Free for the group  System  NAS\n"
             "System  /     1.00 GB           256.00 MB  yes     no\n"
             "Empty   /mnt  0.00 KB             0.00 KB  no      yes\n"
             "Slow    /nas  1.00 MB             unknown  no      yes\n");
}

void TestCtlTables::sizes_data()
{
    QTest::addColumn<qlonglong>("kilobytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("not known") << -1LL << "unknown";
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

void TestCtlTables::times()
{
    QCOMPARE(daysText(-1), "unknown");
    QCOMPARE(daysText(0), "0 days");
    QCOMPARE(daysText(1), "1 day");
    QCOMPARE(minutesText(0), "-");
    QCOMPARE(minutesText(1439), "1439 min");
    QCOMPARE(minutesText(1440), "1 day");
    QCOMPARE(minutesText(4320), "3 days");
}

namespace {

enum UsageRole { UsageId = Qt::UserRole + 1, UsageName, Recorded, Remaining, PerDay, Reserve };

void fillUsage(QStandardItemModel &model, const QList<QVariantList> &rows)
{
    model.clear();
    model.setItemRoleNames({{UsageId, "idRole"},
                            {UsageName, "nameRole"},
                            {Recorded, "recordedDaysRole"},
                            {Remaining, "remainDaysRole"},
                            {PerDay, "oneDayUsageRole"},
                            {Reserve, "reserveTimeRole"}});
    for (const QVariantList &row : rows) {
        auto item = std::make_unique<QStandardItem>();
        for (int column = 0; column < row.size(); ++column)
            item->setData(row[column], UsageId + column);
        model.appendRow(item.release());
    }
}

} // namespace

void TestCtlTables::usageForAnOperator()
{
    QStandardItemModel model;
    fillUsage(model, {{"1", "Gate", 3, 12, 5368709120LL, 4320}, {"2", "Yard", -1, -1, -1LL, 0}});
    QCOMPARE(usageTable(model).toString(),
             "Group  Recorded  Remaining  Reserved time  Per day\n"
             "Gate     3 days    12 days         3 days  5.00 GB\n"
             "Yard    unknown    unknown              -  unknown\n");
    fillUsage(model, {{"1", "Zone 10", 1, 1, 1LL, 0}, {"2", "Zone 9", 1, 1, 1LL, 0}, {"3", "area", 1, 1, 1LL, 0}});
    QCOMPARE(usageRows(model), QList<int>({2, 1, 0})); // whatever the order of the ids
}

void TestCtlTables::usageNewsAreWhatChanged()
{
    QStandardItemModel model;
    UsageNews news;
    fillUsage(model, {{"1", "Gate", 3, 12, 1024LL, 4320}, {"2", "Yard", -1, -1, -1LL, 0}});
    QList<UsageNews::Change> changes = news.take("a", model);
    QCOMPARE(changes.size(), 2);
    QCOMPARE(changes[0].values,
             (QVariantMap{{"source", "a"},
                          {"group", "Gate"},
                          {"groupId", "1"},
                          {"recordedDays", 3},
                          {"remainingDays", 12},
                          {"oneDayUsage", 1024LL},
                          {"reservedTime", 4320}}));
    QVERIFY(changes[1].values.contains("recordedDays") && !changes[1].values.value("recordedDays").isValid());
    QCOMPARE(news.take("a", model).size(), 0);
    QCOMPARE(news.take("b", model).size(), 2); // another station

    fillUsage(model, {{"1", "Gate", 4, 12, 1024LL, 4320}});
    changes = news.take("a", model);
    QCOMPARE(changes.size(), 2);
    QVERIFY(!changes[0].isGone);
    QCOMPARE(changes[0].values.value("recordedDays"), QVariant(4));
    QVERIFY(changes[1].isGone);
    QCOMPARE(changes[1].values, (QVariantMap{{"source", "a"}, {"group", "Yard"}, {"groupId", "2"}}));
}

void TestCtlTables::alarmsForAnOperator()
{
    StatusMonitorPlugin monitor;
    QCOMPARE(alarmTable(monitor).toString(), "Since  Alarm  Group  Id  Station\n");
    monitor.monitorInsufficientRecordingDays("relay-7", "Gate", "1");
    monitor.monitorVolumeStatus({});
    const QStringList lines = alarmTable(monitor).toString().split('\n');
    const auto since = [&monitor](int row) { return monitor.alarms().at(row).since.toString(Qt::ISODate); };
    QCOMPARE(lines.at(1), since(0) + "  reserved time will not be reached  Gate   1   relay-7");
    QCOMPARE(lines.at(2), since(1) + "  a volume cannot be reached");
}

void TestCtlTables::groupsForAnOperator()
{
    const QVariantList members{
        QVariantMap{{"camName", "Gate"}, {"streamIndex", 1}, {"enableTimeShift", true}, {"enableSeamless", false}}};
    const QList<GroupInfo> groups{{"{1}", "North", {"/a", "/b"}, {2048LL, 0LL}, {"/b"}, 4320, members},
                                  {"{2}", "South", {}, {}, {}, 0, {}}};
    QCOMPARE(groupTable(groups).toString(),
             "Name   Paths              Reserved space    Reserved time  Members  Id\n"
             "North  /a, /b (recovery)  2.00 GB, 0.00 KB  3 days               1  {1}\n"
             "South                                       -                    0  {2}\n");
    QCOMPARE(memberTable(members).toString(),
             "Camera  Stream  Time shift  Seamless\n"
             "Gate         1  yes         no\n");
    QCOMPARE(
        groupsJson(groups).at(0).toObject(),
        (QJsonObject{{"id", "{1}"},
                     {"name", "North"},
                     {"paths",
                      QJsonArray{QJsonObject{{"path", "/a"}, {"reservedSpaceMegabytes", 2048}, {"isRecovery", false}},
                                 QJsonObject{{"path", "/b"}, {"reservedSpaceMegabytes", 0}, {"isRecovery", true}}}},
                     {"reservedTimeMinutes", 4320},
                     {"members",
                      QJsonArray{QJsonObject{
                          {"camera", "Gate"}, {"stream", 1}, {"isTimeShift", true}, {"isSeamless", false}}}}}));
}

void TestCtlTables::groupsGoByIdOrName()
{
    const QList<GroupInfo> groups{{"{1}", "North", {}, {}, {}, 0, {}},
                                  {"{2}", "South", {}, {}, {}, 0, {}},
                                  {"{3}", "South", {}, {}, {}, 0, {}},
                                  {"{4}", "{1}", {}, {}, {}, 0, {}}};
    QString error;
    QCOMPARE(findGroup(groups, "North", &error), &groups[0]);
    QCOMPARE(findGroup(groups, "{2}", &error), &groups[1]);
    QCOMPARE(findGroup(groups, "{1}", &error), &groups[0]); // ids come first
    QCOMPARE(error, QString());
    QCOMPARE(findGroup(groups, "South", &error), nullptr);
    QCOMPARE(error, "several recording groups are named \"South\"; give the id");
    QCOMPARE(findGroup(groups.mid(0, 2), "West", &error), nullptr);
    QCOMPARE(error, "there is no recording group \"West\"; there are \"North\", \"South\"");
    QCOMPARE(findGroup({}, "West", &error), nullptr);
    QCOMPARE(error, "there is no recording group \"West\", nor any other");
}

void TestCtlTables::treeForAnOperator()
{
    enum { Type = Name + 1, Address, GroupId };
    QStandardItemModel model;
    setRoles(model,
             {{Name, "nameRole"}, {Type, "typeRole"}, {Address, "stationIPRole"}, {GroupId, "recordingGroupIDRole"}});
    QStandardItem *station = item({{Name, "North"}, {Type, "RecordingServer"}, {Address, "192.0.2.7"}});
    station->appendRow(item({{Name, "Yard"}, {Type, "RecordingGroup"}, {GroupId, "{1}"}}));
    model.appendRow(station);
    QCOMPARE(treeTable(model).toString(),
             "Name    Type             Address    Id\n"
             "North   RecordingServer  192.0.2.7\n"
             "  Yard  RecordingGroup              {1}\n");
}

void TestCtlTables::nasServersForAnOperator()
{
    enum { Domain = Password + 1, User };
    QStandardItemModel model;
    setRoles(model,
             {{Id, "idRole"},
              {Name, "nameRole"},
              {Domain, "logonDomainRole"},
              {User, "userNameRole"},
              {Password, "passwordRole"}});
    model.appendRow(item({{Id, "7"}, {Name, "nas"}, {Domain, "Host"}, {User, "rec"}, {Password, "hunter2"}}));
    QCOMPARE(nasServerTable(model).toString(),
             "Host  User  Domain  Id\n"
             "nas   rec   Host    7\n");
}

void TestCtlTables::hostsOfNasPaths_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("host");
    QTest::newRow("slashes") << "//nas/rec/a"
                             << "nas";
    QTest::newRow("backslashes") << "\\\\nas\\rec"
                                 << "nas";
    QTest::newRow("URL") << "smb://nas/rec"
                         << "nas";
    QTest::newRow("host alone") << "//nas"
                                << "nas";
    QTest::newRow("local") << "/srv/nas"
                           << "";
    QTest::newRow("nothing") << ""
                             << "";
}

void TestCtlTables::hostsOfNasPaths()
{
    QFETCH(const QString, path);
    QTEST(hostOfNasPath(path), "host");
}

void TestCtlTables::refusedElementsAreNamed()
{
    const QVariantList errors{QVariantMap{{"element", "recordingGroupName"},
                                          {"index", -1},
                                          {"value", "Yard"},
                                          {"returnCode", "RecordingGroupNameInUse"}},
                              QVariantMap{{"element", "pathInfoList"},
                                          {"index", 0},
                                          {"value", "/srv"},
                                          {"returnCode", "PathNotWritable"},
                                          {"reason", "PermissionDenied"}}};
    const QStringList lines{"recordingGroupName \"Yard\": RecordingGroupNameInUse",
                            "pathInfoList \"/srv\": PathNotWritable (PermissionDenied)"};
    CallOutcome outcome;
    outcome.parts = {{"RecordingGroupNameInUse", errors}};
    QCOMPARE(refusalLines(outcome), lines);
    outcome.parts = {{"RecordingGroupNameInUse", QVariantMap{{"errorAction", errors}}}};
    QCOMPARE(refusalLines(outcome), lines);
    QCOMPARE(refusedElementsJson(outcome),
             (QJsonArray{QJsonObject{{"element", "recordingGroupName"},
                                     {"index", QJsonValue()},
                                     {"value", "Yard"},
                                     {"code", "RecordingGroupNameInUse"},
                                     {"reason", QJsonValue()}},
                         QJsonObject{{"element", "pathInfoList"},
                                     {"index", 0},
                                     {"value", "/srv"},
                                     {"code", "PathNotWritable"},
                                     {"reason", "PermissionDenied"}}}));
    outcome.parts = {{"0", QVariantMap{{"recordingGroupID", "{1}"}}, false},
                     {"RecordingGroupNotFound", QVariantMap{{"recordingGroupID", "{2}"}}, false},
                     {"PathNotInGroup", QVariantMap{{"recordingGroupID", "{3}"}, {"path", "/a"}}}};
    QCOMPARE(refusalLines(outcome),
             (QStringList{"recordingGroupID \"{2}\": RecordingGroupNotFound", "path \"/a\": PathNotInGroup"}));
    outcome.parts = {{"0", errors}};
    QCOMPARE(refusalLines(outcome), QStringList{});
    QCOMPARE(refusedElementsJson(outcome), QJsonArray());
    outcome.parts = {{"UnknownCommand", {}}};
    QCOMPARE(refusalLines(outcome), QStringList{});
}

QTEST_GUILESS_MAIN(TestCtlTables)
#include "tst_ctl_tables.moc"
