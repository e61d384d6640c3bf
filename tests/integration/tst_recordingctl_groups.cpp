#include "ToolRun.h"
#include "VolumeFolder.h"

#include <QDir>
#include <QFile>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// Recording groups and cameras by hand: the tool, the plug-in and a station with a data folder of its own.
class TestRecordingctlGroups : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void camerasComeAndGo();
    void groupIsMadeWithAllThereIsToSay();
    void groupsAsJson();
    void membersAreChanged();
    void pathsAreChanged();
    void nameAndReservedTimeAreChanged();
    void removedGroupTellsWhatStays();
    void removalOfSeveralPathsTellsWhichFailed();
    void treeShowsStationAndGroups();
    void everyRefusedElementIsNamed();
    void updateNamesWhatWasRefused();
    void unknownGroupIsRefused();
    void changeOfNothingIsWrongUse_data();
    void changeOfNothingIsWrongUse();
    void dataFoldersAreStationsOfTheirOwn();
    void usageOfASampleSiteIsKnown();

private:
    Run ctl(const QStringList &arguments) const { return run(arguments + QStringList{"--data", folder("station")}); }
    QString folder(const QString &name) const { return m_folder->filePath(name); }
    /// The groups' table without its ids.
    QStringList groups() const
    {
        QStringList lines;
        for (const QString &line : ctl({"groups"}).outputLines().mid(1))
            lines.append(line.left(line.indexOf("  {")));
        return lines;
    }
    void makeYard();

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestRecordingctlGroups::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_folder = std::make_unique<QTemporaryDir>(onAVolume("groups-XXXXXX"));
    QVERIFY(m_folder->isValid());
    QVERIFY(QDir().mkpath(folder("a")));
    QVERIFY(QDir().mkpath(folder("b")));
}

/// A group of two members on one path.
void TestRecordingctlGroups::makeYard()
{
    QCOMPARE(ctl({"camera-add", "Gate", "--streams", "2"}).exitCode, 0);
    QCOMPARE(ctl({"camera-add", "Door"}).exitCode, 0);
    const Run add = ctl({"group-add", "Yard", "--path", folder("a"), "--reserve", "0", "--reserved-time", "4320",
                         "--member", "Gate:1", "--member", "Door", "--seamless"});
    QCOMPARE(add.errors, QString());
    QCOMPARE(add.exitCode, 0);
}

void TestRecordingctlGroups::camerasComeAndGo()
{
    QCOMPARE(ctl({"cameras"}).output, "Name  Streams\n");
    QCOMPARE(ctl({"camera-add", "Gate", "--streams", "3"}).output, QString());
    QCOMPARE(ctl({"camera-add", "Door"}).exitCode, 0);
    QCOMPARE(ctl({"cameras"}).output,
             "Name  Streams\n"
             "Door        1\n"
             "Gate        3\n");
    const Run again = ctl({"camera-add", "Gate"});
    QCOMPARE(again.exitCode, 1);
    QCOMPARE(again.errors, "recordingctl: station.addCamera: the station refused: CameraExists\n");
    QCOMPARE(ctl({"camera-remove", "Gate"}).exitCode, 0);
    QCOMPARE(ctl({"cameras", "--json"}).json(),
             (QJsonObject{{"command", "cameras"},
                          {"returnCode", "0"},
                          {"data", QJsonArray{QJsonObject{{"name", "Door"}, {"streams", 1}}}}}));
}

void TestRecordingctlGroups::groupIsMadeWithAllThereIsToSay()
{
    makeYard();
    QCOMPARE(groups(),
             QStringList{QStringLiteral("Yard  %1  0.00 KB         3 days               2").arg(folder("a"))});
    QCOMPARE(ctl({"group-members", "Yard"}).output,
             "Camera  Stream  Time shift  Seamless\n"
             "Gate         1  no          yes\n"
             "Door         0  no          yes\n");
    const Run remove = ctl({"camera-remove", "Gate"});
    QCOMPARE(remove.exitCode, 1);
    QCOMPARE(remove.errors, "recordingctl: station.removeCamera: the station refused: CameraInUse\n");
}

void TestRecordingctlGroups::groupsAsJson()
{
    const Run add = ctl({"group-add", "Yard", "--path", folder("a"), "--path", folder("b"), "--reserve", "1024"});
    QCOMPARE(add.errors, QString());
    const QString id = add.output.trimmed();
    const auto pathOf = [](const QString &path) {
        return QJsonObject{{"path", path}, {"reservedSpaceMegabytes", 1024}, {"isRecovery", false}};
    };
    QCOMPARE(ctl({"groups", "--json"}).json(),
             (QJsonObject{{"command", "groups"},
                          {"returnCode", "0"},
                          {"data",
                           QJsonArray{QJsonObject{{"id", id},
                                                  {"name", "Yard"},
                                                  {"paths", QJsonArray{pathOf(folder("a")), pathOf(folder("b"))}},
                                                  {"reservedTimeMinutes", 0},
                                                  {"members", QJsonArray{}}}}}}));
}

void TestRecordingctlGroups::membersAreChanged()
{
    makeYard();
    const Run update = ctl({"group-update", "Yard", "--remove-member", "Door", "--add-member", "Gate", "--time-shift"});
    QCOMPARE(update.errors, QString());
    QCOMPARE(update.output, QString());
    QCOMPARE(ctl({"group-members", "Yard"}).output,
             "Camera  Stream  Time shift  Seamless\n"
             "Gate         1  no          yes\n"
             "Gate         0  yes         no\n");
    QCOMPARE(ctl({"group-update", "Yard", "--remove-member", "Gate"}).exitCode, 0); // every stream
    QCOMPARE(ctl({"group-members", "Yard"}).outputLines().size(), 1);
}

void TestRecordingctlGroups::pathsAreChanged()
{
    makeYard();
    QCOMPARE(ctl({"group-path-add", "Yard", folder("b"), "--reserve", "1024", "--recovery"}).errors, QString());
    QCOMPARE(groups(),
             QStringList{QStringLiteral("Yard  %1, %2 (recovery)  0.00 KB, 1.00 GB  3 days               2")
                             .arg(folder("a"), folder("b"))});
    QCOMPARE(ctl({"group-path-set", "Yard", folder("a"), folder("b"), "--reserve", "2048", "--no-recovery"}).errors,
             QString());
    QCOMPARE(
        groups(),
        QStringList{
            QStringLiteral("Yard  %1, %2  2.00 GB, 2.00 GB  3 days               2").arg(folder("a"), folder("b"))});
}

void TestRecordingctlGroups::nameAndReservedTimeAreChanged()
{
    makeYard();
    QCOMPARE(ctl({"group-update", "Yard", "--name", "Court", "--reserved-time", "0"}).errors, QString());
    QCOMPARE(groups(),
             QStringList{QStringLiteral("Court  %1  0.00 KB         -                    2").arg(folder("a"))});
}

void TestRecordingctlGroups::removedGroupTellsWhatStays()
{
    makeYard();
    const QString day = folder("a/Yard/Gate/2026-11-01");
    QVERIFY(QDir().mkpath(day));
    QFile file(day + "/recording");
    QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(3 * 1024 * 1024));
    file.close();
    const Run remove = ctl({"group-remove", "Yard"});
    QCOMPARE(remove.errors, QString());
    QCOMPARE(words(remove.outputLines().value(0)), (QStringList{"Group", "Path", "Kept on disk"}));
    QCOMPARE(remove.outputLines().value(1).simplified(), QStringLiteral("Yard %1 3.00 MB").arg(folder("a")));
    QVERIFY(file.exists());
    QCOMPARE(groups(), QStringList{});
}

void TestRecordingctlGroups::removalOfSeveralPathsTellsWhichFailed()
{
    makeYard();
    QCOMPARE(ctl({"group-path-add", "Yard", folder("b"), "--reserve", "0"}).exitCode, 0);
    const Run partly = ctl({"group-path-remove", "Yard", "/nowhere", folder("b"), "--json"});
    QCOMPARE(partly.exitCode, 1);
    QCOMPARE(partly.reply()["data"].toArray().size(), 1);
    QCOMPARE(partly.reply()["data"][0]["paths"], QJsonValue(QJsonArray{folder("b")}));
    QCOMPARE(partly.reply()["data"][0]["keptBytes"], QJsonValue(0));
    QCOMPARE(partly.reply()["error"]["elements"][0]["value"], QJsonValue("/nowhere"));
    QCOMPARE(ctl({"group-path-add", "Yard", folder("b"), "--reserve", "0"}).exitCode, 0);
    const Run remove = ctl({"group-path-remove", "Yard", "/nowhere", folder("b")});
    QCOMPARE(remove.exitCode, 1);
    QCOMPARE(remove.errorLines(),
             (QStringList{"recordingctl: removePathFromRecordingGroup: the station refused: PathNotInGroup",
                          "recordingctl: path \"/nowhere\": PathNotInGroup"}));
    QCOMPARE(remove.outputLines().size(), 2);
    QCOMPARE(remove.outputLines().value(1).simplified(), QStringLiteral("Yard %1 0.00 KB").arg(folder("b")));
    const Run last = ctl({"group-path-remove", "Yard", folder("a"), "--json"});
    QCOMPARE(last.exitCode, 1);
    QCOMPARE(last.json().value("returnCode"), QJsonValue("LastPathOfGroup"));
    QCOMPARE(last.reply()["error"]["elements"][0]["value"], QJsonValue(folder("a")));
}

void TestRecordingctlGroups::treeShowsStationAndGroups()
{
    QCOMPARE(ctl({"group-add", "Yard", "--path", folder("a"), "--reserve", "0"}).exitCode, 0);
    const QStringList lines = ctl({"tree"}).outputLines();
    QCOMPARE(lines.size(), 3);
    QCOMPARE(words(lines.at(0)), (QStringList{"Name", "Type", "Address", "Id"}));
    QCOMPARE(words(lines.at(1)).mid(0, 2), (QStringList{QSysInfo::machineHostName(), "RecordingServer"}));
    QCOMPARE(lines.at(2).simplified().section(u' ', 0, 1), "Yard RecordingGroup");
    QCOMPARE(ctl({"tree", "--json"}).reply()["data"][0]["groups"][0]["name"], QJsonValue("Yard"));
}

void TestRecordingctlGroups::everyRefusedElementIsNamed()
{
    makeYard();
    const Run add = ctl(
        {"group-add", "Yard", "--path", folder("missing"), "--path", "/proc", "--member", "Nobody", "--reserve", "0"});
    QCOMPARE(add.exitCode, 1);
    QCOMPARE(add.output, QString());
    QCOMPARE(
        add.errorLines(),
        (QStringList{"recordingctl: addRecordingGroupWithCompleteInfo: the station refused: RecordingGroupNameInUse",
                     "recordingctl: recordingGroupName \"Yard\": RecordingGroupNameInUse",
                     QStringLiteral("recordingctl: pathInfoList \"%1\": DirectoryNotFound").arg(folder("missing")),
                     "recordingctl: pathInfoList \"/proc\": OutsideVolumes",
                     "recordingctl: deviceInfos \"Nobody\": CameraNotFound"}));
}

void TestRecordingctlGroups::updateNamesWhatWasRefused()
{
    makeYard();
    const Run update = ctl({"group-update", "Yard", "--add-member", "Gate:7", "--name", "Court"});
    QCOMPARE(update.exitCode, 1);
    QCOMPARE(update.errorLines(),
             (QStringList{"recordingctl: updateRecordingGroup: the station refused: StreamNotFound",
                          "recordingctl: updateAddCameraList \"Gate\": StreamNotFound"}));
    QVERIFY(groups().value(0).startsWith("Yard")); // nothing half done
}

void TestRecordingctlGroups::unknownGroupIsRefused()
{
    makeYard();
    for (const QStringList &command : {QStringList{"group-members", "Court"},
                                       {"group-remove", "Yard", "Court"},
                                       {"group-update", "Court", "--name", "x"},
                                       {"group-path-add", "Court", "/"}}) {
        const Run run = ctl(command);
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.output, QString());
        QCOMPARE(run.errors,
                 QStringLiteral("recordingctl: %1: there is no recording group \"Court\"; there are \"Yard\"\n")
                     .arg(command.first()));
    }
    QCOMPARE(groups().size(), 1);
}

void TestRecordingctlGroups::changeOfNothingIsWrongUse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("group") << QStringList{"group-update", "Yard"};
    QTest::newRow("flags of members alone") << QStringList{"group-update", "Yard", "--seamless"};
    QTest::newRow("path") << QStringList{"group-path-set", "Yard", "/a"};
    QTest::newRow("path both ways") << QStringList{"group-path-set", "Yard", "/a", "--recovery", "--no-recovery"};
    QTest::newRow("NAS server") << QStringList{"nas-update", "nas"};
}

void TestRecordingctlGroups::changeOfNothingIsWrongUse()
{
    QFETCH(const QStringList, arguments);
    const Run run = ctl(arguments);
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.errorLines().size(), 1);
    QVERIFY2(run.errors.contains("was expected"), qPrintable(run.errors));
}

void TestRecordingctlGroups::dataFoldersAreStationsOfTheirOwn()
{
    QCOMPARE(run({"camera-add", "Gate", "--data", folder("one")}).exitCode, 0);
    QCOMPARE(run({"cameras", "--data", folder("two")}).outputLines().size(), 1);
    QCOMPARE(run({"cameras", "--data", folder("one")}).outputLines().size(), 2);
    QVERIFY(!QDir(folder("one")).isEmpty());
}

void TestRecordingctlGroups::usageOfASampleSiteIsKnown()
{
    QCOMPARE(ctl({"site-sample"}).errors, QString());
    QCOMPARE(ctl({"site-sample"}).errors,
             "recordingctl: station.createSampleSite: the station refused: SiteNotEmpty\n");
    // The station learns its figures anew each time that it starts.
    for (int time = 0; time < 2; ++time) {
        const Run usage = ctl({"usage"});
        QCOMPARE(usage.exitCode, 0);
        QCOMPARE(words(usage.outputLines().value(0)),
                 (QStringList{"Group", "Recorded", "Remaining", "Reserved time", "Per day"}));
        QVERIFY2(usage.output.contains("\nParking ") && !usage.output.contains("unknown"), qPrintable(usage.output));
    }
    const QJsonArray groups = ctl({"usage", "--json"}).reply()["data"].toArray();
    QCOMPARE(groups.size(), 3);
    QVERIFY(groups.at(0).toObject().value("recordedDays").toInt() > 0);
    QCOMPARE(groups.at(0).toObject().value("volumes").toArray().size(), 1);
    const QJsonArray alarmsJson = ctl({"alarms", "--json"}).reply()["data"].toArray();
    QCOMPARE(alarmsJson.size(), 1);
    QCOMPARE(alarmsJson[0]["kind"], QJsonValue("InsufficientRecordingDays"));
    QCOMPARE(alarmsJson[0]["severity"], QJsonValue("warning"));
    QCOMPARE(alarmsJson[0]["group"], QJsonValue("Parking"));
    const Run alarms = ctl({"alarms"});
    QCOMPARE(alarms.outputLines().size(), 2); // one group is short of days
    QVERIFY2(alarms.output.contains("  reserved time will not be reached  Parking  {"), qPrintable(alarms.output));
}

QTEST_GUILESS_MAIN(TestRecordingctlGroups)
#include "tst_recordingctl_groups.moc"
