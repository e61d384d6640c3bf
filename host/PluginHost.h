#pragma once

#include <QString>
#include <QStringList>

#include <memory>

class PluginBase;
class QPluginLoader;

/// Finds the recording-management plug-in among the Qt plug-ins of some folders and creates its object.
///
/// A plug-in is recognised by the interface identifier and the "PluginID" of its metadata; other libraries are not
/// loaded for that. The plug-in stays loaded until the process ends: QML keeps types of it.
class PluginHost
{
public:
    PluginHost();
    ~PluginHost();

    /// Where the plug-in lies relative to the running application, in the build tree and when installed.
    static QStringList defaultFolders();

    /// The plain name under which the plug-in looks for the trace library.
    static QString traceLibraryName();

    /// Where the trace library lies beside the running application.
    static QString traceLibraryFile();

    /// Where the stand-in for the trace library lies that comes with the programs of this repository: the one beside
    /// the application, or else one in a folder of their own, where no loader finds it by its name. For those programs
    /// alone: under its name it would hide a client's own library.
    static QString traceLibraryOfPrograms();

    /// Loads the trace library from @p file, or from its place beside the application, so that plug-ins find it by its
    /// plain name. Call it before load(). False when there is none, which is no error: nothing is traced then.
    static bool loadTraceLibrary(const QString &file = {});

    /// Creates the plug-in's object, not yet initialised; null on failure, and error() says what was looked for, where,
    /// and what was wrong. The caller owns the object. There is one in a process: while it lives, no
    /// other is created.
    std::unique_ptr<PluginBase> load(const QStringList &folders = defaultFolders());

    QString pluginId() const; ///< under which the framework knows the plug-in
    QString fileName() const; ///< the library that load() took; empty before
    QString error() const; ///< why load() failed, in lines

private:
    std::unique_ptr<PluginBase> loadFrom(const QString &folder, QStringList *problems);

    std::unique_ptr<QPluginLoader> m_loader;
    QString m_error;
};
