#include "UsageHistory.h"

#include "HistoryMaps.h"
#include "HistoryWorker.h"
#include "ServerVocabulary.h"
#include "StationData.h"
#include "StationLog.h"
#include "StationVocabulary.h"
#include "usage/UsageSettings.h"

#include <algorithm>
#include <exception>
#include <utility>

UsageHistory::UsageHistory(StationData &data, const UsageSettings &settings, Source source, QObject *parent)
    : QObject(parent)
    , m_data(data)
    , m_source(std::move(source))
    , m_now(settings.now ? settings.now : std::function<QDateTime()>(QDateTime::currentDateTimeUtc))
    , m_timer(this)
{
    connect(&m_timer, &QTimer::timeout, this, &UsageHistory::sample);
    m_timer.start(settings.historyInterval);
}

UsageHistory::~UsageHistory()
{
    m_thread.requestInterruption();
    m_thread.quit();
    m_thread.wait();
}

void UsageHistory::enterInto(CommandTable &table)
{
    table.insert(StationCommandName::readHistory,
                 [this](const QVariant &data, const Answer &answer) { read(data, answer); });
}

qint64 UsageHistory::now() const
{
    return m_now().toSecsSinceEpoch();
}

HistoryWorker &UsageHistory::worker()
{
    if (m_worker)
        return *m_worker;
    m_worker = std::make_unique<HistoryWorker>(m_data.folder());
    m_worker->moveToThread(&m_thread);
    connect(m_worker.get(), &HistoryWorker::kept, this, [this] { m_isKeeping = false; });
    connect(m_worker.get(), &HistoryWorker::failed, this, [this](const DatabaseError &error) {
        m_isKeeping = false;
        if (error.trouble() == DatabaseTrouble::Damaged)
            m_data.note(error);
    });
    // Its database connection ends on the thread that it was made on.
    connect(
        &m_thread, &QThread::finished, &m_thread, [this] { m_worker.reset(); }, Qt::DirectConnection);
    m_thread.setObjectName(QStringLiteral("usage history"));
    m_thread.start();
    return *m_worker;
}

void UsageHistory::sample()
{
    const QList<StationTrouble> troubles = m_data.troubles();
    const bool isLeft = std::any_of(troubles.cbegin(), troubles.cend(), [](const StationTrouble &trouble) {
        return trouble.kind == StationReturnCode::DatabaseDamaged
            || trouble.kind == StationReturnCode::DatabaseReplaced;
    });
    if (m_isKeeping || isLeft || !m_data.isDatabaseThere())
        return;
    std::optional<QList<UsageSample>> samples;
    try {
        samples = m_source();
    } catch (...) {
        qCWarning(stationLog, "Usage history: the volumes could not be looked at.");
    }
    if (!samples)
        return;
    m_isKeeping = true;
    HistoryWorker *const keeper = &worker();
    QMetaObject::invokeMethod(keeper, [keeper, samples = *samples, now = now()] { keeper->keep(samples, now); });
}

void UsageHistory::read(const QVariant &data, const Answer &answer)
{
    const HistoryQuery query = historyQuery(data, now());
    if (!m_data.isDatabaseThere())
        return answer(lastPart(StationReturnCode::NoHistory));
    const auto reply = [this, answer](const HistoryPage &page, const std::exception_ptr &failure) {
        answerFailures(StationCommandName::readHistory, answer, [&] {
            try {
                if (failure)
                    std::rethrow_exception(failure);
            } catch (const DatabaseError &error) {
                m_data.note(error);
                throw;
            }
            if (page.isSubjectKnown)
                answer(lastPart(ReturnCode::Success, historyMap(page)));
            else
                answer(lastPart(StationReturnCode::NoHistory));
        });
    };
    HistoryWorker *const reader = &worker();
    QMetaObject::invokeMethod(reader, [this, reader, query, reply] {
        HistoryPage page;
        std::exception_ptr failure;
        try {
            page = reader->page(query);
        } catch (...) {
            failure = std::current_exception();
        }
        QMetaObject::invokeMethod(
            this, [reply, page, failure] { reply(page, failure); }, Qt::QueuedConnection);
    });
}
