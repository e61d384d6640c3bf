#include "ItemRoles.h"
#include "RecordingGroupTreeModel.h"

#include <QAbstractItemModelTester>
#include <QRegularExpression>
#include <QTest>
#include <QUuid>

class TreeModelTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void stationSummaryHasFourValues();
    void recordingGroupSummaryHasNoAddress();
    void otherRolesPassThrough();
    void roleNamesAreTheSevenAlone();
    void summaryKeysFollowOverriddenRoleNames();
    void invalidIndexGivesFourInvalidValues();
    void hasNoMetaObjectOfItsOwn();

private:
    std::unique_ptr<RecordingGroupTreeModel> m_model;
    QModelIndex m_station;
    QModelIndex m_group;
};

void TreeModelTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_model = std::make_unique<RecordingGroupTreeModel>();
    const QAbstractItemModelTester tester(m_model.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    auto station = std::make_unique<QStandardItem>();
    station->setData("{uuid}", TreeRole::Id);
    station->setData("Gate", TreeRole::Name);
    station->setData("relay-7", TreeRole::RelayPath);
    station->setData("Recorder", TreeRole::Type);
    station->setData("10.0.0.7", TreeRole::StationIp);
    auto group = std::make_unique<QStandardItem>();
    group->setData(QUuid("{6ba7b810-9dad-11d1-80b4-00c04fd430c8}"), TreeRole::Id);
    group->setData("Entrance", TreeRole::Name);
    group->setData("relay-7", TreeRole::RelayPath);
    group->setData("RecordingGroup", TreeRole::Type);
    group->setData("g1", TreeRole::RecordingGroupId);
    station->appendRow(group.release());
    m_model->appendRow(station.release());
    m_station = m_model->index(0, 0);
    m_group = m_model->index(0, 0, m_station);
    QVERIFY(m_group.isValid());
}

void TreeModelTest::stationSummaryHasFourValues()
{
    const QVariantMap expected{
        {"idRole", "{uuid}"}, {"nameRole", "Gate"}, {"stationIPRole", "10.0.0.7"}, {"typeRole", "Recorder"}};
    const QVariant summary = m_model->data(m_station, 258);
    QCOMPARE(summary.metaType(), QMetaType::fromType<QVariantMap>());
    QCOMPARE(summary.toMap(), expected);
}

void TreeModelTest::recordingGroupSummaryHasNoAddress()
{
    const QVariantMap summary = m_model->data(m_group, 258).toMap();
    QCOMPARE(summary.keys(), (QStringList{"idRole", "nameRole", "stationIPRole", "typeRole"}));
    QVERIFY(!summary["stationIPRole"].isValid());
    QCOMPARE(summary["typeRole"], "RecordingGroup");
    QCOMPARE(summary["nameRole"], "Entrance");
    QCOMPARE(summary["idRole"].metaType(), QMetaType::fromType<QUuid>());
}

void TreeModelTest::otherRolesPassThrough()
{
    QCOMPARE(m_model->data(m_station, 260), "relay-7");
    QVERIFY(!m_model->data(m_station, 263).isValid());
    QCOMPARE(m_model->data(m_group, 260), "relay-7");
    QCOMPARE(m_model->data(m_group, 263), "g1");
    QVERIFY(!m_model->data(m_group, Qt::DisplayRole).isValid());
}

void TreeModelTest::roleNamesAreTheSevenAlone()
{
    const QHash<int, QByteArray> names{{257, "idRole"},
                                       {258, "dataRole"},
                                       {259, "nameRole"},
                                       {260, "relayPathRole"},
                                       {261, "typeRole"},
                                       {262, "stationIPRole"},
                                       {263, "recordingGroupIDRole"}};
    QCOMPARE(m_model->roleNames(), names);
}

void TreeModelTest::summaryKeysFollowOverriddenRoleNames()
{
    class Renamed : public RecordingGroupTreeModel
    {
    public:
        QHash<int, QByteArray> roleNames() const override { return {{TreeRole::Name, "title"}}; }
    };
    Renamed model;
    auto item = std::make_unique<QStandardItem>();
    item->setData("Gate", TreeRole::Name);
    model.appendRow(item.release());
    QCOMPARE(model.data(model.index(0, 0), 258).toMap().value("title"), "Gate");
}

void TreeModelTest::invalidIndexGivesFourInvalidValues()
{
    const QVariantMap summary = m_model->data({}, 258).toMap();
    QCOMPARE(summary.size(), 4);
    for (const QVariant &value : summary)
        QVERIFY(!value.isValid());
    QVERIFY(!m_model->data({}, 259).isValid());
}

void TreeModelTest::hasNoMetaObjectOfItsOwn()
{
    QCOMPARE(m_model->metaObject()->className(), "QStandardItemModel");
}

QTEST_GUILESS_MAIN(TreeModelTest)
#include "tst_tree_model.moc"
