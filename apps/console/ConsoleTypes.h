#pragma once

class QQmlEngine;

/// Makes the console's QML module, and the description of the plug-in's type, known to @p engine.
/// @param scheme as numbered in Theme.qml
/// @param animated false: nothing moves, for pictures
void prepareConsoleEngine(QQmlEngine &engine, int scheme, bool animated);
