#include <ClientSession.h>
#include <link/LocalLink.h>
#include <link/MqttLink.h>

#include <QAbstractItemModel>
#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    ClientSession session;
    ClientSession::Options options;
    options.pluginFolders = QStringList(app.arguments().value(1)); // where the plug-in lies
    options.url = app.arguments().value(2); // of the station: local:DIR, or mqtts://BROKER/STATION
    options.linkKinds = MqttLink::kinds() + QList{LocalLink::kind()};
    if (!session.start(options))
        qFatal("%s", qPrintable(session.error()));

    QObject *const recording = session.plugin(); // PluginRecordingManagement
    QObject::connect(recording, SIGNAL(getVolumeResponded(bool)), &app, SLOT(quit()));
    QMetaObject::invokeMethod(recording, "getVolume");
    app.exec();

    QObject *model = nullptr;
    QMetaObject::invokeMethod(recording, "getVolumeModel", Q_RETURN_ARG(QObject *, model));
    QTextStream(stdout) << qobject_cast<QAbstractItemModel *>(model)->rowCount() << " volumes" << Qt::endl;
}
