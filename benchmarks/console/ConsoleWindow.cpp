#include "ConsoleWindow.h"

#include "ConsoleClient.h"
#include "ConsoleTypes.h"
#include "Measuring.h"
#include "Memory.h"

#include <QEventLoop>
#include <QQmlComponent>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTimer>

#include <chrono>

namespace {

constexpr std::chrono::minutes patience{1};
constexpr int framesToRest = 8; // delegates are made a frame late, and the drawings in them one more

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

} // namespace

ConsoleWindow::ConsoleWindow(ConsoleClient &client, const QString &page)
{
    prepareConsoleEngine(m_engine);
    m_engine.setInitialProperties({
        {"recording", QVariant::fromValue(&client.plugin())},
        {"session", QVariant::fromValue(&client.session())},
        {"startPage", page},
        {"width", 1280},
        {"height", 800},
    });
    m_engine.load(QUrl(QStringLiteral("qrc:/qt/qml/RecordingConsole/Main.qml")));
    m_window = qobject_cast<QQuickWindow *>(m_engine.rootObjects().value(0));
    if (!m_window)
        qFatal("The console's window could not be loaded");
    QQmlComponent component(&m_engine);
    component.setData(R"(import QtQuick
Rectangle {
    id: dot
    property bool moving: false
    width: 8
    height: 8
    color: "gray"
    NumberAnimation on x { to: 100; duration: 1000; loops: Animation.Infinite; running: dot.moving }
})",
                      {});
    m_animation.reset(qobject_cast<QQuickItem *>(component.create()));
    if (!m_animation)
        qFatal("%s", qPrintable(component.errorString()));
    m_animation->setParentItem(m_window->contentItem());
}

ConsoleWindow::~ConsoleWindow() = default;

double ConsoleWindow::heapInUse()
{
    m_engine.collectGarbage();
    return ::heapInUse();
}

void ConsoleWindow::animate(bool moving)
{
    m_animation->setProperty("moving", moving);
}

void ConsoleWindow::refresh()
{
    QMetaObject::invokeMethod(m_window->property("currentPage").value<QObject *>(), "refresh");
}

void ConsoleWindow::letFramesPass(int count)
{
    runUntil([&count] { return --count <= 0; });
}

std::optional<Arrival> ConsoleWindow::watch(const std::function<void()> &deliver, const std::vector<Fact> &facts)
{
    Arrival arrival;
    int framesToCome = framesToRest;
    const double residentBefore = Memory::beginPeak();
    LoopWatch watch(*m_window);
    watch.start();
    const double start = LoopWatch::wallSeconds();
    QTimer::singleShot(0, m_window, deliver);
    const bool shown = runUntil([&] {
        if (arrival.shownAfter <= 0 && missing(facts).isEmpty())
            arrival.shownAfter = LoopWatch::wallSeconds() - start;
        return arrival.shownAfter > 0 && --framesToCome <= 0;
    });
    if (!shown)
        return std::nullopt;
    arrival.smoothness = watch.stop();
    arrival.peakGrowth = Memory::peak() - residentBefore;
    return arrival;
}

Smoothness ConsoleWindow::watchIdle(int milliseconds)
{
    LoopWatch watch(*m_window);
    watch.start();
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
    return watch.stop();
}

QString ConsoleWindow::missing(const std::vector<Fact> &facts) const
{
    for (const auto &[name, property, value] : facts) {
        const QQuickItem *const item = find(name);
        if (!item || item->property(property) != value)
            return name;
    }
    return {};
}

QQuickItem *ConsoleWindow::find(const QString &objectName) const
{
    return findBelow(m_window->contentItem(), objectName);
}

// Asks @p done after each frame; false when it did not come true in time.
bool ConsoleWindow::runUntil(const std::function<bool()> &done)
{
    QEventLoop loop;
    QObject::connect(m_window, &QQuickWindow::frameSwapped, &loop, [&loop, &done] {
        if (done())
            loop.exit(0);
    });
    QTimer::singleShot(patience, &loop, [&loop] { loop.exit(1); });
    return loop.exec() == 0;
}
