#include "FakeFramework.h"
#include "ItemRoles.h"
#include "ModelText.h"
#include "PluginRecordingManagement.h"
#include "SignalLog.h"

#include <QAbstractItemModelTester>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

class ServerDirectoriesTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void listingSendsThePathAsABareString_data();
    void listingSendsThePathAsABareString();
    void creatingSendsThePathToTheDefaultStation();
    void requestsFailWhenTheFrameworkRefuses();
    void replyFillsTheModel_data();
    void replyFillsTheModel();
    void theReturnCodeIsNotExamined();
    void secondReplyReplacesTheFirst();
    void signalComesWhenTheModelIsFilled();
    void creatingAnswersWithTheReturnCodeAlone_data();
    void creatingAnswersWithTheReturnCodeAlone();

private:
    void reply(const QVariant &data, const QString &returnCode = "0")
    {
        m_plugin->CommandProcessor("getServerDir", data, nullptr, returnCode, {}, true, {});
    }
    QStringList rows() const { return modelText(*m_model, {DirectoryRole::Id, DirectoryRole::Name}); }

    FakeFramework m_framework;
    std::unique_ptr<PluginRecordingManagement> m_plugin;
    QStandardItemModel *m_model = nullptr;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

void ServerDirectoriesTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_framework = {};
    m_plugin = std::make_unique<PluginRecordingManagement>();
    QVERIFY(m_plugin->InitialPluginBase(nullptr, this, &m_framework));
    m_model = qobject_cast<QStandardItemModel *>(m_plugin->getServerDirModel());
    QVERIFY(m_model);
    m_tester =
        std::make_unique<QAbstractItemModelTester>(m_model, QAbstractItemModelTester::FailureReportingMode::QtTest);
}

void ServerDirectoriesTest::cleanup()
{
    m_tester.reset();
    m_plugin.reset();
}

void ServerDirectoriesTest::listingSendsThePathAsABareString_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("relayPath");
    QTest::newRow("the volumes' roots") << ""
                                        << "";
    QTest::newRow("a folder") << "D:\\Record"
                              << "";
    QTest::newRow("a folder of a relayed station") << "/mnt/video"
                                                   << "relay-7";
}

void ServerDirectoriesTest::listingSendsThePathAsABareString()
{
    QFETCH(QString, path);
    QFETCH(QString, relayPath);
    QVERIFY(relayPath.isEmpty() ? m_plugin->getServerDir(path) : m_plugin->getServerDir(path, relayPath));
    QCOMPARE(m_framework.sent.size(), 1);
    const FakeFramework::Sent &sent = m_framework.sent.constFirst();
    QCOMPARE(sent.command, "getServerDir");
    QCOMPARE(sent.data.metaType(), QMetaType::fromType<QString>());
    QCOMPARE(sent.data.toString(), path);
    QCOMPARE(sent.context, nullptr);
    QVERIFY(!sent.flag);
    QCOMPARE(sent.relayPath, relayPath);
}

void ServerDirectoriesTest::creatingSendsThePathToTheDefaultStation()
{
    QVERIFY(m_plugin->createDirectory("D:\\Record\\new"));
    QCOMPARE(m_framework.sent.size(), 1);
    const FakeFramework::Sent &sent = m_framework.sent.constFirst();
    QCOMPARE(sent.command, "createDirectory");
    QCOMPARE(sent.data.metaType(), QMetaType::fromType<QString>());
    QCOMPARE(sent.data.toString(), "D:\\Record\\new");
    QCOMPARE(sent.context, nullptr);
    QCOMPARE(sent.relayPath, "");
}

void ServerDirectoriesTest::requestsFailWhenTheFrameworkRefuses()
{
    m_framework.accepts = false;
    QVERIFY(!m_plugin->getServerDir("D:/"));
    QVERIFY(!m_plugin->createDirectory("D:/new"));
    QCOMPARE(m_framework.sent.size(), 2);
}

void ServerDirectoriesTest::replyFillsTheModel_data()
{
    QTest::addColumn<QVariant>("data");
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QString>("path");

    QTest::newRow("folders in the order of the reply")
        << QVariant(QVariantMap{{"basePath", "D:/Record"}, {"dirFolderList", QStringList{"b", "a"}}})
        << QStringList{"b | b", "a | a"} << "D:/Record";
    QTest::newRow("names as they come") << QVariant(
        QVariantMap{{"basePath", "D:/"}, {"dirFolderList", QStringList{".", "..", "", "a", "a"}}})
                                        << QStringList{". | .", ".. | ..", " | ", "a | a", "a | a"} << "D:/";
    QTest::newRow("a list of variants") << QVariant(
        QVariantMap{{"basePath", "D:/"}, {"dirFolderList", QVariantList{"a", 5}}})
                                        << QStringList{"a | a", "5 | 5"} << "D:/";
    QTest::newRow("without dirFolderList")
        << QVariant(QVariantMap{{"basePath", "D:/Record"}}) << QStringList{} << "D:/Record";
    QTest::newRow("without basePath") << QVariant(QVariantMap{{"dirFolderList", QStringList{"a"}}})
                                      << QStringList{"a | a"} << "";
    QTest::newRow("no map") << QVariant(QVariantList{"a"}) << QStringList{} << "";
    QTest::newRow("nothing") << QVariant() << QStringList{} << "";
}

void ServerDirectoriesTest::replyFillsTheModel()
{
    QFETCH(QVariant, data);
    QFETCH(QStringList, rows);
    QFETCH(QString, path);
    reply(QVariantMap{{"dirFolderList", QStringList{"old"}}});
    QSignalSpy responded(m_plugin.get(), &PluginRecordingManagement::getServerDirResponded);

    reply(data);

    QCOMPARE(this->rows(), rows);
    QCOMPARE(responded, QList<QVariantList>{{path}});
}

void ServerDirectoriesTest::theReturnCodeIsNotExamined()
{
    QSignalSpy responded(m_plugin.get(), &PluginRecordingManagement::getServerDirResponded);
    reply(QVariantMap{{"basePath", "D:/"}, {"dirFolderList", QStringList{"partial"}}}, "1");
    QCOMPARE(rows(), QStringList{"partial | partial"});
    QCOMPARE(responded, QList<QVariantList>{{"D:/"}});
}

void ServerDirectoriesTest::secondReplyReplacesTheFirst()
{
    reply(QVariantMap{{"basePath", "D:/"}, {"dirFolderList", QStringList{"a", "b", "c"}}});
    reply(QVariantMap{{"basePath", "E:/"}, {"dirFolderList", QStringList{"d"}}});
    QCOMPARE(rows(), QStringList{"d | d"});
}

void ServerDirectoriesTest::signalComesWhenTheModelIsFilled()
{
    SignalLog log(m_plugin.get(), [this] { return rows().join(", "); });
    reply(QVariantMap{{"basePath", "D:/"}, {"dirFolderList", QStringList{"a", "b"}}});
    QCOMPARE(log.take(), QStringList{"getServerDirResponded(\"D:/\") with a | a, b | b"});
}

void ServerDirectoriesTest::creatingAnswersWithTheReturnCodeAlone_data()
{
    QTest::addColumn<QString>("returnCode");
    QTest::addColumn<bool>("success");
    QTest::newRow("0") << "0" << true;
    QTest::newRow("00") << "00" << false;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("a word") << "DirectoryExists" << false;
}

void ServerDirectoriesTest::creatingAnswersWithTheReturnCodeAlone()
{
    QFETCH(QString, returnCode);
    QFETCH(bool, success);
    reply(QVariantMap{{"dirFolderList", QStringList{"kept"}}});
    QSignalSpy responded(m_plugin.get(), &PluginRecordingManagement::createDirectoryResponded);
    m_plugin->CommandProcessor("createDirectory", "ignored", nullptr, returnCode, {}, false, {});
    QCOMPARE(responded, QList<QVariantList>{{success}});
    QCOMPARE(rows(), QStringList{"kept | kept"});
}

QTEST_GUILESS_MAIN(ServerDirectoriesTest)
#include "tst_server_directories.moc"
