#pragma once

#include "FakeLink.h"
#include "framework/HostFramework.h"
#include "framework/PluginBase.h"

#include <QHash>
#include <QTest>

#include <functional>
#include <memory>
#include <utility>

/// Writes down, as text, everything that the framework tells it.
class FakePlugin : public PluginBase
{
public:
    static inline const QString ownId = QStringLiteral("plug-in");

    struct Reply
    {
        QString command;
        QVariant data;
        void *context;
        QString returnCode;
        bool finish;
        QString relayPath;
    };

    bool InitialPluginBase(QQmlContext *context, void *givenHandle, FrameworkWrapperBase *givenFramework) override
    {
        handle = givenHandle;
        framework = givenFramework;
        return Init(context);
    }

    bool Init(QQmlContext *) override
    {
        if (duringInit)
            duringInit();
        return initSucceeds;
    }

    void EventProcessor(QString event, qint64 one, int two, int three, QVariant data, const QString &source) override
    {
        log.append(QStringLiteral("event %1 %2 from %3").arg(event, data.toString(), source));
        QCOMPARE(one + two + three, 0);
    }

    void CommandProcessor(QString command, QVariant data, void *context, QString returnCode, QString, bool finish,
                          const QString &relayPath) override
    {
        QVERIFY(!sending); // an answer never comes from within SendCommand()
        log.append(QStringLiteral("%1 %2 %3").arg(command, returnCode, finish ? u"last" : u"part"));
        replies.append({command, data, context, returnCode, finish, relayPath});
        if (finish)
            ++lastParts[context];
        const auto react = std::exchange(duringReply, {}); // survives the end of the plug-in
        if (react)
            react();
    }

    void EventProcessorEx(QString, ConfigBase *, qint64, int, int, QVariant, const QString &) override { }
    void CommandProcessorEx(QString, ConfigBase *, QVariant, void *, QString, QString, bool, const QString &) override
    {
    }

    void PluginServerConnected() override { log.append(QStringLiteral("connected")); }

    bool send(const QString &command, const QVariant &data = {}, void *context = nullptr, const QString &relayPath = {},
              const QString &id = ownId)
    {
        sending = true;
        const bool accepted = framework->SendCommand(handle, id, command, data, context, false, relayPath);
        sending = false;
        return accepted;
    }

    FrameworkWrapperBase *framework = nullptr;
    void *handle = nullptr;
    bool initSucceeds = true;
    bool sending = false;
    std::function<void()> duringInit;
    std::function<void()> duringReply; ///< once
    QStringList log;
    QList<Reply> replies;
    QHash<void *, int> lastParts; ///< by context
};

/// The framework between a plug-in and a link that the test plays.
class HostSite
{
protected:
    void setUp()
    {
        m_link = std::make_unique<FakeLink>();
        m_framework = std::make_unique<HostFramework>(*m_link);
        m_plugin = std::make_unique<FakePlugin>();
        QVERIFY(m_framework->attach(m_plugin.get(), FakePlugin::ownId));
        QCOMPARE(m_plugin->log, QStringList{QStringLiteral("connected")});
        m_plugin->log.clear();
    }

    void tearDown()
    {
        m_framework.reset();
        m_plugin.reset();
        m_link.reset();
    }

    std::unique_ptr<FakeLink> m_link;
    std::unique_ptr<HostFramework> m_framework;
    std::unique_ptr<FakePlugin> m_plugin;
};
