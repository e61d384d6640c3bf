#include "PluginHost.h"
#include "framework/PluginBase.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLibrary>
#include <QPluginLoader>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <dlfcn.h>

using namespace Qt::StringLiterals;

/// Finds the built plug-in among libraries that are not it. A decoy leaves a mark in the environment when it is loaded.
class PluginHostTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void missingTraceLibraryIsNoError();
    void textIsNoTraceLibrary();
    void traceLibraryIsFoundByItsName(); // before the plug-in, which asks for it
    void findsThePluginAmongOthers();
    void otherPluginsAreNotLoaded();
    void foldersAreSearchedInOrder();
    void searchGoesOnBehindALibraryThatDoesNotLoad();
    void failureIsExplained_data();
    void failureIsExplained();
    void missingFolderIsExplained();
    void noFolderIsExplained();
    void everyFolderIsNamed();
    void objectIsHandedOutOnce();
    void pluginOutlivesItsHost();
    void defaultFoldersLieBesideTheApplicationAndOnQtsPath();

private:
    void put(const QString &library, const QString &name);
    void putText(const QString &name);

    std::unique_ptr<QTemporaryDir> m_dir;
};

namespace {

const QString wantedInterface = u"com.MERIDON.UIFramework.PluginInterface"_s;
const QString wantedId = u"8F33495A224D49ABB8F9E875984A1443"_s;
const QString builtPlugin = QStringLiteral(PLUGIN_FILE);

bool isDecoyLoaded()
{
    return qEnvironmentVariableIsSet("RECORDING_DECOY_LOADED");
}

} // namespace

void PluginHostTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    qunsetenv("RECORDING_DECOY_LOADED");
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void PluginHostTest::cleanup()
{
    m_dir.reset();
}

void PluginHostTest::put(const QString &library, const QString &name)
{
    QVERIFY2(QFile::copy(library, m_dir->filePath(name)), qPrintable(library));
}

void PluginHostTest::putText(const QString &name)
{
    QFile file(m_dir->filePath(name));
    QVERIFY(file.open(QFile::WriteOnly));
    QVERIFY(file.write("This is not a library.\n") > 0);
}

void PluginHostTest::missingTraceLibraryIsNoError()
{
    QVERIFY(!PluginHost::loadTraceLibrary(m_dir->filePath(u"libZarnLogUtl.so"_s)));
}

void PluginHostTest::textIsNoTraceLibrary()
{
    putText(u"libZarnLogUtl.so"_s);
    QVERIFY(!PluginHost::loadTraceLibrary(m_dir->filePath(u"libZarnLogUtl.so"_s)));
}

void PluginHostTest::traceLibraryIsFoundByItsName()
{
    const char *const file = TRACE_LIBRARY_FILE;
    QVERIFY(!dlopen(file, RTLD_NOW | RTLD_NOLOAD));
    QVERIFY(PluginHost::loadTraceLibrary(QString::fromLocal8Bit(file)));
    void *const library = dlopen("libZarnLogUtl.so", RTLD_NOW); // as the plug-in asks for it
    QVERIFY2(library, dlerror());
    QCOMPARE(library, dlopen(file, RTLD_NOW | RTLD_NOLOAD));
    QVERIFY(dlsym(library, "LogTrace_GetGlobalObject"));
}

void PluginHostTest::findsThePluginAmongOthers()
{
    put(QStringLiteral(OTHER_INTERFACE_FILE), u"liba.so"_s);
    put(QStringLiteral(OTHER_ID_FILE), u"libb.so"_s);
    putText(u"libc.so"_s);
    putText(u"readme.txt"_s);
    QVERIFY(QDir(m_dir->path()).mkdir(u"libd.so"_s));
    put(builtPlugin, u"libz.so"_s);
    PluginHost host;
    QVERIFY(host.fileName().isEmpty());
    const std::unique_ptr<PluginBase> plugin = host.load({m_dir->path()});
    QVERIFY2(plugin, qPrintable(host.error()));
    QCOMPARE(plugin->metaObject()->className(), "PluginRecordingManagement");
    QCOMPARE(QFileInfo(host.fileName()), QFileInfo(m_dir->filePath(u"libz.so"_s)));
    QCOMPARE(host.pluginId(), wantedId);
    QVERIFY(host.error().isEmpty());
    QVERIFY(plugin->InitialPluginBase(nullptr, nullptr, nullptr));
}

void PluginHostTest::otherPluginsAreNotLoaded()
{
    put(QStringLiteral(OTHER_INTERFACE_FILE), u"liba.so"_s);
    put(QStringLiteral(OTHER_ID_FILE), u"libb.so"_s);
    PluginHost host;
    QVERIFY(!host.load({m_dir->path()}));
    QVERIFY(host.fileName().isEmpty());
    QVERIFY(!isDecoyLoaded());
    for (const QString &name : {u"liba.so"_s, u"libb.so"_s}) {
        QVERIFY(!QPluginLoader(m_dir->filePath(name)).isLoaded());
        QVERIFY(QPluginLoader(m_dir->filePath(name)).load());
        QVERIFY(isDecoyLoaded()); // the mark tells
        qunsetenv("RECORDING_DECOY_LOADED");
    }
}

void PluginHostTest::foldersAreSearchedInOrder()
{
    put(builtPlugin, u"libz.so"_s);
    PluginHost host;
    const std::unique_ptr<PluginBase> plugin =
        host.load({u"/no/such/folder"_s, m_dir->path(), QFileInfo(builtPlugin).path()});
    QVERIFY2(plugin, qPrintable(host.error()));
    QCOMPARE(QFileInfo(host.fileName()), QFileInfo(m_dir->filePath(u"libz.so"_s)));
    QVERIFY(host.error().isEmpty());
}

void PluginHostTest::searchGoesOnBehindALibraryThatDoesNotLoad()
{
    put(QStringLiteral(BROKEN_FILE), u"liba.so"_s);
    put(builtPlugin, u"libz.so"_s);
    PluginHost host;
    const std::unique_ptr<PluginBase> plugin = host.load({m_dir->path()});
    QVERIFY2(plugin, qPrintable(host.error()));
    QCOMPARE(QFileInfo(host.fileName()), QFileInfo(m_dir->filePath(u"libz.so"_s)));
}

void PluginHostTest::failureIsExplained_data()
{
    QTest::addColumn<QString>("library"); // what lies in the folder under libx.so; empty: nothing
    QTest::addColumn<QString>("words"); // of the error
    const QString file = u"libx.so: "_s;
    QTest::newRow("empty folder") << QString() << u": no library in this folder"_s;
    QTest::newRow("text") << u"text"_s << file + u"is no Qt plug-in"_s;
    QTest::newRow("other interface") << QStringLiteral(OTHER_INTERFACE_FILE)
                                     << file + u"has the interface \"org.example.Other\""_s;
    QTest::newRow("other id") << QStringLiteral(OTHER_ID_FILE)
                              << file + u"has the PluginID \"00000000000000000000000000000000\""_s;
    QTest::newRow("does not load") << QStringLiteral(BROKEN_FILE) << u"symbolThatNobodyHas"_s; // the loader's reason
    QTest::newRow("other object") << QStringLiteral(OTHER_OBJECT_FILE) << file + u"has no object of this interface"_s;
}

void PluginHostTest::failureIsExplained()
{
    QFETCH(const QString, library);
    QFETCH(const QString, words);
    if (library == u"text")
        putText(u"libx.so"_s);
    else if (!library.isEmpty())
        put(library, u"libx.so"_s);
    PluginHost host;
    QVERIFY(!host.load({m_dir->path()}));
    const QString error = host.error();
    for (const QString &part : {wantedInterface, wantedId, m_dir->path(), words})
        QVERIFY2(error.contains(part), qPrintable(error));
}

void PluginHostTest::missingFolderIsExplained()
{
    PluginHost host;
    QVERIFY(!host.load({u"/no/such/folder"_s}));
    QVERIFY2(host.error().contains(u"/no/such/folder: no such folder"_s), qPrintable(host.error()));
}

void PluginHostTest::noFolderIsExplained()
{
    PluginHost host;
    QVERIFY(!host.load(QStringList()));
    QVERIFY2(host.error().contains(u"no folder was given"_s), qPrintable(host.error()));
    QVERIFY(!host.load({QString()}));
    QVERIFY2(host.error().contains(u"no such folder"_s), qPrintable(host.error()));
}

void PluginHostTest::everyFolderIsNamed()
{
    putText(u"libx.so"_s);
    PluginHost host;
    QVERIFY(!host.load({u"/no/such/folder"_s, m_dir->path()}));
    QVERIFY2(host.error().contains(u"/no/such/folder: "_s), qPrintable(host.error()));
    QVERIFY2(host.error().contains(m_dir->filePath(u"libx.so"_s)), qPrintable(host.error()));
}

void PluginHostTest::objectIsHandedOutOnce()
{
    const QStringList folders{QFileInfo(builtPlugin).path()};
    PluginHost host;
    std::unique_ptr<PluginBase> plugin = host.load(folders);
    QVERIFY2(plugin, qPrintable(host.error()));
    PluginHost second;
    QVERIFY(!second.load(folders));
    QVERIFY2(second.error().contains(u"its object is in use already"_s), qPrintable(second.error()));
    plugin.reset();
    plugin = second.load(folders);
    QVERIFY2(plugin, qPrintable(second.error()));
    QVERIFY(plugin->InitialPluginBase(nullptr, nullptr, nullptr));
}

void PluginHostTest::pluginOutlivesItsHost()
{
    auto host = std::make_unique<PluginHost>();
    const std::unique_ptr<PluginBase> plugin = host->load({QFileInfo(builtPlugin).path()});
    QVERIFY2(plugin, qPrintable(host->error()));
    const QString file = host->fileName();
    host.reset();
    QVERIFY(plugin->InitialPluginBase(nullptr, nullptr, nullptr));
    QVERIFY(QPluginLoader(file).isLoaded());
}

void PluginHostTest::defaultFoldersLieBesideTheApplicationAndOnQtsPath()
{
    QCoreApplication::addLibraryPath(m_dir->path());
    const QStringList folders = PluginHost::defaultFolders();
    const QDir application(QCoreApplication::applicationDirPath());
    QCOMPARE(folders.front(), QDir::cleanPath(application.filePath(u"../"_s + QStringLiteral(PLUGIN_DIR))));
    QVERIFY(folders.contains(m_dir->path() + u"/recordingmanagement"_s));
    QCoreApplication::removeLibraryPath(m_dir->path());
}

QTEST_GUILESS_MAIN(PluginHostTest)

#include "tst_plugin_host.moc"
