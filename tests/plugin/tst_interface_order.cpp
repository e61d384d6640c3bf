#include "RecordingFramework.h"
#include "SignalLog.h"

#include "framework/FrameworkWrapperBase.h"
#include "framework/PluginBase.h"

#include <QPointer>
#include <QTest>

#include <cstring>

namespace {

constexpr qsizetype notVirtual = -1;

// The place of a virtual operation in its table, from a pointer to the member as the Itanium ABI lays it out.
template<typename Member>
qsizetype placeOf(Member member)
{
    struct
    {
        std::ptrdiff_t pointer;
        std::ptrdiff_t adjustment;
    } parts;
    static_assert(sizeof parts == sizeof member);
    std::memcpy(&parts, &member, sizeof parts);
    constexpr auto entry = static_cast<std::ptrdiff_t>(sizeof(void *));
#if defined(__aarch64__) || defined(__arm__)
    return (parts.adjustment & 1) ? parts.pointer / entry : notVirtual;
#else
    return (parts.pointer & 1) ? (parts.pointer - 1) / entry : notVirtual;
#endif
}

template<typename Member>
std::ptrdiff_t offsetOf(Member member)
{
    std::ptrdiff_t offset = 0;
    static_assert(sizeof offset == sizeof member);
    std::memcpy(&offset, &member, sizeof offset);
    return offset;
}

// What is appended to a class's table stands behind all that the class has.
struct PluginTail : PluginBase
{
    virtual void tail() { }

    static qsizetype lastOfQObject() { return placeOf(&PluginTail::disconnectNotify); }
    static std::ptrdiff_t flagOffset() { return offsetOf(&PluginTail::m_reserved); }
    static std::ptrdiff_t nameOffset() { return offsetOf(&PluginTail::m_pluginName); }
    static std::ptrdiff_t idOffset() { return offsetOf(&PluginTail::m_pluginId); }
};

struct FrameworkTail : FrameworkWrapperBase
{
    virtual void tail() { }

protected:
    ~FrameworkTail() = default;
};

} // namespace

/// The order of both tables of virtual operations and of the members. A client was compiled with them: none may move.
class InterfaceOrderTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_framework = {};
        m_plugin = Contract::createPlugin();
        QVERIFY(m_plugin);
        m_log = std::make_unique<SignalLog>(m_plugin.get());
    }

    void cleanup()
    {
        m_log.reset();
        m_plugin.reset();
    }

    void pluginOperationsStandInTheirPlaces_data();
    void pluginOperationsStandInTheirPlaces();
    void frameworkOperationsStandInTheirPlaces_data();
    void frameworkOperationsStandInTheirPlaces();
    void membersStandInTheirPlaces();
    void frameworkHasNoVirtualDestructor();
    void initialisationIsTheFirstOperation();
    void eventsAreTheSecondAndThirdOperation();
    void repliesAreTheFourthAndFifthOperation();
    void initIsTheSixthOperation();
    void emptyOperationsDoNothing();
    void connectionIsTheNinthOperation();
    void sendingIsTheFrameworksSecondOperation();
    void findingPluginsIsTheFrameworksFourteenthOperation();

private:
    bool initialise() { return m_plugin->InitialPluginBase(nullptr, this, &m_framework); }
    QObject *volumeModel() const
    {
        QObject *model = nullptr;
        QMetaObject::invokeMethod(m_plugin.get(), "getVolumeModel", Q_RETURN_ARG(QObject *, model));
        return model;
    }

    RecordingFramework m_framework;
    std::unique_ptr<Contract::Plugin> m_plugin;
    std::unique_ptr<SignalLog> m_log;
};

void InterfaceOrderTest::pluginOperationsStandInTheirPlaces_data()
{
    QTest::addColumn<qsizetype>("place");
    QTest::addColumn<qsizetype>("expected");
    QTest::newRow("QObject's last") << PluginTail::lastOfQObject() << qsizetype(11);
    QTest::newRow("InitialPluginBase") << placeOf(&PluginBase::InitialPluginBase) << qsizetype(12);
    QTest::newRow("EventProcessor") << placeOf(&PluginBase::EventProcessor) << qsizetype(13);
    QTest::newRow("EventProcessorEx") << placeOf(&PluginBase::EventProcessorEx) << qsizetype(14);
    QTest::newRow("CommandProcessor") << placeOf(&PluginBase::CommandProcessor) << qsizetype(15);
    QTest::newRow("CommandProcessorEx") << placeOf(&PluginBase::CommandProcessorEx) << qsizetype(16);
    QTest::newRow("Init") << placeOf(&PluginBase::Init) << qsizetype(17);
    QTest::newRow("Reserved7") << placeOf(&PluginBase::Reserved7) << qsizetype(18);
    QTest::newRow("Reserved8") << placeOf(&PluginBase::Reserved8) << qsizetype(19);
    QTest::newRow("PluginServerConnected") << placeOf(&PluginBase::PluginServerConnected) << qsizetype(20);
    QTest::newRow("Reserved10") << placeOf(&PluginBase::Reserved10) << qsizetype(21);
    QTest::newRow("nothing more") << placeOf(&PluginTail::tail) << qsizetype(22);
}

void InterfaceOrderTest::pluginOperationsStandInTheirPlaces()
{
    QFETCH(qsizetype, place);
    QTEST(place, "expected");
}

void InterfaceOrderTest::frameworkOperationsStandInTheirPlaces_data()
{
    QTest::addColumn<qsizetype>("place");
    QTest::addColumn<qsizetype>("expected");
    QTest::newRow("Reserved1") << placeOf(&FrameworkWrapperBase::Reserved1) << qsizetype(0);
    QTest::newRow("SendCommand") << placeOf(&FrameworkWrapperBase::SendCommand) << qsizetype(1);
    QTest::newRow("Reserved3") << placeOf(&FrameworkWrapperBase::Reserved3) << qsizetype(2);
    QTest::newRow("Reserved4") << placeOf(&FrameworkWrapperBase::Reserved4) << qsizetype(3);
    QTest::newRow("Reserved5") << placeOf(&FrameworkWrapperBase::Reserved5) << qsizetype(4);
    QTest::newRow("Reserved6") << placeOf(&FrameworkWrapperBase::Reserved6) << qsizetype(5);
    QTest::newRow("Reserved7") << placeOf(&FrameworkWrapperBase::Reserved7) << qsizetype(6);
    QTest::newRow("Reserved8") << placeOf(&FrameworkWrapperBase::Reserved8) << qsizetype(7);
    QTest::newRow("Reserved9") << placeOf(&FrameworkWrapperBase::Reserved9) << qsizetype(8);
    QTest::newRow("Reserved10") << placeOf(&FrameworkWrapperBase::Reserved10) << qsizetype(9);
    QTest::newRow("Reserved11") << placeOf(&FrameworkWrapperBase::Reserved11) << qsizetype(10);
    QTest::newRow("Reserved12") << placeOf(&FrameworkWrapperBase::Reserved12) << qsizetype(11);
    QTest::newRow("Reserved13") << placeOf(&FrameworkWrapperBase::Reserved13) << qsizetype(12);
    QTest::newRow("GetPluginObject") << placeOf(&FrameworkWrapperBase::GetPluginObject) << qsizetype(13);
    QTest::newRow("nothing more") << placeOf(&FrameworkTail::tail) << qsizetype(14);
}

void InterfaceOrderTest::frameworkOperationsStandInTheirPlaces()
{
    QFETCH(qsizetype, place);
    QTEST(place, "expected");
}

void InterfaceOrderTest::membersStandInTheirPlaces()
{
    const auto object = static_cast<std::ptrdiff_t>(sizeof(QObject));
    const auto word = static_cast<std::ptrdiff_t>(sizeof(void *));
    const auto text = static_cast<std::ptrdiff_t>(sizeof(QString));
    QCOMPARE(PluginTail::flagOffset(), object);
    QCOMPARE(PluginTail::nameOffset(), object + word);
    QCOMPARE(PluginTail::idOffset(), object + word + text);
    QCOMPARE(sizeof(PluginBase), sizeof(QObject) + sizeof(void *) + 2 * sizeof(QString));
    QCOMPARE(sizeof(Contract::Plugin), sizeof(PluginBase));

    QVERIFY(initialise());
    QCOMPARE(m_plugin->flag, false);
    QCOMPARE(m_plugin->name, QStringLiteral("RecordingManagementPlugin"));
    QCOMPARE(m_plugin->id, QString(Contract::pluginId));
}

void InterfaceOrderTest::frameworkHasNoVirtualDestructor()
{
    QVERIFY(!std::has_virtual_destructor_v<FrameworkWrapperBase>);
    QCOMPARE(sizeof(FrameworkWrapperBase), sizeof(void *));
}

void InterfaceOrderTest::initialisationIsTheFirstOperation()
{
    QVERIFY(!volumeModel());
    QVERIFY(initialise());
    QVERIFY(volumeModel());
}

void InterfaceOrderTest::eventsAreTheSecondAndThirdOperation()
{
    QVERIFY(initialise());
    m_plugin->EventProcessor("VolumeChanged", 1, 2, 3, {}, "station");
    QCOMPARE(m_log->take(), QStringList{"volumeInfoChanged()"});
    m_plugin->EventProcessorEx("VolumeChanged", nullptr, 1, 2, 3, {}, "station");
    QCOMPARE(m_log->take(), QStringList{});
}

void InterfaceOrderTest::repliesAreTheFourthAndFifthOperation()
{
    QVERIFY(initialise());
    m_plugin->CommandProcessor("createDirectory", {}, nullptr, "0", "unused", true, "unused");
    QCOMPARE(m_log->take(), QStringList{"createDirectoryResponded(true)"});
    m_plugin->CommandProcessorEx("createDirectory", nullptr, {}, nullptr, "0", "unused", true, "unused");
    QCOMPARE(m_log->take(), QStringList{});
}

void InterfaceOrderTest::initIsTheSixthOperation()
{
    QVERIFY(initialise());
    const QPointer<QObject> first = volumeModel();
    QVERIFY(m_plugin->Init(nullptr));
    QVERIFY(first);
    QVERIFY(volumeModel() != first);
}

void InterfaceOrderTest::emptyOperationsDoNothing()
{
    QVERIFY(initialise());
    const QPointer<QObject> model = volumeModel();
    m_plugin->Operation7();
    m_plugin->Operation8();
    m_plugin->Operation10();
    QCOMPARE(m_log->take(), QStringList{});
    QVERIFY(m_framework.calls.isEmpty());
    QCOMPARE(volumeModel(), model.data());
}

void InterfaceOrderTest::connectionIsTheNinthOperation()
{
    m_framework.accepts = false; // no context to give back
    QVERIFY(initialise());
    m_plugin->PluginServerConnected();
    QCOMPARE(m_framework.takeCommands(), QStringList({"GetNasServers", "getRecordingGroup", "reloadStorageUsageInfo"}));
}

void InterfaceOrderTest::sendingIsTheFrameworksSecondOperation()
{
    QVERIFY(initialise());
    bool accepted = false;
    QMetaObject::invokeMethod(m_plugin.get(), "getVolume", Q_RETURN_ARG(bool, accepted),
                              Q_ARG(QString, QStringLiteral("relay-7")));
    QVERIFY(accepted);
    QCOMPARE(m_framework.calls, QList<int>{2});
    const RecordingFramework::Sent &sent = m_framework.sent.constLast();
    QCOMPARE(sent.handle, this);
    QCOMPARE(sent.pluginId, QString(Contract::pluginId));
    QCOMPARE(sent.command, QStringLiteral("getVolume"));
    QCOMPARE(sent.data, QVariant());
    QCOMPARE(sent.context, nullptr);
    QCOMPARE(sent.flag, false);
    QCOMPARE(sent.relayPath, QStringLiteral("relay-7"));
}

void InterfaceOrderTest::findingPluginsIsTheFrameworksFourteenthOperation()
{
    QVERIFY(initialise());
    bool found = true;
    QMetaObject::invokeMethod(m_plugin.get(), "retrieveRecordingGroupTreeModel", Q_RETURN_ARG(bool, found));
    QVERIFY(!found);
    QCOMPARE(m_framework.calls, QList<int>{14});
    QCOMPARE(m_framework.askedPlugins.constLast().first, this);
    QCOMPARE(m_framework.askedPlugins.constLast().second, QStringLiteral("1AA33B3D0AA047C9A202F1181284D2CD"));
}

QTEST_GUILESS_MAIN(InterfaceOrderTest)
#include "tst_interface_order.moc"
