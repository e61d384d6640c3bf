#pragma once

#include "PlainPlugin.h"
#include "PluginRecordingManagement.h"

/// The plug-in with the plain rules behind its replies and events: they fill the plug-in's own models, so that a page
/// cannot tell the difference. Requests and queries are the plug-in's.
class PlainRecordingManagement : public PluginRecordingManagement
{
public:
    bool InitialPluginBase(QQmlContext *context, void *handle, FrameworkWrapperBase *framework) override;
    /// Handles "getVolume" and "retrieveRecordingGroupTreeModel"; other commands are dropped.
    void CommandProcessor(QString command, QVariant data, void *context, QString returnCode, QString, bool finish,
                          const QString &) override;
    /// Handles "VolumeChanged".
    void EventProcessor(QString event, qint64, int, int, QVariant data, const QString &source) override;

private:
    PlainRules rules();

    FrameworkWrapperBase *m_client = nullptr; // not owned
};
