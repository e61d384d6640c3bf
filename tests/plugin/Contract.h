#pragma once

#include <QObject>
#include <QPluginLoader>
#include <QString>
#include <QVariant>

#include <memory>

class QQmlContext;

/// The binary contract between a client and the plug-in as a client's developer would write it down a second time.
/// Nothing here comes from src/framework: where the two disagree, a test fails.
namespace Contract {

inline constexpr auto interfaceId = "com.MERIDON.UIFramework.PluginInterface";
inline constexpr auto pluginId = "8F33495A224D49ABB8F9E875984A1443";

/// The plug-in's side. Each operation is called by its place in the table of virtual operations.
class Plugin : public QObject
{
public:
    virtual bool InitialPluginBase(QQmlContext *context, void *handle, void *framework) = 0;
    virtual void EventProcessor(QString event, qint64, int, int, QVariant data, const QString &source) = 0;
    virtual void EventProcessorEx(QString event, void *config, qint64, int, int, QVariant data,
                                  const QString &source) = 0;
    virtual void CommandProcessor(QString command, QVariant data, void *context, QString returnCode, QString,
                                  bool finish, const QString &) = 0;
    virtual void CommandProcessorEx(QString command, void *config, QVariant data, void *context, QString returnCode,
                                    QString, bool finish, const QString &) = 0;
    virtual bool Init(QQmlContext *context) = 0;
    virtual void Operation7() = 0;
    virtual void Operation8() = 0;
    virtual void PluginServerConnected() = 0;
    virtual void Operation10() = 0;

    bool flag;
    QString name;
    QString id;
};

/// The framework's side: fourteen operations, no destructor among them.
class Framework
{
public:
    virtual void Operation1() = 0;
    virtual bool SendCommand(void *handle, const QString &pluginId, const QString &command, const QVariant &data,
                             void *context, bool flag, const QString &relayPath) = 0;
    virtual void Operation3() = 0;
    virtual void Operation4() = 0;
    virtual void Operation5() = 0;
    virtual void Operation6() = 0;
    virtual void Operation7() = 0;
    virtual void Operation8() = 0;
    virtual void Operation9() = 0;
    virtual void Operation10() = 0;
    virtual void Operation11() = 0;
    virtual void Operation12() = 0;
    virtual void Operation13() = 0;
    virtual QObject *GetPluginObject(void *handle, const QString &pluginId) = 0;

protected:
    ~Framework() = default;
};

/// The plug-in's object, made by the built library at the path RECORDING_PLUGIN_FILE; null when that failed. Whoever
/// asks owns it, and only one lives at a time.
inline std::unique_ptr<Plugin> createPlugin()
{
    QPluginLoader loader(QStringLiteral(RECORDING_PLUGIN_FILE));
    return std::unique_ptr<Plugin>(reinterpret_cast<Plugin *>(loader.instance()));
}

} // namespace Contract
