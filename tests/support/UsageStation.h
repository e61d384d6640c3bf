#pragma once

#include "RecordedSite.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"

#include <QDate>
#include <QTest>

#include <functional>
#include <memory>

/// A station over real folders, and what it tells of them: one group, Doors, that records to "rec".
class UsageStation
{
protected:
    static inline const QDate today{2026, 3, 20};
    static QDate daysAgo(int days) { return today.addDays(-days); }

    void setUp()
    {
        m_site = std::make_unique<RecordedSite>();
        m_path = m_site->makePath(QStringLiteral("rec"));
        m_site->addGroup(QStringLiteral("Doors"), {m_path});
    }

    void tearDown()
    {
        m_station.reset();
        m_site.reset();
        m_events.clear();
        m_progress.clear();
    }

    void start(const std::function<void(UsageSettings &)> &adjust = {})
    {
        StationSettings settings = m_site->settings(today);
        if (adjust)
            adjust(settings.usage);
        m_station = std::make_unique<Station>(std::move(settings));
        QObject::connect(m_station.get(), &Station::eventRaised, m_station.get(), [this](const StationEvent &event) {
            if (event.name == ServerEvent::VolumeChanged)
                m_events.append(event.data.toList());
            else if (event.name == StationEventName::StorageScanProgress)
                m_progress.append(event.data.toMap());
        });
    }

    /// The folder of that day, of a camera of the group.
    QString day(int ago, const QString &camera = QStringLiteral("Gate")) const
    {
        return RecordedSite::dayFolder(m_path, QStringLiteral("Doors"), camera, daysAgo(ago));
    }

    QVariantList lastEvent() const { return m_events.isEmpty() ? QVariantList() : m_events.constLast(); }

    /// Of the last event: group, days, bytes of a day, KB and free KB; the entries behind each other.
    QString lines() const
    {
        QStringList text;
        const QVariantList entries = lastEvent();
        for (const QVariant &value : entries) {
            const QVariantMap entry = value.toMap();
            text.append(QStringLiteral("%1 %2 %3 %4 %5")
                            .arg(entry[QStringLiteral("recordingGroupID")].toString(),
                                 entry[QStringLiteral("volumeRecordedDays")].toString(),
                                 entry[QStringLiteral("volumeOneDayUsage")].toString(),
                                 entry[QStringLiteral("volumeSize")].toString(),
                                 entry[QStringLiteral("volumeAvailableSize")].toString()));
        }
        return text.join(QStringLiteral(" | "));
    }

    void reload()
    {
        QString code;
        m_station->handle({ServerCommand::reloadStorageUsageInfo, {}},
                          [&code](const StationReply &reply) { code = reply.returnCode; });
        QCOMPARE(code, QStringLiteral("0"));
    }

    std::unique_ptr<RecordedSite> m_site;
    std::unique_ptr<Station> m_station;
    QString m_path;
    QList<QVariantList> m_events; ///< of VolumeChanged
    QList<QVariantMap> m_progress;
};
