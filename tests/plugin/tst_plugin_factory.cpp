#include "Contract.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QLibrary>
#include <QPluginLoader>
#include <QPointer>
#include <QRegularExpression>
#include <QTest>

/// The library's two entry points, as QPluginLoader and the dynamic loader see them.
class PluginFactoryTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void metadataIsExact();
    void twoCallsGiveOneObject();
    void aDeletedObjectIsRenewed();
    void theFactoryEntryGivesTheSameObject();
    void objectAnswersToItsTwoNamesAndToQObject_data();
    void objectAnswersToItsTwoNamesAndToQObject();
    void newObjectHasNoParentAndNoState();
    void translationsCarryTheClassAsContext();
};

void PluginFactoryTest::metadataIsExact()
{
    const QPluginLoader loader(QStringLiteral(RECORDING_PLUGIN_FILE));
    const QJsonObject metadata = loader.metaData();
    QCOMPARE(metadata.value("IID"), QJsonValue(Contract::interfaceId));
    QCOMPARE(metadata.value("className"), QJsonValue("PluginRecordingManagement"));
    const QJsonObject expected{{"PluginID", Contract::pluginId}, {"ClientOnly", false}};
    QCOMPARE(metadata.value("MetaData").toObject(), expected);
    QVERIFY(metadata.value("MetaData").toObject().value("ClientOnly").isBool());
    QVERIFY(!loader.isLoaded()); // a client reads all this without running anything
}

void PluginFactoryTest::twoCallsGiveOneObject()
{
    QPluginLoader first(QStringLiteral(RECORDING_PLUGIN_FILE));
    QPluginLoader second(QStringLiteral(RECORDING_PLUGIN_FILE));
    const std::unique_ptr<QObject> object(first.instance());
    QVERIFY2(object, qPrintable(first.errorString()));
    QCOMPARE(first.instance(), object.get());
    QCOMPARE(second.instance(), object.get());
}

void PluginFactoryTest::aDeletedObjectIsRenewed()
{
    QPluginLoader loader(QStringLiteral(RECORDING_PLUGIN_FILE));
    const QPointer<QObject> old = loader.instance();
    QVERIFY(old);
    delete old.data();
    QVERIFY(!old);
    const std::unique_ptr<QObject> renewed(loader.instance());
    QVERIFY(renewed);
    QVERIFY(!old);
    QCOMPARE(loader.instance(), renewed.get());
}

void PluginFactoryTest::theFactoryEntryGivesTheSameObject()
{
    QLibrary library(QStringLiteral(RECORDING_PLUGIN_FILE));
    QVERIFY2(library.load(), qPrintable(library.errorString()));
    const auto create = reinterpret_cast<QObject *(*)()>(library.resolve("qt_plugin_instance"));
    QVERIFY(create);
    const QPointer<QObject> object = create();
    QVERIFY(object);
    QCOMPARE(create(), object.data());
    QCOMPARE(QPluginLoader(QStringLiteral(RECORDING_PLUGIN_FILE)).instance(), object.data());
    delete object.data();
    const std::unique_ptr<QObject> renewed(create());
    QVERIFY(renewed);
    QVERIFY(!object);
    QCOMPARE(create(), renewed.get());
    QVERIFY(library.resolve("qt_plugin_query_metadata_v2"));
}

void PluginFactoryTest::objectAnswersToItsTwoNamesAndToQObject_data()
{
    QTest::addColumn<bool>("answers");
    QTest::newRow("PluginRecordingManagement") << true;
    QTest::newRow(Contract::interfaceId) << true;
    QTest::newRow("QObject") << true;
    QTest::newRow("PluginBase") << false; // the base class has no meta-object of its own
    QTest::newRow("pluginrecordingmanagement") << false;
    QTest::newRow("") << false;
}

void PluginFactoryTest::objectAnswersToItsTwoNamesAndToQObject()
{
    QFETCH(bool, answers);
    const auto plugin = Contract::createPlugin();
    QVERIFY(plugin);
    void *const expected = answers ? plugin.get() : nullptr;
    QCOMPARE(plugin->qt_metacast(QTest::currentDataTag()), expected);
}

void PluginFactoryTest::newObjectHasNoParentAndNoState()
{
    const auto plugin = Contract::createPlugin();
    QVERIFY(plugin);
    QCOMPARE(plugin->parent(), nullptr);
    QVERIFY(plugin->children().isEmpty());
    QCOMPARE(plugin->flag, false);
    QCOMPARE(plugin->name, QString());
    QCOMPARE(plugin->id, QString());
}

void PluginFactoryTest::translationsCarryTheClassAsContext()
{
    const auto plugin = Contract::createPlugin();
    QVERIFY(plugin);
    QCOMPARE(plugin->metaObject()->className(), "PluginRecordingManagement");
    QCOMPARE(plugin->metaObject()->tr("Volume", nullptr, -1), QStringLiteral("Volume"));
}

QTEST_GUILESS_MAIN(PluginFactoryTest)
#include "tst_plugin_factory.moc"
