#include "usage/UsageFigures.h"

#include <QRegularExpression>
#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(UsagePlace)

namespace {
const QDate today(2026, 3, 20);
constexpr qint64 kilobyte = 1024;

QDate daysAgo(int days)
{
    return today.addDays(-days);
}

UsagePlace place(const QString &group, const QString &path, const QString &volume = u"/v"_s)
{
    UsagePlace place;
    place.groupId = group;
    place.groupName = group.toUpper();
    place.path = path;
    place.storage = UsagePlace::Storage::Present;
    place.volume = {volume, u"Disk"_s, 1000 * kilobyte, 600 * kilobyte, false, false};
    place.days = DaySums();
    return place;
}

UsagePlace reserving(UsagePlace place, qint64 megabytes)
{
    place.reservedMegabytes = megabytes;
    return place;
}

UsagePlace with(UsagePlace place, const DaySums &days)
{
    place.days = days;
    return place;
}

UsagePlace unread(UsagePlace place)
{
    place.days.reset();
    return place;
}

UsagePlace gone(UsagePlace place)
{
    place.storage = UsagePlace::Storage::Gone;
    place.volume = {place.volume.path, place.volume.name, 0, 0, false, false};
    return place;
}

UsagePlace nas(const QString &group, const QString &path)
{
    UsagePlace place;
    place.groupId = group;
    place.groupName = group.toUpper();
    place.path = path;
    place.isNas = true;
    return place;
}

UsagePlace onShare(UsagePlace place)
{
    place.storage = UsagePlace::Storage::Present;
    place.volume = {u"//nas:0/rec"_s, u"//nas/rec"_s, 2000 * kilobyte, 800 * kilobyte, false, false};
    return place;
}

/// One line for an entry: group, path, size and free KB, bytes of a day, days.
QStringList lines(const QVariantList &entries)
{
    QStringList text;
    for (const QVariant &value : entries) {
        const QVariantMap entry = value.toMap();
        text.append(u"%1 %2 %3 %4 %5 %6"_s.arg(
            entry[u"recordingGroupID"_s].toString(), entry[u"recordingPath"_s].toString(),
            entry[u"volumeSize"_s].toString(), entry[u"volumeAvailableSize"_s].toString(),
            entry[u"volumeOneDayUsage"_s].toString(), entry[u"volumeRecordedDays"_s].toString()));
    }
    return text;
}

QVariantList entryWith(qint64 size, qint64 available, qint64 days = 3)
{
    return {QVariantMap{{u"recordingGroupID"_s, u"a"_s},
                        {u"volumeSize"_s, size},
                        {u"volumeAvailableSize"_s, available},
                        {u"volumeRecordedDays"_s, days}}};
}
} // namespace

/// How usage figures are made of what is known of places, volumes and recorded days.
class UsageFiguresTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { QTest::failOnWarning(QRegularExpression(u".*"_s)); }

    void anEntryHasTheKeysAndTypesOfTheProtocol();
    void figures_data();
    void figures();
    void partsAddUp_data();
    void partsAddUp();
    void worthTelling_data();
    void worthTelling();
};

void UsageFiguresTest::anEntryHasTheKeysAndTypesOfTheProtocol()
{
    UsagePlace only = with(place(u"a"_s, u"/v/rec"_s), {{daysAgo(1), {2, 4096}}});
    only.reservedMinutes = 2880;
    only.volume.isSystem = true;
    const QVariantMap expected{
        {u"recordingGroupID"_s, u"a"_s},
        {u"recordingGroupName"_s, u"A"_s},
        {u"recordingGroupReservedTime"_s, 2880},
        {u"recordingPath"_s, u"/v/rec"_s},
        {u"volumeName"_s, u"Disk"_s},
        {u"volumeSize"_s, qint64(1000)},
        {u"volumeAvailableSize"_s, qint64(600)},
        {u"volumeOneDayUsage"_s, qint64(4096)},
        {u"volumeRecordedDays"_s, qint64(1)},
        {u"volumeIsSystem"_s, true},
        {u"volumeIsNAS"_s, false},
    };
    const QVariantList entries = usageEntries({only}, today);
    QCOMPARE(entries.size(), 1);
    QCOMPARE(entries.constFirst().toMap(), expected);
    for (auto value = expected.cbegin(); value != expected.cend(); ++value)
        QCOMPARE(entries.constFirst().toMap().value(value.key()).metaType(), value->metaType());
}

void UsageFiguresTest::figures_data()
{
    QTest::addColumn<QList<UsagePlace>>("places");
    QTest::addColumn<QStringList>("expected");
    using Places = QList<UsagePlace>;
    const DaySums three{{daysAgo(3), {1, 3000}}, {daysAgo(1), {1, 5000}}, {daysAgo(0), {1, 100}}};

    QTest::newRow("nothing") << Places{} << QStringList{};
    QTest::newRow("no recordings") << Places{place(u"a"_s, u"/v/1"_s)} << QStringList{u"a /v/1 1000 600 -1 0"_s};
    QTest::newRow("not read yet") << Places{unread(place(u"a"_s, u"/v/1"_s))}
                                  << QStringList{u"a /v/1 1000 600 -1 -1"_s};
    QTest::newRow("today is not over: a day, and no usage")
        << Places{with(place(u"a"_s, u"/v/1"_s), {{today, {1, 9000}}})} << QStringList{u"a /v/1 1000 600 -1 1"_s};
    QTest::newRow("average over days with recordings")
        << Places{with(place(u"a"_s, u"/v/1"_s), three)} << QStringList{u"a /v/1 1000 600 4000 3"_s};
    QTest::newRow("a day of a clock that runs ahead")
        << Places{with(place(u"a"_s, u"/v/1"_s), {{daysAgo(-1), {1, 7}}, {daysAgo(1), {1, 5000}}})}
        << QStringList{u"a /v/1 1000 600 5000 2"_s};

    DaySums tenDays;
    for (int day = 1; day <= 10; ++day)
        tenDays.insert(daysAgo(day), {1, day <= 7 ? 700 : 1'000'000});
    QTest::newRow("a week is averaged") << Places{with(place(u"a"_s, u"/v/1"_s), tenDays)}
                                        << QStringList{u"a /v/1 1000 600 700 10"_s};

    QTest::newRow("paths of a group: days stand once, usage adds up")
        << Places{with(place(u"a"_s, u"/v/1"_s, u"/v"_s), {{daysAgo(2), {1, 1000}}, {daysAgo(1), {1, 1001}}}),
                  with(place(u"a"_s, u"/w/1"_s, u"/w"_s), {{daysAgo(1), {1, 2000}}, {daysAgo(3), {1, 2000}}})}
        << QStringList{u"a /v/1 1000 600 666 3"_s, u"a /w/1 1000 600 1334 -1"_s};
    QTest::newRow("one path of a group not read: nothing known of the group")
        << Places{with(place(u"a"_s, u"/v/1"_s, u"/v"_s), three), unread(place(u"a"_s, u"/w/1"_s, u"/w"_s))}
        << QStringList{u"a /v/1 1000 600 -1 -1"_s, u"a /w/1 1000 600 -1 -1"_s};
    QTest::newRow("NAS never counted: nothing known of the group")
        << Places{nas(u"a"_s, u"//nas/rec/a"_s), with(place(u"a"_s, u"/v/1"_s), three)}
        << QStringList{u"a //nas/rec/a -1 -1 -1 -1"_s, u"a /v/1 1000 600 -1 -1"_s};
    QTest::newRow("NAS counted: as every other path")
        << Places{with(onShare(nas(u"a"_s, u"//nas/rec/a"_s)), {{daysAgo(2), {1, 1000}}, {daysAgo(1), {1, 1001}}}),
                  with(place(u"a"_s, u"/v/1"_s), {{daysAgo(1), {1, 2000}}, {daysAgo(3), {1, 2000}}})}
        << QStringList{u"a //nas/rec/a 2000 800 666 3"_s, u"a /v/1 1000 600 1334 -1"_s};
    QTest::newRow("NAS counted, not there: days and usage as they were")
        << Places{with(gone(nas(u"a"_s, u"//nas/rec/a"_s)), {{daysAgo(2), {1, 1000}}, {daysAgo(1), {1, 1000}}})}
        << QStringList{u"a //nas/rec/a 0 0 1000 2"_s};
    QTest::newRow("NAS counted, free space not known yet: days alone")
        << Places{with(nas(u"a"_s, u"//nas/rec/a"_s), {{daysAgo(2), {1, 1000}}, {daysAgo(1), {1, 1000}}})}
        << QStringList{u"a //nas/rec/a -1 -1 -1 2"_s};
    QTest::newRow("NAS only, never counted: neither days nor usage")
        << Places{onShare(nas(u"a"_s, u"//nas/rec/a"_s))} << QStringList{u"a //nas/rec/a 2000 800 -1 -1"_s};
    QTest::newRow("groups on one share") << Places{onShare(nas(u"a"_s, u"//nas/rec/a"_s)),
                                                   reserving(onShare(nas(u"b"_s, u"//nas/rec/b"_s)), 1024),
                                                   reserving(onShare(nas(u"c"_s, u"//NAS/rec/c"_s)), 3072)}
                                         << QStringList{u"a //nas/rec/a 2000 0 -1 -1"_s,
                                                        u"b //nas/rec/b 2000 200 -1 -1"_s,
                                                        u"c //NAS/rec/c 2000 600 -1 -1"_s};
    QTest::newRow("NAS that does not answer")
        << Places{gone(nas(u"a"_s, u"//nas/rec/a"_s))} << QStringList{u"a //nas/rec/a 0 0 -1 -1"_s};

    QTest::newRow("shares in proportion to reserves")
        << Places{reserving(place(u"a"_s, u"/v/1"_s), 1024), reserving(place(u"b"_s, u"/v/2"_s), 2048),
                  place(u"c"_s, u"/v/3"_s)}
        << QStringList{u"a /v/1 1000 200 -1 0"_s, u"b /v/2 1000 400 -1 0"_s, u"c /v/3 1000 0 -1 0"_s};
    QTest::newRow("equal shares, however many paths")
        << Places{place(u"a"_s, u"/v/1"_s), place(u"a"_s, u"/v/2"_s), place(u"b"_s, u"/v/3"_s),
                  place(u"c"_s, u"/w/1"_s, u"/w"_s)}
        << QStringList{u"a /v/1 1000 150 -1 0"_s, u"a /v/2 1000 150 -1 -1"_s, u"b /v/3 1000 300 -1 0"_s,
                       u"c /w/1 1000 600 -1 0"_s};
    QTest::newRow("one path of several groups") << Places{place(u"a"_s, u"/v/1"_s), place(u"b"_s, u"/v/1"_s)}
                                                << QStringList{u"a /v/1 1000 300 -1 0"_s, u"b /v/1 1000 300 -1 0"_s};

    QTest::newRow("gone: no room, the usage is remembered")
        << Places{gone(with(place(u"a"_s, u"/v/1"_s), three))} << QStringList{u"a /v/1 0 0 4000 -1"_s};
    QTest::newRow("gone and never read") << Places{gone(unread(place(u"a"_s, u"/v/1"_s)))}
                                         << QStringList{u"a /v/1 0 0 -1 -1"_s};
    QTest::newRow("one of two gone: the days at hand, all of the usage")
        << Places{gone(with(place(u"a"_s, u"/v/1"_s, u"/v"_s), three)),
                  with(place(u"a"_s, u"/w/1"_s, u"/w"_s), {{daysAgo(1), {1, 3000}}})}
        << QStringList{u"a /v/1 0 0 4000 -1"_s, u"a /w/1 1000 600 1500 1"_s};
    QTest::newRow("a gone volume's sharers get nothing, others all")
        << Places{gone(reserving(place(u"a"_s, u"/v/1"_s), 1024)), place(u"b"_s, u"/v/2"_s)}
        << QStringList{u"a /v/1 0 0 -1 -1"_s, u"b /v/2 1000 600 -1 0"_s};

    QTest::newRow("of no group: no room for it, once for each path")
        << Places{with(place({}, u"/v/1"_s), three), with(place({}, u"/v/1"_s), three),
                  with(place({}, u"/v/2"_s), three), place(u"a"_s, u"/v/1"_s)}
        << QStringList{u" /v/1 1000 0 -1 -1"_s, u" /v/2 1000 0 -1 -1"_s, u"a /v/1 1000 600 -1 0"_s};
    QTest::newRow("the backup area is a group among others")
        << Places{place(u"a"_s, u"/v/1"_s), with(place(u"backupID"_s, u"/v/backup"_s), three)}
        << QStringList{u"a /v/1 1000 300 -1 0"_s, u"backupID /v/backup 1000 300 4000 3"_s};
}

void UsageFiguresTest::figures()
{
    QFETCH(QList<UsagePlace>, places);
    QTEST(lines(usageEntries(places, today)), "expected");
}

void UsageFiguresTest::partsAddUp_data()
{
    QTest::addColumn<qint64>("total");
    QTest::addColumn<QList<qint64>>("weights");
    QTest::addColumn<QList<qint64>>("parts");
    using Numbers = QList<qint64>;
    QTest::newRow("none") << qint64(9) << Numbers{} << Numbers{};
    QTest::newRow("no weight") << qint64(9) << Numbers{0, 0} << Numbers{0, 0};
    QTest::newRow("a remainder") << qint64(10) << Numbers{1, 1, 1} << Numbers{3, 3, 4};
    QTest::newRow("the last weighs nothing") << qint64(10) << Numbers{1, 2, 0} << Numbers{3, 7, 0};
    QTest::newRow("large") << (qint64(1) << 60) << Numbers{qint64(1) << 50, qint64(3) << 50}
                           << Numbers{qint64(1) << 58, qint64(3) << 58};
    constexpr qint64 most = std::numeric_limits<qint64>::max();
    QTest::newRow("more than there are numbers") << qint64(10) << Numbers{most, most} << Numbers{10, 0};
    QTest::newRow("nothing to share") << qint64(0) << Numbers{3, 4} << Numbers{0, 0};
}

void UsageFiguresTest::partsAddUp()
{
    QFETCH(qint64, total);
    QFETCH(QList<qint64>, weights);
    QTEST(partsOf(total, weights), "parts");
}

void UsageFiguresTest::worthTelling_data()
{
    QTest::addColumn<QVariantList>("sent");
    QTest::addColumn<QVariantList>("now");
    QTest::addColumn<bool>("isWorth");
    const QVariantList before = entryWith(100'000, 5000);
    QTest::newRow("nothing, still") << QVariantList{} << QVariantList{} << false;
    QTest::newRow("the first entry") << QVariantList{} << before << true;
    QTest::newRow("the last entry went") << before << QVariantList{} << true;
    QTest::newRow("the same") << before << before << false;
    QTest::newRow("a thousandth") << before << entryWith(100'000, 5100) << false;
    QTest::newRow("more than a thousandth") << before << entryWith(100'000, 5101) << true;
    QTest::newRow("less by more than a thousandth") << before << entryWith(100'000, 4899) << true;
    QTest::newRow("full") << entryWith(100'000, 20) << entryWith(100'000, 0) << true;
    QTest::newRow("not full any more") << entryWith(100'000, 0) << entryWith(100'000, 20) << true;
    QTest::newRow("another day") << before << entryWith(100'000, 5000, 4) << true;
    QTest::newRow("another size") << before << entryWith(100'001, 5000) << true;
    QTest::newRow("gone") << before << entryWith(0, 0) << true;
}

void UsageFiguresTest::worthTelling()
{
    QFETCH(QVariantList, sent);
    QFETCH(QVariantList, now);
    QTEST(isWorthTelling(sent, now), "isWorth");
}

QTEST_GUILESS_MAIN(UsageFiguresTest)
#include "tst_station_usage_figures.moc"
