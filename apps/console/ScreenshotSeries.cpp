#include "ScreenshotSeries.h"

#include "ConsolePages.h"

#include <QDir>
#include <QQuickWindow>

#include <utility>

namespace {
struct Scheme
{
    const char *name;
    int number; // in Theme.qml
};

constexpr Scheme schemes[] = {{"light", 1}, {"dark", 2}};
constexpr QSize sizes[] = {{800, 600}, {1280, 800}, {1920, 1080}};

struct View
{
    QString name; // of the file
    QString page;
    QString place = {};
    QString dialog = {};
};

// Pages first: a dialog opens over a page that has what it shows.
QList<View> views()
{
    QList<View> views;
    const QStringList pages = ConsolePages::keys();
    for (const QString &page : pages)
        views.append({page, page});
    views += {
        {QStringLiteral("usage-unassigned"), QStringLiteral("usage"), QStringLiteral("unassigned")},
        {QStringLiteral("groups-edit"), QStringLiteral("groups"), {}, QStringLiteral("edit")},
        {QStringLiteral("groups-add"), QStringLiteral("groups"), {}, QStringLiteral("add")},
        {QStringLiteral("cameras-add"), QStringLiteral("cameras"), {}, QStringLiteral("add")},
        {QStringLiteral("nas-add"), QStringLiteral("nas"), {}, QStringLiteral("add")},
        {QStringLiteral("groups-help"), QStringLiteral("groups"), {}, QStringLiteral("help")},
    };
    return views;
}
} // namespace

ScreenshotSeries::ScreenshotSeries(QQuickWindow &window, const QString &folder,
                                   std::optional<std::chrono::milliseconds> latest, QObject *parent)
    : QObject(parent)
    , m_window(window)
    , m_latest(latest)
{
    const QStringList pages = ConsolePages::keys();
    const QList<View> all = views();
    for (const View &view : all) {
        for (const Scheme &scheme : schemes) {
            for (const QSize size : sizes) {
                if (!view.dialog.isEmpty() && size != sizes[0])
                    continue;
                const QString name = QStringLiteral("%1-%2-%3x%4.png")
                                         .arg(view.name, QLatin1String(scheme.name))
                                         .arg(size.width())
                                         .arg(size.height());
                m_pictures.append({static_cast<int>(pages.indexOf(view.page)), scheme.number, view.place, view.dialog,
                                   size, QDir(folder).filePath(name)});
            }
        }
    }
    takeNext();
}

void ScreenshotSeries::takeNext()
{
    if (m_pictures.isEmpty()) {
        emit finished({});
        return;
    }
    const Picture picture = m_pictures.takeFirst();
    m_window.resize(picture.size);
    QMetaObject::invokeMethod(&m_window, "present", Q_ARG(int, picture.page), Q_ARG(int, picture.scheme),
                              Q_ARG(QString, picture.place), Q_ARG(QString, picture.dialog));
    m_current = std::make_unique<Screenshot>(m_window, picture.file, m_latest);
    const auto follow = [this, file = picture.file](const QString &error) {
        if (error.isEmpty())
            emit taken(file);
        else
            m_pictures.clear();
        // The picture that says so ends with the next one.
        QMetaObject::invokeMethod(
            this,
            [this, file, error] {
                if (error.isEmpty())
                    takeNext();
                else
                    emit finished(QStringLiteral("%1: %2").arg(file, error));
            },
            Qt::QueuedConnection);
    };
    connect(m_current.get(), &Screenshot::finished, this, follow);
}
