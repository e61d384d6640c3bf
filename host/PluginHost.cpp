#include "PluginHost.h"

#include "framework/PluginBase.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonObject>
#include <QLibrary>
#include <QPluginLoader>
#include <QPointer>

namespace {

const QString wantedInterface = QStringLiteral("com.MERIDON.UIFramework.PluginInterface");
const QString wantedId = QStringLiteral("8F33495A224D49ABB8F9E875984A1443");

QPointer<QObject> handedOut; // the plug-in's factory has one object in a process, and that has one owner

QString besideApplication(const char *folder)
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../") + QLatin1String(folder));
}

/// Why the plug-in behind @p loader is not the one; empty when it is. Reads the file and does not load it.
QString mismatch(const QPluginLoader &loader)
{
    const QJsonObject metaData = loader.metaData();
    if (metaData.isEmpty())
        return QStringLiteral("is no Qt plug-in");
    const QString interface = metaData.value(QStringLiteral("IID")).toString();
    if (interface != wantedInterface)
        return QStringLiteral("has the interface \"%1\"").arg(interface);
    const QString id =
        metaData.value(QStringLiteral("MetaData")).toObject().value(QStringLiteral("PluginID")).toString();
    if (id != wantedId)
        return QStringLiteral("has the PluginID \"%1\"").arg(id);
    return {};
}

} // namespace

PluginHost::PluginHost() = default;

PluginHost::~PluginHost() = default;

QStringList PluginHost::defaultFolders()
{
    QStringList folders{besideApplication(RECORDING_PLUGIN_DIR)};
    const QStringList libraryPaths = QCoreApplication::libraryPaths();
    for (const QString &path : libraryPaths)
        folders.append(path + QStringLiteral("/recordingmanagement"));
    return folders;
}

QString PluginHost::traceLibraryName()
{
    return QStringLiteral("libZarnLogUtl.so");
}

QString PluginHost::traceLibraryFile()
{
    return besideApplication(RECORDING_LIB_DIR) + u'/' + traceLibraryName();
}

QString PluginHost::traceLibraryOfPrograms()
{
    const QString beside = traceLibraryFile();
    return QFile::exists(beside) ? beside
                                 : besideApplication(RECORDING_PROGRAM_LIB_DIR) + QStringLiteral("/tracelog.so");
}

bool PluginHost::loadTraceLibrary(const QString &file)
{
    // Its name is the one that the plug-in asks for, so the loaded library is found again under it.
    QLibrary library(file.isEmpty() ? traceLibraryFile() : file);
    library.setLoadHints(QLibrary::PreventUnloadHint);
    return library.load();
}

std::unique_ptr<PluginBase> PluginHost::load(const QStringList &folders)
{
    m_loader.reset();
    m_error.clear();
    QStringList problems;
    for (const QString &folder : folders) {
        if (auto plugin = loadFrom(folder, &problems))
            return plugin;
    }
    if (problems.isEmpty())
        problems.append(QStringLiteral("no folder was given"));
    m_error = QStringLiteral("No plug-in with the interface \"%1\" and the PluginID \"%2\" could be loaded:\n  %3")
                  .arg(wantedInterface, wantedId, problems.join(QStringLiteral("\n  ")));
    return {};
}

std::unique_ptr<PluginBase> PluginHost::loadFrom(const QString &folder, QStringList *problems)
{
    const QDir dir(folder);
    if (folder.isEmpty() || !dir.exists()) {
        problems->append(QStringLiteral("%1: no such folder").arg(QDir::toNativeSeparators(folder)));
        return {};
    }
    bool hasLibrary = false;
    const QFileInfoList files = dir.entryInfoList(QDir::Files, QDir::Name);
    for (const QFileInfo &file : files) {
        const QString path = file.absoluteFilePath();
        if (!QLibrary::isLibrary(path))
            continue;
        hasLibrary = true;
        auto loader = std::make_unique<QPluginLoader>(path);
        QString problem = mismatch(*loader);
        if (problem.isEmpty()) {
            auto *plugin = qobject_cast<PluginBase *>(loader->instance());
            if (plugin && plugin != handedOut) {
                handedOut = plugin;
                m_loader = std::move(loader);
                return std::unique_ptr<PluginBase>(plugin);
            }
            if (plugin)
                problem = QStringLiteral("its object is in use already");
            else if (loader->isLoaded())
                problem = QStringLiteral("has no object of this interface");
            else
                problem = QStringLiteral("did not load: %1").arg(loader->errorString());
        }
        problems->append(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), problem));
    }
    if (!hasLibrary)
        problems->append(QStringLiteral("%1: no library in this folder").arg(QDir::toNativeSeparators(folder)));
    return {};
}

QString PluginHost::pluginId() const
{
    return wantedId;
}

QString PluginHost::fileName() const
{
    return m_loader ? m_loader->fileName() : QString();
}

QString PluginHost::error() const
{
    return m_error;
}
