#include "RecordedSite.h"
#include "StationData.h"
#include "usage/FolderReader.h"
#include "usage/FolderWatch.h"
#include "usage/IndexWorker.h"
#include "usage/RecordingPlaces.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

using namespace Qt::StringLiterals;

namespace {
const QDate day(2026, 3, 19);
constexpr int manyFiles = 5000;

/// Runs @p work on a thread that was asked to end before.
void runOnEndingThread(const std::function<void()> &work)
{
    const std::unique_ptr<QThread> thread(QThread::create([&work] {
        QThread::currentThread()->requestInterruption();
        work();
    }));
    thread->start();
    thread->wait();
}
} // namespace

/// The reading of folders into the index, at the moments that only come by chance in a station.
class IndexWorkerTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aPlaceOnAnotherFileSystemKeepsItsIndex();
    void anEndingThreadReadsNoFolderToItsEnd();
    void anEndingThreadBeginsNoReading();
    void aFolderThatReplacesAnotherIsWatched();
    void namesAndSizesAreKeptAsTheyAre();
    void whatAnotherStationIndexedIsTold();

private:
    void makeManyFiles() const;
    void fillIndex();
    qint64 knownFiles();

    std::unique_ptr<RecordedSite> m_site;
    std::unique_ptr<Database> m_database;
    std::unique_ptr<SiteVolumeSource> m_volumes;
    IndexedPlace m_place;
};

void IndexWorkerTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_site = std::make_unique<RecordedSite>();
    const QString path = m_site->makePath(u"rec"_s);
    m_site->addGroup(u"Doors"_s, {path});
    RecordedSite::write(RecordedSite::dayFolder(path, u"Doors"_s, u"Gate"_s, day), u"0001.rec"_s, 3000);
    m_database = std::make_unique<Database>(m_site->dataFolder());
    m_volumes = std::make_unique<SiteVolumeSource>(m_site->volumes());
    StationData data(m_site->dataFolder());
    RecordingPlaces places(data, *m_volumes);
    places.update(GroupStore(*m_database).groups(), {});
    const RecordingPlace place = places.places().constFirst();
    m_place = {place.number, path, place.root(), true, identify(path).device};
}

void IndexWorkerTest::cleanup()
{
    m_database.reset();
    m_site.reset();
}

void IndexWorkerTest::makeManyFiles() const
{
    const QString folder = RecordedSite::dayFolder(m_place.path, u"Doors"_s, u"Gate"_s, day);
    for (int number = 0; number < manyFiles; ++number)
        QVERIFY(QFile(folder + u'/' + QString::number(number)).open(QIODevice::WriteOnly));
}

void IndexWorkerTest::fillIndex()
{
    IndexWorker worker(m_site->dataFolder(), m_site->settings(day).usage, std::make_shared<ReadingMark>());
    const QSignalSpy reconciled(&worker, &IndexWorker::reconciled);
    worker.setPlaces({m_place});
    worker.reconcile(1);
    QTRY_COMPARE(reconciled.size(), 1);
}

qint64 IndexWorkerTest::knownFiles()
{
    return fileCount(RecordingIndex(*m_database).sums());
}

void IndexWorkerTest::aPlaceOnAnotherFileSystemKeepsItsIndex()
{
    fillIndex();
    QCOMPARE(knownFiles(), 1);
    // The folder that a disk was mounted on: empty, and on another file system than the disk.
    QVERIFY(QDir(m_place.root).removeRecursively());
    m_place.device += 1;
    IndexWorker worker(m_site->dataFolder(), m_site->settings(day).usage, std::make_shared<ReadingMark>());
    const QSignalSpy reconciled(&worker, &IndexWorker::reconciled);
    const QSignalSpy left(&worker, &IndexWorker::placeLeft);
    worker.setPlaces({m_place});
    worker.reconcile(1);
    QTRY_COMPARE(reconciled.size(), 1);
    QVERIFY(!left.isEmpty());
    QCOMPARE(knownFiles(), 1);
}

void IndexWorkerTest::anEndingThreadReadsNoFolderToItsEnd()
{
    makeManyFiles();
    const QString folder = RecordedSite::dayFolder(m_place.path, u"Doors"_s, u"Gate"_s, day);
    QCOMPARE(readFiles(folder).sizes.size(), manyFiles + 1);
    RecordedFiles files;
    runOnEndingThread([&] { files = readFiles(folder); });
    QCOMPARE(files.result, ReadResult::Failed);
    QVERIFY2(files.sizes.size() < manyFiles / 2, qPrintable(QString::number(files.sizes.size())));
}

void IndexWorkerTest::anEndingThreadBeginsNoReading()
{
    qsizetype signalsSeen = 0;
    runOnEndingThread([&] {
        IndexWorker worker(m_site->dataFolder(), m_site->settings(day).usage, std::make_shared<ReadingMark>());
        const QSignalSpy sums(&worker, &IndexWorker::sumsChanged);
        const QSignalSpy reconciled(&worker, &IndexWorker::reconciled);
        worker.setPlaces({m_place});
        worker.reconcile(1);
        for (int turn = 0; turn < 100; ++turn)
            QCoreApplication::processEvents();
        signalsSeen = sums.size() + reconciled.size();
    });
    QCOMPARE(signalsSeen, 0);
    QCOMPARE(knownFiles(), 0);
    fillIndex();
    QCOMPARE(knownFiles(), 1);
}

void IndexWorkerTest::aFolderThatReplacesAnotherIsWatched()
{
    FolderWatch watch;
    const QSignalSpy changed(&watch, &FolderWatch::changed);
    watch.watch(m_place.root, identify(m_place.root).inode);
    const QString away = m_site->disk() + u"/away"_s;
    QVERIFY(QDir().rename(m_place.root, away));
    QVERIFY(QDir().mkpath(m_place.root));
    watch.watch(m_place.root, identify(m_place.root).inode);
    RecordedSite::write(m_place.root, u"new"_s, 1);
    QTRY_VERIFY(!changed.isEmpty());
}

void IndexWorkerTest::namesAndSizesAreKeptAsTheyAre()
{
    constexpr qint64 noDouble = (qint64(1) << 53) + 1;
    const DayFolder folder{m_place.number, u"Gate"_s, u"2026-03-19"_s};
    QHash<QString, qint64> files{{u"a\"b\\c'"_s, 0},
                                 {u"\n\t\u0001{}[],:"_s, 1},
                                 {u"\u00fc \U0001F3A5"_s, noDouble},
                                 {u"08"_s, 8},
                                 {u"true"_s, 9},
                                 {u" "_s, 10}};
    RecordingIndex index(*m_database);
    index.apply({{folder, files, {}, {6, 1}}});
    QCOMPARE(index.files(folder), files);

    files[u"08"_s] = noDouble;
    const QStringList removed{u"a\"b\\c'"_s, u"\n\t\u0001{}[],:"_s, u"\u00fc \U0001F3A5"_s};
    for (const QString &name : removed)
        files.remove(name);
    index.apply({{folder, {{u"08"_s, noDouble}}, removed, {3, 1}}});
    QCOMPARE(index.files(folder), files);
    index.apply({{folder, {}, {u"true"_s, u"08"_s, u" "_s}, {0, 0}}});
    QCOMPARE(index.files(folder), (QHash<QString, qint64>()));
    QCOMPARE(index.files({m_place.number, u"Gate"_s, u"2026-03-18"_s}), std::nullopt);
}

void IndexWorkerTest::whatAnotherStationIndexedIsTold()
{
    const DayFolder folder{m_place.number, u"Gate"_s, u"2026-03-19"_s};
    IndexWorker worker(m_site->dataFolder(), m_site->settings(day).usage, std::make_shared<ReadingMark>());
    const QSignalSpy reconciled(&worker, &IndexWorker::reconciled);
    const QSignalSpy told(&worker, &IndexWorker::sumsChanged);
    worker.setPlaces({m_place});
    worker.reconcile(1);
    QTRY_COMPARE(reconciled.size(), 1);
    const auto bytes = [&] { return told.constLast().at(0).value<PlaceSums>().value(m_place.number).days[day].bytes; };
    QCOMPARE(bytes(), 3000);

    // It was quicker: this one finds the index as the folder is.
    RecordingIndex(*m_database).apply({{folder, {{u"0002.rec"_s, 500}}, {}, {2, 3500}}});
    RecordedSite::write(RecordedSite::dayFolder(m_place.path, u"Doors"_s, u"Gate"_s, day), u"0002.rec"_s, 500);
    QTRY_COMPARE(bytes(), 3500);
}

QTEST_GUILESS_MAIN(IndexWorkerTest)
#include "tst_station_index_worker.moc"
