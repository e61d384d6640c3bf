#include "Screenshot.h"

#include <QImage>
#include <QImageWriter>
#include <QMetaProperty>
#include <QQuickWindow>
#include <QTimer>

namespace {
constexpr int framesUntilComplete = 4; // rows of a list are made a frame late, and the drawings in them one more
} // namespace

Screenshot::Screenshot(QQuickWindow &window, const QString &file, std::optional<std::chrono::milliseconds> latest,
                       QObject *parent)
    : QObject(parent)
    , m_window(window)
    , m_file(file)
    , m_isAnyStateTaken(latest.has_value())
{
    if (latest)
        QTimer::singleShot(*latest, this, &Screenshot::render);
    const QMetaObject *type = window.metaObject();
    const QMetaProperty settled = type->property(type->indexOfProperty("settled"));
    connect(&window, settled.notifySignal(), this, metaObject()->method(metaObject()->indexOfSlot("waitForFrame()")));
    QMetaObject::invokeMethod(this, &Screenshot::waitForFrame, Qt::QueuedConnection);
}

void Screenshot::waitForFrame()
{
    if (m_window.property("settled").toBool())
        render();
}

void Screenshot::render()
{
    if (m_framesToCome != 0)
        return;
    m_framesToCome = framesUntilComplete;
    connect(
        &m_window, &QQuickWindow::frameSwapped, this,
        [this] {
            if (m_framesToCome <= 0)
                return;
            if (--m_framesToCome == 0)
                take();
            else
                m_window.update();
        },
        Qt::QueuedConnection);
    m_window.update();
}

void Screenshot::take()
{
    m_framesToCome = -1; // and no more
    const QString failure = m_window.property("failure").toString();
    if (!failure.isEmpty() && !m_isAnyStateTaken) {
        emit finished(failure);
        return;
    }
    QImageWriter writer(m_file, "png");
    writer.setCompression(100);
    emit finished(writer.write(m_window.grabWindow())
                      ? QString()
                      : QStringLiteral("%1 could not be written: %2").arg(m_file, writer.errorString()));
}
