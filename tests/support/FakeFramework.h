#pragma once

#include "framework/FrameworkWrapperBase.h"

#include <QHash>
#include <QList>

#include <functional>

/// A framework that records what the plug-in sends. The test plays the server: it calls CommandProcessor itself.
class FakeFramework final : public FrameworkWrapperBase
{
public:
    struct Sent
    {
        void *handle;
        QString pluginId;
        QString command;
        QVariant data;
        void *context;
        bool flag;
        QString relayPath;
    };

    bool SendCommand(void *handle, const QString &pluginId, const QString &command, const QVariant &data, void *context,
                     bool flag, const QString &relayPath) override;
    QObject *GetPluginObject(void *handle, const QString &pluginId) override;

    bool accepts = true; ///< what SendCommand answers
    std::function<void(const Sent &)> duringSend; ///< runs inside SendCommand, after recording
    QList<Sent> sent;
    QHash<QString, QObject *> pluginObjects; ///< not owned
    QList<QString> askedPlugins; ///< every identifier that GetPluginObject was asked for
    void *lastHandle = nullptr; ///< of GetPluginObject
};
