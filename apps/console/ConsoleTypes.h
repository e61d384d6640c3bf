#pragma once

class QQmlEngine;

/// Makes the console's QML module, and the description of the plug-in's type, known to @p engine.
void prepareConsoleEngine(QQmlEngine &engine);
