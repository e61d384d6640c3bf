#pragma once

#include "Contract.h"

#include <QList>
#include <QStringList>

/// A framework that writes down which operation of the table was called, and every command. The test plays the server.
class RecordingFramework : public Contract::Framework
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

    void Operation1() override { calls.append(1); }
    bool SendCommand(void *handle, const QString &pluginId, const QString &command, const QVariant &data, void *context,
                     bool flag, const QString &relayPath) override
    {
        calls.append(2);
        sent.append({handle, pluginId, command, data, context, flag, relayPath});
        return accepts;
    }
    void Operation3() override { calls.append(3); }
    void Operation4() override { calls.append(4); }
    void Operation5() override { calls.append(5); }
    void Operation6() override { calls.append(6); }
    void Operation7() override { calls.append(7); }
    void Operation8() override { calls.append(8); }
    void Operation9() override { calls.append(9); }
    void Operation10() override { calls.append(10); }
    void Operation11() override { calls.append(11); }
    void Operation12() override { calls.append(12); }
    void Operation13() override { calls.append(13); }
    QObject *GetPluginObject(void *handle, const QString &pluginId) override
    {
        calls.append(14);
        askedPlugins.append({handle, pluginId});
        return nullptr;
    }

    /// The commands sent since the last call, in order.
    QStringList takeCommands()
    {
        QStringList commands;
        for (const Sent &request : std::as_const(sent))
            commands.append(request.command);
        sent.clear();
        return commands;
    }

    bool accepts = true; ///< what SendCommand answers
    QList<int> calls; ///< places in the table, counted from 1
    QList<Sent> sent;
    QList<std::pair<void *, QString>> askedPlugins;
};
