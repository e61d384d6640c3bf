#include "FakeFramework.h"
#include "HeapWatch.h"
#include "PluginRecordingManagement.h"
#include "TraceRecorder.h"

#include <QRegularExpression>
#include <QTest>

class TracePlacesTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void modelFailuresHaveFixedLines_data();
    void modelFailuresHaveFixedLines();
    void failedSendHasAFixedLine();
    void scopesEndInLineZero();
    void formatsAreFilledIn();
};

void TracePlacesTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    takeTraceLines();
}

void TracePlacesTest::modelFailuresHaveFixedLines_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("line");
    QTest::newRow("volumes") << "Create volume model failed" << 23;
    QTest::newRow("recording groups") << "Create recording group model failed" << 31;
    QTest::newRow("NAS servers") << "Create NAS server model failed" << 39;
    QTest::newRow("NAS directories") << "Create NAS server dir model failed" << 47;
    QTest::newRow("server directories") << "Create server dir model failed" << 55;
}

void TracePlacesTest::modelFailuresHaveFixedLines()
{
    QFETCH(QString, message);
    QFETCH(int, line);
    PluginRecordingManagement plugin;
    {
        const AllocationFailure failure((line - 23) / 8); // models are made in the order of their lines
        QVERIFY(!plugin.InitialPluginBase(nullptr, nullptr, nullptr));
        QVERIFY(failure.happened());
    }
    QList<TraceLine> errors = takeTraceRecords();
    errors.removeIf([](const TraceLine &entry) { return entry.severity != 2; });
    QCOMPARE(errors.size(), 1);
    QCOMPARE(errors.constFirst().text, message);
    QCOMPARE(errors.constFirst().line, line);
    QCOMPARE(errors.constFirst().sourceFile, "PluginRecordingManagement.cpp");
    QCOMPARE(plugin.getVolumeModel() == nullptr, line == 23); // what was made before stays
}

void TracePlacesTest::failedSendHasAFixedLine()
{
    PluginRecordingManagement plugin;
    QVERIFY(!plugin.getVolume());
    const QList<TraceLine> lines = takeTraceRecords();
    QCOMPARE(lines.size(), 1);
    QCOMPARE(lines.constFirst().severity, 2);
    QCOMPARE(lines.constFirst().line, 55);
    QCOMPARE(lines.constFirst().sourceFile, "PluginRecordingManagement_Req.cpp");
}

void TracePlacesTest::scopesEndInLineZero()
{
    PluginRecordingManagement plugin;
    plugin.CommandProcessor({}, {}, nullptr, {}, {}, true, {});
    const QList<TraceLine> lines = takeTraceRecords();
    QCOMPARE(lines.size(), 2);
    QCOMPARE(lines.at(0).text, "PluginRecordingManagement::CommandProcessor, Enter");
    QVERIFY(lines.at(0).line > 0);
    QCOMPARE(lines.at(1).text, "PluginRecordingManagement::CommandProcessor, Leave");
    QCOMPARE(lines.at(1).line, 0);
}

void TracePlacesTest::formatsAreFilledIn()
{
    PluginRecordingManagement plugin;
    plugin.CommandProcessor("getRecordingGroup", {}, nullptr, "%s%n\xc3\xa4", {}, true, {});
    QCOMPARE(takeErrorLines(),
             QStringList{QString::fromUtf8("PluginRecordingManagement::handleGetRecordingGroup, Get "
                                           "recording group failed, returnCode = %s%n\xc3\xa4")});
}

QTEST_GUILESS_MAIN(TracePlacesTest)
#include "tst_trace_places.moc"
