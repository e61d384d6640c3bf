#include "../../examples/companions/Companions.h"
#include "Page.h"
#include "PluginRecordingManagement.h"
#include "RecordingGroupTreeModel.h"
#include "StatusMonitor.h"
#include "framework/FrameworkWrapperBase.h"

#include <QMetaMethod>
#include <QTest>

#include <memory>

namespace {

struct MyFramework final : FrameworkWrapperBase
{
    MyStation station;
    MyStatusMonitor monitor;

    bool SendCommand(void *, const QString &, const QString &, const QVariant &, void *, bool, const QString &) override
    {
        return true;
    }
    QObject *GetPluginObject(void *, const QString &pluginId) override
    {
        if (pluginId == MyStation::pluginId)
            return &station;
        return pluginId == MyStatusMonitor::pluginId ? &monitor : nullptr;
    }
};

QString withoutIndents(const QString &code)
{
    static const QRegularExpression indent(QStringLiteral("^ +"), QRegularExpression::MultilineOption);
    return QString(code).remove(indent);
}

QVariantMap entry(const QString &groupId, int recordedDays, qlonglong size)
{
    return {{"recordingGroupID", groupId},
            {"recordingGroupName", "Gate"},
            {"recordingGroupReservedTime", 2880},
            {"volumeRecordedDays", recordedDays},
            {"volumeOneDayUsage", 1048576},
            {"volumeSize", size},
            {"volumeAvailableSize", 0}};
}

} // namespace

/// The companions that the documents show are built here as they stand there, and the plug-in calls them.
class CompanionsPageTest : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void pageShowsWhatIsBuilt();
    void pageNamesEveryMethod();
    void treeHasTheStationOfTheExample();
    void monitorHearsOfTrouble();

private:
    const QString m_page = Page::text(QStringLiteral("docs/companions.md"));
    std::unique_ptr<MyFramework> m_framework;
    std::unique_ptr<PluginRecordingManagement> m_plugin;
};

void CompanionsPageTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_plugin.reset();
    m_framework = std::make_unique<MyFramework>();
    m_plugin = std::make_unique<PluginRecordingManagement>();
    QVERIFY(m_plugin->InitialPluginBase(nullptr, nullptr, m_framework.get()));
}

void CompanionsPageTest::pageShowsWhatIsBuilt()
{
    const QList<Page::CodeBlock> blocks = Page::codeBlocks(m_page);
    QCOMPARE(blocks.size(), 2);
    QCOMPARE(blocks[0].code, Page::text(QStringLiteral("examples/companions/Companions.h")));
    const QString source = Page::text(QStringLiteral("tests/documents/tst_companions_page.cpp"));
    QVERIFY(withoutIndents(source).contains(withoutIndents(blocks[1].code)));
}

// The signatures on the page are those by which the plug-in looks for the methods.
void CompanionsPageTest::pageNamesEveryMethod()
{
    QStringList listed;
    for (const QStringList &row : Page::rowsUnder(m_page, QStringLiteral("Method")))
        listed.append(QString(row.value(0)).remove(u'`').section(u' ', 1).remove(u' '));
    const QStringList expected{
        StatusMonitorMethod::removeVolumeError + QStringLiteral("(QString)"),
        StatusMonitorMethod::monitorVolumeStatus + QStringLiteral("(QString)"),
        StatusMonitorMethod::monitorSufficientRecordingGroup + QStringLiteral("(QString,QString)"),
        StatusMonitorMethod::monitorInsufficientRecordingDays + QStringLiteral("(QString,QString,QString)"),
    };
    QCOMPARE(listed, expected);
    for (const QString &signature : listed)
        QVERIFY2(m_framework->monitor.metaObject()->indexOfMethod(signature.toLatin1()) >= 0, qPrintable(signature));
    QVERIFY(m_page.contains(StatusMonitor::pluginId()));
}

void CompanionsPageTest::treeHasTheStationOfTheExample()
{
    QVERIFY(m_plugin->retrieveRecordingGroupTreeModel());
    const QAbstractItemModel &tree = *qobject_cast<QAbstractItemModel *>(m_plugin->getRecordingGroupTreeModel());
    const QHash<int, QByteArray> roles = tree.roleNames();
    const QVariantMap station = m_framework->station.getStationTree().toMap();
    const QList<QStringList> rows = Page::rowsUnder(m_page, QStringLiteral("Key"));
    QCOMPARE(rows.size(), station.size());
    for (const QStringList &row : rows) {
        const int role = roles.key(QString(row.value(1)).remove(u'`').toLatin1(), -1);
        QVERIFY2(role >= 0, qPrintable(row.value(1)));
        QCOMPARE(tree.index(0, 0).data(role), station.value(QString(row.value(0)).remove(u'"')));
    }
}

void CompanionsPageTest::monitorHearsOfTrouble()
{
    const auto change = [this](const QVariantList &entries) {
        m_plugin->EventProcessor(QStringLiteral("VolumeChanged"), 0, 0, 0, entries, QStringLiteral("st1"));
    };
    QTest::ignoreMessage(QtInfoMsg, "Gate will not reach its reserved time");
    change({entry(QStringLiteral("{1}"), 1, 0), entry(QStringLiteral("{2}"), 2, 100)});
    QCOMPARE(m_framework->monitor.lostVolumes, QSet<QString>{QStringLiteral("st1")});
    QCOMPARE(m_framework->monitor.shortGroups, QSet<QString>{QStringLiteral("st1/{1}")});
    change({entry(QStringLiteral("{1}"), 2, 100), entry(QStringLiteral("{2}"), 2, 100)});
    QVERIFY(m_framework->monitor.lostVolumes.isEmpty());
    QVERIFY(m_framework->monitor.shortGroups.isEmpty());
}

QTEST_GUILESS_MAIN(CompanionsPageTest)
#include "tst_companions_page.moc"
