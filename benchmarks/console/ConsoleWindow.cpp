#include "ConsoleWindow.h"

#include "ConsoleTypes.h"
#include "Measuring.h"
#include "Program.h"

#include <QBasicTimer>
#include <QCoreApplication>
#include <QEventLoop>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace {

constexpr std::chrono::minutes patience{1};
constexpr double framesASecond = 60;
constexpr double longTurn = 1e-3; // seconds

constexpr auto animation = R"(import QtQuick
Rectangle {
    id: dot
    property bool moving: false
    width: 8
    height: 8
    color: "gray"
    NumberAnimation on x { to: 100; duration: 1000; loops: Animation.Infinite; running: dot.moving }
})";

QQuickItem *findBelow(QQuickItem *item, const QString &objectName)
{
    if (item->objectName() == objectName)
        return item;
    const QList<QQuickItem *> children = item->childItems();
    for (QQuickItem *child : children) {
        if (QQuickItem *const found = findBelow(child, objectName))
            return found;
    }
    return nullptr;
}

/// Watches a window in which an animation runs, and the event loop of its thread, which is this object's, too, from the
/// construction to stop(). The loop does not sleep meanwhile: a timer without interval beats in each of its turns.
class LoopWatch : public QObject
{
public:
    explicit LoopWatch(const QQuickWindow &window)
    {
        connect(&window, &QQuickWindow::frameSwapped, this, &LoopWatch::noteFrame);
        m_heart.start(0, this);
    }
    Smoothness stop()
    {
        beat();
        m_heart.stop();
        return m_seen;
    }

protected:
    void timerEvent(QTimerEvent *) override { beat(); }

private:
    void beat()
    {
        const double now = wallSeconds();
        const double nowCpu = threadSeconds();
        const double turnCpu = nowCpu - m_lastTurnCpu;
        m_seen.longestTurn = std::max(m_seen.longestTurn, now - m_lastTurn);
        m_seen.longestTurnCpu = std::max(m_seen.longestTurnCpu, turnCpu);
        if (turnCpu > longTurn)
            m_seen.busyCpu += turnCpu;
        m_lastTurn = now;
        m_lastTurnCpu = nowCpu;
    }
    void noteFrame()
    {
        const double now = wallSeconds();
        m_seen.droppedFrames += std::max(0, static_cast<int>(std::lround((now - m_lastFrame) * framesASecond)) - 1);
        m_lastFrame = now;
    }

    QBasicTimer m_heart;
    Smoothness m_seen;
    double m_lastTurn = wallSeconds();
    double m_lastTurnCpu = threadSeconds();
    double m_lastFrame = m_lastTurn;
};

/// One for all windows: to Qt 6.8 the pages of a second engine are not of the type that the first one's are.
QQmlEngine &engine()
{
    static auto *const shared = [] {
        auto *const made = new QQmlEngine(QCoreApplication::instance());
        prepareConsoleEngine(*made);
        return made;
    }();
    return *shared;
}

} // namespace

ConsoleClient::ConsoleClient(std::unique_ptr<PluginRecordingManagement> made)
    : plugin(std::move(made))
{
    plugin->InitialPluginBase(nullptr, nullptr, &framework);
    session.setConnected(true);
    session.setAlarms(&statusMonitor);
}

ConsoleWindow::ConsoleWindow(ConsoleClient &client, const QString &page)
{
    QQmlComponent console(&engine(), QUrl(QStringLiteral("qrc:/qt/qml/RecordingConsole/Main.qml")));
    m_window.reset(qobject_cast<QQuickWindow *>(console.createWithInitialProperties({
        {"recording", QVariant::fromValue(client.plugin.get())},
        {"session", QVariant::fromValue(&client.session)},
        {"startPage", page},
        {"width", 1280},
        {"height", 800},
    })));
    require(m_window != nullptr, "the console's window could not be loaded: " + console.errorString().toStdString());
    QQmlComponent component(&engine());
    component.setData(animation, {});
    m_animation.reset(qobject_cast<QQuickItem *>(component.create()));
    require(m_animation != nullptr, component.errorString().toStdString());
    m_animation->setParentItem(m_window->contentItem());
}

void ConsoleWindow::refresh()
{
    call("refresh");
}

void ConsoleWindow::call(const char *function)
{
    QMetaObject::invokeMethod(m_window->property("currentPage").value<QObject *>(), function);
}

void ConsoleWindow::call(const char *function, const QString &argument)
{
    QMetaObject::invokeMethod(m_window->property("currentPage").value<QObject *>(), function, Q_ARG(QString, argument));
}

void ConsoleWindow::press(const QString &button)
{
    QQuickItem *const item = findBelow(m_window->contentItem(), button);
    require(item != nullptr, "there is no button " + button.toStdString());
    QMetaObject::invokeMethod(item, "clicked");
}

void ConsoleWindow::closeDialogs()
{
    const QList<QObject *> dialogs = m_window->findChildren<QObject *>();
    for (QObject *const dialog : dialogs) {
        if (dialog->inherits("QQuickDialog") && dialog->property("visible").toBool())
            QMetaObject::invokeMethod(dialog, "close");
    }
}

double ConsoleWindow::heapInUse()
{
    engine().collectGarbage();
    return ::heapInUse();
}

Smoothness ConsoleWindow::watch(const std::function<void()> &deliver, const std::vector<Fact> &facts, int frames)
{
    LoopWatch watch(*m_window);
    QTimer::singleShot(0, m_window.get(), deliver);
    const bool isShown = runUntil([this, &facts, isShown = false, frames]() mutable {
        isShown = isShown || missing(facts).isEmpty();
        return isShown && --frames <= 0;
    });
    require(isShown, "not shown: " + missing(facts).toStdString());
    return watch.stop();
}

// Which of @p facts is not shown; empty when all are.
QString ConsoleWindow::missing(const std::vector<Fact> &facts) const
{
    for (const auto &[name, property, value] : facts) {
        const QQuickItem *const item = findBelow(m_window->contentItem(), name);
        if (!item || item->property(property) != value)
            return name;
    }
    return {};
}

// Asks @p done after each frame; false when it did not come true in time.
bool ConsoleWindow::runUntil(const std::function<bool()> &done)
{
    QEventLoop loop;
    QObject::connect(m_window.get(), &QQuickWindow::frameSwapped, &loop, [&loop, &done] {
        if (done())
            loop.exit(0);
    });
    QTimer::singleShot(patience, &loop, [&loop] { loop.exit(1); });
    return loop.exec() == 0;
}
