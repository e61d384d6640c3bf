#include "EditSubject.h"
#include "PluginSite.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"

#include <QRegularExpression>
#include <QTest>

/// What an edit is about, in the operator's words.
class EditSubjectTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void subject_data();
    void subject();
    void idsStandForThemselvesWithoutAPlugin();
};

void EditSubjectTest::subject_data()
{
    QTest::addColumn<QVariant>("data");
    QTest::addColumn<QString>("subject");
    const auto row = [](const char *name, const QVariant &data, const char *subject) {
        QTest::newRow(name) << data << QString::fromLatin1(subject);
    };
    row("new group", QVariantMap{{FieldKey::recordingGroupName, "Yard"}}, "Yard");
    row("group", QVariantMap{{FieldKey::recordingGroupID, "{1}"}}, "North");
    row("unknown group", QVariantMap{{FieldKey::recordingGroupID, "{7}"}}, "{7}");
    row("groups", QVariantMap{{FieldKey::recordingGroupIDList, QStringList{"{1}", "{7}", "{1}"}}}, "North, {7}");
    row("NAS server", QVariantMap{{StationKey::id, "{n}"}}, "nas-1");
    row("changed NAS server", QVariantMap{{StationKey::id, "{n}"}, {FieldKey::host, "nas-2"}, {"password", "x"}},
        "nas-2");
    row("camera", QVariantMap{{FieldKey::camName, "Gate"}, {StationKey::streams, 2}}, "Gate");
    row("folder", "/srv/rec", "/srv/rec");
    row("recordings of no group", QVariantMap{{StationKey::place, "/srv/rec/Yard"}, {StationKey::confirmation, "Yard"}},
        "/srv/rec/Yard");
    row("alarm", QVariantMap{{StationKey::kind, "VolumeGone"}, {StationKey::subject, "/srv"}}, "/srv");
    row("nothing", {}, "");
}

void EditSubjectTest::subject()
{
    QFETCH(const QVariant, data);
    PluginSite site(true);
    site.plugin.getNASServers({});
    site.reply(QVariantList{QVariantMap{{"id", "{n}"}, {"host", "nas-1"}}});
    QTEST(editSubject({"edit", data}, &site.plugin), "subject");
}

void EditSubjectTest::idsStandForThemselvesWithoutAPlugin()
{
    const QVariantMap data{{FieldKey::recordingGroupID, "{1}"}};
    QCOMPARE(editSubject({"edit", data}, nullptr), QString("{1}"));
    PluginSite empty(false);
    QCOMPARE(editSubject({"edit", data}, &empty.plugin), QString("{1}"));
}

QTEST_MAIN(EditSubjectTest)
#include "tst_edit_subject.moc"
