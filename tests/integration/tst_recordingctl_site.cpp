#include "ToolRun.h"

#include <QJsonArray>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <csignal>

#include <sys/types.h>

namespace {
Run runOnSite(const QStringList &arguments)
{
    return run(QStringList{"--connect", "site:yard-1"} + arguments, {}, QStringLiteral(RECORDINGCTL_SITE));
}

/// The words of the line that begins with @p first.
QStringList lineOf(const Run &run, const QString &first)
{
    const QStringList lines = run.outputLines();
    for (const QString &line : lines) {
        if (words(line).constFirst() == first)
            return words(line);
    }
    return {};
}
} // namespace

/// The tool on a site of many stations, which the test plays.
class TestRecordingctlSite : public QObject
{
    Q_OBJECT
private slots:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void stationsAreListed();
    void stationsAsJson();
    void usageOfAll();
    void aStationIsNamed();
    void aStationThatIsNotThere();
    void watchOfAll();
    void watchEndsWithItsOutput();
    void watchOfOne();
    void each();
    void eachThatIsDone();
    void eachAsJson();
    void eachRefusesWhatIsNotForEach_data();
    void eachRefusesWhatIsNotForEach();
    void eachEndsInOrder();
};

void TestRecordingctlSite::stationsAreListed()
{
    const Run listed = runOnSite({"stations"});
    QCOMPARE(listed.outputLines().size(), 14);
    QCOMPARE(words(listed.outputLines().constFirst()),
             QStringList({"Station", "Name", "State", "Since", "Days short", "Free", "Alarms", "Version"}));
    QCOMPARE(words(listed.outputLines().at(3)).constFirst(), "yard-2"); // before yard-10
    const QStringList second = lineOf(listed, "yard-2");
    QCOMPARE(second.mid(0, 3), QStringList({"yard-2", "Station yard-2", "up"}));
    QCOMPARE(second.mid(4), QStringList({"5 days", "2.00 MB", "1", "1.0"}));
    QCOMPARE(lineOf(listed, "yard-1").at(4), "-");
    QCOMPARE(lineOf(listed, "yard-3").mid(4, 3), QStringList({"unknown", "unknown", "unknown"}));
    QCOMPARE(lineOf(listed, "gate").at(2), "down");
    QCOMPARE(listed.exitCode, 1);
    QVERIFY2(listed.errors.contains("gate: down since 2026-03-20"), qPrintable(listed.errors));
    QVERIFY2(listed.errors.contains(": It was ended.\n"), qPrintable(listed.errors));
    QVERIFY2(listed.errors.contains("unknown: yard-3 has told no figures"), qPrintable(listed.errors));
}

void TestRecordingctlSite::stationsAsJson()
{
    const Run listed = runOnSite({"stations", "--json"});
    const QJsonArray stations = listed.json().value("data").toArray();
    QCOMPARE(stations.size(), 13);
    QCOMPARE(listed.json().value("returnCode"), QJsonValue("LinkDown"));
    const QJsonObject gate = stations.at(0).toObject();
    QCOMPARE(gate.value("id"), QJsonValue("gate"));
    QCOMPARE(gate.value("state"), QJsonValue("down"));
    QCOMPARE(gate.value("since"), QJsonValue("2026-03-20T12:00:00.000Z"));
    QCOMPARE(gate.value("figuresAt"), QJsonValue("2026-03-20T12:00:00.000Z"));
    QCOMPARE(gate.value("alarms"), QJsonValue()); // nobody hears of them
    const QJsonObject third = stations.at(3).toObject();
    QCOMPARE(third.value("id"), QJsonValue("yard-3"));
    for (const char *key : {"groups", "shortGroups", "missingDays", "availableBytes", "alarms"})
        QCOMPARE(third.value(QLatin1String(key)), QJsonValue(QJsonValue::Null));
    QCOMPARE(listed.reply()["unknown"][0]["subject"], QJsonValue("yard-3"));
}

void TestRecordingctlSite::usageOfAll()
{
    const Run listed = runOnSite({"usage", "--all"});
    QCOMPARE(words(listed.outputLines().constFirst()),
             QStringList({"Station", "Group", "Recorded", "Remaining", "Reserved time", "Per day", "Figures of"}));
    QCOMPARE(lineOf(listed, "yard-2"),
             QStringList({"yard-2", "Yard", "3 days", "2 days", "10 days", "1.00 MB", "now"}));
    QVERIFY(lineOf(listed, "gate").constLast().startsWith("2026-03-20"));
    QCOMPARE(lineOf(listed, "yard-3").mid(1, 5), QStringList(5, "unknown"));
    QCOMPARE(listed.exitCode, 1);
    const QJsonArray groups = runOnSite({"usage", "--all", "--json"}).json().value("data").toArray();
    QCOMPARE(groups.size(), 12);
    QCOMPARE(groups.at(1).toObject().value("station"), QJsonValue("yard-1"));
    QCOMPARE(groups.at(1).toObject().value("recordedDays"), QJsonValue(8));
}

void TestRecordingctlSite::aStationIsNamed()
{
    const Run refused = runOnSite({"camera-add", "Gate", "--station", "yard-2"});
    QCOMPARE(refused.exitCode, 1);
    QVERIFY(refused.errors.contains("CameraExists"));
    QCOMPARE(runOnSite({"camera-add", "Gate", "--station", "yard-4"}).exitCode, 0);
    const Run down = runOnSite({"camera-add", "Gate", "--station", "gate"});
    QCOMPARE(down.exitCode, 3);
    QVERIFY2(down.errors.contains("It was ended."), qPrintable(down.errors));
}

/// A link to one station takes no other.
void TestRecordingctlSite::aStationThatIsNotThere()
{
    QTemporaryDir folder;
    const Run refused = run({"cameras", "--station", "yard-1", "--data", folder.filePath("station")});
    QCOMPARE(refused.exitCode, 1);
    QVERIFY2(refused.errors.contains("yard-1"), qPrintable(refused.errors));
}

void TestRecordingctlSite::watchOfAll()
{
    const Run watched = runOnSite({"watch", "--all", "--timeout", "2", "--json"});
    QStringList sources;
    QStringList states;
    const QStringList lines = watched.outputLines();
    for (const QString &line : lines) {
        const QJsonValue data = QJsonDocument::fromJson(line.toUtf8()).object().value("data");
        if (data["kind"] == QJsonValue("event"))
            sources.append(data["values"]["source"].toString());
        if (data["kind"] == QJsonValue("station"))
            states.append(data["values"]["source"].toString() + ' ' + data["name"].toString() + ' '
                          + data["values"]["reason"].toString());
    }
    QCOMPARE(states, QStringList("gate down It was ended.")); // the others are up
    sources.removeDuplicates();
    QCOMPARE(sources.size(), 12);
    QVERIFY(sources.contains("yard-1") && sources.contains("gate"));
    QCOMPARE(watched.exitCode, 0);
}

void TestRecordingctlSite::watchEndsWithItsOutput()
{
    const Run lost =
        run({"-c", "exec '" RECORDINGCTL_SITE "' --connect site:yard-1 watch --all > /dev/full"}, {}, "/bin/sh");
    QCOMPARE(lost.exitCode, 2);
    QCOMPARE(lost.errors, "recordingctl: standard output could not be written\n");
}

void TestRecordingctlSite::watchOfOne()
{
    const Run watched = runOnSite({"watch", "--timeout", "2", "--json"});
    int events = 0;
    const QStringList lines = watched.outputLines();
    for (const QString &line : lines) {
        const QJsonValue data = QJsonDocument::fromJson(line.toUtf8()).object().value("data");
        if (data["kind"] != QJsonValue("event"))
            continue;
        ++events;
        QVERIFY(data["values"]["source"].isNull());
    }
    QCOMPARE(events, 1);
}

void TestRecordingctlSite::each()
{
    const Run done = runOnSite({"each", "*", "--parallel", "3", "--", "camera-add", "Gate"});
    QCOMPARE(done.exitCode, 1);
    QCOMPARE(lineOf(done, "yard-1").mid(0, 3), QStringList({"yard-1", "Station yard-1", "done"}));
    QCOMPARE(lineOf(done, "yard-2").at(2), "refused");
    QVERIFY(lineOf(done, "yard-2").constLast().contains("CameraExists"));
    QCOMPARE(lineOf(done, "gate").at(2), "not up");
    QVERIFY2(done.errors.contains("13 of 13 stations, 2 not done"), qPrintable(done.errors));
    QVERIFY2(done.errors.contains("2 of 13 stations are not done"), qPrintable(done.errors));
}

void TestRecordingctlSite::eachThatIsDone()
{
    const Run done = runOnSite({"each", "yard-1?", "--", "cameras"});
    QCOMPARE(done.exitCode, 0);
    for (const char *station : {"yard-10", "yard-11", "yard-12"}) {
        QCOMPARE(lineOf(done, QLatin1String(station)).at(2), "done");
        QVERIFY(
            done.output.contains(QStringLiteral("== %1\nName  Streams\nGate        1\n").arg(QLatin1String(station))));
    }
    QVERIFY(lineOf(done, "yard-1").isEmpty());
    const Run unfit = runOnSite({"each", "north*", "--", "cameras"});
    QCOMPARE(unfit.exitCode, 1);
    QVERIFY2(unfit.errors.contains("no station fits \"north*\"; there are 13"), qPrintable(unfit.errors));
}

void TestRecordingctlSite::eachAsJson()
{
    const Run done = runOnSite({"--json", "each", "yard-[12]", "--", "camera-add", "Gate"});
    const QJsonArray outcomes = done.json().value("data").toArray();
    QCOMPARE(outcomes.size(), 2);
    QCOMPARE(outcomes.at(0).toObject().value("outcome"), QJsonValue("done"));
    QCOMPARE(outcomes.at(0)["reply"]["data"]["name"], QJsonValue("Gate"));
    QCOMPARE(outcomes.at(1).toObject().value("outcome"), QJsonValue("refused"));
    QCOMPARE(outcomes.at(1)["reply"]["returnCode"], QJsonValue("CameraExists"));
    QCOMPARE(done.json().value("returnCode"), QJsonValue("NotAllDone"));
}

void TestRecordingctlSite::eachRefusesWhatIsNotForEach_data()
{
    QTest::addColumn<QStringList>("command");
    QTest::addColumn<QString>("words");

    QTest::newRow("nothing") << QStringList{"nothing-like-it"} << "there is no command";
    QTest::newRow("itself") << QStringList{"each", "*", "cameras"} << "a command for one station";
    QTest::newRow("stations") << QStringList{"stations"} << "a command for one station";
    QTest::newRow("all") << QStringList{"usage", "--all"} << "a command for one station";
    QTest::newRow("help") << QStringList{"cameras", "--help"} << "a command for one station";
    QTest::newRow("arguments") << QStringList{"camera-add"} << "usage: recordingctl camera-add NAME";
    QTest::newRow("json") << QStringList{"cameras", "--json"} << "--json stands before the pattern";
    QTest::newRow("station") << QStringList{"cameras", "--station", "yard-1"} << "--station stands before the pattern";
    QTest::newRow("input") << QStringList{"nas-add", "nas", "--password", "-"} << "@FILE";
}

void TestRecordingctlSite::eachRefusesWhatIsNotForEach()
{
    QFETCH(const QStringList, command);
    QFETCH(const QString, words);
    const Run refused = runOnSite(QStringList{"each", "*", "--"} + command);
    QCOMPARE(refused.exitCode, 2);
    QVERIFY2(refused.errors.contains(words), qPrintable(refused.errors));
    QCOMPARE(refused.output, QString());
}

void TestRecordingctlSite::eachEndsInOrder()
{
    QProcess process;
    process.setProcessEnvironment(quietEnvironment());
    process.start(QStringLiteral(RECORDINGCTL_SITE),
                  {"--connect", "site:yard-1", "each", "yard-*", "--parallel", "1", "--", "cameras"});
    QByteArray output;
    QTRY_VERIFY((output += process.readAllStandardOutput()).contains("== yard-1\n"));
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    const Run ended = finished(process);
    QCOMPARE(ended.exitCode, 1);
    const QStringList lines = (QString::fromUtf8(output) + ended.output).split(u'\n');
    const auto count = [&lines](const QString &outcome) {
        return std::count_if(lines.cbegin(), lines.cend(), [&outcome](const QString &line) {
            return line.startsWith("yard-") && words(line).value(2) == outcome;
        });
    };
    QVERIFY(count("done") >= 1);
    QVERIFY(count("not begun") >= 1);
    QCOMPARE(count("done") + count("not begun"), 12);
    QVERIFY2(ended.errors.contains("no more are begun"), qPrintable(ended.errors));
}

QTEST_GUILESS_MAIN(TestRecordingctlSite)
#include "tst_recordingctl_site.moc"
