#pragma once

#include "FakeFramework.h"
#include "FakeStationPlugin.h"
#include "PluginRecordingManagement.h"

#include <QVariantList>
#include <QVariantMap>
#include <QtQml>

#include <utility>

/// The plug-in between a framework and a station plug-in.
class PluginSite
{
public:
    /// @param filled whether models and cache have rows
    explicit PluginSite(bool filled)
    {
        framework.sent.reserve(16); // the test lets memory run out
        framework.askedPlugins.reserve(16);
        framework.pluginObjects.insert(FakeStationPlugin::pluginId, &m_station);
        plugin.InitialPluginBase(nullptr, nullptr, &framework);
        if (filled)
            fill();
    }

    PluginSite(const PluginSite &) = delete;
    PluginSite &operator=(const PluginSite &) = delete;
    ~PluginSite() { qmlClearTypeRegistrations(); } // of InitialPluginBase()

    /// Answers what was sent, which gives its contexts back.
    void reply(const QVariant &data = {})
    {
        const QList<FakeFramework::Sent> sent = std::exchange(framework.sent, {});
        framework.sent.reserve(16);
        for (const FakeFramework::Sent &request : sent)
            plugin.CommandProcessor(request.command, data, request.context, "0", {}, true, {});
    }

    FakeFramework framework;
    PluginRecordingManagement plugin;

private:
    void fill()
    {
        const QVariantMap member{{"camName", "Gate"}, {"streamIndex", 2}, {"enableTimeShift", true}};
        const QVariantMap group{
            {"recordingGroupID", "{1}"},
            {"recordingGroupName", "North"},
            {"relayPath", "st1"},
            {"recordingGroupPathList", QVariantList{"D:/Rec"}},
            {"reserveSpace", QVariantList{2048}},
            {"recordingGroupNASPathList", QVariantList{"//nas/share"}},
            {"recordingGroupRecoveryPathList", QVariantList{"E:/Rec"}},
            {"recordingGroupReservedTime", 60},
            {"recordingGroupMemberList", QVariantList{member}},
        };
        const QVariantMap volume{{"volumePath", "D:/"}, {"volumeSize", 4096}, {"volumeAvailableSize", 1024}};
        plugin.getVolume();
        reply(QVariantList{volume});
        plugin.getRecordingGroup();
        reply(QVariantList{group});
        plugin.retrieveRecordingGroupTreeModel();
        reply(QVariantList{group});
        plugin.getStorageUsageModel("");
        QVariantMap usage = volume;
        usage.insert({{"recordingGroupID", "{1}"}, {"recordingGroupName", "North"}, {"recordingPath", "D:/Rec"}});
        plugin.EventProcessor("VolumeChanged", 0, 0, 0, QVariantList{usage}, "");
    }

    FakeStationPlugin m_station;
};
