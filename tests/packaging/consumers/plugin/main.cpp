#include <framework/FrameworkWrapperBase.h>
#include <framework/PluginBase.h>
#include <interface/Enumerations.h>
#include <interface/Roles.h>
#include <interface/Version.h>

#include <QtCore>

/// Answers one command with one volume.
struct Framework : FrameworkWrapperBase
{
    PluginBase *plugin = nullptr;
    bool SendCommand(void *, const QString &, const QString &command, const QVariant &, void *context, bool,
                     const QString &) override
    {
        const QVariantList volumes{QVariantMap{{"volumePath", "/mnt/video"}, {"volumeSize", 4096}}};
        QTimer::singleShot(0, plugin, [=] { plugin->CommandProcessor(command, volumes, context, "0", {}, true, {}); });
        return true;
    }
    QObject *GetPluginObject(void *, const QString &) override { return nullptr; }
};

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QPluginLoader loader(PLUGIN_DIR "/libPluginRecordingManagement.so");
    Framework framework;
    framework.plugin = qobject_cast<PluginBase *>(loader.instance());
    if (!framework.plugin || !framework.plugin->InitialPluginBase(nullptr, nullptr, &framework))
        qFatal("%s", qPrintable(loader.errorString()));
    QObject::connect(framework.plugin, SIGNAL(getVolumeResponded(bool)), &app, SLOT(quit()));
    QMetaObject::invokeMethod(framework.plugin, "getVolume");
    app.exec();

    QObject *model = nullptr;
    QMetaObject::invokeMethod(framework.plugin, "getVolumeModel", Q_RETURN_ARG(QObject *, model));
    const QModelIndex first = qobject_cast<QAbstractItemModel *>(model)->index(0, 0);
    const QString name = "North";
    const QString path = "/mnt/video";
    const auto type = Recording::RecPathType::Local;
    bool isSent = false;
    QMetaObject::invokeMethod(framework.plugin, "addRecordingGroup", Qt::DirectConnection,
                              QGenericReturnArgument("bool", &isSent), QGenericArgument("QString", &name),
                              QGenericArgument("QString", &path), QGenericArgument("RecPathType", &type));
    QTextStream(stdout) << RECORDING_MANAGEMENT_VERSION << ' ' << first.data(Recording::VolumeRole::RootPath).toString()
                        << ' ' << static_cast<int>(Recording::RecPathType::NetDomain) << ' ' << isSent << Qt::endl;
    delete framework.plugin;
}
