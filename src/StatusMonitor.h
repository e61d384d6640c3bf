#pragma once

#include <QByteArrayList>
#include <QMetaObject>
#include <QObject>
#include <QPointer>
#include <QString>

/// The client's status monitor, as far as it is there: a missing object or method is passed over in silence.
class StatusMonitor
{
public:
    /// Under which the client's framework knows it.
    static QString pluginId() { return QStringLiteral("{CA5B02D6-F3E0-4FD7-A55C-17F425D5B415}"); }

    /// @param monitor not owned; may be null, and may go away in the middle of a call
    explicit StatusMonitor(QObject *monitor)
        : m_monitor(monitor)
    {
    }

    /// Calls @p method of the monitor, one of StatusMonitorMethod, with strings. It may come back into the plug-in.
    template<typename... Strings>
    void call(const QString &method, const Strings &...arguments) const
    {
        if (!m_monitor)
            return;
        const QByteArray name = method.toLatin1();
        QByteArrayList types;
        types.fill("QString", sizeof...(arguments));
        if (m_monitor->metaObject()->indexOfMethod(name + '(' + types.join(',') + ')') >= 0)
            QMetaObject::invokeMethod(m_monitor.data(), name.constData(), Qt::AutoConnection,
                                      Q_ARG(QString, arguments)...);
    }

private:
    QPointer<QObject> m_monitor;
};
