#pragma once

#include "FakeFramework.h"
#include "HeapWatch.h"
#include "ModelText.h"
#include "PluginRecordingManagement.h"
#include "SignalLog.h"
#include "TraceRecorder.h"

#include <QAbstractItemModelTester>
#include <QStandardItemModel>
#include <QTest>

#include <memory>

/// The plug-in with its NAS servers; contexts and signals are watched.
class NasServers
{
protected:
    using Plugin = PluginRecordingManagement;

    void setUp()
    {
        m_framework = {};
        m_framework.duringSend = [](const FakeFramework::Sent &sent) { watchAllocation(sent.context); };
        m_plugin = std::make_unique<Plugin>();
        QVERIFY(m_plugin->InitialPluginBase(nullptr, nullptr, &m_framework));
        m_model = qobject_cast<QStandardItemModel *>(m_plugin->getNASServerModel());
        QVERIFY(m_model);
        m_tester =
            std::make_unique<QAbstractItemModelTester>(m_model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        m_log = std::make_unique<SignalLog>(m_plugin.get(), [this] {
            return modelText(*m_model, {257, 258}).join(';');
        });
        takeTraceLines();
    }

    static QVariantMap server(const QString &id, const QString &host)
    {
        return {{"id", id}, {"host", host}, {"logonDomain", "D"}, {"userName", "U"}, {"password", "P"}};
    }

    void reply(const QString &command, const QString &code, const QVariant &data = {}, void *context = nullptr)
    {
        m_plugin->CommandProcessor(command, data, context, code, {}, true, {});
    }

    /// That of the command sent last, or of another one.
    void *sentContext(int index = -1) const
    {
        return index < 0 ? m_framework.sent.constLast().context : m_framework.sent.at(index).context;
    }

    void fill(const QVariantList &servers)
    {
        reply("GetNasServers", "0", servers);
        m_log->take();
    }

    QStringList rows() const { return modelText(*m_model, {257, 258, 259, 260, 261}); }

    FakeFramework m_framework;
    std::unique_ptr<Plugin> m_plugin;
    QStandardItemModel *m_model = nullptr;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
    std::unique_ptr<SignalLog> m_log;
};
