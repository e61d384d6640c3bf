#include <framework/FrameworkWrapperBase.h>
#include <framework/PluginBase.h>

#include <QtCore>

struct MyFramework : FrameworkWrapperBase
{
    PluginBase *plugin = nullptr;
    bool SendCommand(void *, const QString &, const QString &command, const QVariant &, void *context, bool,
                     const QString &) override
    {
        // A client sends the command to its station here. This one plays the station itself, and answers later.
        const QVariantList volumes{QVariantMap{{"volumePath", "/mnt/video"}, {"volumeSize", 4096}}};
        QTimer::singleShot(0, [=, this] { plugin->CommandProcessor(command, volumes, context, "0", {}, true, {}); });
        return true;
    }
    QObject *GetPluginObject(void *, const QString &) override { return nullptr; }
};

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QPluginLoader loader(QFileInfo(app.arguments().value(1)).absoluteFilePath()); // Qt finds no relative path
    MyFramework framework;
    framework.plugin = qobject_cast<PluginBase *>(loader.instance());
    if (!framework.plugin || !framework.plugin->InitialPluginBase(nullptr, nullptr, &framework))
        qFatal("%s", qPrintable(loader.errorString()));

    QObject::connect(framework.plugin, SIGNAL(getVolumeResponded(bool)), &app, SLOT(quit()));
    QMetaObject::invokeMethod(framework.plugin, "getVolume");
    app.exec();

    QObject *model = nullptr;
    QMetaObject::invokeMethod(framework.plugin, "getVolumeModel", Q_RETURN_ARG(QObject *, model));
    const QModelIndex first = qobject_cast<QAbstractItemModel *>(model)->index(0, 0);
    QTextStream(stdout) << first.data(Qt::UserRole + 2).toString() << Qt::endl; // role "rootPathRole"
    delete framework.plugin;
}
