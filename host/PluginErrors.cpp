#include "PluginErrors.h"

#include "ErrorReceiver.h"

#include <QLibrary>
#include <QThread>

#include <type_traits>

namespace {
constexpr auto setReceiverName = "RecordingTrace_SetErrorReceiver";
constexpr auto pluginModule = "RecordingManagement";
} // namespace

PluginErrors::PluginErrors(const QString &libraryFile)
{
    static_assert(std::is_same_v<SetReceiver, TraceSetErrorReceiver>);
    QLibrary library(libraryFile);
    if (!library.load())
        return;
    m_setReceiver = reinterpret_cast<SetReceiver>(library.resolve(setReceiverName));
    if (m_setReceiver)
        m_setReceiver(receive, this);
}

PluginErrors::~PluginErrors()
{
    if (m_setReceiver)
        m_setReceiver(nullptr, nullptr);
}

void PluginErrors::receive(void *self, const char *module, const char *text)
{
    auto *errors = static_cast<PluginErrors *>(self);
    if (qstrcmp(module, pluginModule) == 0 && QThread::currentThread() == errors->thread())
        errors->take(QString::fromLocal8Bit(text));
}

void PluginErrors::take(const QString &line)
{
    m_fact = line.section(QStringLiteral(", "), 1).trimmed();
    if (m_fact.endsWith(u'.'))
        m_fact.chop(1);
    QMetaObject::invokeMethod(this, &PluginErrors::forget, Qt::QueuedConnection);
}
