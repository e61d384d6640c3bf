#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

/// What the console was started with.
struct ConsoleOptions
{
    enum class Action { Run, ShowHelp, ShowVersion, Refuse };
    enum class Scheme { System, Light, Dark }; ///< numbered as in Theme.qml

    Action action = Action::Run;
    QString error; ///< of Refuse: one line that says what was expected
    QString page = QStringLiteral("volumes");
    Scheme scheme = Scheme::System;
    QSize size{1280, 800};
    QString platform; ///< of Qt; empty: Qt's choice
    QString screenshot; ///< file to write; empty: show the window
    QString dataFolder; ///< of the station inside the console; empty: the station's own choice
    QString folder; ///< of the folders page; empty: the list of the volumes

    /// @param arguments with the program's name first. Needs no application object.
    static ConsoleOptions parse(const QStringList &arguments);
    /// Needs an application object.
    static QString helpText();
};

/// Names that QGuiApplication takes as a platform on this machine.
QStringList installedPlatforms();
