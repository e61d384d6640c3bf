#include <ClientSession.h>
#include <PluginHost.h>
#include <companions/StatusMonitorPlugin.h>
#include <interface/Roles.h>
#include <link/LocalLink.h>

#include <QAbstractItemModel>
#include <QCoreApplication>
#include <QTextStream>
#include <QTimer>

/// Asks the station of a data folder for its volumes and prints how it names the root: consumer PLUGIN-FOLDER
/// DATA-FOLDER
int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    ClientSession session;
    ClientSession::Options options;
    options.pluginFolders = QStringList(arguments.value(1));
    options.url = "local:" + arguments.value(2);
    options.linkKinds = {LocalLink::kind()};
    if (!session.start(options))
        qFatal("%s", qPrintable(session.error()));
    QObject *const plugin = session.plugin();
    QObject::connect(plugin, SIGNAL(getVolumeResponded(bool)), &app, SLOT(quit()));
    QTimer::singleShot(60'000, &app, [] { QCoreApplication::exit(1); });
    QMetaObject::invokeMethod(plugin, "getVolume");
    if (app.exec() != 0)
        qFatal("The station did not answer.");

    QObject *found = nullptr;
    QMetaObject::invokeMethod(plugin, "getVolumeModel", Q_RETURN_ARG(QObject *, found));
    const auto *model = qobject_cast<QAbstractItemModel *>(found);
    for (int row = 0; row < model->rowCount(); ++row) {
        const QModelIndex volume = model->index(row, 0);
        if (volume.data(Recording::VolumeRole::RootPath).toString() == "/")
            QTextStream(stdout) << volume.data(Recording::VolumeRole::Name).toString() << Qt::endl;
    }
}
