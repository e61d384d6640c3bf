#include "EditRequestData.h"
#include "FakeFramework.h"
#include "GroupRequests.h"
#include "PluginRecordingManagement.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

/// What a client asks the station about an edit is what the plug-in would send.
class EditRequestDataTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { QTest::failOnWarning(QRegularExpression(u".*"_s)); }

    void requestIsThatOfThePlugin_data();
    void requestIsThatOfThePlugin();
};

void EditRequestDataTest::requestIsThatOfThePlugin_data()
{
    QTest::addColumn<QString>("invokable");
    QTest::addColumn<QVariantList>("arguments");
    const QVariantList paths{pathMap(u"/a"_s, 2048, true, 1)};
    const QVariantList members{memberMap(u"Gate"_s, 1)};
    const QVariantMap group{{u"recordingGroupName"_s, u"Yard"_s},
                            {u"recordingGroupReservedTimeEnabled"_s, true},
                            {u"recordingGroupReservedTime"_s, 60}};
    QTest::newRow("add") << u"addRecordingGroupWithCompleteInfo"_s
                         << QVariantList{group, QVariant(paths), QVariant(members)};
    QTest::newRow("update") << u"updateRecordingGroup"_s
                            << QVariantList{u"{1}"_s,
                                            QVariant(members),
                                            QVariantList{QVariantMap{{u"camName"_s, u"Door"_s}}},
                                            QVariant(paths),
                                            QVariantList{u"/b"_s},
                                            QVariantList{QVariantMap{{u"path"_s, u"/c"_s}, {u"reserveSpace"_s, 1024}}},
                                            QVariantMap{{u"recordingGroupName"_s, u"Yard 2"_s}}};
    QTest::newRow("remove") << u"removeRecordingGroup"_s << QVariantList{QStringList{u"{1}"_s, u"{2}"_s}};
    QTest::newRow("remove paths") << u"removePathFromRecordingGroup"_s
                                  << QVariantList{QStringList{u"{1}"_s}, QStringList{u"/a"_s}};
}

void EditRequestDataTest::requestIsThatOfThePlugin()
{
    QFETCH(const QString, invokable);
    QFETCH(const QVariantList, arguments);
    FakeFramework framework;
    PluginRecordingManagement plugin;
    QVERIFY(plugin.InitialPluginBase(nullptr, nullptr, &framework));
    framework.sent.clear();
    bool isSent = false;
    if (invokable == u"addRecordingGroupWithCompleteInfo"_s)
        isSent = plugin.addRecordingGroupWithCompleteInfo(arguments[0].toMap(), arguments[1].toList(),
                                                          arguments[2].toList());
    else if (invokable == u"updateRecordingGroup"_s)
        isSent = plugin.updateRecordingGroup(arguments[0].toString(), arguments[1].toList(), arguments[2].toList(),
                                             arguments[3].toList(), arguments[4].toList(), arguments[5].toList(),
                                             arguments[6].toMap());
    else if (invokable == u"removeRecordingGroup"_s)
        isSent = plugin.removeRecordingGroup(arguments[0].toStringList());
    else
        isSent = plugin.removePathFromRecordingGroup(arguments[0].toStringList(), arguments[1].toStringList());
    QVERIFY(isSent);
    QCOMPARE(framework.sent.size(), 1);
    QCOMPARE(framework.sent.constFirst().command, invokable);
    QCOMPARE(editRequestData(invokable, arguments), framework.sent.constFirst().data);
}

QTEST_GUILESS_MAIN(EditRequestDataTest)
#include "tst_edit_request_data.moc"
