#pragma once

#include "EditDelivery.h"
#include "FakeVolumes.h"
#include "GroupRequests.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "store/Database.h"

#include <QDateTime>
#include <QDir>
#include <QTemporaryDir>

#include <memory>

/// A station with one volume, "disk" with the folders "a" and "b", a clock of the test's, and everything in a folder
/// that goes with it. It may be replaced by the next one on the same data.
class ServiceStation
{
protected:
    void setUp()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_now = QDateTime::fromString(QStringLiteral("2026-03-20T12:00:00Z"), Qt::ISODate);
        m_records = {};
        for (const char *name : {"data", "disk/a", "disk/b"})
            QDir().mkpath(path(name));
        m_station = makeStation();
    }

    void tearDown()
    {
        m_station.reset();
        m_folder.reset();
    }

    std::unique_ptr<Station> makeStation()
    {
        constexpr qint64 gigabyte = Q_INT64_C(1) << 30;
        const QList<Volume> volumes{{QDir(m_folder->path()).canonicalPath(), QStringLiteral("Disk"), 100 * gigabyte,
                                     50 * gigabyte, false, false}};
        StationSettings settings{path("data"), {}, std::make_unique<FakeVolumes>(volumes)};
        settings.nasTimeLimit = std::chrono::seconds(1);
        settings.records = m_records;
        settings.records.now = [this] { return m_now; };
        return std::make_unique<Station>(std::move(settings));
    }

    void restart()
    {
        m_station.reset(); // two must not share the database here
        m_station = makeStation();
    }

    QString path(const char *name) const
    {
        return QDir(m_folder->path()).canonicalPath() + u'/' + QString::fromLatin1(name);
    }
    QString databaseFile() const { return Database::pathIn(path("data")); }
    /// Done by another who has the database open.
    void runBeside(const char *statement) const { Database(path("data")).run(QString::fromLatin1(statement)); }
    QVariant valueBeside(const char *statement) const
    {
        return Database(path("data")).value(QString::fromLatin1(statement));
    }

    /// What the station says to @p name under @p id; no more than it says at once.
    QString deliver(const QString &id, const QString &name, const QVariant &data = {})
    {
        return EditDelivery(*m_station, {name, data, id, QStringLiteral("test"), QStringLiteral("op")}).text();
    }
    StationReply ask(const QString &name, const QVariant &data = {})
    {
        const EditDelivery delivery(*m_station, {name, data});
        return delivery.isAnswered() ? delivery.parts().constLast() : StationReply{QStringLiteral("no answer"), {}};
    }
    QVariantList activity(const QVariantMap &request = {})
    {
        return ask(StationCommandName::listActivity, request).data.toList();
    }

    QString addGroup(const QString &name)
    {
        const QVariantMap group = groupMap(name, {pathMap(path("disk/a")), pathMap(path("disk/b"))});
        return ask(ServerCommand::addRecordingGroupWithCompleteInfo, group)
            .data.toMap()
            .value(FieldKey::recordingGroupID)
            .toString();
    }
    static QVariantMap camera(const QString &name, int streams = 1)
    {
        return {{FieldKey::camName, name}, {StationKey::streams, streams}};
    }
    /// Everything that edits change in the database.
    QString state()
    {
        QStringList lines;
        const QVariantMap tree{{FieldKey::relayPath, QString()}};
        for (const StationReply &reply :
             {ask(ServerCommand::retrieveRecordingGroupTreeModel, tree), ask(StationCommandName::listCameras),
              ask(ServerCommand::GetNasServers, QString())})
            lines.append(StationClient::replyText(reply));
        return lines.join(u'\n');
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QDateTime m_now;
    RecordSettings m_records;
    std::unique_ptr<Station> m_station;
};
