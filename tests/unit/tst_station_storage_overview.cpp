#include "StorageText.h"
#include "usage/StorageOverview.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

/// Volumes and shares in all states, as StorageOverview puts them together.
class StationStorageOverviewTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { QTest::failOnWarning(QRegularExpression(u".*"_s)); }

    void aSilentVolumeIsListed();
    void aSilentRootHasNoSize();
    void sharesByTheirAnswers_data();
    void sharesByTheirAnswers();
    void pathsOfOneShareAreOneVolume();
    void recordingsOnAShare();
    void aLostShareKeepsItsRecordings();
    void recordingsOfALostVolumeOfNoGroup();
    void anUnbelievableClock();

private:
    using Storage = UsagePlace::Storage;
    static inline const QDate today{2026, 3, 20};
    static inline const QDateTime since = QDateTime::fromString(QStringLiteral("2026-03-20T08:30:00Z"), Qt::ISODate);

    static UsagePlace place(const QString &group, const QString &path, const Volume &volume, Storage storage,
                            const std::optional<DaySums> &days = DaySums())
    {
        UsagePlace place;
        place.groupId = group;
        place.groupName = group;
        place.path = path;
        place.volume = volume;
        place.storage = storage;
        place.days = days;
        place.isNas = path.startsWith(u"//"_s);
        place.isCounted = days.has_value() && storage == Storage::Present;
        return place;
    }
    static StationTrouble trouble(const QString &kind, const QString &subject)
    {
        return {kind, StationTrouble::Severity::Error, subject, {}, {}, since};
    }
    static QString stateText(const QVariant &value)
    {
        const QVariantMap volume = value.toMap();
        return QStringList{volume[u"kind"_s].toString(), volume[u"volumePath"_s].toString(),
                           volume[u"volumeName"_s].toString(), volume[u"state"_s].toString(),
                           volume[u"since"_s].toString()}
            .join(u' ');
    }
};

void StationStorageOverviewTest::aSilentVolumeIsListed()
{
    const QVariantList list = storageOverview({{u"/"_s, u"System"_s, 100, 50, true, false}}, {}, today,
                                              {trouble(u"VolumeNotAnswering"_s, u"/mnt/a"_s)});
    QCOMPARE(list.size(), 2);
    QCOMPARE(stateText(list[0]), u"local / System there "_s);
    QCOMPARE(stateText(list[1]), u"local /mnt/a  notAnswering 2026-03-20T08:30:00.000Z"_s);
    QCOMPARE(partsText(list[1].toMap()), u"-1 -1 -1 0 0 -1 -1 -1"_s);
}

void StationStorageOverviewTest::aSilentRootHasNoSize()
{
    const Volume root{u"/"_s, u"System"_s, 0, 0, true, false};
    QCOMPARE(stateText(storageOverview({root}, {}, today, {trouble(u"VolumeNotAnswering"_s, u"/"_s)})[0]),
             u"local / System notAnswering 2026-03-20T08:30:00.000Z"_s);
    const QVariantMap unexplained = storageOverview({root}, {}, today, {})[0].toMap();
    QCOMPARE(stateText(unexplained), u"local / System unknown "_s);
    QCOMPARE(partsText(unexplained), u"-1 -1 -1 0 0 -1 -1 -1"_s);
}

void StationStorageOverviewTest::sharesByTheirAnswers_data()
{
    QTest::addColumn<int>("storage");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("subject");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, Storage storage, const QString &kind, const QString &subject,
                        const QString &text) {
        QTest::newRow(name) << static_cast<int>(storage) << kind << subject << u"NAS //Nas/Rec //Nas/Rec "_s + text;
    };
    const QString time = u"2026-03-20T08:30:00.000Z"_s;
    row("there", Storage::Present, {}, {}, u"there "_s);
    row("silent", Storage::Gone, u"ShareNotAnswering"_s, u"//nas/rec"_s, u"notAnswering "_s + time);
    row("refused", Storage::Gone, u"ShareRefused"_s, u"//Nas/Rec"_s, u"gone "_s + time);
    row("folder missing", Storage::Gone, u"ShareMissing"_s, u"//Nas/Rec/a"_s, u"gone "_s + time);
    row("no key", Storage::Gone, u"NasKeyUnusable"_s, u"nas.key"_s, u"gone "_s + time);
    row("unexplained", Storage::Gone, u"ShareMissing"_s, u"//Nas/Other"_s, u"gone "_s);
    row("pending", Storage::Unknown, u"SharePending"_s, u"//Nas/Rec"_s, u"unknown "_s + time);
}

void StationStorageOverviewTest::sharesByTheirAnswers()
{
    QFETCH(const int, storage);
    QFETCH(const QString, kind);
    QFETCH(const QString, subject);
    QFETCH(const QString, text);
    const Volume share{u"//nas/rec"_s, u"//Nas/Rec"_s, 1000, 400, false, false};
    const QList<UsagePlace> places{place(u"G"_s, u"//Nas/Rec/a"_s, share, static_cast<Storage>(storage), std::nullopt)};
    const QVariantMap volume = storageOverview({}, places, today, {trouble(kind, subject)})[0].toMap();
    QCOMPARE(stateText(volume), text);
    const bool isThere = static_cast<Storage>(storage) == Storage::Present;
    QCOMPARE(partsText(volume), isThere ? u"1000 400 -1 0 0 -1 600 0"_s : u"-1 -1 -1 0 0 -1 -1 -1"_s);
    QCOMPARE(volume[u"counted"_s], QVariant(false));
}

void StationStorageOverviewTest::pathsOfOneShareAreOneVolume()
{
    const Volume lost{u"//nas/rec"_s, u"//NAS/rec"_s, 0, 0, false, false};
    const Volume share{u"//nas/rec"_s, u"//nas/Rec"_s, 1000, 400, false, false};
    const QVariantList list = storageOverview({},
                                              {place(u"G"_s, u"//NAS/rec/a"_s, lost, Storage::Gone, std::nullopt),
                                               place(u"H"_s, u"//nas/Rec/b"_s, share, Storage::Present)},
                                              today, {trouble(u"ShareMissing"_s, u"//NAS/rec/a"_s)});
    QCOMPARE(list.size(), 1);
    QCOMPARE(list[0].toMap()[u"state"_s], u"there"_s);
    QVERIFY(!list[0].toMap().contains(u"since"_s));
    QCOMPARE(groupTexts(list[0].toMap()), (QStringList{u"G -1 -1 -1 0 false"_s, u"H 0 0 -1 0 true"_s}));
    QCOMPARE(gapOf(list[0].toMap()), 0);
}

void StationStorageOverviewTest::recordingsOnAShare()
{
    const Volume share{u"//nas/rec"_s, u"//Nas/Rec"_s, 1000, 400, false, false};
    const DaySums days{{today.addDays(-1), {1, 200}}, {today.addDays(-2), {1, 100}}};
    UsagePlace counted = place(u"G"_s, u"//Nas/Rec/a"_s, share, Storage::Present, days);
    counted.countedAt = since.addSecs(60);
    const QVariantMap there = storageOverview({}, {counted}, today, {})[0].toMap();
    QCOMPARE(groupTexts(there), QStringList{u"G 300 2 150 0 true"_s});
    QCOMPARE(partsText(there), u"1000 400 -1 0 0 300 0 0"_s);
    QCOMPARE(gapOf(there), 0);
    QCOMPARE(there[u"counted"_s], QVariant(true));
    QCOMPARE(there[u"countedAt"_s], u"2026-03-20T08:31:00.000Z"_s);

    // What a removed path left there is of another spelling, and of no group; nobody counts it any more.
    UsagePlace leftover = place({}, u"//NAS/rec/old"_s, {}, Storage::Unknown, DaySums{{today, {1, 70}}});
    leftover.countedAt = since;
    const QVariantMap both = storageOverview({}, {leftover, counted}, today, {})[0].toMap();
    QCOMPARE(stateText(both), u"NAS //Nas/Rec //Nas/Rec there "_s);
    QCOMPARE(partsText(both), u"1000 400 -1 0 70 230 0 0"_s);
    QCOMPARE(groupTexts(both), QStringList{u"G 300 2 150 0 true"_s});
    QCOMPARE(both[u"counted"_s], QVariant(false));
    QCOMPARE(both[u"countedAt"_s], u"2026-03-20T08:30:00.000Z"_s);
    QCOMPARE(storageOverview({}, {leftover}, today, {}), QVariantList());
    leftover.days.reset(); // it was never counted
    QCOMPARE(partsText(storageOverview({}, {leftover, counted}, today, {})[0].toMap()), u"1000 400 -1 0 -1 -1 300 0"_s);
}

void StationStorageOverviewTest::aLostShareKeepsItsRecordings()
{
    const Volume lost{u"//nas/rec"_s, u"//Nas/Rec"_s, 0, 0, false, false};
    const DaySums days{{today.addDays(-1), {1, 200}}};
    UsagePlace silent = place(u"G"_s, u"//Nas/Rec/a"_s, lost, Storage::Gone, days);
    silent.countedAt = since;
    UsagePlace leftover = place({}, u"//Nas/Rec/old"_s, {}, Storage::Unknown, DaySums{{today, {1, 70}}});
    leftover.countedAt = since;
    const QList<StationTrouble> troubles{trouble(u"ShareNotAnswering"_s, u"//Nas/Rec"_s),
                                         trouble(u"ShareRefused"_s, u"//Nas/Rec"_s)};
    const QVariantMap volume = storageOverview({}, {silent, leftover}, today, troubles)[0].toMap();
    QCOMPARE(stateText(volume), u"NAS //Nas/Rec //Nas/Rec notAnswering 2026-03-20T08:30:00.000Z"_s);
    QCOMPARE(groupTexts(volume), QStringList{u"G 200 1 200 0 false"_s});
    QCOMPARE(partsText(volume), u"-1 -1 -1 0 70 -1 -1 -1"_s);
    QCOMPARE(volume[u"countedAt"_s], u"2026-03-20T08:30:00.000Z"_s);
}

void StationStorageOverviewTest::recordingsOfALostVolumeOfNoGroup()
{
    const Volume lost{u"/mnt/a"_s, u"A"_s, 0, 0, false, false};
    const DaySums days{{today.addDays(-1), {1, 70}}};
    const UsagePlace leftover = place({}, u"/mnt/a/old"_s, lost, Storage::Gone, days);
    QCOMPARE(storageOverview({}, {leftover}, today, {}), QVariantList());
    const QVariantList list =
        storageOverview({}, {leftover, place(u"G"_s, u"/mnt/a/rec"_s, lost, Storage::Gone, days)}, today, {});
    QCOMPARE(list.size(), 1);
    QCOMPARE(list[0].toMap()[u"withoutGroupBytes"_s].toLongLong(), 70);
}

void StationStorageOverviewTest::anUnbelievableClock()
{
    const Volume disk{u"/a"_s, u"A"_s, 1000, 400, false, false};
    const DaySums days{{today, {1, 70}}, {today.addDays(9), {1, 30}}};
    const QList<UsagePlace> places{place(u"G"_s, u"/a/rec"_s, disk, Storage::Present, days)};
    QCOMPARE(groupTexts(storageOverview({disk}, places, today, {})[0].toMap()), QStringList{u"G 100 1 -1 0 true"_s});
    QCOMPARE(groupTexts(storageOverview({disk}, places, QDate(), {})[0].toMap()), QStringList{u"G 100 -1 -1 0 true"_s});
}

QTEST_GUILESS_MAIN(StationStorageOverviewTest)
#include "tst_station_storage_overview.moc"
