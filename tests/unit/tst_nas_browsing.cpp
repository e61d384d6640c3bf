#include "FakeFramework.h"
#include "HeapWatch.h"
#include "ModelText.h"
#include "PluginRecordingManagement.h"
#include "SignalLog.h"
#include "TraceRecorder.h"
#include "TypedText.h"

#include <QAbstractItemModelTester>
#include <QRegularExpression>
#include <QStandardItem>
#include <QStandardItemModel>
#include <QTest>

#include <limits>
#include <memory>

using Plugin = PluginRecordingManagement;

namespace {

const QString plainRequest = QStringLiteral("{basePath: QString \"//n/s\", logonDomain: QString \"Host\", password: "
                                            "QString \"\", relayPath: QString \"\", userName: QString \"Guest\"}");
const QString fullRequest = QStringLiteral("{basePath: QString \"//n/s\", logonDomain: QString \"d\", password: "
                                           "QString \"p\", relayPath: QString \"st1\", userName: QString \"u\"}");

QVariantMap listing(const QStringList &folders)
{
    return {{"basePath", "//echo"}, {"dirFolderList", folders}};
}

} // namespace

class NasBrowsingTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void directoryRequest();
    void filterTravelsAsTheContext_data();
    void filterTravelsAsTheContext();
    void capacityRequest();
    void emptyPathIsNotAskedFor();
    void refusedSendIsLogged();
    void filterHidesDots_data();
    void filterHidesDots();
    void directoryReplies_data();
    void directoryReplies();
    void refusedListingKeepsTheRows_data();
    void refusedListingKeepsTheRows();
    void failedRowStopsTheListing();
    void theLastListingWins();
    void capacityReplies_data();
    void capacityReplies();
    void capacityQueryAddsNoVolume();

private:
    void reply(const QString &command, const QString &code, const QVariant &data, void *context = nullptr)
    {
        m_plugin->CommandProcessor(command, data, context, code, {}, true, {});
    }
    QStringList folders() const { return modelText(*m_model, {257, 258}); }

    FakeFramework m_framework;
    std::unique_ptr<Plugin> m_plugin;
    QStandardItemModel *m_model = nullptr;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
    std::unique_ptr<SignalLog> m_log;
};

void NasBrowsingTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_framework = {};
    m_plugin = std::make_unique<Plugin>();
    QVERIFY(m_plugin->InitialPluginBase(nullptr, this, &m_framework));
    m_model = qobject_cast<QStandardItemModel *>(m_plugin->getNASServerDirModel());
    QVERIFY(m_model);
    m_tester =
        std::make_unique<QAbstractItemModelTester>(m_model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    m_log = std::make_unique<SignalLog>(m_plugin.get(), [this] { return modelText(*m_model, {257}).join(';'); });
    takeTraceLines();
}

void NasBrowsingTest::directoryRequest()
{
    QVERIFY(m_plugin->getNASServerDir("//n/s"));
    QVERIFY(m_plugin->getNASServerDir("//n/s", "d", "u", "p", "st1", Plugin::NoDot));
    QCOMPARE(m_framework.sent.size(), 2);
    QCOMPARE(typedText(m_framework.sent.at(0).data), plainRequest);
    QCOMPARE(typedText(m_framework.sent.at(1).data), fullRequest);
    for (const FakeFramework::Sent &sent : m_framework.sent) {
        QCOMPARE(sent.command, "GetNasDir");
        QCOMPARE(sent.relayPath, QString());
    }
    QCOMPARE(reinterpret_cast<qintptr>(m_framework.sent.at(0).context), qintptr(3)); // NoDotAndDotDot
}

void NasBrowsingTest::filterTravelsAsTheContext_data()
{
    QTest::addColumn<int>("filter");
    for (const int filter : {0, 1, 2, 3, 4, -1, std::numeric_limits<int>::min()})
        QTest::newRow(qPrintable(QString::number(filter))) << filter;
}

void NasBrowsingTest::filterTravelsAsTheContext()
{
    QFETCH(int, filter);
    QVERIFY(m_plugin->getNASServerDir("//n/s", "", "", "", "", static_cast<Plugin::NASDirFilter>(filter)));
    QCOMPARE(reinterpret_cast<qintptr>(m_framework.sent.constFirst().context), qintptr(filter));
}

void NasBrowsingTest::capacityRequest()
{
    QVERIFY(m_plugin->getNASServerCapacity("//n/s"));
    QVERIFY(m_plugin->getNASServerCapacity("//n/s", "d", "u", "p", "st1"));
    QCOMPARE(typedText(m_framework.sent.at(0).data), plainRequest);
    QCOMPARE(typedText(m_framework.sent.at(1).data), fullRequest);
    for (const FakeFramework::Sent &sent : m_framework.sent) {
        QCOMPARE(sent.command, "GetNasCapacity");
        QCOMPARE(sent.relayPath, QString());
        QCOMPARE(sent.context, nullptr);
    }
}

void NasBrowsingTest::emptyPathIsNotAskedFor()
{
    QVERIFY(!m_plugin->getNASServerDir("", "d", "u", "p", "st1"));
    QVERIFY(!m_plugin->getNASServerCapacity("", "d", "u", "p", "st1"));
    QVERIFY(m_framework.sent.isEmpty());
    QCOMPARE(takeTraceLines(),
             (QStringList{"error: PluginRecordingManagement::getNASServerDir, basePath is empty",
                          "error: PluginRecordingManagement::getNASServerCapacity, basePath is empty"}));
    QCOMPARE(m_log->take(), QStringList{});
}

void NasBrowsingTest::refusedSendIsLogged()
{
    m_framework.accepts = false;
    const QString line = "error: PluginRecordingManagement::sendRequestToServer, Send command failed.";
    QVERIFY(!m_plugin->getNASServerDir("//n/s"));
    QVERIFY(!m_plugin->getNASServerCapacity("//n/s"));
    QCOMPARE(takeTraceLines(), (QStringList{line, line}));
}

void NasBrowsingTest::filterHidesDots_data()
{
    QTest::addColumn<int>("filter");
    QTest::addColumn<QStringList>("shown");
    QTest::newRow("none") << 0 << QStringList{".", "..", "rec", "...", ". ", "."};
    QTest::newRow("no dot") << int(Plugin::NoDot) << QStringList{"..", "rec", "...", ". "};
    QTest::newRow("no dot dot") << int(Plugin::NoDotDot) << QStringList{".", "rec", "...", ". ", "."};
    QTest::newRow("neither") << int(Plugin::NoDotAndDotDot) << QStringList{"rec", "...", ". "};
    QTest::newRow("other bits hide nothing") << 4 << QStringList{".", "..", "rec", "...", ". ", "."};
    QTest::newRow("every bit") << -1 << QStringList{"rec", "...", ". "};
}

void NasBrowsingTest::filterHidesDots()
{
    QFETCH(int, filter);
    QFETCH(QStringList, shown);
    reply("GetNasDir", "0", listing({".", "..", "rec", "...", ". ", "."}), reinterpret_cast<void *>(qintptr(filter)));
    QCOMPARE(modelText(*m_model, {258}), shown);
    QCOMPARE(m_log->take(), QStringList{"getNASServerDirResponded(NonError, \"//echo\") with " + shown.join(';')});
}

void NasBrowsingTest::directoryReplies_data()
{
    QTest::addColumn<QVariant>("data");
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QString>("path");

    QTest::newRow("as it came: neither sorted nor unique")
        << QVariant(listing({"b", "a", "b", ""})) << QStringList{"b | b", "a | a", "b | b", " | "} << "//echo";
    QTest::newRow("no list") << QVariant(QVariantMap{{"basePath", "//p"}}) << QStringList{} << "//p";
    QTest::newRow("a mixed list") << QVariant(QVariantMap{{"dirFolderList", QVariantList{"a", 5}}})
                                  << QStringList{"a | a", "5 | 5"} << "";
    QTest::newRow("one text") << QVariant(QVariantMap{{"dirFolderList", "a"}}) << QStringList{"a | a"} << "";
    QTest::newRow("no map") << QVariant(QStringList{"a"}) << QStringList{} << "";
    QTest::newRow("nothing") << QVariant() << QStringList{} << "";
}

void NasBrowsingTest::directoryReplies()
{
    QFETCH(QVariant, data);
    QFETCH(QStringList, rows);
    QFETCH(QString, path);
    reply("GetNasDir", "0", listing({"old"}));
    m_log->take();
    reply("GetNasDir", "0", data);
    QCOMPARE(folders(), rows);
    QCOMPARE(m_log->take(),
             QStringList{"getNASServerDirResponded(NonError, \"" + path + "\") with "
                         + modelText(*m_model, {257}).join(';')});
}

void NasBrowsingTest::refusedListingKeepsTheRows_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("error");
    QTest::newRow("directory") << "GetNasDirFailed"
                               << "GetDirFailed";
    QTest::newRow("log-on") << "LogonNASServerFaled"
                            << "LogonFailed";
    QTest::newRow("capacity") << "GetNasCapacityFailed"
                              << "GetCapacityFailed";
    QTest::newRow("exists") << "NASServerExist"
                            << "ServerExist";
    QTest::newRow("another") << "timeout"
                             << "Unknown";
    QTest::newRow("empty") << ""
                           << "Unknown";
}

void NasBrowsingTest::refusedListingKeepsTheRows()
{
    QFETCH(QString, code);
    QFETCH(QString, error);
    reply("GetNasDir", "0", listing({"old"}));
    m_log->take();
    reply("GetNasDir", code, listing({"new"}));
    QCOMPARE(m_log->take(), QStringList{"getNASServerDirResponded(" + error + ", \"\") with old"});
    reply("GetNasCapacity", code, QVariantMap{{"total", 5}, {"used", 2}});
    QCOMPARE(m_log->take(), QStringList{"getNASServerCapacityResponded(" + error + ", 0, 0) with old"});
    QCOMPARE(takeErrorLines(), QStringList{});
}

void NasBrowsingTest::failedRowStopsTheListing()
{
    {
        const AllocationFailure failure(2, AllocationFailure::Kind::Throwing, sizeof(QStandardItem));
        reply("GetNasDir", "0", listing({"a", "b", "c"}));
        QVERIFY(failure.happened());
    }
    QCOMPARE(m_log->take(), QStringList{"getNASServerDirResponded(Unknown, \"\") with a"});
    QCOMPARE(takeErrorLines(),
             QStringList{"PluginRecordingManagement::handleGetNASServerDir, Create NASServerDir item error"});
}

void NasBrowsingTest::theLastListingWins()
{
    m_plugin->getNASServerDir("//n/1", "", "", "", "", Plugin::NoDot);
    m_plugin->getNASServerDir("//n/2", "", "", "", "", Plugin::NoDotDot);
    reply("GetNasDir", "0", listing({".", "..", "second"}), m_framework.sent.at(1).context);
    reply("GetNasDir", "0", listing({".", "..", "first"}), m_framework.sent.at(0).context);
    QCOMPARE(modelText(*m_model, {257}), (QStringList{"..", "first"}));
}

void NasBrowsingTest::capacityReplies_data()
{
    QTest::addColumn<QVariant>("data");
    QTest::addColumn<QString>("figures");
    QTest::newRow("numbers") << QVariant(QVariantMap{{"total", 1000}, {"used", 400}}) << "1000, 400";
    QTest::newRow("large ones") << QVariant(
        QVariantMap{{"total", std::numeric_limits<qlonglong>::max()}, {"used", std::numeric_limits<qlonglong>::min()}})
                                << "9223372036854775807, -9223372036854775808";
    QTest::newRow("texts") << QVariant(QVariantMap{{"total", "12"}, {"used", "much"}}) << "12, 0";
    QTest::newRow("keys missing") << QVariant(QVariantMap{}) << "0, 0";
    QTest::newRow("no map") << QVariant(7) << "0, 0";
}

void NasBrowsingTest::capacityReplies()
{
    QFETCH(QVariant, data);
    QFETCH(QString, figures);
    reply("GetNasCapacity", "0", data);
    QCOMPARE(m_log->take(), QStringList{"getNASServerCapacityResponded(NonError, " + figures + ") with "});
}

void NasBrowsingTest::capacityQueryAddsNoVolume()
{
    m_plugin->getNASServerCapacity("//n/s");
    reply("GetNasCapacity", "0", QVariantMap{{"total", 5}}, m_framework.sent.constFirst().context);
    QCOMPARE(qobject_cast<QStandardItemModel *>(m_plugin->getVolumeModel())->rowCount(), 0);
}

QTEST_GUILESS_MAIN(NasBrowsingTest)
#include "tst_nas_browsing.moc"
