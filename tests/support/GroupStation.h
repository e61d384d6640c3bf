#pragma once

#include "GroupRequests.h"
#include "StationClient.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <utility>

/// A station with two volumes, "disk" of 10 GB and "small" of 2 GB, and two cameras, in a folder that goes with it.
class GroupStation
{
protected:
    static inline const QString unknownId = QStringLiteral("{00000000-0000-0000-0000-000000000000}");

    /// The folders are "disk/a", "disk/b" and "small/c"; the cameras Yard, with 3 streams, and Gate, with 1.
    void setUp()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        for (const char *name : {"data", "disk/a", "disk/b", "small/c"})
            QVERIFY(QDir().mkpath(path(QString::fromLatin1(name))));
        m_station = makeStation();
        for (const auto &[name, streams] : {std::pair("Yard", 3), std::pair("Gate", 1)}) {
            const QVariantMap camera{{QStringLiteral("camName"), QString::fromLatin1(name)},
                                     {QStringLiteral("streams"), streams}};
            QCOMPARE(m_station->text(QStringLiteral("station.addCamera"), camera), QStringLiteral("0 invalid"));
        }
    }

    void tearDown()
    {
        m_station.reset();
        m_folder.reset();
    }

    /// Below the folder of the test.
    QString path(const QString &name) const { return m_folder->filePath(name); }

    /// Another one on the same database.
    std::unique_ptr<StationClient> makeStation(const QString &relayPath = {}) const
    {
        constexpr qint64 gigabyte = Q_INT64_C(1) << 30;
        const QList<Volume> volumes{
            {path(QStringLiteral("disk")), QStringLiteral("Disk"), 10 * gigabyte, gigabyte, false, false},
            {path(QStringLiteral("small")), QStringLiteral("Small"), 2 * gigabyte, gigabyte, false, false},
        };
        return std::make_unique<StationClient>(path(QStringLiteral("data")), volumes, relayPath);
    }

    /// Adds a group; its id, or what the station says instead.
    QString add(const QVariantMap &group)
    {
        const StationReply reply = m_station->ask(QStringLiteral("addRecordingGroupWithCompleteInfo"), group);
        const QString id = reply.data.toMap().value(QStringLiteral("recordingGroupID")).toString();
        return id.isEmpty() ? StationClient::replyText(reply) : id;
    }

    QString update(const QString &id, const QVariantMap &parts)
    {
        return m_station->text(QStringLiteral("updateRecordingGroup"), updateMap(id, parts));
    }

    /// Every group with everything.
    QString state() { return m_station->text(QStringLiteral("retrieveRecordingGroupTreeModel"), ownTree()); }
    static QVariantMap ownTree() { return {{QStringLiteral("relayPath"), QString()}}; }

    static bool makeFile(const QString &path, qint64 size)
    {
        QFile file(path);
        return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) && file.resize(size);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<StationClient> m_station;
};
