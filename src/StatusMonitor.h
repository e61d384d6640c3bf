#pragma once

#include <QByteArrayList>
#include <QMetaMethod>
#include <QObject>
#include <QPointer>
#include <QString>

/// Methods of the client's status monitor; every argument is a string.
namespace StatusMonitorMethod {
extern const QString monitorVolumeStatus;
extern const QString removeVolumeError;
extern const QString monitorInsufficientRecordingDays;
extern const QString monitorSufficientRecordingGroup;
} // namespace StatusMonitorMethod

/// The client's status monitor. A call does nothing where the object or the method is missing.
class StatusMonitor
{
public:
    /// One of its methods, looked up once.
    class Method
    {
    public:
        /// Calls it with as many strings as it was looked up for. The monitor may call the plug-in again from there.
        template<typename... Strings>
        void call(const Strings &...arguments) const
        {
            if (m_monitor && m_method.isValid())
                m_method.invoke(m_monitor.data(), Qt::AutoConnection, Q_ARG(QString, arguments)...);
        }

    private:
        friend class StatusMonitor;

        QPointer<QObject> m_monitor; // may be destroyed during a call
        QMetaMethod m_method;
    };

    /// Its identifier in the client's framework.
    static QString pluginId() { return QStringLiteral("{CA5B02D6-F3E0-4FD7-A55C-17F425D5B415}"); }

    /// @param monitor not owned; may be null, and may be destroyed during a call
    explicit StatusMonitor(QObject *monitor)
        : m_monitor(monitor)
    {
    }

    /// The method @p name, one of StatusMonitorMethod, that takes @p strings strings.
    Method method(const QString &name, int strings) const
    {
        Method method;
        if (!m_monitor)
            return method;
        QByteArrayList types;
        types.fill("QString", strings);
        const QMetaObject *const meta = m_monitor->metaObject();
        method.m_monitor = m_monitor;
        method.m_method = meta->method(meta->indexOfMethod(name.toLatin1() + '(' + types.join(',') + ')'));
        return method;
    }

private:
    QPointer<QObject> m_monitor;
};
