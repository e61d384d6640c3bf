#include "Contract.h"

#include <QMetaEnum>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QRegularExpression>
#include <QTest>

namespace {

// "bool getVolume(QString relayPath)": types by their registered names, enums fully qualified.
QString methodText(const QMetaMethod &method)
{
    QStringList parameters;
    const QList<QByteArray> names = method.parameterNames();
    for (int i = 0; i < method.parameterCount(); ++i)
        parameters.append(QLatin1String(method.parameterMetaType(i).name()) + ' ' + QString::fromLatin1(names[i]));
    const QString cloned = method.attributes() & QMetaMethod::Cloned ? QStringLiteral(" [cloned]") : QString();
    return QLatin1String(method.returnMetaType().name()) + ' ' + QString::fromLatin1(method.name()) + '('
        + parameters.join(QStringLiteral(", ")) + ')' + cloned;
}

struct Method
{
    const char *text; // the method with all its parameters
    int defaults = 0; // how many of them may be left out
};

constexpr Method methods[] = {
    {"QObject* getVolumeModel()"},
    {"QObject* getRecordingGroupModel()"},
    {"QObject* getNASServerModel()"},
    {"QObject* getNASServerDirModel()"},
    {"QObject* getServerDirModel()"},
    {"QObject* getStorageUsageModel(QString relayPath)"},
    {"QObject* getGroupVolumeModel(QString relayPath, QString groupId)"},
    {"bool getVolume(QString relayPath)", 1},
    {"QString getRecordingGroup()"},
    {"bool createDirectory(QString path)"},
    {"bool addRecordingGroup(QString groupName, QString path, PluginRecordingManagement::RecPathType recPathType, "
     "qlonglong reserveSpace)",
     1},
    {"bool removeRecordingGroup(QStringList groupIDList)"},
    {"bool addPathToRecordingGroup(QString groupID, QString path, PluginRecordingManagement::RecPathType recPathType, "
     "qlonglong reserveSpace)",
     1},
    {"bool removePathFromRecordingGroup(QStringList groupIDList, QStringList pathList)"},
    {"bool addNASPathsToVolume(QStringList pathList)"},
    {"bool updateRecordingGroup(QString groupID, QVariantList addCameraList, QVariantList removeCameraList, "
     "QVariantList addPathList, QVariantList removePathList, QVariantList updatePathList, QVariantMap setGrpInfo)"},
    {"bool addRecordingGroupWithCompleteInfo(QVariantMap groupInfo, QVariantList paths, QVariantList deviceInfos)"},
    {"QObject* getRecordingGroupTreeModel()"},
    {"bool retrieveRecordingGroupTreeModel()"},
    {"void clearRecordingGroupDataList()"},
    {"QVariantList getRecordingGroupPathList(QString recordingGroupID, QString relayPath)"},
    {"QVariantList getRecordingGroupReservedSpaceList(QString recordingGroupID, QString relayPath)"},
    {"QVariantList getRecordingGroupNasPathList(QString recordingGroupID, QString relayPath)"},
    {"QVariantList getRecordingGroupRecoveryPathList(QString recordingGroupID, QString relayPath)"},
    {"int getRecordingGroupReservedTime(QString recordingGroupID, QString relayPath)"},
    {"QVariantList getRecordingGroupMemberList(QString recordingGroupID, QString relayPath)"},
    {"QVariantMap getVolumeInfo(QString path, QString relayPath)"},
    {"int streamIndexHasBeenSetTmShiftSeamlessInOtherRecGroups(QString cameraId, QString recordingGroupID, "
     "QString relayPath)"},
    {"QVariantList getRecordingGroupIDList(QString cameraID)"},
    {"bool getServerDir(QString basePath, QString relayPath)", 1},
    {"bool getNASServers(QString relayPath)", 1},
    {"bool addNASServer(QString host, QString logonDomain, QString userName, QString password, QString relayPath)", 4},
    {"bool updateNASServer(QString id, QString host, QString domain, QString user, QString password, "
     "QString relayPath)",
     1},
    {"bool removeNASServer(QString id, QString relayPath)", 1},
    {"void ignoreAddNASServerResponse()"},
    {"bool getNASServerDir(QString basePath, QString logonDomain, QString userName, QString password, "
     "QString relayPath, PluginRecordingManagement::NASDirFilter filter)",
     5},
    {"bool getNASServerCapacity(QString basePath, QString logonDomain, QString userName, QString password, "
     "QString relayPath)",
     4},
    {"bool addNASPathToVolume(QString basePath, QString logonDomain, QString userName, QString password, "
     "QString relayPath)",
     4},
    {"bool reloadStorageUsageInfo(QString relayPath)", 1},
    {"QVariantList getRecordingGroupInfoList()"},
};

// The method and, for each parameter that may be left out, a clone with one parameter less.
QStringList withClones(const Method &method)
{
    QString text = QLatin1String(method.text);
    QStringList lines{text};
    for (int i = 0; i < method.defaults; ++i) {
        const auto comma = text.lastIndexOf(QLatin1String(", "));
        text = text.left(comma < 0 ? text.indexOf('(') + 1 : comma) + ')';
        lines.append(text + QStringLiteral(" [cloned]"));
    }
    return lines;
}

} // namespace

/// What QML sees of the built plug-in, member by member and in order.
class MetaObjectTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void classDerivesFromQObjectAlone();
    void signalsAreInOrder();
    void methodsAndTheirClonesAreInOrder();
    void everythingIsPublic();
    void enumsHaveTheirValues();
    void thereIsOneProperty();
    void propertyReadsAsANumber();

private:
    std::unique_ptr<Contract::Plugin> m_plugin;
    const QMetaObject *m_meta = nullptr;
};

void MetaObjectTest::initTestCase()
{
    m_plugin = Contract::createPlugin();
    QVERIFY(m_plugin);
    m_meta = m_plugin->metaObject();
}

void MetaObjectTest::classDerivesFromQObjectAlone()
{
    QCOMPARE(m_meta->className(), "PluginRecordingManagement");
    QCOMPARE(m_meta->superClass(), &QObject::staticMetaObject);
    QCOMPARE(m_meta->classInfoCount(), 0);
    QCOMPARE(m_meta->constructorCount(), 0);
}

void MetaObjectTest::signalsAreInOrder()
{
    const QStringList expected{
        "void getRecordingGroupResponded(QString reqId)",
        "void retrieveRecordingGroupTreeModelFinish()",
        "void createDirectoryResponded(bool success)",
        "void addPathToRecordingGroupResponded(bool success)",
        "void addRecordingGroupResponded(bool success)",
        "void getVolumeResponded(bool success)",
        "void volumeInfoChanged()",
        "void removePathFromRecordingGroupResp(bool success, bool finish)",
        "void removeRecordingGroupResp(bool success, bool finish)",
        "void addNASPathsToVolumeResp(bool success)",
        "void addRecordingGroupWithCompleteInfoResp(bool success, QString addedGrpID, QVariantList errList)",
        "void updateRecordingGroupResp(bool success, QVariantList errList)",
        "void getServerDirResponded(QString path)",
        "void unsupportedStorages(QString stationID)",
        "void getNASServersResponded(bool success)",
        "void addNASServerResponded(PluginRecordingManagement::NASServerErrorCode result, QString srvId)",
        "void updateNASServerResponsed(PluginRecordingManagement::NASServerErrorCode result, QString nasId)",
        "void removeNASServerResponsed(bool success)",
        "void getNASServerDirResponded(PluginRecordingManagement::NASServerErrorCode result, QString path)",
        "void getNASServerCapacityResponded(PluginRecordingManagement::NASServerErrorCode result, qlonglong total, "
        "qlonglong used)",
        "void recordingGroupRetrievedChanged()",
    };
    QStringList found;
    for (int i = m_meta->methodOffset(); i < m_meta->methodCount(); ++i) {
        if (m_meta->method(i).methodType() != QMetaMethod::Signal)
            break;
        found.append(methodText(m_meta->method(i)));
    }
    QCOMPARE(found, expected);
    QCOMPARE(found.size(), 21);
}

void MetaObjectTest::methodsAndTheirClonesAreInOrder()
{
    QStringList expected;
    for (const Method &method : methods)
        expected.append(withClones(method));
    QStringList found;
    for (int i = m_meta->methodOffset() + 21; i < m_meta->methodCount(); ++i) {
        QCOMPARE(m_meta->method(i).methodType(), QMetaMethod::Method);
        found.append(methodText(m_meta->method(i)));
    }
    QCOMPARE(found, expected);
}

void MetaObjectTest::everythingIsPublic()
{
    for (int i = m_meta->methodOffset(); i < m_meta->methodCount(); ++i)
        QCOMPARE(m_meta->method(i).access(), QMetaMethod::Public);
}

void MetaObjectTest::enumsHaveTheirValues()
{
    const QStringList expected{
        "RecPathType: Local 0, NetHost 1, NetDomain 2",
        "NASServerErrorCode: NonError 0, LogonFailed 1, ServerExist 2, GetDirFailed 3, GetCapacityFailed 4, Unknown 5",
        "NASDirFilter: NoDot 1, NoDotDot 2, NoDotAndDotDot 3",
    };
    QStringList found;
    for (int i = m_meta->enumeratorOffset(); i < m_meta->enumeratorCount(); ++i) {
        const QMetaEnum enumeration = m_meta->enumerator(i);
        QVERIFY2(!enumeration.isFlag(), enumeration.name());
        QVERIFY2(!enumeration.isScoped(), enumeration.name());
        QStringList keys;
        for (int key = 0; key < enumeration.keyCount(); ++key)
            keys.append(QStringLiteral("%1 %2").arg(enumeration.key(key)).arg(enumeration.value(key)));
        found.append(QLatin1String(enumeration.name()) + QStringLiteral(": ") + keys.join(QStringLiteral(", ")));
    }
    QCOMPARE(found, expected);
}

void MetaObjectTest::thereIsOneProperty()
{
    QCOMPARE(m_meta->propertyCount() - m_meta->propertyOffset(), 1);
    const QMetaProperty property = m_meta->property(m_meta->propertyOffset());
    QCOMPARE(property.name(), "recordingGroupRetrieved");
    QCOMPARE(property.typeName(), "int");
    QVERIFY(property.isReadable());
    QVERIFY(property.isDesignable());
    QVERIFY(property.isScriptable());
    QVERIFY(property.isStored());
    QVERIFY(!property.isWritable());
    QVERIFY(!property.isResettable());
    QVERIFY(!property.isConstant());
    QVERIFY(!property.isFinal());
    QVERIFY(!property.isUser());
    QCOMPARE(property.notifySignal().methodSignature(), QByteArray("recordingGroupRetrievedChanged()"));
}

void MetaObjectTest::propertyReadsAsANumber()
{
    const QVariant value = m_plugin->property("recordingGroupRetrieved");
    QCOMPARE(value.metaType(), QMetaType::fromType<int>());
    QCOMPARE(value, QVariant(0));
}

QTEST_GUILESS_MAIN(MetaObjectTest)
#include "tst_meta_object.moc"
