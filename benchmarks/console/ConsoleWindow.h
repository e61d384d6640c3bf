#pragma once

#include "LoopWatch.h"

#include <QQmlApplicationEngine>
#include <QString>
#include <QVariant>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class ConsoleClient;
class QQuickItem;
class QQuickWindow;

/// What an item of the page has to say, by the item's object name.
struct Fact
{
    QString item;
    const char *property;
    QVariant value;
};

/// What one message did to a window; times in seconds, memory in bytes.
struct Arrival
{
    Smoothness smoothness; ///< until some frames after the one that shows the rows
    double shownAfter = 0; ///< from the delivery to the first frame that shows the rows
    double peakGrowth = 0; ///< how much memory it took meanwhile
};

/// The console's own window with one of its pages, on a client whose station the benchmark plays. In a corner runs an
/// animation, so that frames are due all the time.
class ConsoleWindow
{
public:
    /// @param page its key in Main.qml, for instance "usage"
    ConsoleWindow(ConsoleClient &client, const QString &page);
    ~ConsoleWindow();

    /// Lets the animation run, or stand still while another window is watched.
    void animate(bool moving);
    /// Waits for frames; the animation has to run.
    void letFramesPass(int count);

    /// What this process has allocated in bytes, without what JavaScript does not need any more.
    double heapInUse();

    /// What F5 does.
    void refresh();

    /// Delivers a message in a turn of the event loop of its own and watches until every one of @p facts is shown;
    /// nothing when that does not come about in time.
    std::optional<Arrival> watch(const std::function<void()> &deliver, const std::vector<Fact> &facts);
    /// Which of @p facts is not shown; empty when all are.
    QString missing(const std::vector<Fact> &facts) const;

    /// The window while nothing arrives.
    Smoothness watchIdle(int milliseconds);

private:
    QQuickItem *find(const QString &objectName) const;
    bool runUntil(const std::function<bool()> &done);

    QQmlApplicationEngine m_engine;
    QQuickWindow *m_window = nullptr; // the engine's
    std::unique_ptr<QQuickItem> m_animation;
};
