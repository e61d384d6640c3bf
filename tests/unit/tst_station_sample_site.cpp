#include "FakeVolumes.h"
#include "ServerVocabulary.h"
#include "Station.h"
#include "StationVocabulary.h"
#include "files/PrivateFolder.h"
#include "groups/GroupStore.h"
#include "samplesite/SamplePlan.h"
#include "store/Database.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {
constexpr qint64 gigabyte = 1024 * 1024 * 1024;
constexpr qint64 kilobyte = 1024;
constexpr int minutesPerDay = 24 * 60;

struct GroupUsage
{
    int reservedDays = 0;
    qint64 recordedDays = 0;
    qint64 remainingDays = 0;
};

/// As a client makes it of an event's entries, each of another group.
QMap<QString, GroupUsage> usageIn(const QVariantList &entries)
{
    QMap<QString, GroupUsage> groups;
    for (const QVariant &value : entries) {
        const QVariantMap entry = value.toMap();
        const qint64 oneDay = entry[u"volumeOneDayUsage"_s].toLongLong();
        groups.insert(entry[u"recordingGroupName"_s].toString(),
                      {entry[u"recordingGroupReservedTime"_s].toInt() / minutesPerDay,
                       entry[u"volumeRecordedDays"_s].toLongLong(),
                       oneDay > 0 ? entry[u"volumeAvailableSize"_s].toLongLong() / (oneDay / kilobyte) : -1});
    }
    return groups;
}
} // namespace

/// The site that an empty station starts with: what is in it, on a small disk and on a large one, and when it is
/// refused.
class SampleSiteTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void camerasAndGroups();
    void usageOnAnyDisk_data();
    void usageOnAnyDisk();
    void filesHaveSizeAndDateAndTakeNoSpace();
    void theSameSeedGivesTheSameFiles();
    void aDayThatIsNotOverHasFewerFiles();
    void aSiteIsNotTouched_data();
    void aSiteIsNotTouched();
    void aFolderInTheWayIsKept();
    void aMarkIsLeft();
    void plantedLinksAreNotFollowed();
    void theFilesAreForTheUserAlone();
    void outsideVolumes();
    void otherDataIsRefused();

private:
    QString dataFolder() const { return QDir(m_folder->path()).canonicalPath() + u"/data"_s; }
    std::unique_ptr<Station> station(qint64 total = 100 * gigabyte, qint64 free = 50 * gigabyte) const;
    StationReply create(Station &station, const QVariant &data = QVariantMap()) const;
    void checkNothingIsThere() const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void SampleSiteTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_folder = std::make_unique<QTemporaryDir>();
}

std::unique_ptr<Station> SampleSiteTest::station(qint64 total, qint64 free) const
{
    const QList<Volume> volumes{{QDir(m_folder->path()).canonicalPath(), u"Disk"_s, total, free, false, false}};
    StationSettings settings{dataFolder(), {}, std::make_unique<FakeVolumes>(volumes)};
    settings.usage.tellInterval = std::chrono::milliseconds(10);
    return std::make_unique<Station>(std::move(settings));
}

StationReply SampleSiteTest::create(Station &station, const QVariant &data) const
{
    StationReply reply;
    station.handle({StationCommandName::createSampleSite, data}, [&reply](const StationReply &part) { reply = part; });
    return reply;
}

void SampleSiteTest::checkNothingIsThere() const
{
    Database database(dataFolder());
    QVERIFY(GroupStore(database).groups().isEmpty());
    QVERIFY(GroupStore(database).cameras().isEmpty());
    QVERIFY(!QFileInfo::exists(dataFolder() + u"/sample.unfinished"_s));
}

void SampleSiteTest::camerasAndGroups()
{
    const auto owner = station();
    const StationReply reply = create(*owner);
    QCOMPARE(reply.returnCode, u"0"_s);
    const QVariantMap expected{{u"created"_s, true}};
    QCOMPARE(reply.data.toMap(), expected);

    Database database(dataFolder());
    const GroupStore store(database);
    QCOMPARE(store.cameras().size(), 4);
    QSet<int> reservedTimes;
    QSet<QString> recorded;
    for (const RecordingGroup &group : store.groups()) {
        QVERIFY(group.isReservedTimeEnabled);
        reservedTimes.insert(group.reservedMinutes);
        for (const GroupMember &member : group.members)
            recorded.insert(member.camera);
        QCOMPARE(group.paths.size(), 1);
        QVERIFY(group.paths.constFirst().path.startsWith(dataFolder() + u"/sample/"_s));
        QVERIFY(QFileInfo(group.paths.constFirst().path).isDir());
        QCOMPARE(group.paths.constFirst().reservedMegabytes % 1024, 0);
        QVERIFY(group.paths.constFirst().reservedMegabytes > 0);
    }
    QCOMPARE(reservedTimes.size(), 3);
    QCOMPARE(recorded.size(), 4);
}

void SampleSiteTest::usageOnAnyDisk_data()
{
    QTest::addColumn<qint64>("total");
    QTest::addColumn<qint64>("free");
    QTest::newRow("a full one") << 4 * gigabyte << qint64(0);
    QTest::newRow("a tiny one") << gigabyte / 4 << gigabyte / 8;
    QTest::newRow("a small one") << 4 * gigabyte << 2 * gigabyte;
    QTest::newRow("a laptop's") << 20 * gigabyte << 6 * gigabyte;
    QTest::newRow("a desktop's") << 1000 * gigabyte << 300 * gigabyte;
    QTest::newRow("a server's") << 20'000 * gigabyte << 19'000 * gigabyte;
    QTest::newRow("a huge one") << 2'000'000 * gigabyte << 1'900'000 * gigabyte;
}

void SampleSiteTest::usageOnAnyDisk()
{
    QFETCH(qint64, total);
    QFETCH(qint64, free);
    const auto owner = station(total, free);
    QVariantList entries;
    connect(owner.get(), &Station::eventRaised, this, [&entries](const StationEvent &event) {
        if (event.name == ServerEvent::VolumeChanged)
            entries = event.data.toList();
    });
    QCOMPARE(create(*owner).returnCode, u"0"_s);
    QTRY_COMPARE(entries.size(), 3);
    QTRY_VERIFY(usageIn(entries).first().recordedDays > 0);

    int shortGroups = 0;
    const QMap<QString, GroupUsage> groups = usageIn(entries);
    for (auto usage = groups.cbegin(); usage != groups.cend(); ++usage) {
        const qint64 days = usage->recordedDays + usage->remainingDays;
        if (free == 0)
            QCOMPARE(usage->remainingDays, 0);
        else
            QVERIFY2(usage->remainingDays >= 6 && usage->remainingDays <= 40, qPrintable(usage.key()));
        QVERIFY2(usage->recordedDays >= 7 && usage->recordedDays <= 14, qPrintable(usage.key()));
        shortGroups += days < usage->reservedDays ? 1 : 0;
        QVERIFY2(qAbs(days - usage->reservedDays) > 3, "neither enough nor too little by a hair's breadth");
    }
    QCOMPARE(shortGroups, 1);
}

void SampleSiteTest::filesHaveSizeAndDateAndTakeNoSpace()
{
    const auto owner = station();
    QCOMPARE(create(*owner).returnCode, u"0"_s);
    qint64 size = 0;
    qint64 taken = 0;
    QDirIterator files(dataFolder() + u"/sample"_s, QDir::Files, QDirIterator::Subdirectories);
    int count = 0;
    while (files.hasNext()) {
        const QFileInfo file(files.next());
        QCOMPARE(file.dir().dirName(), file.lastModified().date().toString(Qt::ISODate));
        struct stat status = {};
        QCOMPARE(stat(QFile::encodeName(file.filePath()).constData(), &status), 0);
        size += status.st_size;
        taken += status.st_blocks * 512;
        ++count;
    }
    QVERIFY2(count > 500, qPrintable(QString::number(count)));
    QVERIFY2(size > 10 * gigabyte, qPrintable(QString::number(size)));
    QVERIFY2(taken < 1024 * kilobyte * 8, qPrintable(QString::number(taken)));
}

void SampleSiteTest::theSameSeedGivesTheSameFiles()
{
    const QDateTime now(QDate(2026, 3, 20), QTime(12, 30));
    const SampleGroup group =
        sampleGroups({u"/"_s, u"System"_s, 100 * gigabyte, 50 * gigabyte, true, false}).constFirst();
    const auto sizes = [&](quint32 seed) {
        QList<qint64> list;
        for (const SampleFile &file : sampleFiles(group, now.date().addDays(-1), now, seed))
            list.append(file.bytes);
        return list;
    };
    QCOMPARE(sizes(5).size(), 24);
    QCOMPARE(sizes(5), sizes(5));
    QVERIFY(sizes(5) != sizes(6));
}

void SampleSiteTest::aDayThatIsNotOverHasFewerFiles()
{
    const QDateTime now(QDate(2026, 3, 20), QTime(2, 30));
    const SampleGroup group =
        sampleGroups({u"/"_s, u"System"_s, 100 * gigabyte, 50 * gigabyte, true, false}).constFirst();
    const QList<SampleFile> files = sampleFiles(group, now.date(), now, 1);
    QCOMPARE(files.size(), 3);
    QCOMPARE(files.constLast().name, u"02-00.rec"_s);
    QCOMPARE(files.constLast().writtenAt, now);
    QCOMPARE(sampleFiles(group, now.date(), QDateTime(now.date(), QTime(0, 0)), 1).size(), 1);
}

void SampleSiteTest::aSiteIsNotTouched_data()
{
    QTest::addColumn<bool>("hasGroup");
    QTest::newRow("a camera") << false;
    QTest::newRow("a group") << true;
}

void SampleSiteTest::aSiteIsNotTouched()
{
    QFETCH(bool, hasGroup);
    {
        Database database(dataFolder());
        GroupStore store(database);
        if (hasGroup)
            store.insert(RecordingGroup{u"{1}"_s, u"Mine"_s, u"Mine"_s, {}, {}, {}, 0, false});
        else
            store.insert(Camera{u"Mine"_s, 1});
    }
    const auto owner = station();
    const StationReply reply = create(*owner);
    QCOMPARE(reply.returnCode, StationReturnCode::SiteNotEmpty);
    QVERIFY(!reply.data.isValid());
    Database database(dataFolder());
    QCOMPARE(GroupStore(database).groups().size() + GroupStore(database).cameras().size(), 1);
    QVERIFY(!QFileInfo::exists(dataFolder() + u"/sample"_s));
}

void SampleSiteTest::aFolderInTheWayIsKept()
{
    // As an attempt leaves it that was cut off before the groups were stored.
    QVERIFY(QDir().mkpath(dataFolder() + u"/sample/recordings/mine"_s));
    QVERIFY(QDir().mkpath(dataFolder() + u"/sample-2"_s));
    const auto owner = station();
    QCOMPARE(create(*owner).returnCode, u"0"_s);
    QCOMPARE(QDir(dataFolder() + u"/sample/recordings"_s).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList{u"mine"_s});
    QVERIFY(QDir(dataFolder() + u"/sample-2"_s).isEmpty());
    Database database(dataFolder());
    const QString path = GroupStore(database).groups().constFirst().paths.constFirst().path;
    QCOMPARE(path, dataFolder() + u"/sample-3/recordings"_s);
    QVERIFY(!QDir(path).isEmpty());
}

void SampleSiteTest::aMarkIsLeft()
{
    const QString mark = dataFolder() + u"/sample-site-offered"_s;
    {
        Station outside(StationSettings{dataFolder(), {}, std::make_unique<FakeVolumes>()});
        QCOMPARE(create(outside).returnCode, StationReturnCode::OutsideVolumes);
        QVERIFY(!QFileInfo::exists(mark));
    }
    const auto owner = station();
    QCOMPARE(create(*owner).returnCode, u"0"_s);
    QVERIFY(QFileInfo::exists(mark));
}

void SampleSiteTest::plantedLinksAreNotFollowed()
{
    const QString target = m_folder->filePath(u"target"_s);
    QVERIFY(QDir().mkpath(target + u"/kept"_s));
    QVERIFY(QDir().mkpath(dataFolder()));
    const QString marked = m_folder->filePath(u"marked"_s);
    {
        QFile file(marked);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("kept") == 4);
    }
    QVERIFY(QFile::link(target, dataFolder() + u"/sample.unfinished"_s));
    QVERIFY(QFile::link(target, dataFolder() + u"/sample"_s));
    QVERIFY(QFile::link(m_folder->filePath(u"missing"_s), dataFolder() + u"/sample-2"_s));
    QVERIFY(QFile::link(target, dataFolder() + u"/sample-3.unfinished"_s));
    QVERIFY(QFile::link(marked, dataFolder() + u"/sample-site-offered"_s));
    const auto owner = station();
    QCOMPARE(create(*owner).returnCode, u"0"_s);
    QCOMPARE(QDir(target).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{u"kept"_s});
    QCOMPARE(QFileInfo(marked).size(), 4);
    QVERIFY(!isNameTaken(m_folder->filePath(u"missing"_s)));
    QVERIFY(QFileInfo(dataFolder() + u"/sample-3"_s).isDir());
}

void SampleSiteTest::theFilesAreForTheUserAlone()
{
    const mode_t mask = umask(0);
    const auto owner = station();
    const QString returnCode = create(*owner).returnCode;
    umask(mask);
    QCOMPARE(returnCode, u"0"_s);
    int entries = 0;
    QDirIterator all(dataFolder() + u"/sample"_s, QDir::AllEntries | QDir::NoDotAndDotDot,
                     QDirIterator::Subdirectories);
    while (all.hasNext()) {
        struct stat facts = {};
        QCOMPARE(lstat(QFile::encodeName(all.next()).constData(), &facts), 0);
        QCOMPARE(facts.st_mode & 07777, S_ISDIR(facts.st_mode) ? 0700U : 0600U);
        ++entries;
    }
    QVERIFY(entries > 100);
    struct stat mark = {};
    QCOMPARE(stat(QFile::encodeName(dataFolder() + u"/sample-site-offered"_s).constData(), &mark), 0);
    QCOMPARE(mark.st_mode & 07777, 0600U);
}

void SampleSiteTest::outsideVolumes()
{
    Station station(StationSettings{dataFolder(), {}, std::make_unique<FakeVolumes>()});
    QCOMPARE(create(station).returnCode, StationReturnCode::OutsideVolumes);
    checkNothingIsThere();
    QVERIFY(!QFileInfo::exists(dataFolder() + u"/sample"_s));
}

void SampleSiteTest::otherDataIsRefused()
{
    const auto owner = station();
    QCOMPARE(create(*owner, u"please"_s).returnCode, StationReturnCode::BadRequest);
    QCOMPARE(create(*owner, QVariant()).returnCode, u"0"_s);
}

QTEST_GUILESS_MAIN(SampleSiteTest)
#include "tst_station_sample_site.moc"
