#include "FakeFramework.h"

bool FakeFramework::SendCommand(void *handle, const QString &pluginId, const QString &command, const QVariant &data,
                                void *context, bool flag, const QString &relayPath)
{
    sent.append({handle, pluginId, command, data, context, flag, relayPath});
    if (duringSend)
        duringSend(sent.constLast());
    return accepts;
}

QObject *FakeFramework::GetPluginObject(void *handle, const QString &pluginId)
{
    lastHandle = handle;
    askedPlugins.append(pluginId);
    return pluginObjects.value(pluginId);
}
