#pragma once

#include "HistoryStore.h"
#include "store/DatabaseError.h"

#include <QHash>
#include <QObject>

#include <functional>
#include <memory>
#include <optional>

/// Writes and reads the samples of usage figures. Lives on a thread of its own, where every function is called, with a
/// connection to the database of its own: neither a slow disk nor a long answer holds up the station.
class HistoryWorker : public QObject
{
    Q_OBJECT
public:
    /// @param dataFolder of the station's database
    explicit HistoryWorker(QString dataFolder);
    ~HistoryWorker() override;

    /// Keeps what of @p samples, all of the moment @p now, is missing of the hour and of the day. One sample of each
    /// subject is kept for each of them: the first. While they last, this worker adds to a sample of its own what was
    /// not known before. Where the database fails, what is missing is left to the next call.
    /// @param now seconds since 1970
    void keep(const QList<UsageSample> &samples, qint64 now);

    /// Throws DatabaseError.
    HistoryPage page(const HistoryQuery &query);

signals:
    void kept(); ///< of keep(), also where nothing was missing
    void failed(const DatabaseError &error); ///< of keep()

private:
    struct Written
    {
        UsageSample sample;
        bool isOurs = false; ///< else somebody else kept one, which stays as it is
    };
    struct Step
    {
        qint64 time = -1;
        QHash<HistorySubject, Written> written;
    };

    Database &database();
    void keep(HistoryResolution resolution, const QList<UsageSample> &samples, qint64 now);
    void prune(qint64 now);
    void drop(const DatabaseError &error, qint64 now);

    QString m_dataFolder;
    std::unique_ptr<Database> m_database;
    std::optional<DatabaseError> m_end; // a failure that does not pass
    Step m_hour;
    Step m_day;
    qint64 m_prunedHour = -1;
    qint64 m_warnedHour = -1;
};
