#include "ServerVocabulary.h"
#include "usage/ShortGroups.h"
#include "usage/UsageFigures.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {
constexpr int day = 24 * 60; // minutes
constexpr qint64 gigabyte = 1024 * 1024; // KB

QVariantMap entry(const QString &id, qint64 recorded, qint64 room, int reservedDays = 28)
{
    return {{FieldKey::recordingGroupID, id},
            {FieldKey::recordingGroupName, u"Group "_s + id},
            {FieldKey::recordingGroupReservedTime, reservedDays * day},
            {FieldKey::volumeAvailableSize, room * gigabyte},
            {FieldKey::volumeOneDayUsage, gigabyte * 1024},
            {FieldKey::volumeRecordedDays, recorded}};
}

/// "id text".
QStringList texts(const ShortGroups &groups)
{
    QStringList lines;
    for (const StationTrouble &trouble : groups.troubles())
        lines.append(trouble.groupId + u' ' + trouble.text);
    return lines;
}
} // namespace

/// Which recording groups the station calls short of their reserved time.
class ShortGroupsTest : public QObject
{
    Q_OBJECT

private slots:
    void figuresAgainstTheReservedTime_data();
    void figuresAgainstTheReservedTime();
    void entriesOfAGroupAreAddedUp();
    void anUnknownFigureChangesNothing();
    void aGroupThatIsGoneIsForgotten();
    void anAlarmNamesItsGroup();
};

void ShortGroupsTest::figuresAgainstTheReservedTime_data()
{
    QTest::addColumn<QVariantMap>("told");
    QTest::addColumn<bool>("isShort");

    QTest::newRow("enough") << entry(u"a"_s, 20, 8) << false;
    QTest::newRow("a day short") << entry(u"a"_s, 20, 7) << true;
    QTest::newRow("nothing recorded, room enough") << entry(u"a"_s, 0, 28) << false;
    QTest::newRow("no reserved time") << entry(u"a"_s, 0, 1, 0) << false;
    QTest::newRow("unknown days") << entry(u"a"_s, -1, 1) << false;
    QTest::newRow("no group") << entry({}, 0, 1) << false;
    QTest::newRow("backup area") << entry(UsageGroup::backup, 0, 1) << false;
    QVariantMap part = entry(u"a"_s, 0, 0);
    part.insert(FieldKey::recordingGroupReservedTime, day - 1);
    QTest::newRow("less than a day") << part << false;
}

void ShortGroupsTest::figuresAgainstTheReservedTime()
{
    QFETCH(QVariantMap, told);
    QFETCH(bool, isShort);
    ShortGroups groups;
    groups.judge({told});
    QCOMPARE(groups.troubles().size(), isShort ? 1 : 0);
}

void ShortGroupsTest::entriesOfAGroupAreAddedUp()
{
    QVariantMap second = entry(u"a"_s, -1, 14); // half of the usage each
    ShortGroups groups;
    groups.judge({entry(u"a"_s, 1, 6), second, entry(u"b"_s, 1, 1)});
    QCOMPARE(texts(groups),
             (QStringList{u"a The recording group Group a will not reach its reserved time of 28 days: 1 day recorded, "
                          u"room for 10 days more."_s,
                          u"b The recording group Group b will not reach its reserved time of 28 days: 1 day recorded, "
                          u"room for 1 day more."_s}));
}

void ShortGroupsTest::anUnknownFigureChangesNothing()
{
    ShortGroups groups;
    groups.judge({entry(u"a"_s, 1, 6)});
    const QStringList before = texts(groups);
    groups.judge({entry(u"a"_s, -1, 6)});
    QCOMPARE(texts(groups), before);
    groups.judge({entry(u"a"_s, 1, 27)});
    QCOMPARE(texts(groups), QStringList());
    groups.judge({entry(u"a"_s, -1, 0)});
    QCOMPARE(texts(groups), QStringList());
}

void ShortGroupsTest::aGroupThatIsGoneIsForgotten()
{
    ShortGroups groups;
    groups.judge({entry(u"a"_s, 1, 6), entry(u"b"_s, 1, 6)});
    groups.judge({entry(u"b"_s, 1, 6)});
    QCOMPARE(groups.troubles().size(), 1);
}

void ShortGroupsTest::anAlarmNamesItsGroup()
{
    ShortGroups groups;
    groups.judge({entry(u"a"_s, 1, 6)});
    const StationTrouble trouble = groups.troubles().constFirst();
    QCOMPARE(trouble.kind, u"InsufficientRecordingDays"_s);
    QCOMPARE(trouble.subject, u"Group a"_s);
    QCOMPARE(trouble.severity, StationTrouble::Severity::Warning);
    QVERIFY(!trouble.remedy.isEmpty());
}

QTEST_GUILESS_MAIN(ShortGroupsTest)
#include "tst_short_groups.moc"
