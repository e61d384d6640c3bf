// A client that loads the plug-in and uses it, so that a test can look at what it did and at what its trace library was
// called with. It prints what it saw of the plug-in and marks each stage in the trace library's file.
//
// trace_probe session    everything that writes lines, and something of what does not
// trace_probe memory     Init, with the memory running out at each of its models in turn
// trace_probe unload     loads and unloads

#include "HeapWatch.h"
#include "RecordingFramework.h"
#include "SignalLog.h"

#include <QCoreApplication>
#include <QFile>
#include <QTextStream>

#include <cstdlib>

#include <dlfcn.h>

namespace {

void mark(const QString &stage)
{
    QFile file(qEnvironmentVariable("FAKE_TRACE_FILE"));
    if (file.open(QIODevice::Append))
        file.write("stage " + stage.toUtf8() + '\n');
}

void print(const QString &line)
{
    QTextStream(stdout) << line << Qt::endl;
}

bool invoke(QObject *plugin, const char *method, const QString &argument)
{
    bool result = false;
    const bool called = QMetaObject::invokeMethod(plugin, method, Q_RETURN_ARG(bool, result), Q_ARG(QString, argument));
    return called && result;
}

QObject *volumeModel(QObject *plugin)
{
    QObject *model = nullptr;
    QMetaObject::invokeMethod(plugin, "getVolumeModel", Q_RETURN_ARG(QObject *, model));
    return model;
}

int runSession()
{
    QPluginLoader loader(QStringLiteral(RECORDING_PLUGIN_FILE));
    RecordingFramework framework;
    mark("load");
    if (!loader.load())
        return 1;
    mark("create");
    const std::unique_ptr<Contract::Plugin> owner(reinterpret_cast<Contract::Plugin *>(loader.instance()));
    Contract::Plugin *const plugin = owner.get();
    SignalLog log(plugin);

    const auto stage = [&](const QString &name, const std::function<QString()> &work) {
        mark(name);
        const QString result = work();
        print(QStringList{name, result, framework.takeCommands().join(' '), log.take().join(' ')}.join(" | "));
    };
    const auto truth = [](bool value) { return value ? QStringLiteral("true") : QStringLiteral("false"); };

    stage("initialise", [&] { return truth(plugin->InitialPluginBase(nullptr, nullptr, &framework)); });
    stage("queries", [&] { return truth(volumeModel(plugin)); });
    stage("accepted", [&] { return truth(invoke(plugin, "getVolume", "relay-7")); });
    framework.accepts = false;
    stage("refused", [&] { return truth(invoke(plugin, "getVolume", "relay-7")); });
    stage("invalid", [&] { return truth(invoke(plugin, "addNASServer", QString())); });
    stage("connected", [&] {
        plugin->PluginServerConnected();
        return QString();
    });
    stage("reply", [&] {
        plugin->CommandProcessor("getVolume", {}, nullptr, "0", {}, true, {});
        return QString();
    });
    stage("refusal", [&] {
        plugin->CommandProcessor("getRecordingGroup", {}, nullptr, "12", {}, true, {});
        return QString();
    });
    stage("replyEx", [&] {
        plugin->CommandProcessorEx("getVolume", nullptr, {}, nullptr, "0", {}, true, {});
        return QString();
    });
    stage("event", [&] {
        plugin->EventProcessor("VolumeChanged", 1, 2, 3, {}, {});
        return QString();
    });
    stage("eventEx", [&] {
        plugin->EventProcessorEx("VolumeChanged", nullptr, 1, 2, 3, {}, {});
        return QString();
    });
    mark("destroy");
    return 0;
}

int runMemory()
{
    for (int model = 0; model < 5; ++model) {
        const auto plugin = Contract::createPlugin();
        mark(QStringLiteral("model %1").arg(model + 1));
        const bool initialised = [&plugin, model] {
            const AllocationFailure failure(model);
            return plugin->InitialPluginBase(nullptr, nullptr, nullptr);
        }();
        print(QStringLiteral("initialised %1, volume model %2")
                  .arg(initialised)
                  .arg(volumeModel(plugin.get()) != nullptr));
        mark("destroy");
    }
    return 0;
}

int runUnload()
{
    const auto mapped = [] {
        QFile maps("/proc/self/maps");
        return maps.open(QIODevice::ReadOnly) && maps.readAll().contains("libZarnLogUtl.so");
    };
    // Not with QPluginLoader: newer ones keep what they loaded, whatever the hints say.
    mark("load");
    void *const library = dlopen(RECORDING_PLUGIN_FILE, RTLD_LAZY);
    print(QStringLiteral("loaded %1, trace library mapped %2").arg(library ? 1 : 0).arg(mapped()));
    mark("unload");
    const bool unloaded = library && dlclose(library) == 0;
    print(QStringLiteral("unloaded %1, trace library mapped %2").arg(unloaded).arg(mapped()));
    mark("end");
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    const QString mode = app.arguments().value(1);
    if (mode == "session")
        return runSession();
    if (mode == "memory")
        return runMemory();
    return mode == "unload" ? runUnload() : 2;
}
