#include "CommandForms.h"
#include "JsonShape.h"
#include "SambaServer.h"
#include "ToolRun.h"
#include "VolumeFolder.h"
#include "alarms/AlarmStore.h"
#include "groups/GroupStore.h"
#include "history/HistoryStore.h"
#include "store/Database.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

namespace {

/// A run of a command and what it must print.
struct Step
{
    QStringList arguments;
    QJsonValue data; ///< the shape of "data"; undefined: there must be none
    int exitCode = 0;
    QString code = QStringLiteral("0"); ///< "returnCode"
    qsizetype elements = 0; ///< how many are refused
    QByteArray input = {};
    QString program = QStringLiteral(RECORDINGCTL);
};

const QJsonValue nothing{QJsonValue::Undefined};
const QJsonObject volume{{"path", "text"},         {"name", "text"},
                         {"sizeBytes", "number?"}, {"availableBytes", "number?"},
                         {"isSystem", "bool"},     {"isNas", "bool"}};
const QJsonObject member{{"camera", "text"}, {"stream", "number"}, {"isTimeShift", "bool"}, {"isSeamless", "bool"}};
const QJsonObject removal{
    {"groupId", "text"}, {"group", "text"}, {"paths", QJsonArray{"text"}}, {"keptBytes", "number?"}};
const QJsonObject id{{"id", "text"}};
const QJsonObject parameter{{"name", "text"}, {"type", "text"}, {"optional", "bool"}};

QJsonArray listOf(const QJsonValue &shape)
{
    return {shape};
}

QStringList commandsOf(const QList<Step> &steps)
{
    QStringList names;
    for (const Step &step : steps)
        names.append(step.arguments.first());
    names.removeDuplicates();
    names.sort();
    return names;
}

} // namespace

/// What --json prints: one object of one shape for every command that there is, whatever comes of it.
class TestRecordingctlJson : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void everyCommandIsTested();
    void success();
    void refusal();
    void watchPrintsAnObjectForEachEvent();
    void wrongUse_data();
    void wrongUse();
    void aRefusalByThePluginHasItsReason();
    void callTellsNothingAsNull();
    void callHasOneFormForEachQuantity_data();
    void callHasOneFormForEachQuantity();

private:
    void keepHistory() const;
    void leaveRecordings() const;
    void raiseAlarm() const;
    QList<Step> successes() const;
    QList<Step> refusals() const;
    void check(const Step &step) const;
    QString folder(const QString &name) const { return m_folder.filePath(name); }
    QString nasPath(const QString &path) const { return QStringLiteral("//%1/%2").arg(m_server.host(), path); }
    QStringList on(const QString &station) const { return {"--data", folder(station)}; }

    QTemporaryDir m_folder{onAVolume("json-XXXXXX")};
    SambaServer m_server;
};

void TestRecordingctlJson::initTestCase()
{
    QVERIFY(m_folder.isValid());
    for (const char *name : {"a", "b", "browse/cam2"})
        QVERIFY(QDir().mkpath(folder(name)));
    m_server.addShare("rec");
    QVERIFY2(m_server.start(), qPrintable(m_server.error()));
    QVERIFY(QDir(m_server.folderOf("rec")).mkpath("yard"));
    // A station whose database got lost.
    QCOMPARE(run(QStringList{"camera-add", "Gate"} + on("lost")).exitCode, 0);
    QVERIFY(QFile::remove(folder("lost/station.db")));
    keepHistory();
    leaveRecordings();
    raiseAlarm();
}

/// A station that kept a sample, and in a day not, of a recording group and of a volume that is away.
void TestRecordingctlJson::keepHistory() const
{
    constexpr qint64 day = 86'400;
    QVERIFY(QDir().mkpath(folder("sampled")));
    Database database(folder("sampled"));
    RecordingGroup doors;
    doors.id = doors.name = doors.folder = QStringLiteral("Doors");
    GroupStore(database).insert(doors);
    Transaction transaction(database);
    HistoryStore store(database);
    for (const qint64 time : {0 * day, 2 * day}) {
        store.insert(HistoryResolution::Day, time, {});
        UsageSample group{{HistorySubject::Kind::RecordingGroup, doors.id}};
        group.figures[UsageSample::RecordedDays] = 7;
        store.insert(HistoryResolution::Day, time, group);
        UsageSample volume{{HistorySubject::Kind::Volume, QStringLiteral("/srv")}};
        volume.figures[UsageSample::RecordedBytes] = 0;
        store.insert(HistoryResolution::Day, time, volume);
    }
    transaction.commit();
}

/// A station with a group, Court, and recordings of two that were removed, Doors and Yard.
void TestRecordingctlJson::leaveRecordings() const
{
    const QString path = folder("rec");
    for (const char *name : {"Doors", "Yard"}) {
        const QString day = QStringLiteral("%1/%2/Gate/2026-03-01").arg(path, QLatin1String(name));
        QVERIFY(QDir().mkpath(day));
        QFile file(day + QStringLiteral("/1.rec"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(1024));
    }
    QVERIFY(QDir().mkpath(folder("left")));
    Database database(folder("left"));
    for (const char *name : {"Doors", "Yard"}) {
        database.run(QStringLiteral("INSERT INTO recording_place (path, folder, group_id, volume_path, volume_name)"
                                    " VALUES (?, ?, '', '', '')"),
                     {path, QLatin1String(name)});
    }
    RecordingGroup court;
    court.id = court.name = court.folder = QStringLiteral("Court");
    court.paths.append({path, PathKind::Local, 0, false});
    GroupStore(database).insert(court);
}

/// A station with a group whose path is missing, and with an alarm that is over.
void TestRecordingctlJson::raiseAlarm() const
{
    QVERIFY(QDir().mkpath(folder("alarmed")));
    Database database(folder("alarmed"));
    RecordingGroup doors;
    doors.id = doors.name = doors.folder = QStringLiteral("Doors");
    doors.paths.append({folder("missing"), PathKind::Local, 0, false});
    GroupStore(database).insert(doors);
    const QDateTime time = QDateTime::currentDateTimeUtc();
    const QString text = QStringLiteral("text");
    const StationTrouble trouble{text, StationTrouble::Severity::Error, text, text, text, time};
    AlarmStore store(database);
    store.begin(trouble);
    store.acknowledge(trouble, Acknowledgement{time, text, text});
    store.end(trouble, time);
}

/// In an order in which each finds what it needs, and leaves nothing behind.
QList<Step> TestRecordingctlJson::successes() const
{
    const QString host = m_server.host();
    const QStringList logOn{"--user", m_server.userName(), "--password", "-"};
    const QByteArray password = m_server.password().toUtf8() + '\n';
    const QJsonObject camera{{"name", "text"}, {"streams", "number"}};
    const QJsonObject signature{{"name", "text"}, {"parameters", listOf(parameter)}};
    QJsonObject invokable = signature;
    invokable.insert("returnType", "text");
    const QJsonObject group{{"id", "text"}, {"name", "text"}};
    QJsonObject groupWithPaths = group;
    groupWithPaths.insert(
        "paths", listOf(QJsonObject{{"path", "text"}, {"reservedSpaceMegabytes", "number"}, {"isRecovery", "bool"}}));
    groupWithPaths.insert("reservedTimeMinutes", "number");
    groupWithPaths.insert("members", listOf(member));
    QJsonObject groupOfTree = group;
    groupOfTree.insert("type", "text");
    QJsonObject groupUsage = group;
    for (const char *key : {"recordedDays", "remainingDays", "oneDayUsageBytes", "reservedTimeMinutes"})
        groupUsage.insert(QLatin1String(key), "number?");
    groupUsage.insert("volumes", listOf(volume));
    QJsonObject sampleOfGroup{{"time", "time"}, {"recordedDays", "number"}};
    for (const char *key :
         {"remainingDays", "oneDayUsageBytes", "recordedBytes", "reservedTimeMinutes", "reservedSpaceMegabytes"})
        sampleOfGroup.insert(QLatin1String(key), QJsonValue()); // not known
    const QJsonObject sampleOfVolume{
        {"time", "time"}, {"sizeBytes", QJsonValue()}, {"availableBytes", QJsonValue()}, {"recordedBytes", "number"}};
    const QJsonArray gaps = listOf(QJsonObject{{"from", "time"}, {"until", "time"}});
    const QJsonObject alarm{
        {"kind", "text"},    {"severity", "text"}, {"subject", "text?"},        {"text", "text"},
        {"remedy", "text?"}, {"since", "time"},    {"acknowledgedAt", "time?"}, {"acknowledgedBy", "text?"},
        {"note", "text?"},   {"group", "text?"},   {"groupId", "text?"},        {"source", "text?"}};
    const QJsonObject pastAlarm{{"kind", "text"},  {"severity", "text"},        {"subject", "text?"},
                                {"text", "text"},  {"remedy", "text?"},         {"since", "time"},
                                {"until", "time"}, {"acknowledgedAt", "time?"}, {"acknowledgedBy", "text?"},
                                {"note", "text?"}};
    const QJsonObject acknowledged{{"kind", "text"}, {"subject", "text"}, {"isAcknowledged", "bool"}};
    const QJsonObject unassigned{{"place", "text"},
                                 {"path", "text"},
                                 {"folder", "text?"},
                                 {"volumePath", "text?"},
                                 {"volumeName", "text?"},
                                 {"isNas", "bool"},
                                 {"state", "text"},
                                 {"recordedBytes", "number?"},
                                 {"recordedFiles", "number?"},
                                 {"recordedDays", "number?"},
                                 {"oldestDay", "text?"},
                                 {"newestDay", "text?"},
                                 {"cameras", listOf("text")},
                                 {"isCounted", "bool"},
                                 {"countedAt", "time?"},
                                 {"deletion", QJsonValue()}};
    const QJsonObject deleted{{"place", "text"},
                              {"deletedFiles", "number"},
                              {"deletedBytes", "number"},
                              {"leftFiles", "number?"},
                              {"leftBytes", "number?"},
                              {"leftEntries", "number?"},
                              {"left", listOf(QJsonObject{{"path", "text"}, {"reason", "text"}})}};
    QJsonObject groupOnVolume = group;
    for (const char *key : {"recordedBytes", "recordedDays", "oneDayUsageBytes"})
        groupOnVolume.insert(QLatin1String(key), "number?");
    groupOnVolume.insert("paths", listOf("text"));
    groupOnVolume.insert("reservedSpaceMegabytes", "number");
    groupOnVolume.insert("isCounted", "bool");
    QJsonObject volumeWithParts = volume;
    for (const char *key :
         {"reservedForRootBytes", "backupBytes", "withoutGroupBytes", "otherBytes", "unknownBytes", "excessBytes"})
        volumeWithParts.insert(QLatin1String(key), "number?");
    volumeWithParts.insert("state", "text");
    volumeWithParts.insert("since", "time?");
    volumeWithParts.insert("isCounted", "bool");
    volumeWithParts.insert("countedAt", "time?");
    volumeWithParts.insert("groups", listOf(groupOnVolume));
    const QJsonObject figures{{"name", "text"},
                              {"recordedDays", "number?"},
                              {"remainingDays", "number?"},
                              {"oneDayUsageBytes", "number?"},
                              {"reservedTimeMinutes", "number"}};
    const QJsonObject reserve{{"reservedSpaceMegabytes", "number"}};
    const QJsonObject forecast{
        {"edit", "text"},
        {"groups", listOf(QJsonObject{{"id", "text"}, {"now", figures}, {"then", figures}})},
        {"volumes",
         listOf(QJsonObject{
             {"path", "text"}, {"name", "text"}, {"sizeBytes", "number?"}, {"now", reserve}, {"then", reserve}})}};
    const QJsonObject edit{{"number", "number"},   {"time", "time"},
                           {"client", "text"},     {"user", "text"},
                           {"command", "text"},    {"groupId", "text?"},
                           {"groupName", "text?"}, {"subject", "text?"},
                           {"returnCode", "text"}, {"durationMilliseconds", "number"}};
    return {
        {{"list"},
         QJsonObject{{"invokables", listOf(invokable)}, {"signals", listOf(signature)}, {"enumerations", "list"}}},
        {{"call", "getVolume"},
         QJsonObject{
             {"name", "text"},
             {"result", "bool"},
             {"answers", listOf(QJsonObject{{"signal", "text"}, {"arguments", QJsonObject{{"success", "bool"}}}})},
             {"rows", listOf(volume)}}},
        {{"watch", "--count", "1"},
         QJsonObject{{"time", "time"}, {"kind", "text"}, {"name", "text"}, {"values", QJsonObject()}}},
        {{"stations"},
         listOf(QJsonObject{{"id", "text?"},
                            {"name", "text?"},
                            {"address", "text?"},
                            {"version", "text?"},
                            {"state", "text"},
                            {"since", "time?"},
                            {"reason", "text?"},
                            {"groups", "number"},
                            {"shortGroups", "number"},
                            {"missingDays", "number"},
                            {"availableBytes", "number?"},
                            {"alarms", "number"},
                            {"errors", "number"},
                            {"figuresAt", "time?"}})},
        {{"each", "*", "--", "cameras"},
         listOf(QJsonObject{
             {"station", "text?"},
             {"stationName", "text?"},
             {"outcome", "text"},
             {"durationMilliseconds", "number"},
             {"message", "text?"},
             {"reply", QJsonObject{{"command", "text"}, {"data", listOf(camera)}, {"returnCode", "text"}}}})},
        {{"volumes"}, listOf(volume)},
        {{"folders", folder("browse")}, listOf("text")},
        {{"mkdir", folder("made")}, QJsonObject{{"path", "text"}}},
        {{"camera-add", "Gate", "--streams", "2"}, camera},
        {{"camera-add", "Door"}, camera},
        {{"camera-remove", "Door"}, QJsonObject{{"name", "text"}}},
        {{"cameras"}, listOf(camera)},
        {{"group-add", "Yard", "--path", folder("a"), "--reserve", "1024", "--member", "Gate:1"}, id},
        {{"group-update", "Yard", "--reserved-time", "4320"}, id},
        {{"group-path-add", "Yard", folder("b")}, id},
        {{"group-path-set", "Yard", folder("b"), "--recovery"}, id},
        {{"groups"}, listOf(groupWithPaths)},
        {{"group-members", "Yard"}, listOf(member)},
        {{"tree"},
         listOf(QJsonObject{{"name", "text"},
                            {"type", "text"},
                            {"address", "text?"},
                            {"relayPath", "text?"},
                            {"groups", listOf(groupOfTree)}})},
        {{"usage"}, listOf(groupUsage)},
        {{"alarms"}, listOf(alarm)},
        {QStringList{"alarms", "--past"} + on("alarmed"), listOf(pastAlarm)},
        {QStringList{"alarm-acknowledge", "VolumeGone", folder("missing"), "--note", "seen"} + on("alarmed"),
         acknowledged},
        {QStringList{"recordings-unassigned"} + on("left"), listOf(unassigned)},
        {QStringList{"recordings-assign", folder("rec/Yard"), "Court"} + on("left"),
         QJsonObject{{"place", "text"}, {"groupId", "text"}, {"path", "text"}, {"movedDays", "number"}}},
        {QStringList{"recordings-delete", folder("rec/Doors"), "--confirm", "Doors"} + on("left"), deleted},
        {{"storage"}, listOf(volumeWithParts)},
        {{"forecast", "group-path-set", "Yard", folder("a"), "--reserve", "2048"}, forecast},
        {{"activity"}, listOf(edit)},
        {{"activity", "--group", "Yard", "--from", "2020-01-01T00:00:00Z", "--until", "2999-01-01T00:00:00Z", "--limit",
          "1"},
         listOf(edit)},
        {QStringList{"history", "group", "Doors"} + on("sampled"),
         QJsonObject{{"samples", listOf(sampleOfGroup)}, {"gaps", gaps}}},
        {QStringList{"history", "volume", "/srv"} + on("sampled"),
         QJsonObject{{"samples", listOf(sampleOfVolume)}, {"gaps", gaps}}},
        {{"group-path-remove", "Yard", folder("b")}, listOf(removal)},
        {QStringList{"nas-add", host} + logOn, id, 0, "0", 0, password},
        {{"nas"}, listOf(QJsonObject{{"id", "text"}, {"host", "text"}, {"domain", "text?"}, {"user", "text?"}})},
        {{"nas-folders", nasPath("rec")}, listOf("text")},
        {{"nas-capacity", nasPath("rec")},
         QJsonObject{{"path", "text"}, {"sizeBytes", "number"}, {"usedBytes", "number"}, {"availableBytes", "number"}}},
        {{"nas-volumes", nasPath("rec/yard")}, listOf(volume)},
        {{"nas-update", host, "--domain", "TESTNAS"}, id},
        {{"nas-remove", host}, id},
        {{"group-remove", "Yard"}, listOf(removal)},
        {{"camera-remove", "Gate"}, QJsonObject{{"name", "text"}}},
        {{"site-sample"}, QJsonObject{{"created", "bool"}}},
    };
}

/// On the sample site that the successes leave behind.
QList<Step> TestRecordingctlJson::refusals() const
{
    const QString nobody = QStringLiteral("127.0.0.1:1");
    QList<Step> steps{
        {{"list", "all"}, nothing, 2, "WrongUse"},
        {{"call", "createDirectory", "/proc/cam3"}, nothing, 1, "OutsideVolumes"},
        {{"watch", "--count", "1000", "--timeout", "0.001"}, nothing, 3, "NoAnswer"},
        {{"stations", "all"}, nothing, 2, "WrongUse"},
        {{"each", "nowhere*", "--", "cameras"}, nothing, 1, "NotFound"},
        {{"volumes", "--timeout", "0.2"}, nothing, 3, "NoAnswer", 0, {}, HANGING_STATION},
        {{"folders", folder("missing")}, nothing, 1, "DirectoryNotFound"},
        {{"mkdir", "/proc/cam3"}, nothing, 1, "OutsideVolumes"},
        {{"camera-add", "Warehouse"}, nothing, 1, "CameraExists"},
        {{"camera-remove", "Nobody"}, nothing, 1, "CameraNotFound"},
        {{"group-add", "Parking", "--path", folder("missing"), "--path", "/proc", "--member", "Nobody"},
         nothing,
         1,
         "RecordingGroupNameInUse",
         4},
        {{"group-update", "Parking", "--add-member", "Nobody"}, nothing, 1, "CameraNotFound", 1},
        {{"group-path-add", "Parking", "/proc"}, nothing, 1, "OutsideVolumes", 1},
        {{"group-path-set", "Parking", "/nowhere", "--recovery"}, nothing, 1, "PathNotInGroup", 1},
        {{"group-path-remove", "Parking", "/nowhere"}, nothing, 1, "PathNotInGroup", 1},
        {{"forecast", "group-add", "Yard", "--path", folder("missing"), "--path", "/proc"},
         nothing,
         1,
         "DirectoryNotFound",
         2},
        {{"group-members", "Court"}, nothing, 1, "NotFound"},
        {{"group-remove", "Court"}, nothing, 1, "NotFound"},
        {{"site-sample"}, nothing, 1, "SiteNotEmpty"},
        {{"history", "camera", "Gate"}, nothing, 2, "WrongUse"},
        {{"alarm-acknowledge", "VolumeGone", "/nowhere"}, nothing, 1, "AlarmNotFound"},
        {{"recordings-assign", "/nowhere", "Parking"}, nothing, 1, "PlaceNotFound"},
        {{"recordings-delete", "/nowhere"}, nothing, 1, "PlaceNotFound"},
        {{"activity", "--group", "Court"}, nothing, 1, "NotFound"},
        {{"history", "group", "Court"}, nothing, 1, "NotFound"},
        {{"history", "volume", "/nowhere"}, nothing, 1, "NoHistory"},
        {{"nas-add", nobody}, nothing, 1, "NasServerNotResponding"},
        {{"nas-update", "nobody", "--domain", "x"}, nothing, 1, "NotFound"},
        {{"nas-remove", "nobody"}, nothing, 1, "NotFound"},
        {{"nas-folders", nasPath("missing")}, nothing, 1, "GetNasDirFailed"},
        {{"nas-capacity", nasPath("missing")}, nothing, 1, "GetNasCapacityFailed"},
        {{"nas-volumes", "//" + nobody + "/rec"}, nothing, 1, "NasServerNotFound"},
    };
    for (const char *command :
         {"usage", "activity", "alarms", "storage", "recordings-unassigned", "tree", "groups", "cameras", "nas"})
        steps.append({QStringList{QLatin1String(command)} + on("lost"), nothing, 1, "DatabaseMissing"});
    return steps;
}

void TestRecordingctlJson::everyCommandIsTested()
{
    QStringList names = commandNames();
    names.sort();
    QCOMPARE(commandsOf(successes()), names);
    QCOMPARE(commandsOf(refusals()), names);
}

/// Runs @p step and compares all that it prints.
void TestRecordingctlJson::check(const Step &step) const
{
    QStringList options{"--json"}; // before "--", behind which nothing is one
    if (!step.arguments.contains("--data"))
        options += on("station");
    const QStringList arguments = step.arguments.mid(0, 1) + options + step.arguments.mid(1);
    const Run run = ::run(arguments, step.input, step.program);
    const QByteArray what =
        QStringLiteral("%1: %2\n%3").arg(step.arguments.join(u' '), run.output, run.errors).toUtf8();
    QVERIFY2(run.exitCode == step.exitCode, what);
    const bool areLines = step.arguments.first() == "watch";
    const QByteArray text = (areLines ? run.outputLines().value(run.outputLines().size() - 1) : run.output).toUtf8();
    QJsonParseError parsed;
    const QJsonObject reply = QJsonDocument::fromJson(text, &parsed).object();
    QVERIFY2(parsed.error == QJsonParseError::NoError, what); // one object and nothing else

    QStringList keys{"command", "returnCode"};
    if (!step.data.isUndefined())
        keys.append("data");
    if (step.exitCode != 0)
        keys.append("error");
    keys.sort();
    QCOMPARE(reply.keys(), keys);
    QCOMPARE(reply["command"], QJsonValue(step.arguments.first()));
    QVERIFY2(reply["returnCode"] == QJsonValue(step.code), what);
    QVERIFY2(placeholder(reply).isEmpty(), what + placeholder(reply).toUtf8());
    if (!step.data.isUndefined()) {
        const QString mismatch = shapeMismatch(reply["data"], step.data, "data");
        QVERIFY2(mismatch.isEmpty(), what + mismatch.toUtf8());
        QVERIFY2(!reply["data"].isArray() || !reply["data"].toArray().isEmpty() || step.arguments.first() == "alarms",
                 what); // an empty list has no shape
    }
    if (step.exitCode == 0)
        return;
    const QJsonObject element{
        {"element", "text"}, {"index", "number?"}, {"value", "text"}, {"code", "text"}, {"reason", "text?"}};
    const QString mismatch = shapeMismatch(
        reply["error"], QJsonObject{{"code", "text"}, {"message", "text"}, {"elements", listOf(element)}}, "error");
    QVERIFY2(mismatch.isEmpty(), what + mismatch.toUtf8());
    QCOMPARE(reply["error"]["code"], reply["returnCode"]);
    QVERIFY2(reply["error"]["elements"].toArray().size() == step.elements, what);
    for (const QString &line : reply["error"]["message"].toString().split(u'\n'))
        QVERIFY2(run.errors.contains("recordingctl: " + line + '\n'), what);
}

void TestRecordingctlJson::success()
{
    for (const Step &step : successes()) {
        check(step);
        if (QTest::currentTestFailed())
            return;
    }
}

void TestRecordingctlJson::refusal()
{
    for (const Step &step : refusals()) {
        check(step);
        if (QTest::currentTestFailed())
            return;
    }
}

/// How many lines come at the start, and in which order, is up to the station's speed.
void TestRecordingctlJson::watchPrintsAnObjectForEachEvent()
{
    QProcess watch;
    watch.start(QStringLiteral(RECORDINGCTL), QStringList{"watch", "--json"} + on("station"));
    QStringList lines;
    const auto hasKind = [&lines](const char *kind) {
        const QString words = QStringLiteral("\"kind\":\"%1\"").arg(QLatin1String(kind));
        return std::any_of(lines.cbegin(), lines.cend(), [&](const QString &line) { return line.contains(words); });
    };
    const auto hasAllKinds = [&] {
        while (watch.canReadLine())
            lines.append(QString::fromUtf8(watch.readLine()));
        return hasKind("signal") && hasKind("event") && hasKind("usage");
    };
    QVERIFY2(QTest::qWaitFor(hasAllKinds, 60'000), qPrintable(lines.join(QString())));
    watch.terminate();
    QVERIFY(watch.waitForFinished(60'000));
    for (const QString &line : std::as_const(lines)) {
        const QJsonObject reply = QJsonDocument::fromJson(line.toUtf8()).object();
        QCOMPARE(reply.keys(), (QStringList{"command", "data", "returnCode"}));
        QCOMPARE(reply["returnCode"], QJsonValue("0"));
        QCOMPARE(reply["data"].toObject().keys(), (QStringList{"kind", "name", "time", "values"}));
        QCOMPARE(typeMismatch(reply["data"]["time"], "time"), QString());
        QVERIFY2(placeholder(reply).isEmpty(), qPrintable(line));
    }

    const Run counted = run(QStringList{"watch", "--json", "--count", "3"} + on("station"));
    QCOMPARE(counted.exitCode, 0);
    QCOMPARE(counted.outputLines().size(), 3);
}

void TestRecordingctlJson::wrongUse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QJsonValue>("command");
    QTest::newRow("no command") << QStringList{} << QJsonValue();
    QTest::newRow("unknown command") << QStringList{"volume"} << QJsonValue("volume");
    QTest::newRow("unknown option") << QStringList{"volumes", "--all"} << QJsonValue("volumes");
    QTest::newRow("an option of another command") << QStringList{"volumes", "--count", "1"} << QJsonValue("volumes");
    QTest::newRow("value of an option") << QStringList{"watch", "--count", "0"} << QJsonValue("watch");
    QTest::newRow("too few arguments") << QStringList{"mkdir"} << QJsonValue("mkdir");
    QTest::newRow("unknown invokable") << QStringList{"call", "reboot"} << QJsonValue("call");
    QTest::newRow("argument of an invokable")
        << QStringList{"call", "addRecordingGroup", "Yard", "/srv", "Disk"} << QJsonValue("call");
    QTest::newRow("forecast of no edit") << QStringList{"forecast", "groups"} << QJsonValue("forecast");
    QTest::newRow("change of nothing") << QStringList{"group-update", "Yard"} << QJsonValue("group-update");
    QTest::newRow("a password on the line")
        << QStringList{"nas-add", "nas", "--password", "hunter2"} << QJsonValue("nas-add");
}

void TestRecordingctlJson::wrongUse()
{
    QFETCH(const QStringList, arguments);
    const Run wrong = run(QStringList{"--json"} + arguments);
    QCOMPARE(wrong.exitCode, 2);
    const QJsonObject reply = wrong.json();
    QTEST(reply["command"], "command");
    QCOMPARE(reply["returnCode"], QJsonValue("WrongUse"));
    QCOMPARE(reply.keys(), (QStringList{"command", "error", "returnCode"}));
    QCOMPARE(wrong.errors, QStringLiteral("recordingctl: %1\n").arg(reply["error"]["message"].toString()));
    QCOMPARE(reply["error"]["elements"], QJsonValue(QJsonArray()));
}

void TestRecordingctlJson::aRefusalByThePluginHasItsReason()
{
    const Run add =
        run(QStringList{"call", "--json", "addNASServer", "", "Host", "anna", "-"} + on("station"), "s3 cret\n");
    QCOMPARE(add.exitCode, 1);
    QCOMPARE(add.json(),
             (QJsonObject{{"command", "call"},
                          {"returnCode", "PluginRefused"},
                          {"error",
                           QJsonObject{{"code", "PluginRefused"},
                                       {"message", "addNASServer: the plug-in refused and sent nothing: host is empty"},
                                       {"elements", QJsonArray()}}}}));
    QVERIFY(!(add.output + add.errors).contains("s3 cret"));
}

void TestRecordingctlJson::callTellsNothingAsNull()
{
    const Run call =
        run(QStringList{"call", "streamIndexHasBeenSetTmShiftSeamlessInOtherRecGroups", "Warehouse", "", "", "--json"}
            + on("station"));
    QCOMPARE(call.exitCode, 0);
    QVERIFY2(call.reply()["data"].toObject().contains("result") && call.reply()["data"]["result"].isNull(),
             qPrintable(call.output)); // -1 of the plug-in
}

void TestRecordingctlJson::callHasOneFormForEachQuantity_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("part"); // of the data: "result", or "rows" for the first row
    QTest::addColumn<QStringList>("keys");
    QTest::newRow("map") << QStringList{"getVolumeInfo", "/", ""} << "result"
                         << QStringList{"availableBytes", "isNas", "isSystem", "sizeBytes"};
    QTest::newRow("model without figures") << QStringList{"getRecordingGroup"} << "rows"
                                           << QStringList{"id", "name", "nasPathList", "nodeIdList", "pathList"};
    QTest::newRow("model of figures") << QStringList{"getStorageUsageModel", ""} << "rows"
                                      << QStringList{"id",           "name",          "oneDayUsageBytes",
                                                     "recordedDays", "remainingDays", "reservedTimeMinutes"};
}

void TestRecordingctlJson::callHasOneFormForEachQuantity()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, part);
    const Run call = run(QStringList{"call", "--json"} + on("station") + arguments);
    QCOMPARE(call.exitCode, 0);
    const QJsonValue value = call.reply()["data"][part];
    QTEST((value.isArray() ? value.toArray().at(0) : value).toObject().keys(), "keys");
    QVERIFY2(placeholder(call.json()).isEmpty(), qPrintable(call.output));
}

QTEST_GUILESS_MAIN(TestRecordingctlJson)
#include "tst_recordingctl_json.moc"
