#include "ConsoleTypes.h"

#include <QCoreApplication>
#include <QDir>
#include <QQmlEngine>
#include <QtQml>

void qml_register_types_RecordingConsole(); // written by CMake

void prepareConsoleEngine(QQmlEngine &engine, int scheme, bool animated)
{
    static const bool registered = [] {
        qml_register_types_RecordingConsole();
        return true;
    }();
    Q_UNUSED(registered)
    engine.addImportPath(QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral(RECORDING_QML_PATH)));
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));

    const int themeType = qmlTypeId("RecordingConsole", 1, 0, "Theme");
    if (QObject *theme = engine.singletonInstance<QObject *>(themeType)) {
        theme->setProperty("scheme", scheme);
        theme->setProperty("animated", animated);
    }
}
