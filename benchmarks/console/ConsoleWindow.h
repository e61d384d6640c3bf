#pragma once

#include "Client.h"
#include "ConsoleSession.h"
#include "Scenario.h"
#include "companions/StatusMonitorPlugin.h"

#include <QQuickItem>
#include <QQuickWindow>

#include <functional>
#include <memory>

/// What a window and its thread's event loop went through in a span of time; times in seconds.
struct Smoothness
{
    double longestTurn = 0; ///< the longest time in which the event loop did not come round
    double longestTurnCpu = 0; ///< likewise, in CPU time of the thread
    double busyCpu = 0; ///< CPU time of the turns that took longer than a millisecond
    int droppedFrames = 0; ///< that an animation of 60 frames a second needed and the window did not swap
};

/// A plug-in with what the console's pages ask for beside it.
struct ConsoleClient
{
    explicit ConsoleClient(std::unique_ptr<PluginRecordingManagement> made);

    StatusMonitorPlugin statusMonitor;
    ConsoleSession session;
    QuietFramework framework{statusMonitor};
    std::unique_ptr<PluginRecordingManagement> plugin; // goes first
};

/// The console's own window with one of its pages, on a client whose station the benchmark plays. In a corner runs an
/// animation, so that frames are due all the time.
class ConsoleWindow
{
public:
    /// @param page its key in Main.qml, for instance "usage"
    ConsoleWindow(ConsoleClient &client, const QString &page);

    /// Lets the animation run, or stand still while another window is watched.
    void animate(bool moving) { m_animation->setProperty("moving", moving); }
    /// Waits until the delegates are made that the page needs; the animation has to run.
    void rest()
    {
        watch([] {}, {});
    }
    /// What F5 does.
    void refresh();
    /// Calls a function of the page that has no parameters.
    void call(const char *function);
    /// Likewise, of the page's function that takes @p argument.
    void call(const char *function, const QString &argument);
    /// Clicks the button of this object name.
    void press(const QString &button);
    /// Closes what stands above the page.
    void closeDialogs();
    /// What this process has allocated in bytes, without what JavaScript does not need any more.
    double heapInUse();

    /// Delivers a message in a turn of the event loop of its own and watches until @p frames after the first one in
    /// which every one of @p facts is shown. Throws when that does not come about in time.
    Smoothness watch(const std::function<void()> &deliver, const std::vector<Fact> &facts, int frames = framesToRest);

private:
    static constexpr int framesToRest = 8; // delegates are made a frame late, and the drawings in them one more

    QString missing(const std::vector<Fact> &facts) const;
    bool runUntil(const std::function<bool()> &done);

    std::unique_ptr<QQuickWindow> m_window;
    std::unique_ptr<QQuickItem> m_animation;
};
