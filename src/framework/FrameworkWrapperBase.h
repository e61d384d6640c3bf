#pragma once

#include <QString>
#include <QVariant>

class QObject;

/// What the client's framework offers to its plug-ins: sending commands and finding other plug-ins.
///
/// This is a binary contract. A plug-in calls the fourteen operations by their position in the table of virtual
/// operations, so their order must not change. The class has no virtual destructor: a plug-in never owns the framework.
/// The operations named Reserved are the framework's own business; the recording plug-in calls none of them.
///
/// All operations are called on the thread of the plug-in object, the UI thread.
class FrameworkWrapperBase
{
public:
    virtual void Reserved1() { } ///< the framework's own

    /// Hands @p command over for transport to the station behind @p relayPath (empty: the directly connected one).
    ///
    /// @param handle the handle that InitialPluginBase() received, unchanged
    /// @param pluginId the identifier of the sending plug-in; replies go to that plug-in
    /// @param data the request, a QVariantMap or a single value; invalid when the command carries none
    /// @param context an object of the sender that comes back unchanged with the reply, or null. Accepting the command
    ///        promises a reply with this context; the framework neither reads nor destroys it
    /// @param flag always false
    /// @return true when the command was accepted. A refused command gets no reply.
    virtual bool SendCommand(void *handle, const QString &pluginId, const QString &command, const QVariant &data,
                             void *context, bool flag, const QString &relayPath) = 0;

    virtual void Reserved3() { } ///< the framework's own
    virtual void Reserved4() { } ///< the framework's own
    virtual void Reserved5() { } ///< the framework's own
    virtual void Reserved6() { } ///< the framework's own
    virtual void Reserved7() { } ///< the framework's own
    virtual void Reserved8() { } ///< the framework's own
    virtual void Reserved9() { } ///< the framework's own
    virtual void Reserved10() { } ///< the framework's own
    virtual void Reserved11() { } ///< the framework's own
    virtual void Reserved12() { } ///< the framework's own
    virtual void Reserved13() { } ///< the framework's own

    /// The object of another plug-in of the client, found by its plug-in identifier; null when it is not loaded.
    /// The framework keeps the ownership.
    virtual QObject *GetPluginObject(void *handle, const QString &pluginId) = 0;

protected:
    ~FrameworkWrapperBase() = default;
};
