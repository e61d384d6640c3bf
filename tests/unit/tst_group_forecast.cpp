#include "GroupForecast.h"
#include "StorageJson.h"
#include "StorageTables.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

/// How recordingctl shows forecasts.
class GroupForecastTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { QTest::failOnWarning(QRegularExpression(u".*"_s)); }

    void forecastForAnOperator();
    void volumeForAnOperator();
    void lostVolumeForAnOperator();
    void forecastForAProgram();
    void lostVolumeForAProgram();
};

void GroupForecastTest::forecastForAnOperator()
{
    const auto figures = [](const QString &name, int minutes, qint64 remaining) {
        return QVariantMap{{u"recordingGroupName"_s, name},
                           {u"recordingGroupReservedTime"_s, minutes},
                           {u"recordedDays"_s, 9},
                           {u"remainingDays"_s, remaining},
                           {u"bytesPerDay"_s, Q_INT64_C(1) << 30}};
    };
    const QVariantMap forecast{
        {u"groups"_s,
         QVariantList{QVariantMap{{u"now"_s, figures(u"Yard"_s, 1440, 7)}, {u"then"_s, figures(u"Gate"_s, 2880, -1)}},
                      QVariantMap{{u"then"_s, figures(u"New"_s, 0, 1)}},
                      QVariantMap{{u"now"_s, figures(u"Old"_s, 0, 1)}}}},
        {u"volumes"_s,
         QVariantList{QVariantMap{{u"volumeName"_s, u"Disk"_s},
                                  {u"volumePath"_s, u"/srv"_s},
                                  {u"size"_s, Q_INT64_C(10) << 30},
                                  {u"now"_s, QVariantMap{{u"reserveSpace"_s, 1024}}},
                                  {u"then"_s, QVariantMap{{u"reserveSpace"_s, 2048}}}},
                      QVariantMap{{u"volumeName"_s, u"Lost"_s},
                                  {u"volumePath"_s, u"/mnt"_s},
                                  {u"size"_s, -1},
                                  {u"now"_s, QVariantMap{{u"reserveSpace"_s, 0}}},
                                  {u"then"_s, QVariantMap{{u"reserveSpace"_s, 0}}}}}}};
    QCOMPARE(forecastGroupTable(forecast).toString(),
             u"Group            Recorded          Remaining    Reserved time       Per day\n"
             u"Yard -> Gate       9 days  7 days -> unknown  1 day -> 2 days       1.00 GB\n"
             u"- -> New      - -> 9 days         - -> 1 day                -  - -> 1.00 GB\n"
             u"Old -> -      9 days -> -         1 day -> -                -  1.00 GB -> -\n"_s);
    QCOMPARE(forecastVolumeTable(forecast).toString(),
             u"Volume  Path      Size            Reserved\n"
             u"Disk    /srv  10.00 GB  1.00 GB -> 2.00 GB\n"
             u"Lost    /mnt   unknown             0.00 KB\n"_s);
}

void GroupForecastTest::volumeForAnOperator()
{
    constexpr qint64 gb = Q_INT64_C(1) << 30;
    const QVariantMap volume{{u"volumePath"_s, u"/srv"_s},
                             {u"volumeName"_s, u"Disk"_s},
                             {u"kind"_s, u"local"_s},
                             {u"state"_s, u"readOnly"_s},
                             {u"size"_s, 20 * gb},
                             {u"free"_s, 10 * gb},
                             {u"reservedForRoot"_s, gb},
                             {u"backupBytes"_s, 2 * gb},
                             {u"withoutGroupBytes"_s, 3 * gb},
                             {u"otherBytes"_s, -1},
                             {u"unknownBytes"_s, gb},
                             {u"excessBytes"_s, gb},
                             {u"groups"_s,
                              QVariantList{QVariantMap{{u"recordingGroupName"_s, u"Yard"_s},
                                                       {u"paths"_s, QStringList{u"/srv/a"_s, u"/srv/b"_s}},
                                                       {u"recordedBytes"_s, 4 * gb},
                                                       {u"recordedDays"_s, 3},
                                                       {u"bytesPerDay"_s, gb},
                                                       {u"reserveSpace"_s, 1024}},
                                           QVariantMap{{u"recordingGroupName"_s, u"Gate"_s},
                                                       {u"paths"_s, QStringList{u"/srv/c"_s}},
                                                       {u"recordedBytes"_s, -1},
                                                       {u"recordedDays"_s, -1},
                                                       {u"bytesPerDay"_s, -1},
                                                       {u"reserveSpace"_s, 0}}}}};
    QCOMPARE(volumeHeading(volume), u"Disk (/srv): local, read-only"_s);
    QCOMPARE(volumeParts(volume).toString(),
             u"Part                                         Bytes  Recorded  Per day  Reserved  Paths\n"
             u"Yard                                       4.00 GB    3 days  1.00 GB   1.00 GB  /srv/a, /srv/b\n"
             u"Gate                                       unknown   unknown  unknown   0.00 KB  /srv/c\n"
             u"(backup area)                              2.00 GB\n"
             u"(recordings of no group)                   3.00 GB\n"
             u"(other files)                              unknown\n"
             u"(recordings not counted, or other files)   1.00 GB\n"
             u"(reserved for root)                        1.00 GB\n"
             u"(free)                                    10.00 GB\n"
             u"(recordings that take no space)           -1.00 GB\n"
             u"(size)                                    20.00 GB\n"_s);
}

void GroupForecastTest::lostVolumeForAnOperator()
{
    const QVariantMap volume{{u"volumePath"_s, u"//nas/rec"_s},
                             {u"volumeName"_s, u"//nas/rec"_s},
                             {u"kind"_s, u"NAS"_s},
                             {u"state"_s, u"notAnswering"_s},
                             {u"size"_s, -1},
                             {u"free"_s, -1},
                             {u"reservedForRoot"_s, -1},
                             {u"otherBytes"_s, -1},
                             {u"unknownBytes"_s, -1},
                             {u"excessBytes"_s, -1}};
    QCOMPARE(volumeHeading(volume), u"//nas/rec: NAS, not answering"_s);
    QCOMPARE(volumeParts(volume).toString(),
             u"Part             Bytes  Recorded  Per day  Reserved  Paths\n"
             u"(other files)  unknown\n"
             u"(free)         unknown\n"
             u"(size)         unknown\n"_s);
}

void GroupForecastTest::forecastForAProgram()
{
    const QVariantMap figures{{u"recordingGroupName"_s, u"Yard"_s},
                              {u"recordingGroupReservedTime"_s, 1440},
                              {u"recordedDays"_s, 9},
                              {u"remainingDays"_s, -1},
                              {u"bytesPerDay"_s, 4096}};
    const QVariantMap forecast{{u"groups"_s,
                                QVariantList{QVariantMap{{u"recordingGroupID"_s, u""_s}, {u"then"_s, figures}},
                                             QVariantMap{{u"recordingGroupID"_s, u"{1}"_s}, {u"now"_s, figures}}}},
                               {u"volumes"_s,
                                QVariantList{QVariantMap{{u"volumeName"_s, u""_s},
                                                         {u"volumePath"_s, u"/mnt"_s},
                                                         {u"size"_s, -1},
                                                         {u"now"_s, QVariantMap{{u"reserveSpace"_s, 0}}},
                                                         {u"then"_s, QVariantMap{{u"reserveSpace"_s, 1024}}}}}}};
    const QJsonValue null = QJsonValue::Null;
    const QJsonObject yard{{"name", "Yard"},
                           {"recordedDays", 9},
                           {"remainingDays", null},
                           {"oneDayUsageBytes", 4096},
                           {"reservedTimeMinutes", 1440}};
    const QJsonObject volume{{"path", "/mnt"},
                             {"name", null},
                             {"sizeBytes", null},
                             {"now", QJsonObject{{"reservedSpaceMegabytes", 0}}},
                             {"then", QJsonObject{{"reservedSpaceMegabytes", 1024}}}};
    const QJsonObject expected{{"edit", "group-add"},
                               {"groups",
                                QJsonArray{QJsonObject{{"id", null}, {"now", null}, {"then", yard}},
                                           QJsonObject{{"id", "{1}"}, {"now", yard}, {"then", null}}}},
                               {"volumes", QJsonArray{volume}}};
    QCOMPARE(forecastJson(u"group-add"_s, forecast), expected);
}

void GroupForecastTest::lostVolumeForAProgram()
{
    const QVariantMap group{{u"recordingGroupID"_s, u"{1}"_s},
                            {u"recordingGroupName"_s, u"Yard"_s},
                            {u"paths"_s, QStringList{u"/a"_s}},
                            {u"recordedBytes"_s, -1},
                            {u"recordedDays"_s, -1},
                            {u"bytesPerDay"_s, -1},
                            {u"reserveSpace"_s, 1024},
                            {u"counted"_s, false}};
    const QVariantMap volume{{u"volumePath"_s, u"//nas/rec"_s},
                             {u"volumeName"_s, u"//nas/rec"_s},
                             {u"volumeIsSystem"_s, false},
                             {u"kind"_s, u"NAS"_s},
                             {u"state"_s, u"notAnswering"_s},
                             {u"since"_s, u"2026-11-21T05:10:01.776Z"_s},
                             {u"size"_s, -1},
                             {u"free"_s, -1},
                             {u"reservedForRoot"_s, -1},
                             {u"backupBytes"_s, 0},
                             {u"withoutGroupBytes"_s, -1},
                             {u"otherBytes"_s, -1},
                             {u"unknownBytes"_s, -1},
                             {u"excessBytes"_s, -1},
                             {u"counted"_s, false},
                             {u"groups"_s, QVariantList{group}}};
    const QJsonValue null = QJsonValue::Null;
    const QJsonObject yard{
        {"id", "{1}"},          {"name", "Yard"},           {"paths", QJsonArray{"/a"}},      {"recordedBytes", null},
        {"recordedDays", null}, {"oneDayUsageBytes", null}, {"reservedSpaceMegabytes", 1024}, {"isCounted", false}};
    const QJsonObject expected{
        {"path", "//nas/rec"},  {"name", "//nas/rec"},       {"isSystem", false},
        {"isNas", true},        {"state", "notAnswering"},   {"since", "2026-11-21T05:10:01.776Z"},
        {"sizeBytes", null},    {"availableBytes", null},    {"reservedForRootBytes", null},
        {"backupBytes", 0},     {"withoutGroupBytes", null}, {"otherBytes", null},
        {"unknownBytes", null}, {"excessBytes", null},       {"isCounted", false},
        {"countedAt", null},    {"groups", QJsonArray{yard}}};
    QCOMPARE(storageJson({volume}), QJsonArray{expected});
}

QTEST_GUILESS_MAIN(GroupForecastTest)
#include "tst_group_forecast.moc"
