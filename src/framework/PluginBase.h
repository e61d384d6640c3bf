#pragma once

#include <QObject>
#include <QString>
#include <QVariant>

class ConfigBase;
class FrameworkWrapperBase;
class QQmlContext;

/// Base class of every plug-in of the client, found through the interface identifier below.
///
/// This is a binary contract: the order of the virtual operations and of the members must not change. The class carries
/// no meta-object of its own. The framework calls every operation on the thread of the plug-in object, the UI thread.
class PluginBase : public QObject
{
public:
    ~PluginBase() override = default;

    /// Gives the plug-in its QML context, an opaque handle and the framework, then runs Init().
    /// The plug-in owns none of the three. Returns the result of Init().
    virtual bool InitialPluginBase(QQmlContext *context, void *handle, FrameworkWrapperBase *framework) = 0;

    /// Delivers an unsolicited event with its data; the last string names the station that it comes from (relay path).
    virtual void EventProcessor(QString event, qint64, int, int, QVariant data, const QString &source) = 0;

    /// As EventProcessor(), with a configuration.
    virtual void EventProcessorEx(QString event, ConfigBase *config, qint64, int, int, QVariant data,
                                  const QString &source) = 0;

    /// Delivers a reply to a command sent with FrameworkWrapperBase::SendCommand().
    ///
    /// @param context the pointer given with the command; with the last reply its ownership returns to the plug-in
    /// @param returnCode "0" for success
    /// @param finish true on the last reply to a command that is answered in several parts
    virtual void CommandProcessor(QString command, QVariant data, void *context, QString returnCode, QString,
                                  bool finish, const QString &) = 0;

    /// As CommandProcessor(), with a configuration.
    virtual void CommandProcessorEx(QString command, ConfigBase *config, QVariant data, void *context,
                                    QString returnCode, QString, bool finish, const QString &) = 0;

    /// Builds what the plug-in offers to QML. Returns false when that failed.
    virtual bool Init(QQmlContext *context) = 0;

    virtual void Reserved7() { } ///< the framework's own
    virtual void Reserved8() { } ///< the framework's own

    /// Tells the plug-in that the connection to the server is up. May come many times.
    virtual void PluginServerConnected() { }

    virtual void Reserved10() { } ///< the framework's own

protected:
    bool m_reserved = false; ///< the framework's own flag
    QString m_pluginName; ///< for people; set by InitialPluginBase()
    QString m_pluginId; ///< goes with every command; set by InitialPluginBase()
};

Q_DECLARE_INTERFACE(PluginBase, "com.MERIDON.UIFramework.PluginInterface")
