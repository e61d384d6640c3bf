#include "ConsoleTypes.h"

#include <QCoreApplication>
#include <QDir>
#include <QQmlEngine>

void qml_register_types_RecordingConsole(); // written by CMake

void prepareConsoleEngine(QQmlEngine &engine)
{
    static const bool registered = [] {
        qml_register_types_RecordingConsole();
        return true;
    }();
    Q_UNUSED(registered)
    engine.addImportPath(QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral(RECORDING_QML_PATH)));
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
}
