#include "GroupMembers.h"
#include "NaturalOrder.h"
#include "RowFilter.h"
#include "StationCameras.h"

#include <QAbstractItemModelTester>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

#include <algorithm>
#include <memory>

namespace {
enum Role { Name = Qt::UserRole + 1, Groups, Days, IsLost };

/// A list with the roles "name", "groups", "days" and "lost".
class Cameras : public QStandardItemModel
{
public:
    Cameras() { setItemRoleNames({{Name, "name"}, {Groups, "groups"}, {Days, "days"}, {IsLost, "lost"}}); }
    QStandardItem *add(const QString &name, const QStringList &groups = {}, int days = 0, bool lost = false)
    {
        auto item = std::make_unique<QStandardItem>();
        item->setData(name, Name);
        item->setData(groups, Groups);
        item->setData(days, Days);
        item->setData(lost, IsLost);
        QStandardItem *const added = item.release();
        appendRow(added);
        return added;
    }
};

QStringList namesOf(const RowFilter &rows, const QModelIndex &parent = {})
{
    QStringList names;
    for (int row = 0; row < rows.rowCount(parent); ++row)
        names.append(rows.index(row, 0, parent).data(Name).toString());
    return names;
}

QVariantMap camera(const QString &name, int streams)
{
    return {{"camName", name}, {"streams", streams}};
}

QVariantMap member(const QString &name, int stream, bool timeShift = false)
{
    return {{"camName", name}, {"streamIndex", stream}, {"enableTimeShift", timeShift}};
}
} // namespace

/// What the console's lists have in common, and the lists of cameras.
class TestConsoleLists : public QObject
{
    Q_OBJECT

private slots:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void namesAreInNaturalOrder_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::newRow("C") << "C";
        QTest::newRow("English") << "en_US";
        QTest::newRow("Swedish") << "sv_SE";
    }
    void namesAreInNaturalOrder()
    {
        QFETCH(QString, locale);
        const QLocale before;
        QLocale::setDefault(QLocale(locale));
        QStringList names{"Gate 10", "gate 9", "Alley", "Gate 100", "Gate 2"};
        const QCollator order = naturalOrder();
        std::sort(names.begin(), names.end(), order);
        QLocale::setDefault(before);
        QCOMPARE(names, QStringList({"Alley", "Gate 2", "gate 9", "Gate 10", "Gate 100"}));
    }

    void theSearchKeepsRowsWithEveryWord_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("kept");
        QTest::newRow("all") << "" << QStringList{"Gate 10", "Gate 9", "Roof", "Yard"};
        QTest::newRow("a blank") << "  " << QStringList{"Gate 10", "Gate 9", "Roof", "Yard"};
        QTest::newRow("capitals aside") << "GATE" << QStringList{"Gate 10", "Gate 9"};
        QTest::newRow("in another role") << "vault" << QStringList{"Gate 9", "Roof"};
        QTest::newRow("each word somewhere") << "vault gate" << QStringList{"Gate 9"};
        QTest::newRow("no word across two texts") << "roofvault" << QStringList{};
    }
    void theSearchKeepsRowsWithEveryWord()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, kept);
        Cameras cameras;
        cameras.add("Gate 10", {"Doors"});
        cameras.add("Gate 9", {"Doors", "Vault"});
        cameras.add("Roof", {"Vault"});
        cameras.add("Yard");
        RowFilter rows;
        const QAbstractItemModelTester tester(&rows, QAbstractItemModelTester::FailureReportingMode::QtTest);
        rows.setNameRole("name");
        rows.setSearchRoles({"groups"});
        rows.setSourceModel(&cameras);
        rows.setText(text);
        QCOMPARE(namesOf(rows), kept);
        QCOMPARE(rows.count(), kept.size());
        QCOMPARE(rows.total(), 4);
        QCOMPARE(rows.isFiltering(), !text.trimmed().isEmpty());
        rows.clear();
        QCOMPARE(rows.count(), 4);
        QVERIFY(!rows.isFiltering());
    }

    void rowsAreSorted_data()
    {
        QTest::addColumn<QString>("orderBy");
        QTest::addColumn<bool>("descending");
        QTest::addColumn<QString>("leadBy");
        QTest::addColumn<QStringList>("order");
        QTest::newRow("as the model has them") << "" << false << "" << QStringList{"B 10", "B 9", "D", "A"};
        QTest::newRow("by name") << "name" << false << "" << QStringList{"A", "B 9", "B 10", "D"};
        QTest::newRow("by name, the last first") << "name" << true << "" << QStringList{"D", "B 10", "B 9", "A"};
        QTest::newRow("by a number, then by name") << "days" << false << "" << QStringList{"B 9", "B 10", "D", "A"};
        QTest::newRow("by a number, the most first; unknown stays last")
            << "days" << true << "" << QStringList{"D", "B 9", "B 10", "A"};
        QTest::newRow("some lead") << "name" << false << "lost" << QStringList{"D", "A", "B 9", "B 10"};
        QTest::newRow("some lead either way") << "name" << true << "lost" << QStringList{"D", "B 10", "B 9", "A"};
        QTest::newRow("some lead, the others as they are")
            << "" << false << "lost" << QStringList{"D", "B 10", "B 9", "A"};
        QTest::newRow("by a role that is not there") << "size" << false << "" << QStringList{"A", "B 9", "B 10", "D"};
    }
    void rowsAreSorted()
    {
        QFETCH(QString, orderBy);
        QFETCH(bool, descending);
        QFETCH(QString, leadBy);
        QFETCH(QStringList, order);
        Cameras cameras;
        cameras.add("B 10", {}, 3);
        cameras.add("B 9", {}, 3);
        RowFilter rows;
        const QAbstractItemModelTester tester(&rows, QAbstractItemModelTester::FailureReportingMode::QtTest);
        rows.setNameRole("name");
        rows.setOrderBy(orderBy);
        rows.setDescending(descending);
        rows.setLeadBy(leadBy);
        rows.setSourceModel(&cameras);
        cameras.add("D", {}, 12, true);
        cameras.add("A", {}, -1);
        QCOMPARE(namesOf(rows), order);
    }

    void aChangedRowMoves()
    {
        Cameras cameras;
        cameras.add("A", {}, 1);
        cameras.add("B", {}, 2);
        RowFilter rows;
        rows.setNameRole("name");
        rows.setOrderBy("name");
        rows.setSourceModel(&cameras);
        QCOMPARE(namesOf(rows), QStringList({"A", "B"}));
        cameras.item(0)->setData("C", Name);
        QCOMPARE(namesOf(rows), QStringList({"B", "C"}));
        rows.setOrderBy("days");
        QCOMPARE(namesOf(rows), QStringList({"C", "B"}));
        rows.setDescending(true);
        QCOMPARE(namesOf(rows), QStringList({"B", "C"}));
    }

    void aRowThatIsHiddenIsRevealed()
    {
        Cameras cameras;
        cameras.add("Roof");
        cameras.add("Gate");
        RowFilter rows;
        rows.setNameRole("name");
        rows.setOrderBy("name");
        rows.setSourceModel(&cameras);
        QSignalSpy textChanged(&rows, &RowFilter::textChanged);
        rows.setText("gate");
        QCOMPARE(rows.rowOf(0), -1);
        QCOMPARE(rows.reveal(1), 0);
        QCOMPARE(rows.text(), "gate"); // it is in view
        QCOMPARE(rows.reveal(-1), -1);
        QCOMPARE(rows.text(), "gate"); // no such row
        QCOMPARE(rows.reveal(0), 1);
        QCOMPARE(rows.text(), QString());
        QCOMPARE(textChanged.size(), 2);
        QCOMPARE(rows.sourceRow(1), 0);
        rows.setKeepBy("lost");
        QCOMPARE(rows.count(), 0);
        QVERIFY(rows.isFiltering());
        QCOMPARE(rows.reveal(0), 1);
        QVERIFY(!rows.isFiltering());
    }

    void lettersLeadToNames()
    {
        Cameras cameras;
        for (const char *const name : {"Alley", "Gate 1", "gate 2", "Roof"})
            cameras.add(name);
        RowFilter rows;
        rows.setNameRole("name");
        rows.setSourceModel(&cameras);
        QCOMPARE(rows.rowBeginningWith("g", 0), 1);
        QCOMPARE(rows.rowBeginningWith("G", 2), 2);
        QCOMPARE(rows.rowBeginningWith("g", 3), 1); // and from the start
        QCOMPARE(rows.rowBeginningWith("gate2", 1), 2);
        QCOMPARE(rows.rowBeginningWith("gate 2", 1), 2);
        QCOMPARE(rows.rowBeginningWith("x", 0), -1);
        rows.setText("roof");
        QCOMPARE(rows.rowBeginningWith("g", 0), -1);
    }

    void branchesStayAndWhatIsBelowIsFiltered()
    {
        Cameras tree;
        QStandardItem *const station = tree.add("Zoo");
        for (const char *const name : {"Gate 10", "Gate 9", "Alley"}) {
            auto item = std::make_unique<QStandardItem>();
            item->setData(name, Name);
            station->appendRow(item.release());
        }
        RowFilter rows;
        rows.setNameRole("name");
        rows.setOrderBy("name");
        rows.setBranched(true);
        rows.setSourceModel(&tree);
        const QModelIndex branch = rows.index(0, 0);
        QCOMPARE(namesOf(rows, branch), QStringList({"Alley", "Gate 9", "Gate 10"}));
        QCOMPARE(rows.total(), 3);
        QCOMPARE(rows.rowBeginningWith("g", 0), 1);
        rows.setText("gate");
        QCOMPARE(namesOf(rows), QStringList({"Zoo"}));
        QCOMPARE(namesOf(rows, rows.index(0, 0)), QStringList({"Gate 9", "Gate 10"}));
        QCOMPARE(rows.count(), 2);
        rows.setText("zoo");
        QCOMPARE(namesOf(rows), QStringList({"Zoo"}));
        QCOMPARE(rows.count(), 0);
    }

    void countsFollowTheModel()
    {
        Cameras cameras;
        RowFilter rows;
        rows.setNameRole("name");
        rows.setSourceModel(&cameras);
        rows.setText("gate");
        QSignalSpy counted(&rows, &RowFilter::counted);
        cameras.add("Roof");
        QVERIFY(!counted.isEmpty()); // a row that is hidden counts, too
        QCOMPARE(rows.total(), 1);
        QCOMPARE(rows.count(), 0);
        cameras.add("Gate");
        QCOMPARE(rows.count(), 1);
        rows.setSourceModel(nullptr);
        QCOMPARE(rows.total(), 0);
        QCOMPARE(rows.count(), 0);
    }

    void addedMembersGetFreeStreams()
    {
        GroupMembers members;
        const QAbstractItemModelTester tester(&members, QAbstractItemModelTester::FailureReportingMode::QtTest);
        members.setCameras({camera("Gate", 2), camera("Roof", 1), camera("Yard", 3)});
        members.setRows({member("Gate", 0, true), member("Yard", 1)});
        QCOMPARE(members.freeStreams("Gate"), 1);
        QCOMPARE(members.freeStreams("Yard"), 2);
        QCOMPARE(members.freeStreams("Cellar"), 0);
        QCOMPARE(members.add({"Roof", "Gate", "Yard", "Yard", "Cellar"}), 2);
        QStringList rows;
        for (const QVariant &row : members.rows())
            rows.append(row.toMap().value("camName").toString() + u' ' + row.toMap().value("streamIndex").toString());
        QCOMPARE(rows, QStringList({"Gate 0", "Yard 1", "Roof 0", "Gate 1", "Yard 0", "Yard 2"}));
        QCOMPARE(members.add({"Roof", "Gate"}), -1);
        QCOMPARE(members.count(), 6);
        QVERIFY(members.rows().constFirst().toMap().value("enableTimeShift").toBool());
    }

    void aMembersValuesChange()
    {
        GroupMembers members;
        members.setCameras({camera("Gate", 2)});
        members.setRows({member("Gate", 4), member("Roof", 0)});
        const auto value = [&members](int row, GroupMembers::Role role) { return members.index(row).data(role); };
        QCOMPARE(value(0, GroupMembers::StreamCount), 5); // it records one that the station does not list
        QCOMPARE(value(1, GroupMembers::StreamCount), 1);
        members.setMessage(0, "refused");
        members.setMessage(1, "refused, too");
        QCOMPARE(members.firstMessage(), 0);
        QSignalSpy changed(&members, &QAbstractItemModel::dataChanged);
        members.change(0, "streamIndex", 1);
        QCOMPARE(value(0, GroupMembers::StreamIndex), 1);
        QCOMPARE(value(0, GroupMembers::Message), QString());
        QCOMPARE(changed.size(), 2);
        QCOMPARE(members.firstMessage(), 1);
        members.change(1, "enableSeamless", true);
        QCOMPARE(value(1, GroupMembers::EnableSeamless), true);
        QCOMPARE(members.firstMessage(), -1);
        members.change(1, "camName", "Gate");
        QCOMPARE(value(1, GroupMembers::CamName), "Roof");
        members.change(7, "streamIndex", 1);
        members.remove(0);
        QCOMPARE(members.count(), 1);
        members.remove(5);
        QCOMPARE(members.count(), 1);
    }

    void camerasAreAskedForOneRequestAtATime()
    {
        StationCameras cameras;
        QSignalSpy wanted(&cameras, &StationCameras::wanted);
        cameras.refresh();
        cameras.refresh();
        QCOMPARE(wanted.size(), 1);
        QVERIFY(cameras.isLoading() && !cameras.isKnown());
        cameras.take({camera("Gate", 1)});
        QCOMPARE(wanted.size(), 2); // something changed while the answer was under way
        QVERIFY(cameras.isKnown());
        cameras.fail("No.");
        QVERIFY(!cameras.isLoading());
        QCOMPARE(cameras.failure(), "No.");
        QCOMPARE(cameras.list().size(), 1); // what was listed stays
        cameras.refresh();
        cameras.take({});
        QCOMPARE(cameras.failure(), QString());
    }

    void camerasAreRemovedOneAfterTheOther()
    {
        StationCameras cameras;
        QSignalSpy sent(&cameras, &StationCameras::editWanted);
        QSignalSpy removed(&cameras, &StationCameras::removed);
        QSignalSpy ended(&cameras, &StationCameras::removalEnded);
        QSignalSpy wanted(&cameras, &StationCameras::wanted);
        QVERIFY(!cameras.remove({}));
        QVERIFY(cameras.remove({"Gate", "Roof", "Yard"}));
        QVERIFY(!cameras.remove({"Alley"}));
        QVERIFY(!cameras.add("Alley", 1));
        QCOMPARE(sent.size(), 1);
        QCOMPARE(sent.constLast(), QVariantList({"station.removeCamera", QVariantMap{{"camName", "Gate"}}}));
        cameras.noteEdit({});
        QCOMPARE(sent.size(), 2);
        QCOMPARE(cameras.toRemove(), 2);
        cameras.cancelRemoval();
        cameras.noteEdit("In use.");
        QCOMPARE(sent.size(), 2); // the third one was left
        QCOMPARE(QList<QVariantList>(removed), QList<QVariantList>({{"Gate", ""}, {"Roof", "In use."}}));
        QCOMPARE(ended.size(), 1);
        QCOMPARE(wanted.size(), 1);
        QVERIFY(!cameras.isBusy());
        cameras.noteEdit({}); // nobody asked
        QCOMPARE(removed.size(), 2);
    }

    void aCameraIsAdded()
    {
        StationCameras cameras;
        QSignalSpy sent(&cameras, &StationCameras::editWanted);
        QSignalSpy added(&cameras, &StationCameras::added);
        QVERIFY(cameras.add("Gate", 4));
        QCOMPARE(sent.constLast(),
                 QVariantList({"station.addCamera", QVariantMap{{"camName", "Gate"}, {"streams", 4}}}));
        QVERIFY(cameras.isBusy() && added.isEmpty());
        cameras.noteEdit("There is one.");
        QCOMPARE(added.constLast(), QVariantList({"Gate", "There is one."}));
        QVERIFY(!cameras.isBusy() && cameras.isLoading());
    }
};

QTEST_GUILESS_MAIN(TestConsoleLists)
#include "tst_console_lists.moc"
