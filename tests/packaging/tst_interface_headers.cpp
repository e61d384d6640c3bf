#include "ItemRoles.h"
#include "PluginRecordingManagement.h"
#include "interface/Enumerations.h"

#include <QMetaEnum>
#include <QTest>

/// The header of enumerations says what the plug-in's class says; that of the roles is the plug-in's own.
class InterfaceHeadersTest : public QObject
{
    Q_OBJECT
private slots:
    void enumerationsAreThoseOfThePlugin_data();
    void enumerationsAreThoseOfThePlugin();
    void rolesBeginAt257();
};

void InterfaceHeadersTest::enumerationsAreThoseOfThePlugin_data()
{
    using namespace Recording;
    QTest::addColumn<QVariantMap>("header");
    QTest::newRow("RecPathType") << QVariantMap{{"Local", static_cast<int>(RecPathType::Local)},
                                                {"NetHost", static_cast<int>(RecPathType::NetHost)},
                                                {"NetDomain", static_cast<int>(RecPathType::NetDomain)}};
    QTest::newRow("NASServerErrorCode") << QVariantMap{
        {"NonError", static_cast<int>(NASServerErrorCode::NonError)},
        {"LogonFailed", static_cast<int>(NASServerErrorCode::LogonFailed)},
        {"ServerExist", static_cast<int>(NASServerErrorCode::ServerExist)},
        {"GetDirFailed", static_cast<int>(NASServerErrorCode::GetDirFailed)},
        {"GetCapacityFailed", static_cast<int>(NASServerErrorCode::GetCapacityFailed)},
        {"Unknown", static_cast<int>(NASServerErrorCode::Unknown)}};
    QTest::newRow("NASDirFilter") << QVariantMap{{"NoDot", static_cast<int>(NASDirFilter::NoDot)},
                                                 {"NoDotDot", static_cast<int>(NASDirFilter::NoDotDot)},
                                                 {"NoDotAndDotDot", static_cast<int>(NASDirFilter::NoDotAndDotDot)}};
}

void InterfaceHeadersTest::enumerationsAreThoseOfThePlugin()
{
    QFETCH(QVariantMap, header);
    const QMetaObject &meta = PluginRecordingManagement::staticMetaObject;
    const QMetaEnum enumeration = meta.enumerator(meta.indexOfEnumerator(QTest::currentDataTag()));
    QVariantMap plugin;
    for (int key = 0; key < enumeration.keyCount(); ++key)
        plugin.insert(enumeration.key(key), enumeration.value(key));
    QCOMPARE(header, plugin);
}

void InterfaceHeadersTest::rolesBeginAt257()
{
    QCOMPARE(static_cast<int>(Recording::VolumeRole::Id), 257);
    QCOMPARE(volumeRoleNames().value(Recording::VolumeRole::IsNas), QByteArray("isNASRole"));
    QCOMPARE(recordingGroupRoleNames().value(Recording::RecordingGroupRole::ReserveTime),
             QByteArray("reserveTimeRole"));
    QCOMPARE(nasServerRoleNames().value(Recording::NasServerRole::Password), QByteArray("passwordRole"));
    QCOMPARE(directoryRoleNames().value(Recording::DirectoryRole::Name), QByteArray("nameRole"));
    QCOMPARE(treeRoleNames().value(Recording::TreeRole::RecordingGroupId), QByteArray("recordingGroupIDRole"));
}

QTEST_APPLESS_MAIN(InterfaceHeadersTest)
#include "tst_interface_headers.moc"
