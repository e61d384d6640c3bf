#pragma once

#include "PluginHost.h"

#include <QObject>
#include <QString>

/// Why the plug-in said no: the fact of its last error line, as the trace library hands it on. The trace library that
/// is built with this project does that, whatever its level is; with another one, or without any, nothing is known.
///
/// Lives on the UI thread, one at a time: a new one hears in place of the one before. No line holds a password.
class PluginErrors : public QObject
{
    Q_OBJECT
public:
    /// @param libraryFile the trace library; by its name it is the one that was loaded for the plug-in
    explicit PluginErrors(const QString &libraryFile = PluginHost::traceLibraryName());
    ~PluginErrors() override;

    /// "host is empty": what the last error line says behind the function's name, without a full stop. Empty where none
    /// was written since the event loop came round or forget() was called: ask right after the call that failed.
    QString lastFact() const { return m_fact; }
    /// Makes lastFact() empty.
    void forget() { m_fact.clear(); }

private:
    using SetReceiver = void (*)(void (*)(void *, const char *, const char *), void *);

    static void receive(void *self, const char *module, const char *text);
    void take(const QString &line);

    SetReceiver m_setReceiver = nullptr; // null: the library has no such function
    QString m_fact;
};
