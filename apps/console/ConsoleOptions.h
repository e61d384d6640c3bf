#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

/// What the console was started with.
struct ConsoleOptions
{
    enum class Action { Run, ShowHelp, ShowVersion, Refuse };
    enum class Scheme { System, Light, Dark }; ///< numbered as in Theme.qml

    Action action = Action::Run;
    QString error; ///< of Refuse: one line that says what was expected
    // What is not stated is as it was left, see ConsoleSettings.
    QString page; ///< empty: not stated
    std::optional<Scheme> scheme;
    int textSize = 0; ///< percent; 0: not stated
    QSize size; ///< invalid: not stated
    QString platform; ///< of Qt; empty: Qt's choice
    QString screenshot; ///< file to write; empty, like the next: show the window
    QString screenshots; ///< folder for pictures of all pages
    std::optional<std::chrono::milliseconds> latest; ///< see Screenshot
    QString url; ///< of the station; see StationLink::open()
    QString folder; ///< of the folders page; empty: the list of the volumes

    bool isForPictures() const { return !screenshot.isEmpty() || !screenshots.isEmpty(); }

    /// @param arguments with the program's name first. Needs no application object.
    static ConsoleOptions parse(const QStringList &arguments);
    /// Needs an application object.
    static QString helpText();
};

/// Names that QGuiApplication takes as a platform on this machine.
QStringList installedPlatforms();
