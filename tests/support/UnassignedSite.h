#pragma once

#include "StationCall.h"
#include "UsageStation.h"

#include <QFileInfo>

/// A station whose group Doors can be removed, so that its recordings belong to no group.
class UnassignedSite : protected UsageStation
{
protected:
    static constexpr qint64 mb = RecordedSite::megabyte;

    void startStation()
    {
        start([](UsageSettings &usage) { usage.progressInterval = std::chrono::milliseconds(1); });
        m_ends.clear();
        QObject::connect(m_station.get(), &Station::eventRaised, m_station.get(), [this](const StationEvent &event) {
            const QVariantMap data = event.data.toMap();
            if (event.name == StationEventName::DeletionProgress && !data.value(StationKey::running).toBool())
                m_ends.append(data);
        });
    }

    void addGroup(const QString &id, const QStringList &paths) { m_site->addGroup(id, paths); }
    void removeGroup(const QString &id)
    {
        {
            Database database(m_site->dataFolder());
            GroupStore(database).remove(id);
        }
        if (m_station)
            m_station->recordingGroupsChanged();
    }

    StationReply ask(const QString &command, const QVariant &data = {})
    {
        return StationCall(*m_station, command, data).reply();
    }
    QVariantList places() { return ask(StationCommandName::listUnassignedRecordings).data.toList(); }
    /// The only place; empty where there is none or several, and before it is counted.
    QVariantMap countedPlace()
    {
        const QVariantList list = places();
        const QVariantMap place = list.size() == 1 ? list.constFirst().toMap() : QVariantMap();
        return place.value(StationKey::counted).toBool() ? place : QVariantMap();
    }
    /// With what group Doors recorded, which is removed then; the station has counted it.
    void startWithoutDoors()
    {
        startStation();
        QTRY_VERIFY(!places().size()); // nothing is lost yet
        removeGroup(QStringLiteral("Doors"));
        QTRY_VERIFY(!countedPlace().isEmpty());
    }

    QString doors() const { return m_path + QStringLiteral("/Doors"); }
    StationReply assign(const QString &place, const QString &groupId)
    {
        return ask(StationCommandName::assignRecordings,
                   QVariantMap{{QStringLiteral("place"), place}, {QStringLiteral("recordingGroupID"), groupId}});
    }
    StationReply remove(const QString &place, const QString &confirmation)
    {
        return ask(StationCommandName::deleteRecordings,
                   QVariantMap{{QStringLiteral("place"), place}, {QStringLiteral("confirmation"), confirmation}});
    }

    /// Folders with a slash behind them, files and links below @p folder, sorted.
    static QStringList everythingIn(const QString &folder)
    {
        QStringList found;
        const QFileInfoList entries =
            QDir(folder).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        for (const QFileInfo &entry : entries) {
            const bool isFolder = entry.isDir() && !entry.isSymLink();
            found.append(entry.fileName() + (isFolder ? QStringLiteral("/") : QString()));
            if (!isFolder)
                continue;
            const QStringList below = everythingIn(entry.filePath());
            for (const QString &name : below)
                found.append(entry.fileName() + u'/' + name);
        }
        found.sort();
        return found;
    }

    QList<QVariantMap> m_ends; ///< of deletions, as they were told
};
