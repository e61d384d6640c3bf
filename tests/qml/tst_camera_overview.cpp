#include "CameraOverview.h"
#include "FakeFramework.h"
#include "FakeStationPlugin.h"
#include "PluginRecordingManagement.h"

#include <QAbstractItemModelTester>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>

namespace {
constexpr auto tree = "retrieveRecordingGroupTreeModel";

QVariantMap camera(const QString &name, int streams)
{
    return {{"camName", name}, {"streams", streams}};
}

QVariantMap member(const QString &name, int stream)
{
    return {{"camName", name}, {"streamIndex", stream}};
}

QVariantMap group(const QString &name, const QVariantList &members)
{
    return {{"recordingGroupID", u'{' + name + u'}'},
            {"recordingGroupName", name},
            {"relayPath", "st1"},
            {"recordingGroupMemberList", members}};
}
} // namespace

/// The cameras and who records them, from the session's list and the plug-in's groups.
class TestCameraOverview : public QObject
{
    Q_OBJECT

    struct Client
    {
        Client()
        {
            framework.pluginObjects.insert(FakeStationPlugin::pluginId, &station);
            plugin.InitialPluginBase(nullptr, nullptr, &framework);
            session.setConnected(true);
            overview.setSession(&session);
            overview.setRecording(&plugin);
            overview.setActive(true);
        }
        void listCameras(const QVariantList &cameras) { session.cameraList()->take(cameras); }
        void listGroups(const QVariantList &groups) { answer(groups, "0"); }
        void refuseGroups(const QString &returnCode) { answer({}, returnCode); }
        void answer(const QVariantList &groups, const QString &returnCode)
        {
            session.noteAnswer(tree, returnCode);
            plugin.CommandProcessor(tree, groups, nullptr, returnCode, {}, true, {});
        }
        int asked() const
        {
            return static_cast<int>(std::count_if(framework.sent.cbegin(), framework.sent.cend(),
                                                  [](const auto &request) { return request.command == tree; }));
        }
        /// A line for each row: name, streams, and the groups with their streams.
        QStringList rows() const
        {
            QStringList lines;
            for (int row = 0; row < overview.rowCount(); ++row) {
                const QModelIndex index = overview.index(row);
                QString line = index.data(CameraOverview::CamName).toString() + u' '
                    + index.data(CameraOverview::Streams).toString() + u':';
                const QVariantList groups = index.data(CameraOverview::Groups).toList();
                for (const QVariant &entry : groups) {
                    const QVariantMap map = entry.toMap();
                    QStringList streams;
                    for (const QVariant &stream : map.value("streams").toList())
                        streams.append(stream.toString());
                    line += u' ' + map.value("name").toString() + u'[' + streams.join(u',') + u']';
                }
                lines.append(line);
            }
            return lines;
        }
        QVariant value(int row, CameraOverview::Role role) const { return overview.index(row).data(role); }

        FakeFramework framework;
        FakeStationPlugin station;
        ConsoleSession session;
        PluginRecordingManagement plugin;
        CameraOverview overview;
        QAbstractItemModelTester tester{&overview, QAbstractItemModelTester::FailureReportingMode::QtTest};
    };

private slots:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void camerasStandWithTheirGroups()
    {
        Client client;
        client.overview.refresh();
        QVERIFY(client.overview.isLoading());
        QCOMPARE(client.asked(), 1);
        client.listCameras({camera("Gate", 2), camera("Roof", 1), camera("Yard", 3)});
        QVERIFY(client.overview.isLoading() && !client.overview.isKnown());
        QCOMPARE(client.value(0, CameraOverview::GroupCount), -1); // nobody knows yet
        QCOMPARE(client.value(0, CameraOverview::Unrecorded), false);
        QCOMPARE(client.overview.unrecordedCount(), 0);
        client.listGroups({group("Vault 10", {member("Gate", 1)}),
                           group("Vault 9", {member("Gate", 0), member("Yard", 2), member("Gate", 1)})});
        QVERIFY(!client.overview.isLoading() && client.overview.isKnown());
        QCOMPARE(client.rows(), QStringList({"Gate 2: Vault 9[0,1] Vault 10[1]", "Roof 1:", "Yard 3: Vault 9[2]"}));
        QCOMPARE(client.value(0, CameraOverview::GroupNames), QStringList({"Vault 9", "Vault 10"}));
        QCOMPARE(client.value(0, CameraOverview::RecordedStreams), 2);
        QCOMPARE(client.value(0, CameraOverview::Groups).toList().constFirst().toMap().value("cameras"), 2);
        QCOMPARE(client.value(1, CameraOverview::Unrecorded), true);
        QCOMPARE(client.value(1, CameraOverview::GroupCount), 0);
        QCOMPARE(client.overview.unrecordedCount(), 1);
        QCOMPARE(client.overview.recorded({"Yard", "Roof", "Gate"}), QStringList({"Yard", "Gate"}));
        QCOMPARE(client.overview.rowOf("Yard"), 2);
        QCOMPARE(client.overview.rowOf("Cellar"), -1);
    }

    void whatIsRefusedIsSaidAndMakesNoCameraUnrecorded()
    {
        Client client;
        client.overview.refresh();
        client.listCameras({camera("Gate", 1)});
        client.refuseGroups("DatabaseFailed");
        QVERIFY(!client.overview.isLoading() && !client.overview.isKnown());
        QVERIFY(client.overview.failure().contains("database"));
        QCOMPARE(client.value(0, CameraOverview::GroupCount), -1);
        client.overview.refresh();
        QCOMPARE(client.overview.failure(), QString());
        client.listGroups({});
        client.session.cameraList()->fail("No answer.");
        QCOMPARE(client.overview.failure(), "No answer.");
        QCOMPARE(client.value(0, CameraOverview::Unrecorded), true); // as it was listed last
    }

    void whatCouldNotBeSentIsSaid()
    {
        Client client;
        client.framework.pluginObjects.clear(); // nobody names the station
        client.overview.refresh();
        client.listCameras({camera("Gate", 1)});
        QVERIFY(!client.overview.isLoading() && !client.overview.isKnown());
        QVERIFY(!client.overview.failure().isEmpty());
    }

    void groupsThatAreAskedForStayUntilTheAnswer()
    {
        Client client;
        client.overview.refresh();
        client.listCameras({camera("Gate", 1)});
        client.listGroups({group("Vault", {member("Gate", 0)})});
        client.plugin.retrieveRecordingGroupTreeModel(); // empties the plug-in's groups, whoever asks
        client.listCameras({camera("Gate", 1), camera("Roof", 1)});
        QCOMPARE(client.rows(), QStringList({"Gate 1: Vault[0]", "Roof 1:"}));
        client.listGroups({group("Roofs", {member("Roof", 0)})});
        QCOMPARE(client.rows(), QStringList({"Gate 1:", "Roof 1: Roofs[0]"}));
    }

    void nothingIsAskedWithoutAConnectionOrTwice()
    {
        Client client;
        client.session.setConnected(false);
        client.overview.refresh();
        QCOMPARE(client.asked(), 0);
        client.session.setConnected(true);
        QSignalSpy wanted(client.session.cameraList(), &StationCameras::wanted);
        client.overview.refresh();
        client.overview.refresh();
        QCOMPARE(client.asked(), 1);
        QCOMPARE(wanted.size(), 1);
    }

    void rowsStayWhileOthersComeAndGo()
    {
        Client client;
        client.listGroups({});
        client.listCameras({camera("B", 1), camera("D", 1), camera("E", 1)});
        QSignalSpy reset(&client.overview, &QAbstractItemModel::modelReset);
        QSignalSpy inserted(&client.overview, &QAbstractItemModel::rowsInserted);
        QSignalSpy removed(&client.overview, &QAbstractItemModel::rowsRemoved);
        const QPersistentModelIndex kept = client.overview.index(1);
        client.listCameras({camera("A", 1), camera("C", 1), camera("D", 4), camera("F", 1), camera("G", 1)});
        QCOMPARE(client.rows(), QStringList({"A 1:", "C 1:", "D 4:", "F 1:", "G 1:"}));
        QCOMPARE(kept.row(), 2);
        QCOMPARE(kept.data(CameraOverview::Streams), 4);
        QCOMPARE(reset.size(), 0);
        QCOMPARE(removed.size(), 2);
        QCOMPARE(inserted.size(), 2);
        client.listCameras({camera("z", 1), camera("D", 1)}); // a station with another order
        QCOMPARE(client.rows(), QStringList({"z 1:", "D 1:"}));
        client.listCameras({});
        QCOMPARE(client.overview.count(), 0);
    }

    void nothingIsReadWhileNobodyLooks()
    {
        Client client;
        client.overview.setActive(false);
        client.plugin.retrieveRecordingGroupTreeModel();
        client.listCameras({camera("Gate", 1)});
        client.listGroups({group("Vault", {member("Gate", 0)})});
        QCOMPARE(client.overview.count(), 0);
        client.overview.setActive(true);
        QCOMPARE(client.rows(), QStringList({"Gate 1: Vault[0]"}));
    }

    void groupsThatSomebodyElseAskedForCount()
    {
        Client client;
        client.listCameras({camera("Gate", 1)});
        client.plugin.retrieveRecordingGroupTreeModel();
        client.listGroups({group("Vault", {member("Gate", 0)})});
        QVERIFY(client.overview.isKnown());
        CameraOverview late; // made when the groups were there already
        late.setSession(&client.session);
        late.setRecording(&client.plugin);
        QVERIFY(late.isKnown());
        client.refuseGroups("DatabaseFailed"); // to somebody else
        QVERIFY(!late.isKnown() && !client.overview.isKnown());
    }

    void othersEditsAreFollowed()
    {
        Client client;
        QSignalSpy wanted(client.session.cameraList(), &StationCameras::wanted);
        client.session.noteEvent(
            "station.ActivityAdded",
            QVariantMap{{"command", "station.addCamera"}, {"subject", "Gate"}, {"returnCode", "0"}});
        QCOMPARE(wanted.size(), 1);
        client.listCameras({});
        client.session.noteEvent("station.ActivityAdded",
                                 QVariantMap{{"command", "AddNasServer"}, {"subject", "nas"}, {"returnCode", "0"}});
        QCOMPARE(wanted.size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestCameraOverview)
#include "tst_camera_overview.moc"
