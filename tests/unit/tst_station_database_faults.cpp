#include "groups/GroupStore.h"
#include "nas/NasStore.h"
#include "store/Database.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

/// A database that is not as the station left it: nothing of that is taken for an empty station, or written over.
class StationDatabaseFaultsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void whatIsMadeIsForItsUserAlone();
    void aDatabaseThatWentAwayIsMissed();
    void anEmptyFileIsNoNewStation();
    void whatIsNoFileIsRefused();
    void aDatabaseWithoutTablesIsNoNewStation();
    void aTableThatIsMissingIsMissed();
    void anOddVersionIsRefused_data();
    void anOddVersionIsRefused();
    void aTruncatedFileIsDamaged();
    void noDamagedPageCutsAReading();
    void damageThatReadsAsDataIsFound();
    void aDatabaseThatWasLeftOpenIsChecked();
    void aDamagedDatabaseIsNotWritten();
    void entriesOfGroupsThatAreGoneAreLeftOut();
    void aReplacedDatabaseTakesNoEdit_data();
    void aReplacedDatabaseTakesNoEdit();

private:
    QString folder() const { return m_folder->filePath(u"data"_s); }
    QString file() const { return Database::pathIn(folder()); }
    void makeDatabase(const QString &folder, int groups) const;
    std::optional<DatabaseTrouble> troubleOf(const std::function<void()> &action) const;
    std::optional<DatabaseTrouble> opening() const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {
constexpr qint64 pageSize = 4096;

RecordingGroup group(int number)
{
    RecordingGroup group;
    group.id = u"{%1}"_s.arg(number);
    group.name = u"Group %1 with a name that takes some room in its page"_s.arg(number);
    group.folder = u"group-%1"_s.arg(number);
    group.paths.append({u"/srv/recordings/of/the/group/number/%1"_s.arg(number), PathKind::Local, 2048, false});
    group.nodeIds.append(u"node %1"_s.arg(number));
    return group;
}

QByteArray contentOf(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool write(const QString &name, const QByteArray &content)
{
    QFile file(name);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

/// Runs @p statement as the database's own tool would, with foreign keys off.
bool runAlone(const QString &file, const QString &statement)
{
    const QString name = u"alone"_s;
    bool isDone = false;
    {
        QSqlDatabase connection = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        connection.setDatabaseName(file);
        isDone = connection.open() && QSqlQuery(connection).exec(statement);
        connection.close();
    }
    QSqlDatabase::removeDatabase(name);
    return isDone;
}

mode_t modeOf(const QString &path)
{
    struct stat facts = {};
    return stat(QFile::encodeName(path).constData(), &facts) == 0 ? facts.st_mode & 07777 : 0;
}
} // namespace

void StationDatabaseFaultsTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

void StationDatabaseFaultsTest::makeDatabase(const QString &folder, int groups) const
{
    Database database(folder);
    Transaction transaction(database);
    for (int number = 0; number < groups; ++number)
        GroupStore(database).insert(group(number));
    transaction.commit();
}

std::optional<DatabaseTrouble> StationDatabaseFaultsTest::troubleOf(const std::function<void()> &action) const
{
    try {
        action();
    } catch (const DatabaseError &error) {
        return error.trouble();
    }
    return {};
}

std::optional<DatabaseTrouble> StationDatabaseFaultsTest::opening() const
{
    return troubleOf([this] { const Database database(folder()); });
}

void StationDatabaseFaultsTest::whatIsMadeIsForItsUserAlone()
{
    const mode_t before = umask(0);
    {
        Database database(folder());
        Transaction transaction(database);
        GroupStore(database).insert(group(1));
        transaction.commit();
        for (const QString &name : {u"station.db"_s, u"station.db-wal"_s, u"station.db-shm"_s, u"station-data"_s})
            QCOMPARE(modeOf(folder() + u'/' + name), mode_t(0600));
    }
    umask(before);
    QCOMPARE(modeOf(folder()), mode_t(0700));
    QCOMPARE(QDir(folder()).entryList(QDir::Files), QStringList({u"station-data"_s, u"station.db"_s}));
}

void StationDatabaseFaultsTest::aDatabaseThatWentAwayIsMissed()
{
    QVERIFY(!Database::isIn(folder()));
    makeDatabase(folder(), 1);
    QVERIFY(QFile::remove(file()));
    QVERIFY(Database::isIn(folder()));
    QCOMPARE(opening(), DatabaseTrouble::Missing);
    QVERIFY(!QFile::exists(file()));
}

void StationDatabaseFaultsTest::anEmptyFileIsNoNewStation()
{
    QVERIFY(QDir().mkpath(folder()) && write(file(), {}));
    QCOMPARE(opening(), DatabaseTrouble::Damaged);
    QCOMPARE(QFileInfo(file()).size(), 0);
}

void StationDatabaseFaultsTest::whatIsNoFileIsRefused()
{
    QVERIFY(QDir().mkpath(file()));
    QCOMPARE(opening(), DatabaseTrouble::Damaged);
    QVERIFY(QDir().rmdir(file()) && QFile::link(m_folder->filePath(u"elsewhere"_s), file()));
    QCOMPARE(opening(), DatabaseTrouble::Damaged);
    QVERIFY(!QFile::exists(m_folder->filePath(u"elsewhere"_s)));
}

/// As ".recover" leaves it where nothing could be read.
void StationDatabaseFaultsTest::aDatabaseWithoutTablesIsNoNewStation()
{
    QVERIFY(QDir().mkpath(folder()) && runAlone(file(), u"CREATE TABLE other (number INTEGER)"_s));
    QVERIFY(runAlone(file(), u"DROP TABLE other"_s));
    QCOMPARE(opening(), DatabaseTrouble::Damaged);
    QCOMPARE(opening(), DatabaseTrouble::Damaged); // the first one made no tables
}

void StationDatabaseFaultsTest::aTableThatIsMissingIsMissed()
{
    for (const QString &table : {u"camera"_s, u"nas_server"_s, u"recorded_day"_s}) {
        makeDatabase(folder(), 1);
        QVERIFY(runAlone(file(), u"DROP TABLE "_s + table));
        QVERIFY2(opening(), qPrintable(table));
        QVERIFY(QDir(folder()).removeRecursively());
    }
}

void StationDatabaseFaultsTest::anOddVersionIsRefused_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<DatabaseTrouble>("trouble");
    QTest::newRow("below zero") << -1 << DatabaseTrouble::Damaged;
    QTest::newRow("far below zero") << -2147483647 << DatabaseTrouble::Damaged;
    QTest::newRow("none") << 0 << DatabaseTrouble::Damaged;
    QTest::newRow("newer") << 1000 << DatabaseTrouble::Newer;
}

void StationDatabaseFaultsTest::anOddVersionIsRefused()
{
    QFETCH(const int, version);
    QFETCH(const DatabaseTrouble, trouble);
    makeDatabase(folder(), 1);
    QVERIFY(runAlone(file(), u"PRAGMA user_version = %1"_s.arg(version)));
    const QByteArray before = contentOf(file());
    QCOMPARE(opening(), trouble);
    QCOMPARE(contentOf(file()), before);
}

void StationDatabaseFaultsTest::aTruncatedFileIsDamaged()
{
    makeDatabase(folder(), 100);
    const QByteArray whole = contentOf(file());
    for (const qint64 size : {whole.size() / 2, pageSize, Q_INT64_C(100), Q_INT64_C(10), Q_INT64_C(1)}) {
        QVERIFY(write(file(), whole.left(size)));
        QCOMPARE(troubleOf([this] {
                     Database database(folder());
                     static_cast<void>(GroupStore(database).groups());
                 }),
                 DatabaseTrouble::Damaged);
        QCOMPARE(contentOf(file()), whole.left(size));
    }
}

void StationDatabaseFaultsTest::noDamagedPageCutsAReading()
{
    constexpr int groups = 400;
    makeDatabase(folder(), groups);
    const QByteArray whole = contentOf(file());
    int refused = 0;
    for (qint64 page = 1; page < whole.size() / pageSize; ++page) {
        QByteArray damaged = whole;
        damaged.replace(page * pageSize, pageSize, QByteArray(pageSize, '\xa5'));
        QVERIFY(write(file(), damaged));
        const auto readAll = [this, groups] {
            Database database(folder());
            const QList<RecordingGroup> read = GroupStore(database).groups();
            QCOMPARE(read.size(), groups);
            QVERIFY(std::all_of(read.begin(), read.end(), [](const RecordingGroup &one) {
                return one.paths.size() == 1 && one.nodeIds.size() == 1;
            }));
            QVERIFY(NasStore(database).servers().isEmpty() && GroupStore(database).cameras().isEmpty());
        };
        const std::optional<DatabaseTrouble> trouble = troubleOf(readAll);
        if (QTest::currentTestFailed())
            return;
        if (trouble) {
            QCOMPARE(trouble, DatabaseTrouble::Damaged);
            ++refused;
        }
    }
    QVERIFY(refused > 10);
}

/// A page whose second half was lost is still a page, with rows that are not the station's. The last end was clean.
void StationDatabaseFaultsTest::damageThatReadsAsDataIsFound()
{
    makeDatabase(folder(), 20);
    {
        Database database(folder());
        database.run(u"INSERT INTO camera (name, streams) VALUES ('Yard', 1), ('Gate', 2)"_s);
    }
    const QByteArray whole = contentOf(file());
    int found = 0;
    for (qint64 page = 1; page < whole.size() / pageSize; ++page) {
        QByteArray damaged = whole;
        damaged.replace(page * pageSize + pageSize / 2, pageSize / 2, QByteArray(pageSize / 2, '\0'));
        if (damaged == whole)
            continue;
        QVERIFY(write(file(), damaged));
        const std::optional<DatabaseTrouble> trouble = troubleOf([this] {
            Database database(folder());
            const Transaction transaction(database);
        });
        QVERIFY2(trouble == DatabaseTrouble::Damaged, qPrintable(u"page %1"_s.arg(page)));
        ++found;
    }
    QVERIFY(found >= 5);
}

/// Stands in for a process that was killed: its write-ahead file stays.
void StationDatabaseFaultsTest::aDatabaseThatWasLeftOpenIsChecked()
{
    const QString aside = m_folder->filePath(u"left"_s);
    QVERIFY(QDir().mkpath(aside));
    {
        makeDatabase(folder(), 400);
        Database database(folder());
        Transaction transaction(database);
        GroupStore(database).insert(group(1000));
        transaction.commit();
        for (const QString &name : {u"station.db"_s, u"station.db-wal"_s, u"station-data"_s})
            QVERIFY(QFile::copy(folder() + u'/' + name, aside + u'/' + name));
    }
    const QString copied = Database::pathIn(aside);
    QVERIFY(troubleOf([&aside] { QVERIFY(!Database(aside).limitation()); }) == std::nullopt);
    QCOMPARE(QFileInfo(copied + u"-wal"_s).exists(), false); // it was closed now

    // The same with a damaged page in an index, which no reading of the groups meets.
    QByteArray content = contentOf(copied);
    const qint64 last = content.size() / pageSize - 1;
    content.replace(last * pageSize, 8, QByteArray(8, '\xa5'));
    QVERIFY(write(copied, content) && write(copied + u"-wal"_s, QByteArray(32, '\0')));
    Database database(aside);
    QVERIFY(database.limitation());
    QCOMPARE(database.limitation()->trouble(), DatabaseTrouble::Damaged);
    QCOMPARE(troubleOf([&database] { const Transaction transaction(database); }), DatabaseTrouble::Damaged);
}

void StationDatabaseFaultsTest::aDamagedDatabaseIsNotWritten()
{
    makeDatabase(folder(), 1);
    Database database(folder());
    database.refuseWriting({DatabaseTrouble::Damaged, u"a page"_s});
    QCOMPARE(troubleOf([&database] { const Transaction transaction(database); }), DatabaseTrouble::Damaged);
    QCOMPARE(GroupStore(database).groups().size(), 1);
}

void StationDatabaseFaultsTest::entriesOfGroupsThatAreGoneAreLeftOut()
{
    makeDatabase(folder(), 3);
    QVERIFY(runAlone(file(), u"DELETE FROM recording_group WHERE id = '{1}'"_s));
    {
        Database database(folder());
        const QList<RecordingGroup> left = GroupStore(database).groups();
        QCOMPARE(left.size(), 2);
        QCOMPARE(left.at(0).paths.size(), 1);
        QCOMPARE(left.at(1).paths.at(0).path, u"/srv/recordings/of/the/group/number/2"_s);
    }
    QVERIFY(runAlone(file(), u"DELETE FROM recording_group"_s));
    Database database(folder());
    QVERIFY(GroupStore(database).groups().isEmpty());
}

void StationDatabaseFaultsTest::aReplacedDatabaseTakesNoEdit_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("deleted") << 0;
    QTest::newRow("folder moved") << 1;
    QTest::newRow("another file in its place") << 2;
    QTest::newRow("written over") << 3;
    QTest::newRow("written over with an older copy of it") << 4;
    QTest::newRow("write-ahead file deleted") << 5;
    QTest::newRow("folder deleted") << 6;
}

void StationDatabaseFaultsTest::aReplacedDatabaseTakesNoEdit()
{
    QFETCH(const int, way);
    const QString other = m_folder->filePath(u"other"_s);
    makeDatabase(other, 5);
    const QByteArray otherContent = contentOf(Database::pathIn(other));
    makeDatabase(folder(), 3);
    const QByteArray olderContent = contentOf(file());
    makeDatabase(m_folder->filePath(u"third"_s), 1);
    {
        Database longer(folder());
        Transaction transaction(longer);
        for (int number = 100; number < 300; ++number)
            GroupStore(longer).insert(group(number));
        transaction.commit();
    }
    QByteArray put;
    {
        Database database(folder());
        switch (way) {
        case 0:
            QVERIFY(QFile::remove(file()));
            break;
        case 1:
            QVERIFY(QDir().rename(folder(), m_folder->filePath(u"moved"_s)));
            break;
        case 2:
            QVERIFY(QFile::remove(file()) && write(file(), put = otherContent));
            break;
        case 3:
            QVERIFY(write(file(), put = otherContent));
            break;
        case 4:
            QVERIFY(write(file(), put = olderContent));
            break;
        case 5:
            QVERIFY(QFile::remove(file() + u"-wal"_s));
            break;
        default:
            QVERIFY(QDir(folder()).removeRecursively());
        }
        QCOMPARE(troubleOf([&database] {
                     Transaction transaction(database);
                     GroupStore(database).insert(group(2000));
                     transaction.commit();
                 }),
                 DatabaseTrouble::Replaced);
    }
    if (put.isEmpty())
        return;
    QCOMPARE(contentOf(file()), put);
    Database again(folder());
    QCOMPARE(GroupStore(again).groups().size(), way == 4 ? 3 : 5);
}

QTEST_GUILESS_MAIN(StationDatabaseFaultsTest)
#include "tst_station_database_faults.moc"
