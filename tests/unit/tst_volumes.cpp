#include "FakeFramework.h"
#include "ItemRoles.h"
#include "ModelText.h"
#include "PluginRecordingManagement.h"
#include "ServerVocabulary.h"
#include "SignalLog.h"

#include <QAbstractItemModelTester>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSet>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>
#include <QUuid>

#include <limits>

namespace {

const QList<int> describingRoles{VolumeRole::RootPath,      VolumeRole::Name,     VolumeRole::Size,
                                 VolumeRole::AvailableSize, VolumeRole::IsSystem, VolumeRole::IsNas};

QVariantMap volume(const QString &path, const QString &name = {}, qlonglong size = 0, qlonglong available = 0,
                   bool isSystem = false)
{
    return {{"volumePath", path},
            {"volumeName", name},
            {"volumeSize", size},
            {"volumeAvailableSize", available},
            {"volumeIsSystem", isSystem}};
}

QVariantMap info(qlonglong size, qlonglong available, bool isNas, bool isSystem)
{
    return {{"size", size}, {"availableSize", available}, {"isNAS", isNas}, {"isSystem", isSystem}};
}

} // namespace

class VolumesTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void requestCarriesNoDataAndTheRelayPath_data();
    void requestCarriesNoDataAndTheRelayPath();
    void requestFailsWhenTheFrameworkRefuses();
    void replyFillsTheModel_data();
    void replyFillsTheModel();
    void everyRowGetsAFreshIdentifier();
    void replyIsSeenAsOneResetAndOneInsertion();
    void emptyReplyInsertsNothing();
    void failureAfterSuccessEmptiesTheModel();
    void signalComesWhenTheModelIsFilled();
    void roleNamesSurviveEveryReply();
    void infoIsFoundByPath_data();
    void infoIsFoundByPath();
    void infoHasTheDocumentedTypes();
    void infoTakesTheFirstMatchNotTheLongest();
    void infoIgnoresTheRelayPath();
    void emptyVolumePathMatchesEveryPath();
    void infoKeepsANasVolumesMark();
    void capacityText_data();
    void capacityText();
    void capacityTextsHaveTheDigitsOfQt();

private:
    void reply(const QVariant &data, const QString &returnCode = "0")
    {
        m_plugin->CommandProcessor("getVolume", data, nullptr, returnCode, {}, true, {});
    }
    QStringList rows() const { return modelText(*m_model, describingRoles); }

    FakeFramework m_framework;
    std::unique_ptr<PluginRecordingManagement> m_plugin;
    QStandardItemModel *m_model = nullptr;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

void VolumesTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_framework = {};
    m_plugin = std::make_unique<PluginRecordingManagement>();
    QVERIFY(m_plugin->InitialPluginBase(nullptr, this, &m_framework));
    m_model = qobject_cast<QStandardItemModel *>(m_plugin->getVolumeModel());
    QVERIFY(m_model);
    m_tester =
        std::make_unique<QAbstractItemModelTester>(m_model, QAbstractItemModelTester::FailureReportingMode::QtTest);
}

void VolumesTest::cleanup()
{
    m_tester.reset();
    m_plugin.reset();
}

void VolumesTest::requestCarriesNoDataAndTheRelayPath_data()
{
    QTest::addColumn<QString>("relayPath");
    QTest::newRow("the directly connected station") << QString();
    QTest::newRow("a relayed one") << "relay-7";
}

void VolumesTest::requestCarriesNoDataAndTheRelayPath()
{
    QFETCH(QString, relayPath);
    QVERIFY(relayPath.isEmpty() ? m_plugin->getVolume() : m_plugin->getVolume(relayPath));
    QCOMPARE(m_framework.sent.size(), 1);
    const FakeFramework::Sent &sent = m_framework.sent.constFirst();
    QCOMPARE(sent.handle, this);
    QCOMPARE(sent.pluginId, "8F33495A224D49ABB8F9E875984A1443");
    QCOMPARE(sent.command, "getVolume");
    QVERIFY(!sent.data.isValid());
    QCOMPARE(sent.context, nullptr);
    QVERIFY(!sent.flag);
    QCOMPARE(sent.relayPath, relayPath);
}

void VolumesTest::requestFailsWhenTheFrameworkRefuses()
{
    m_framework.accepts = false;
    QVERIFY(!m_plugin->getVolume());
}

void VolumesTest::replyFillsTheModel_data()
{
    QTest::addColumn<QVariant>("data");
    QTest::addColumn<QStringList>("rows");

    QTest::newRow("two volumes in the order of the reply")
        << QVariant(QVariantList{volume("E:/", "Video", 2000, 500), volume("C:/", "System", 1000, 10, true)})
        << QStringList{"E:/ | Video | qlonglong:2000 | qlonglong:500 | bool:false | bool:false",
                       "C:/ | System | qlonglong:1000 | qlonglong:10 | bool:true | bool:false"};
    QTest::newRow("one path twice") << QVariant(QVariantList{volume("E:/"), volume("E:/")})
                                    << QStringList{"E:/ |  | qlonglong:0 | qlonglong:0 | bool:false | bool:false",
                                                   "E:/ |  | qlonglong:0 | qlonglong:0 | bool:false | bool:false"};
    QTest::newRow("missing keys") << QVariant(QVariantList{QVariantMap{}})
                                  << QStringList{" |  | qlonglong:0 | qlonglong:0 | bool:false | bool:false"};
    QTest::newRow("an element that is no map")
        << QVariant(QVariantList{5}) << QStringList{" |  | qlonglong:0 | qlonglong:0 | bool:false | bool:false"};
    QTest::newRow("numbers as text") << QVariant(
        QVariantList{QVariantMap{{"volumeSize", "42"}, {"volumeAvailableSize", "none"}}})
                                     << QStringList{" |  | qlonglong:42 | qlonglong:0 | bool:false | bool:false"};
    QTest::newRow("sizes beyond 32 bits") << QVariant(QVariantList{volume("E:/", "", Q_INT64_C(9007199254740993), -1)})
                                          << QStringList{"E:/ |  | qlonglong:9007199254740993 | qlonglong:-1 | "
                                                         "bool:false | bool:false"};
    QTest::newRow("NAS is never taken from the reply")
        << QVariant(QVariantList{QVariantMap{{"volumePath", "//nas/a"}, {"volumeIsNAS", true}}})
        << QStringList{"//nas/a |  | qlonglong:0 | qlonglong:0 | bool:false | bool:false"};
    QTest::newRow("an empty list") << QVariant(QVariantList{}) << QStringList{};
    QTest::newRow("no list") << QVariant(5) << QStringList{};
    QTest::newRow("nothing") << QVariant() << QStringList{};
}

void VolumesTest::replyFillsTheModel()
{
    QFETCH(QVariant, data);
    QFETCH(QStringList, rows);
    reply(QVariantList{volume("old")});
    QSignalSpy responded(m_plugin.get(), &PluginRecordingManagement::getVolumeResponded);

    reply(data);

    QCOMPARE(this->rows(), rows);
    QCOMPARE(responded, QList<QVariantList>{{true}});
}

void VolumesTest::everyRowGetsAFreshIdentifier()
{
    static const QRegularExpression uuid("^\\{[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}\\}$");
    QSet<QString> seen;
    for (int round = 0; round < 2; ++round) {
        reply(QVariantList{volume("C:/"), volume("C:/")});
        for (int row = 0; row < 2; ++row) {
            const QVariant id = m_model->index(row, 0).data(VolumeRole::Id);
            QCOMPARE(id.metaType(), QMetaType::fromType<QString>());
            QVERIFY2(uuid.match(id.toString()).hasMatch(), qPrintable(id.toString()));
            seen.insert(id.toString());
        }
    }
    QCOMPARE(seen.size(), 4);
}

void VolumesTest::replyIsSeenAsOneResetAndOneInsertion()
{
    reply(QVariantList{volume("old")});
    QSignalSpy resets(m_model, &QAbstractItemModel::modelReset);
    QSignalSpy insertions(m_model, &QAbstractItemModel::rowsInserted);
    QSignalSpy changes(m_model, &QAbstractItemModel::dataChanged);

    reply(QVariantList{volume("a"), volume("b"), volume("c")});

    QCOMPARE(resets.size(), 1);
    QCOMPARE(insertions.size(), 1);
    QCOMPARE(insertions.constFirst().at(1).toInt(), 0);
    QCOMPARE(insertions.constFirst().at(2).toInt(), 2);
    QCOMPARE(changes.size(), 0);
}

void VolumesTest::emptyReplyInsertsNothing()
{
    QSignalSpy insertions(m_model, &QAbstractItemModel::rowsInserted);
    QSignalSpy columns(m_model, &QAbstractItemModel::columnsInserted);
    reply(QVariantList{});
    QCOMPARE(m_model->rowCount(), 0);
    QCOMPARE(insertions.size(), 0);
    QCOMPARE(columns.size(), 0);
}

void VolumesTest::failureAfterSuccessEmptiesTheModel()
{
    for (const char *code : {"1", "", "00", "0 "}) {
        reply(QVariantList{volume("C:/")});
        QSignalSpy responded(m_plugin.get(), &PluginRecordingManagement::getVolumeResponded);
        reply(QVariantList{volume("D:/")}, code);
        QCOMPARE(m_model->rowCount(), 0);
        QCOMPARE(responded, QList<QVariantList>{{false}});
    }
}

void VolumesTest::signalComesWhenTheModelIsFilled()
{
    SignalLog log(m_plugin.get(), [this] { return rows().join(", "); });
    reply(QVariantList{volume("C:/")});
    reply(QVariantList{volume("C:/")}, "1");
    QCOMPARE(log.take(),
             (QStringList{"getVolumeResponded(true) with C:/ |  | qlonglong:0 | qlonglong:0 | bool:false | "
                          "bool:false",
                          "getVolumeResponded(false) with "}));
}

void VolumesTest::roleNamesSurviveEveryReply()
{
    const QHash<int, QByteArray> names{{257, "idRole"},   {258, "rootPathRole"},      {259, "nameRole"},
                                       {260, "sizeRole"}, {261, "availableSizeRole"}, {262, "isSystemRole"},
                                       {263, "isNASRole"}};
    QCOMPARE(m_model->roleNames(), names);
    reply(QVariantList{volume("C:/")});
    QCOMPARE(m_model->roleNames(), names);
}

void VolumesTest::infoIsFoundByPath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QVariantMap>("expected");

    QTest::newRow("below a volume") << "D:/Record/cam1" << info(400, 40, false, false);
    QTest::newRow("backslashes against a volume with backslashes") << "D:\\Record\\cam1" << info(400, 40, false, false);
    QTest::newRow("slashes against a volume with backslashes") << "E:/x" << info(500, 50, false, false);
    QTest::newRow("the volume itself") << "C:/" << info(300, 30, false, true);
    QTest::newRow("a plain prefix suffices") << "/mnt/videos-old/x" << info(600, 60, false, false);
    QTest::newRow("case counts") << "c:/Record" << info(0, 0, false, false);
    QTest::newRow("under no volume") << "Z:/Record" << info(0, 0, false, false);
    QTest::newRow("shorter than the volume's path") << "C:" << info(0, 0, false, false);
    QTest::newRow("empty") << "" << info(0, 0, false, false);
}

void VolumesTest::infoIsFoundByPath()
{
    QFETCH(QString, path);
    QFETCH(QVariantMap, expected);
    reply(QVariantList{volume("C:/", "", 300, 30, true), volume("D:\\", "", 400, 40), volume("E:\\", "", 500, 50),
                       volume("/mnt/video", "", 600, 60)});
    QCOMPARE(m_plugin->getVolumeInfo(path, {}), expected);
}

void VolumesTest::infoHasTheDocumentedTypes()
{
    const QVariantMap nothing = m_plugin->getVolumeInfo("C:/", {});
    QCOMPARE(nothing.keys(), (QStringList{"availableSize", "isNAS", "isSystem", "size"}));
    QCOMPARE(nothing["size"].metaType(), QMetaType::fromType<qlonglong>());
    QCOMPARE(nothing["availableSize"].metaType(), QMetaType::fromType<qlonglong>());
    QCOMPARE(nothing["isNAS"].metaType(), QMetaType::fromType<bool>());
    QCOMPARE(nothing["isSystem"].metaType(), QMetaType::fromType<bool>());
}

void VolumesTest::infoTakesTheFirstMatchNotTheLongest()
{
    reply(QVariantList{volume("/", "", 1), volume("/mnt/video", "", 2)});
    QCOMPARE(m_plugin->getVolumeInfo("/mnt/video/cam1", {})["size"], 1);
    reply(QVariantList{volume("/mnt/video", "", 2), volume("/", "", 1)});
    QCOMPARE(m_plugin->getVolumeInfo("/mnt/video/cam1", {})["size"], 2);
}

void VolumesTest::infoIgnoresTheRelayPath()
{
    reply(QVariantList{volume("D:/", "", 400, 40)});
    QCOMPARE(m_plugin->getVolumeInfo("D:/a", "another station"), m_plugin->getVolumeInfo("D:/a", ""));
}

void VolumesTest::emptyVolumePathMatchesEveryPath()
{
    reply(QVariantList{volume("", "", 7)});
    QCOMPARE(m_plugin->getVolumeInfo("D:/a", {})["size"], 7);
    QCOMPARE(m_plugin->getVolumeInfo("", {})["size"], 7);
    QCOMPARE(m_plugin->getVolumeInfo(QString(), {})["size"], 7);
}

void VolumesTest::infoKeepsANasVolumesMark()
{
    m_plugin->CommandProcessor("addNASPathsToVolume",
                               QVariantList{QVariantMap{{"diskName", "//nas/video"}, {"diskTotal", 500}}}, nullptr, "0",
                               {}, true, {});
    QCOMPARE(m_plugin->getVolumeInfo("//nas/video/cam1", {}), info(500, 500, true, false));
}

void VolumesTest::capacityText_data()
{
    QTest::addColumn<qlonglong>("kiloBytes");
    QTest::addColumn<QString>("text");

    QTest::newRow("nothing") << Q_INT64_C(0) << "0.00 KB";
    QTest::newRow("below a megabyte") << Q_INT64_C(1023) << "1023.00 KB";
    QTest::newRow("a megabyte") << Q_INT64_C(1024) << "1.00 MB";
    QTest::newRow("a megabyte and a half") << Q_INT64_C(1536) << "1.50 MB";
    QTest::newRow("rounding does not carry") << Q_INT64_C(1048575) << "1024.00 MB";
    QTest::newRow("a gigabyte") << Q_INT64_C(1048576) << "1.00 GB";
    QTest::newRow("a terabyte") << Q_INT64_C(1073741824) << "1.00 TB";
    QTest::newRow("two petabytes are still written in TB") << Q_INT64_C(2199023255552) << "2048.00 TB";
    QTest::newRow("negative is never scaled") << Q_INT64_C(-5) << "-5.00 KB";
    QTest::newRow("very negative is never scaled") << Q_INT64_C(-1048576) << "-1048576.00 KB";
}

void VolumesTest::capacityText()
{
    QFETCH(qlonglong, kiloBytes);
    QFETCH(QString, text);
    const QVariantMap entry{{"recordingGroupID", "g"}, {"volumeSize", kiloBytes}, {"volumeAvailableSize", 1}};
    m_plugin->EventProcessor("VolumeChanged", 0, 0, 0, QVariantList{entry}, {});

    const QVariantList groups = m_plugin->getRecordingGroupInfoList();
    QCOMPARE(groups.size(), 1);
    const QVariantList volumes = groups.constFirst().toMap().value("volumeList").toList();
    QCOMPARE(volumes.size(), 1);
    QCOMPARE(volumes.constFirst().toMap().value("totalSpace"), text);
}

// The rule in floating point, step by step.
QString plainCapacityText(qlonglong kiloBytes)
{
    double value = static_cast<double>(kiloBytes);
    int unit = 0;
    for (; value >= 1024.0 && unit < 3; ++unit)
        value /= 1024.0;
    return QString::number(value, 'f', 2) + QStringList{" KB", " MB", " GB", " TB"}.at(unit);
}

void VolumesTest::capacityTextsHaveTheDigitsOfQt()
{
    QList<qlonglong> sizes{std::numeric_limits<qlonglong>::max(), -1};
    for (int bit = 0; bit < 63; ++bit) {
        const qlonglong power = 1LL << bit;
        for (const qlonglong eighths : {1, 3, 5, 7}) { // half a hundredth, where the digits are rounded
            const qlonglong tie = power + eighths * (power / 8);
            sizes << power - 1 << power << power + 1 << tie - 1 << tie << tie + 1;
        }
    }
    QRandomGenerator random(7);
    for (int i = 0; i < 50'000; ++i)
        sizes << static_cast<qlonglong>(random.generate64() >> (1 + random.bounded(63)));

    QVariantList entries;
    for (const qlonglong size : std::as_const(sizes))
        entries << QVariantMap{{"recordingGroupID", "g"}, {"volumeSize", size}, {"volumeAvailableSize", -size}};
    m_plugin->EventProcessor("VolumeChanged", 0, 0, 0, entries, {});
    const QVariantList volumes =
        m_plugin->getRecordingGroupInfoList().constFirst().toMap().value("volumeList").toList();
    QCOMPARE(volumes.size(), sizes.size());
    for (qsizetype i = 0; i < sizes.size(); ++i) {
        const QVariantMap volume = volumes[i].toMap();
        QCOMPARE(volume.value("totalSpace").toString(), plainCapacityText(sizes[i]));
        QCOMPARE(volume.value("remainingSpace").toString(), plainCapacityText(-sizes[i]));
    }
}

QTEST_GUILESS_MAIN(VolumesTest)
#include "tst_volumes.moc"
