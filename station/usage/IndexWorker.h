#pragma once

#include "FolderWatch.h"
#include "PlaceReader.h"
#include "ReadingMark.h"
#include "RemoteListing.h"
#include "store/DatabaseError.h"

#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <chrono>
#include <deque>
#include <memory>
#include <optional>

class Database;
struct UsageSettings;

/// Keeps the index of recorded files in line with the folders: reads all of a place when it comes, and what changes
/// after that. Lives on a thread of its own, where every function is called, with a connection to the database of its
/// own. Works in slices between which the thread's event loop turns; ends with the folder that it reads, or within it,
/// when the thread is asked to end. Where the database fails it says so, opens it anew after a while that grows, and
/// reads everything again.
class IndexWorker : public QObject
{
    Q_OBJECT
public:
    /// @param dataFolder of the station's database
    /// @param mark says which folder is being read
    IndexWorker(QString dataFolder, const UsageSettings &settings, std::shared_ptr<ReadingMark> mark);
    ~IndexWorker() override;

    /// Takes @p places in the place of the ones before, and reads those through that have come, or come back.
    void setPlaces(const QList<IndexedPlace> &places);
    /// Reads all places through; reconciled() with @p ticket follows, or with that of a later call.
    void reconcile(quint64 ticket);
    /// Reads these of the places through, by their numbers; counts as a call of setPlaces() in finished().
    void readPlaces(const QList<qint64> &numbers);
    /// Brings the index in line with @p listing; listingTaken() follows.
    void take(const RemoteListing &listing);
    /// Reads and writes the database no more, as it is damaged; @p reason is what failed() repeats.
    void leaveDatabase(const DatabaseError &reason);

signals:
    void sumsChanged(const PlaceSums &sums);
    /// Of a run through the folders that takes longer: files looked at, files expected (-1: unknown), and whether it
    /// goes on.
    void progressed(qint64 done, qint64 total, bool isRunning);
    void reconciled(quint64 ticket); ///< after sumsChanged(), or failed()
    /// The database could not be read or written; sumsChanged() may have told what was read from it before.
    void failed(const DatabaseError &error);
    /// It could be read and written, and these folders could not be read; not repeated while nothing changes.
    void worked(const QStringList &unreadable);
    /// Nothing more is to be read; @p places counts the calls of setPlaces() and readPlaces() until then.
    void finished(quint64 places);
    /// What take() came to, after sumsChanged(): not kept where the database failed.
    void listingTaken(qint64 place, bool isKept);
    /// A place is not on its file system any more.
    void placeLeft();

private:
    struct Task
    {
        ReadTask read;
        bool isEndOfPlace = false; ///< nothing is read: all of the place was
    };

    void open();
    void enqueuePlace(const IndexedPlace &place);
    void enqueueChanges();
    void enqueueAll();
    void work();
    void giveUp(const DatabaseError &error);
    void workSlice();
    void runTask(const Task &task);
    void finishRun();
    void tellSums();
    void tellProgress(bool isRunning);

    QString m_dataFolder;
    std::chrono::milliseconds m_sliceTime;
    std::chrono::milliseconds m_progressInterval;
    std::shared_ptr<ReadingMark> m_mark;
    std::unique_ptr<Database> m_database;
    std::optional<RecordingIndex> m_index;
    std::optional<PlaceReader> m_reader;
    FolderWatch m_watch;

    QHash<qint64, IndexedPlace> m_places;
    quint64 m_timesPlaced = 0;
    std::deque<Task> m_tasks;
    std::optional<quint64> m_ticket;
    QSet<QString> m_changed; // folders and files
    QTimer m_settle;
    QTimer m_turn;
    QTimer m_retry;
    std::optional<DatabaseError> m_end; // a failure that does not pass
    std::chrono::milliseconds m_pause; // before the next retry
    std::chrono::milliseconds m_firstPause;
    std::optional<QStringList> m_unreadable; // as told; none after a failure

    QElapsedTimer m_run; // valid while there are tasks
    QElapsedTimer m_told; // since sums and progress were told
    PlaceSums m_sums; // as they were told last
    QSet<qint64> m_oldSums; // places read since; another station may have changed the index before this one
    bool m_areAllSumsOld = false;
    qint64 m_readBefore = 0; // files, by earlier runs
    qint64 m_expected = -1;
    bool m_isProgressTold = false;
};
