#include "EditDelivery.h"
#include "UnassignedSite.h"
#include "disk/DiskVisit.h"
#include "recordings/DeletionStore.h"
#include "recordings/PlaceDeletion.h"

#include <QRegularExpression>
#include <QTest>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {
/// Keeps the files of a folder from being deleted while it lives, even by root.
class KeptFolder
{
public:
    explicit KeptFolder(const QString &path)
        : m_folder(open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
        const bool isKnown = m_folder >= 0 && ioctl(m_folder, FS_IOC_GETFLAGS, &m_flags) == 0;
        const int appendOnly = m_flags | FS_APPEND_FL;
        m_isKept = isKnown && ioctl(m_folder, FS_IOC_SETFLAGS, &appendOnly) == 0;
    }
    ~KeptFolder()
    {
        if (m_isKept)
            ioctl(m_folder, FS_IOC_SETFLAGS, &m_flags);
        if (m_folder >= 0)
            close(m_folder);
    }
    Q_DISABLE_COPY_MOVE(KeptFolder)

    bool isKept() const { return m_isKept; }

private:
    int m_folder;
    int m_flags = 0;
    bool m_isKept = false;
};

/// Mounts a folder in the place of another one while it lives.
class BindMount
{
public:
    BindMount(const QString &folder, const QString &place)
        : m_place(QFile::encodeName(place))
        , m_isMounted(mount(QFile::encodeName(folder).constData(), m_place.constData(), nullptr, MS_BIND, nullptr) == 0)
    {
    }
    ~BindMount()
    {
        if (m_isMounted)
            umount2(m_place.constData(), MNT_DETACH);
    }
    Q_DISABLE_COPY_MOVE(BindMount)

    bool isMounted() const { return m_isMounted; }

private:
    QByteArray m_place;
    bool m_isMounted;
};
} // namespace

/// Recordings that belong to no group are deleted, and nothing else is.
class StationDeletionTest : public QObject, private UnassignedSite
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void recordingsAndTheirFoldersGo();
    void whatIsNoRecordingStays();
    void linksAreNotFollowed_data();
    void linksAreNotFollowed();
    void aMountIsNotEntered_data();
    void aMountIsNotEntered();
    void aNewFileStays();
    void aFileThatCannotBeDeleted();
    void theNameHasToBeTyped();
    void whatAGroupNamesStays();
    void whatAGroupNamesByALinkStays();
    void aGroupThatComesMeanwhile();
    void theBackupAreaStays();
    void anotherFileSystem();
    void itCanBeCancelled();
    void whatWasCutOffIsToldAndGoneOnWith();
    void aGroupEndsWhatIsKnownOfADeletion();
    void itTakesEffectOnce();
    void itIsInTheActivity();
    void aFullDatabaseRefusesIt();

private:
    void writeDays();
    PlaceDeletion deletion();
    QVariantMap begun() { return places().value(0).toMap().value(u"deletion"_s).toMap(); }
};

void StationDeletionTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    setUp();
}

void StationDeletionTest::cleanup()
{
    tearDown();
}

/// Four files of two cameras.
void StationDeletionTest::writeDays()
{
    RecordedSite::write(day(2, u"Door"_s), u"1.rec"_s, mb);
    RecordedSite::write(day(1), u"1.rec"_s, 2 * mb);
    RecordedSite::write(day(1), u"2.rec"_s, 3 * mb);
    RecordedSite::write(day(3), u"1.rec"_s, 4 * mb);
}

/// That of the only place, with nobody at work there but the test: the station has ended.
PlaceDeletion StationDeletionTest::deletion()
{
    startWithoutDoors();
    m_station.reset();
    Database database(m_site->dataFolder());
    const qint64 number = database.value(u"SELECT number FROM recording_place WHERE folder = 'Doors'"_s).toLongLong();
    struct stat status = {};
    stat(QFile::encodeName(m_path).constData(), &status);
    return {{number, m_path, u"Doors"_s, status.st_dev}, m_site->dataFolder(), {}};
}

void StationDeletionTest::recordingsAndTheirFoldersGo()
{
    addGroup(u"Yard"_s, {m_path});
    const QString yard = RecordedSite::dayFolder(m_path, u"Yard"_s, u"Gate"_s, daysAgo(1));
    RecordedSite::write(yard, u"1.rec"_s, mb);
    writeDays();
    startWithoutDoors();
    const StationReply reply = remove(doors(), u"Doors"_s);
    QCOMPARE(reply.returnCode, u"0"_s);
    QCOMPARE(reply.data.toMap(),
             (QVariantMap{{u"place"_s, doors()}, {u"recordedFiles"_s, qint64(4)}, {u"recordedBytes"_s, 10 * mb}}));
    QTRY_COMPARE(m_ends.size(), 1);
    QCOMPARE(m_ends.constFirst(),
             (QVariantMap{{u"place"_s, doors()},
                          {u"done"_s, qint64(4)},
                          {u"total"_s, qint64(4)},
                          {u"deletedBytes"_s, 10 * mb},
                          {u"running"_s, false},
                          {u"returnCode"_s, u"0"_s},
                          {u"leftFiles"_s, qint64(0)},
                          {u"leftBytes"_s, qint64(0)},
                          {u"leftEntries"_s, qint64(0)},
                          {u"left"_s, QVariantList()}}));
    QVERIFY(!QFileInfo::exists(doors()));
    QVERIFY(QFileInfo::exists(yard + u"/1.rec"_s));
    QTRY_COMPARE(places(), QVariantList());
    QTRY_VERIFY(remove(doors(), u"Doors"_s).returnCode == u"PlaceNotFound"_s);
    Database database(m_site->dataFolder());
    QTRY_COMPARE(database.value(u"SELECT count(*) FROM recording_deletion"_s).toInt(), 0);
}

void StationDeletionTest::whatIsNoRecordingStays()
{
    const QString elsewhere = m_site->makePath(u"elsewhere"_s);
    RecordedSite::write(elsewhere + u"/2026-03-01"_s, u"1.rec"_s, mb);
    writeDays();
    RecordedSite::write(doors(), u"notes.txt"_s, 5);
    RecordedSite::write(doors() + u"/Gate"_s, u"notes.txt"_s, 5);
    RecordedSite::write(doors() + u"/Gate/thumbnails"_s, u"1.jpg"_s, 5);
    RecordedSite::write(day(1) + u"/index"_s, u"1.idx"_s, 5);
    QVERIFY(QFile::link(elsewhere + u"/2026-03-01/1.rec"_s, day(1) + u"/0.rec"_s));
    QVERIFY(QFile::link(elsewhere + u"/2026-03-01"_s, doors() + u"/Gate/2026-03-01"_s));
    QVERIFY(QFile::link(elsewhere, doors() + u"/Linked"_s));
    startWithoutDoors();
    QCOMPARE(remove(doors(), u"Doors"_s).returnCode, u"0"_s);
    QTRY_COMPARE(m_ends.size(), 1);
    const QVariantMap end = m_ends.constFirst();
    QCOMPARE(end.value(u"returnCode"_s).toString(), u"0"_s);
    QCOMPARE(end.value(u"done"_s), QVariant(qint64(4)));
    QCOMPARE(end.value(u"leftFiles"_s), QVariant(qint64(0)));
    QStringList left;
    const QVariantList entries = end.value(u"left"_s).toList();
    for (const QVariant &entry : entries) {
        QCOMPARE(entry.toMap().value(u"reason"_s).toString(), u"NotARecording"_s);
        left.append(entry.toMap().value(u"path"_s).toString().mid(doors().size() + 1));
    }
    left.sort();
    QCOMPARE(left,
             (QStringList{u"Gate/2026-03-01"_s, u"Gate/2026-03-19/0.rec"_s, u"Gate/2026-03-19/index"_s,
                          u"Gate/notes.txt"_s, u"Gate/thumbnails"_s, u"Linked"_s, u"notes.txt"_s}));
    QCOMPARE(end.value(u"leftEntries"_s), QVariant(qint64(7)));
    QCOMPARE(everythingIn(elsewhere), (QStringList{u"2026-03-01/"_s, u"2026-03-01/1.rec"_s}));
    QVERIFY(!QFileInfo::exists(doors() + u"/Door"_s));
    QVERIFY(QFileInfo::exists(day(1) + u"/index/1.idx"_s));
    QTRY_COMPARE(places(), QVariantList()); // no recordings are there
}

void StationDeletionTest::linksAreNotFollowed_data()
{
    QTest::addColumn<QString>("name"); // of what becomes a link after it was counted
    QTest::addColumn<QString>("code");
    QTest::addColumn<qint64>("leftFiles");
    QTest::newRow("file") << u"/Gate/2026-03-19/1.rec"_s << u"0"_s << qint64(0);
    QTest::newRow("day") << u"/Gate/2026-03-19"_s << u"RecordingsLeft"_s << qint64(2);
    QTest::newRow("camera") << u"/Gate"_s << u"RecordingsLeft"_s << qint64(3);
    QTest::newRow("place") << QString() << u"DirectoryNotFound"_s << qint64(-1);
}

/// What a link leads to has the names that the index knows.
void StationDeletionTest::linksAreNotFollowed()
{
    QFETCH(const QString, name);
    QFETCH(const QString, code);
    QFETCH(const qint64, leftFiles);
    writeDays();
    const PlaceDeletion task = deletion();
    const QString away = m_site->disk() + u"/away"_s;
    QVERIFY(QFile::rename(doors() + name, away));
    QVERIFY(QFile::link(away, doors() + name));
    const QStringList before = everythingIn(m_site->disk() + u"/away"_s);
    DeletionProgress progress;
    DiskVisit visit;
    const DeletionResult result = task.run(progress, visit);
    QCOMPARE(result.returnCode, code);
    QCOMPARE(result.leftFiles, leftFiles);
    QVERIFY(QFileInfo(doors() + name).isSymLink());
    QVERIFY(QFileInfo::exists(away));
    QCOMPARE(everythingIn(away), before);
    if (!name.isEmpty())
        QVERIFY(!QFileInfo::exists(doors() + u"/Door"_s));
}

void StationDeletionTest::aMountIsNotEntered_data()
{
    QTest::addColumn<QString>("below");
    QTest::newRow("day") << u"/Gate/2026-03-19"_s;
    QTest::newRow("camera") << u"/Gate"_s;
    QTest::newRow("place") << QString();
}

/// Another folder of the same file system, mounted there after the recordings were counted, with files of the same
/// names.
void StationDeletionTest::aMountIsNotEntered()
{
    QFETCH(const QString, below);
    writeDays();
    startWithoutDoors();
    const QString elsewhere = m_path + u"/elsewhere"_s;
    QVERIFY(QDir().mkpath(elsewhere + u"/2026-03-19"_s));
    QVERIFY(QDir().mkpath(elsewhere + u"/Gate/2026-03-19"_s));
    for (const char *name : {"/1.rec", "/2026-03-19/1.rec", "/Gate/2026-03-19/1.rec"})
        QVERIFY(QFile(elsewhere + QLatin1String(name)).open(QIODevice::WriteOnly));
    const QStringList before = everythingIn(elsewhere);
    {
        const BindMount bound(elsewhere, doors() + below);
        if (!bound.isMounted())
            QSKIP("only root, with the right to mount, can have a folder mounted there");
        const QString code = remove(doors(), u"Doors"_s).returnCode;
        if (below.isEmpty()) {
            QCOMPARE(code, u"DirectoryNotFound"_s);
        } else {
            QCOMPARE(code, u"0"_s);
            QTRY_COMPARE(m_ends.size(), 1);
            QCOMPARE(m_ends.constFirst().value(u"returnCode"_s).toString(), u"RecordingsLeft"_s);
            const QVariantMap left = m_ends.constFirst().value(u"left"_s).toList().value(0).toMap();
            QCOMPARE(left.value(u"path"_s).toString(), doors() + below);
            QCOMPARE(left.value(u"reason"_s).toString(), u"NotARecording"_s);
        }
        m_station.reset();
    }
    QCOMPARE(everythingIn(elsewhere), before);
    QVERIFY(QFileInfo::exists(day(1) + u"/1.rec"_s)); // below the mount
    QCOMPARE(QFileInfo::exists(day(2, u"Door"_s)), below.isEmpty());
}

void StationDeletionTest::aNewFileStays()
{
    writeDays();
    const PlaceDeletion task = deletion();
    RecordedSite::write(day(1), u"new.rec"_s, mb); // nobody has counted it
    DeletionProgress progress;
    DiskVisit visit;
    const DeletionResult result = task.run(progress, visit);
    QCOMPARE(result.returnCode, u"0"_s);
    QCOMPARE(progress.files.load(), 4);
    QCOMPARE(result.leftEntries, 1);
    QCOMPARE(everythingIn(doors()), (QStringList{u"Gate/"_s, u"Gate/2026-03-19/"_s, u"Gate/2026-03-19/new.rec"_s}));
}

void StationDeletionTest::aFileThatCannotBeDeleted()
{
    writeDays();
    startWithoutDoors();
    {
        const KeptFolder kept(day(1));
        if (!kept.isKept())
            QSKIP("only root, on a file system that knows the flag, can make a folder that keeps its files");
        QCOMPARE(remove(doors(), u"Doors"_s).returnCode, u"0"_s);
        QTRY_COMPARE(m_ends.size(), 1);
    }
    const QVariantMap end = m_ends.constFirst();
    QCOMPARE(end.value(u"returnCode"_s).toString(), u"RecordingsLeft"_s);
    QCOMPARE(end.value(u"done"_s), QVariant(qint64(2)));
    QCOMPARE(end.value(u"leftFiles"_s), QVariant(qint64(2)));
    QCOMPARE(end.value(u"leftBytes"_s), QVariant(5 * mb));
    const QVariantMap left = end.value(u"left"_s).toList().value(0).toMap();
    QCOMPARE(left.value(u"path"_s).toString(), day(1) + u"/1.rec"_s);
    QCOMPARE(left.value(u"reason"_s).toString(), u"PermissionDenied"_s);
    QTRY_COMPARE(countedPlace().value(u"recordedBytes"_s), QVariant(5 * mb));
    QCOMPARE(begun().value(u"returnCode"_s).toString(), u"RecordingsLeft"_s);
    QCOMPARE(begun().value(u"running"_s), QVariant(false));
    // What was in the way is gone.
    QCOMPARE(remove(doors(), u"Doors"_s).returnCode, u"0"_s);
    QTRY_COMPARE(m_ends.size(), 2);
    QCOMPARE(m_ends.constLast().value(u"returnCode"_s).toString(), u"0"_s);
    QVERIFY(!QFileInfo::exists(doors()));
}

void StationDeletionTest::theNameHasToBeTyped()
{
    writeDays();
    startWithoutDoors();
    for (const QString &typed : {QString(), u"doors"_s, u"Doors "_s, doors()})
        QCOMPARE(remove(doors(), typed).returnCode, u"ConfirmationRefused"_s);
    QCOMPARE(ask(u"station.deleteRecordings"_s, QVariantMap{{u"place"_s, doors()}}).returnCode, u"BadRequest"_s);
    QCOMPARE(countedPlace().value(u"recordedFiles"_s), QVariant(qint64(4)));
    QVERIFY(QFileInfo::exists(day(1) + u"/1.rec"_s));
    QVERIFY(begun().isEmpty());
    QVERIFY(m_ends.isEmpty());
}

void StationDeletionTest::whatAGroupNamesStays()
{
    writeDays();
    startWithoutDoors();
    addGroup(u"Doors"_s, {m_path}); // nobody has told the station
    QCOMPARE(remove(doors(), u"Doors"_s).returnCode, u"PlaceInUse"_s);
    m_station->recordingGroupsChanged();
    QCOMPARE(remove(doors(), u"Doors"_s).returnCode, u"PlaceInUse"_s);
    QVERIFY(QFileInfo::exists(day(1) + u"/1.rec"_s));
}

void StationDeletionTest::whatAGroupNamesByALinkStays()
{
    writeDays();
    startWithoutDoors();
    const QString link = m_site->disk() + u"/link"_s;
    QVERIFY(QFile::link(m_path, link));
    {
        RecordingGroup group = RecordedSite::group(u"Court"_s, {link});
        group.folder = u"Doors"_s;
        Database database(m_site->dataFolder());
        GroupStore(database).insert(group);
    }
    QCOMPARE(remove(doors(), u"Doors"_s).returnCode, u"PlaceInUse"_s);
    QCOMPARE(assign(doors(), u"Court"_s).returnCode, u"PlaceInUse"_s);
    QVERIFY(QFileInfo::exists(day(1) + u"/1.rec"_s));
}

void StationDeletionTest::aGroupThatComesMeanwhile()
{
    writeDays();
    PlaceDeletion task = deletion();
    task.beforeDay = [this](const QString &camera, const QString &dayName) {
        if (camera == u"Gate"_s && dayName == u"2026-03-19"_s)
            addGroup(u"Doors"_s, {m_path});
    };
    DeletionProgress progress;
    DiskVisit visit;
    const DeletionResult result = task.run(progress, visit);
    QCOMPARE(result.returnCode, u"PlaceInUse"_s);
    QCOMPARE(result.leftFiles, -1);
    QCOMPARE(progress.files.load(), 2);
    QCOMPARE(everythingIn(doors()),
             (QStringList{u"Gate/"_s, u"Gate/2026-03-19/"_s, u"Gate/2026-03-19/1.rec"_s, u"Gate/2026-03-19/2.rec"_s}));
}

void StationDeletionTest::theBackupAreaStays()
{
    writeDays();
    PlaceDeletion task = deletion();
    task.backupFolder = doors();
    DeletionProgress progress;
    DiskVisit visit;
    QCOMPARE(task.run(progress, visit).returnCode, u"PlaceInUse"_s);
    QCOMPARE(PlaceDeletion::check(task.place, {doors() + u"/Gate"_s}, visit), u"PlaceInUse"_s);
    QCOMPARE(PlaceDeletion::check(task.place, {m_path + u"/Doors-2"_s}, visit), u"0"_s);
    QCOMPARE(progress.files.load(), 0);
}

void StationDeletionTest::anotherFileSystem()
{
    writeDays();
    PlaceDeletion task = deletion();
    ++task.place.device;
    DeletionProgress progress;
    DiskVisit visit;
    QCOMPARE(PlaceDeletion::check(task.place, {}, visit), u"DirectoryNotFound"_s);
    QCOMPARE(task.run(progress, visit).returnCode, u"DirectoryNotFound"_s);
    QCOMPARE(progress.files.load(), 0);
}

void StationDeletionTest::itCanBeCancelled()
{
    writeDays();
    PlaceDeletion task = deletion();
    DeletionProgress progress;
    task.beforeDay = [&progress](const QString &camera, const QString &) {
        progress.isCancelled = camera == u"Gate"_s;
    };
    DiskVisit visit;
    const DeletionResult result = task.run(progress, visit);
    QCOMPARE(result.returnCode, u"DeletionCancelled"_s);
    QCOMPARE(result.leftFiles, -1);
    QCOMPARE(progress.files.load(), 1);
    QVERIFY(QFileInfo::exists(day(1) + u"/1.rec"_s));
    startStation();
    QCOMPARE(ask(u"station.cancelDeletion"_s, QVariantMap{{u"place"_s, doors()}}).returnCode, u"NoDeletion"_s);
    QCOMPARE(ask(u"station.cancelDeletion"_s).returnCode, u"BadRequest"_s);
}

/// As a station leaves it that is killed after it deleted some files.
void StationDeletionTest::whatWasCutOffIsToldAndGoneOnWith()
{
    writeDays();
    PlaceDeletion task = deletion();
    const QDateTime time = QDateTime::fromString(QStringLiteral("2026-03-20T12:00:00Z"), Qt::ISODate);
    {
        Database database(m_site->dataFolder());
        Transaction transaction(database);
        DeletionStore(database).begin(task.place.number, time);
        transaction.commit();
    }
    DeletionProgress progress;
    task.beforeDay = [&progress](const QString &camera, const QString &) {
        progress.isCancelled = camera == u"Gate"_s;
    };
    DiskVisit visit;
    task.run(progress, visit);

    startStation();
    QTRY_COMPARE(countedPlace().value(u"recordedFiles"_s), QVariant(qint64(3)));
    QCOMPARE(begun(), (QVariantMap{{u"begun"_s, u"2026-03-20T12:00:00.000Z"_s}, {u"running"_s, false}}));
    QCOMPARE(remove(doors(), u"Doors"_s).returnCode, u"0"_s);
    QTRY_COMPARE(m_ends.size(), 1);
    QCOMPARE(m_ends.constFirst().value(u"done"_s), QVariant(qint64(3)));
    QVERIFY(!QFileInfo::exists(doors()));
    QTRY_COMPARE(places(), QVariantList());
}

void StationDeletionTest::aGroupEndsWhatIsKnownOfADeletion()
{
    writeDays();
    const PlaceDeletion task = deletion();
    Database database(m_site->dataFolder());
    {
        Transaction transaction(database);
        DeletionStore(database).begin(task.place.number, QDateTime::currentDateTimeUtc());
        transaction.commit();
    }
    startStation();
    QCOMPARE(begun().value(u"running"_s), QVariant(false));
    addGroup(u"Doors"_s, {m_path});
    m_station->recordingGroupsChanged();
    QCOMPARE(places(), QVariantList());
    removeGroup(u"Doors"_s);
    QCOMPARE(places().size(), 1);
    QVERIFY(begun().isEmpty());
}

void StationDeletionTest::itTakesEffectOnce()
{
    writeDays();
    startWithoutDoors();
    const StationCommand command{u"station.deleteRecordings"_s,
                                 QVariantMap{{u"place"_s, doors()}, {u"confirmation"_s, u"Doors"_s}}, u"id-1"_s};
    const EditDelivery first(*m_station, command);
    const EditDelivery second(*m_station, command);
    QTRY_VERIFY(first.isAnswered() && second.isAnswered());
    QTRY_COMPARE(m_ends.size(), 1);
    const EditDelivery third(*m_station, command);
    QTRY_VERIFY(third.isAnswered());
    QCOMPARE(first.parts().constLast().returnCode, u"0"_s);
    QCOMPARE(second.text(), first.text());
    QCOMPARE(third.text(), first.text());
    QCOMPARE(m_ends.size(), 1);
}

void StationDeletionTest::itIsInTheActivity()
{
    writeDays();
    startWithoutDoors();
    QCOMPARE(remove(doors(), u"Gate"_s).returnCode, u"ConfirmationRefused"_s);
    QCOMPARE(remove(doors(), u"Doors"_s).returnCode, u"0"_s);
    QStringList lines;
    const QVariantList entries = ask(u"station.listActivity"_s).data.toList();
    for (const QVariant &value : entries) {
        const QVariantMap entry = value.toMap();
        lines.append(QStringList{entry.value(u"command"_s).toString(), entry.value(u"subject"_s).toString(),
                                 entry.value(u"returnCode"_s).toString()}
                         .join(u' '));
    }
    QCOMPARE(lines,
             (QStringList{u"station.deleteRecordings %1 0"_s.arg(doors()),
                          u"station.deleteRecordings %1 ConfirmationRefused"_s.arg(doors())}));
    QTRY_COMPARE(m_ends.size(), 1);
}

/// What cannot be kept is not begun.
void StationDeletionTest::aFullDatabaseRefusesIt()
{
    writeDays();
    startWithoutDoors();
    {
        Database database(m_site->dataFolder());
        database.run(u"CREATE TRIGGER full BEFORE INSERT ON recording_deletion"
                     " BEGIN SELECT RAISE(FAIL, 'no space'); END"_s);
    }
    const QString code = remove(doors(), u"Doors"_s).returnCode;
    QVERIFY2(code.startsWith(u"Database"_s), qPrintable(code));
    QCOMPARE(everythingIn(doors()).filter(u".rec"_s).size(), 4);
    QVERIFY(begun().isEmpty());
    Database database(m_site->dataFolder());
    database.run(u"DROP TRIGGER full"_s);
    QCOMPARE(remove(doors(), u"Doors"_s).returnCode, u"0"_s); // nothing is busy
    QTRY_COMPARE(m_ends.size(), 1);
}

QTEST_GUILESS_MAIN(StationDeletionTest)
#include "tst_station_deletion.moc"
