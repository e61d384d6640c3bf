#include <framework/FrameworkWrapperBase.h>
#include <framework/PluginBase.h>

#include <QtCore>
#include <QtQml>

/// Takes every command and answers each at once.
struct Framework : FrameworkWrapperBase
{
    PluginBase *plugin = nullptr;
    bool SendCommand(void *, const QString &, const QString &command, const QVariant &, void *context, bool,
                     const QString &) override
    {
        QTimer::singleShot(0, plugin, [=] { plugin->CommandProcessor(command, {}, context, "0", {}, true, {}); });
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
    {
        QQmlEngine engine;
        QQmlComponent component(&engine, QUrl::fromLocalFile(PAGE));
        const std::unique_ptr<QObject> page(
            component.createWithInitialProperties({{"recording", QVariant::fromValue<QObject *>(framework.plugin)}}));
        if (!page)
            qFatal("%s", qPrintable(component.errorString()));
        QObject::connect(framework.plugin, SIGNAL(addRecordingGroupResponded(bool)), &app, SLOT(quit()),
                         Qt::QueuedConnection);
        QTimer::singleShot(60'000, &app, [] { QCoreApplication::exit(1); });
        app.exec();
        QTextStream(stdout) << page->property("outcome").toString() << Qt::endl;
    }
    delete framework.plugin;
}
