#pragma once

#include "CommandTable.h"
#include "HistoryStore.h"

#include <QDateTime>
#include <QObject>
#include <QThread>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

class HistoryWorker;
class StationData;
struct UsageSettings;

/// What the usage figures were: keeps samples of them, and answers the command "station.readHistory", see
/// docs/station-protocol.md. Lives on the station's thread; the database is written and read on another one, which this
/// object starts and ends.
class UsageHistory : public QObject
{
    Q_OBJECT
public:
    /// The samples of this moment; none while the clock cannot be believed.
    using Source = std::function<std::optional<QList<UsageSample>>()>;

    /// @param data must outlive this object; nothing is kept before it has a database
    UsageHistory(StationData &data, const UsageSettings &settings, Source source, QObject *parent = nullptr);
    ~UsageHistory() override;

    /// The entry refers to this object.
    void enterInto(CommandTable &table);

private:
    void sample();
    void read(const QVariant &data, const Answer &answer);
    HistoryWorker &worker();
    qint64 now() const;

    StationData &m_data;
    Source m_source;
    std::function<QDateTime()> m_now;
    QTimer m_timer;
    bool m_isKeeping = false; // the last samples are not written yet
    QThread m_thread;
    std::unique_ptr<HistoryWorker> m_worker; // lives on m_thread
};
