#include "CommandKind.h"
#include "ConsolePages.h"
#include "FakeFramework.h"
#include "GroupUsageModel.h"
#include "LateOutcomeText.h"
#include "ModelLookup.h"
#include "ModelReader.h"
#include "PluginRecordingManagement.h"
#include "RowOrder.h"
#include "link/LateOutcome.h"

#include <QAbstractItemModelTester>
#include <QDir>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

#include <algorithm>
#include <random>

namespace {
constexpr int day = 24 * 60; // minutes
constexpr qlonglong gigabyte = 1024 * 1024; // KB

/// A group that is @p missingDays short of its 30 days; none or fewer: it is not.
QVariantMap entry(const QString &id, int missingDays, const QString &name = {})
{
    return {{"recordingGroupID", id},
            {"recordingGroupName", name.isEmpty() ? id : name},
            {"recordingGroupReservedTime", 30 * day},
            {"recordingPath", "/srv/" + id},
            {"volumeName", "Disk of " + id},
            {"volumeSize", 100 * gigabyte},
            {"volumeAvailableSize", 10 * gigabyte},
            {"volumeOneDayUsage", gigabyte * 1024}, // bytes: 10 days remain
            {"volumeRecordedDays", 20 - missingDays},
            {"volumeIsSystem", false},
            {"volumeIsNAS", true}};
}
} // namespace

/// The models that the console keeps for its pages.
class TestConsoleModels : public QObject
{
    Q_OBJECT

    /// The plug-in with the figures of @p entries.
    struct Station
    {
        Station() { plugin.InitialPluginBase(nullptr, nullptr, &framework); }
        void show(const QVariantList &entries) { plugin.EventProcessor("VolumeChanged", 0, 0, 0, entries, {}); }

        FakeFramework framework;
        PluginRecordingManagement plugin;
    };

    static QStringList ids(const GroupUsageModel &model)
    {
        QStringList list;
        for (int row = 0; row < model.rowCount(); ++row)
            list.append(model.index(row).data(GroupUsageModel::GroupId).toString());
        return list;
    }

private slots:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void aPageIsAFileAndHasAKeyOfItsOwn()
    {
        const QVariantList pages = ConsolePages().list();
        QStringList keys;
        for (const QVariant &page : pages) {
            const QVariantMap row = page.toMap();
            keys.append(row["key"].toString());
            QCOMPARE(ConsolePages().page(keys.constLast()), row);
            QVERIFY(!row["title"].toString().isEmpty());
            QVERIFY2(QFile::exists(":/qt/qml/RecordingConsole/" + row["source"].toString()),
                     qPrintable(row["source"].toString()));
        }
        QCOMPARE(ConsolePages::keys(), keys);
        QCOMPARE(keys.removeDuplicates(), 0);
        QCOMPARE(ConsolePages().page("nowhere"), QVariantMap());
        const QStringList files = QDir(":/qt/qml/RecordingConsole/pages").entryList({"*.qml"});
        QCOMPARE(files.size(), pages.size());
    }

    void rowsAreFoundByTheNamesOfRoles()
    {
        QStandardItemModel model;
        model.setItemRoleNames({{Qt::UserRole + 7, "nameRole"}});
        auto *parent = new QStandardItem;
        for (const char *name : {"a", "A", "b"}) {
            auto *item = new QStandardItem;
            item->setData(QString(name), Qt::UserRole + 7);
            parent->appendRow(item);
        }
        model.appendRow(parent);
        const QModelIndex above = model.index(0, 0);
        const ModelLookup lookup;
        QCOMPARE(lookup.rowOf(&model, "nameRole", "A", above), 1);
        QCOMPARE(lookup.rowOf(&model, "nameRole", "c", above), -1);
        QCOMPARE(lookup.rowOf(&model, "nameRole", "a"), -1);
        QCOMPARE(lookup.rowOf(nullptr, "nameRole", "a"), -1);
        QCOMPARE(lookup.value(model.index(2, 0, above), "nameRole"), QVariant("b"));
        QVERIFY(!lookup.value({}, "nameRole").isValid());
        QTest::ignoreMessage(QtWarningMsg, "QStandardItemModel has no role called hostRole");
        QCOMPARE(lookup.rowOf(&model, "hostRole", "a", above), -1);
    }

    void groupsThatComeTogetherAreInsertedTogether()
    {
        Station station;
        GroupUsageModel model;
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
        station.show({entry("d", 1), entry("a", 4), entry("c", 2), entry("b", 3)});
        model.update(&station.plugin, {});
        QCOMPARE(ids(model), QStringList({"a", "b", "c", "d"}));
        QCOMPARE(inserted.size(), 1);
        // One before the others, two in between, one behind them.
        station.show({entry("0", 9), entry("a", 4), entry("b", 3), entry("b1", 3), entry("b2", 3), entry("c", 2),
                      entry("d", 1), entry("e", 0)});
        model.update(&station.plugin, {});
        QCOMPARE(ids(model), QStringList({"0", "a", "b", "b1", "b2", "c", "d", "e"}));
        QCOMPARE(inserted.size(), 4);
    }

    void groupsThatGoTogetherAreRemovedTogether()
    {
        Station station;
        GroupUsageModel model;
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        station.show({entry("a", 6), entry("b", 5), entry("c", 4), entry("d", 3), entry("e", 2), entry("f", 1)});
        model.update(&station.plugin, {});
        QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
        station.show({entry("c", 4), entry("f", 1)});
        model.update(&station.plugin, {});
        QCOMPARE(ids(model), QStringList({"c", "f"}));
        QCOMPARE(removed.size(), 2);
        model.update(nullptr, {});
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(removed.size(), 3);
    }

    void aGroupMovesAlone_data()
    {
        QTest::addColumn<int>("missingDays");
        QTest::addColumn<QStringList>("order");
        QTest::newRow("to the end") << 0 << QStringList{"b", "c", "d", "e", "f", "a"};
        QTest::newRow("a little") << 3 << QStringList{"b", "c", "a", "d", "e", "f"};
    }
    void aGroupMovesAlone()
    {
        QFETCH(int, missingDays);
        QFETCH(QStringList, order);
        Station station;
        GroupUsageModel model;
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        const QVariantList others{entry("b", 5), entry("c", 4), entry("d", 3), entry("e", 2), entry("f", 1)};
        station.show(others + QVariantList{entry("a", 6)});
        model.update(&station.plugin, {});
        QSignalSpy moved(&model, &QAbstractItemModel::rowsMoved);
        station.show(others + QVariantList{entry("a", missingDays)});
        model.update(&station.plugin, {});
        if (missingDays == 3)
            QCOMPARE(ids(model), QStringList({"b", "c", "a", "d", "e", "f"})); // by name among equals
        QCOMPARE(ids(model), order);
        QCOMPARE(moved.size(), 1);
        station.show(others + QVariantList{entry("a", 6)});
        model.update(&station.plugin, {});
        QCOMPARE(ids(model).constFirst(), "a");
        QCOMPARE(moved.size(), 2);
    }

    /// Whatever comes, goes and moves at once: the order is that of a new model, and rows that stay are the same rows.
    void anyChangeEndsInTheRightOrder()
    {
        std::mt19937 random(7);
        const auto upTo = [&random](int most) { return std::uniform_int_distribution(0, most)(random); };
        Station station;
        GroupUsageModel model;
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        for (int turn = 0; turn < 200; ++turn) {
            QVariantList entries;
            for (int group = 0; group < 24; ++group) {
                if (upTo(2) > 0)
                    entries.append(entry(QString::number(group), upTo(4), QString::number(upTo(6))));
            }
            QList<std::pair<QPersistentModelIndex, QString>> rows;
            for (int row = 0; row < model.rowCount(); ++row)
                rows.append({model.index(row), model.index(row).data(GroupUsageModel::GroupId).toString()});
            station.show(entries);
            model.update(&station.plugin, {});
            GroupUsageModel anew;
            anew.update(&station.plugin, {});
            QCOMPARE(ids(model), ids(anew));
            for (const auto &[row, id] : std::as_const(rows)) {
                QCOMPARE(row.isValid(), model.rowOf(id) >= 0);
                if (row.isValid())
                    QCOMPARE(row.data(GroupUsageModel::GroupId).toString(), id);
            }
        }
    }

    void volumesAreThoseOfThePlugIn()
    {
        auto station = std::make_unique<Station>();
        GroupUsageModel model;
        station->show({entry("a", 1), entry("", 0)});
        model.update(&station->plugin, {});
        QCOMPARE(ids(model), QStringList({"a", ""}));
        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        QVariantMap fuller = entry("a", 1);
        fuller["volumeAvailableSize"] = 4 * gigabyte;
        station->show({fuller, entry("", 0)});
        model.update(&station->plugin, {});
        QCOMPARE(changed.size(), 1);
        const QVariantMap figures{{"volumePath", "/srv/a"},
                                  {"volumeName", "Disk of a"},
                                  {"volumeIsSystem", false},
                                  {"kind", "NAS"},
                                  {"state", "there"},
                                  {"size", 100.0 * gigabyte * 1024},
                                  {"free", -1}};
        QCOMPARE(model.index(0).data(GroupUsageModel::Volumes).toList(),
                 QVariantList{QVariantMap({{"path", "/srv/a"},
                                           {"fillable", 4.0 * gigabyte * 1024},
                                           {"volume", figures},
                                           {"parts", QVariantList()}})});
        station.reset();
        QCOMPARE(model.index(0).data(GroupUsageModel::Volumes).toList(), QVariantList());
        QCOMPARE(model.index(0).data(GroupUsageModel::Name).toString(), "a");
    }

    void everyEditIsNamed()
    {
        for (const QString &command : editCommands()) {
            LateOutcome outcome;
            outcome.command = command;
            outcome.returnCode = "0";
            QVERIFY2(!lateOutcomeText(outcome).contains(command), qPrintable(command));
        }
    }

    void asFewPlacesAsPossibleMove_data()
    {
        QTest::addColumn<QList<int>>("wanted");
        QTest::addColumn<int>("staying");
        QTest::newRow("nothing") << QList<int>{} << 0;
        QTest::newRow("in order") << QList<int>{0, 1, 2, 3} << 4;
        QTest::newRow("the first to the end") << QList<int>{3, 0, 1, 2} << 3;
        QTest::newRow("two to the end") << QList<int>{3, 4, 0, 1, 2} << 3;
        QTest::newRow("turned round") << QList<int>{3, 2, 1, 0} << 1;
        QTest::newRow("with gaps") << QList<int>{7, 1, 5, 2, 6} << 3;
    }
    void asFewPlacesAsPossibleMove()
    {
        QFETCH(QList<int>, wanted);
        QFETCH(int, staying);
        const QList<bool> stays = placesInOrder(wanted, 8);
        QCOMPARE(stays.size(), 8);
        QCOMPARE(int(std::count(stays.begin(), stays.end(), true)), staying);
        int last = -1;
        for (const int place : wanted) {
            if (!stays[place])
                continue;
            QVERIFY(place > last);
            last = place;
        }
    }

    void aListIsRead()
    {
        const QVariantMap roles{{"path", "rootPathRole"}, {"size", "sizeRole"}, {"other", "unknownRole"}};
        Station station;
        ModelReader reader;
        QCOMPARE(reader.read(roles), QVariantList());
        auto *const volumes = qobject_cast<QStandardItemModel *>(station.plugin.getVolumeModel());
        reader.setModel(volumes);
        QSignalSpy changed(&reader, &ModelReader::changed);
        const QVariantList reply{QVariantMap{{"volumePath", "/"}, {"volumeSize", 100}},
                                 QVariantMap{{"volumePath", "/srv"}, {"volumeSize", 6}}};
        station.plugin.CommandProcessor("getVolume", reply, nullptr, "0", {}, true, {});
        QCOMPARE(reader.read(roles),
                 QVariantList({QVariantMap{{"path", "/"}, {"size", 100LL}, {"other", QVariant()}},
                               QVariantMap{{"path", "/srv"}, {"size", 6LL}, {"other", QVariant()}}}));
        QCOMPARE(changed.size(), 0);
        QTRY_COMPARE(changed.size(), 1); // for the model, its end and its new rows
        volumes->item(0)->setData(5);
        QTRY_COMPARE(changed.size(), 2);
        volumes->removeRow(0);
        QTRY_COMPARE(changed.size(), 3);
        QCOMPARE(reader.read(roles).size(), 1);
        reader.setModel(nullptr);
        QTRY_COMPARE(changed.size(), 4);
        volumes->removeRow(0);
        QCoreApplication::processEvents();
        QCOMPARE(changed.size(), 4);
    }
};

QTEST_MAIN(TestConsoleModels)
#include "tst_console_models.moc"
