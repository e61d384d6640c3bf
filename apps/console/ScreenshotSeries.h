#pragma once

#include "Screenshot.h"

#include <QList>
#include <QObject>
#include <QSize>
#include <QString>

#include <chrono>
#include <memory>
#include <optional>

class QQuickWindow;

/// Takes pictures of the console's window in the light and the dark theme: of every page and of the recordings of no
/// group in three sizes, and of some dialogs in the smallest. They are named PAGE-THEME-WIDTHxHEIGHT.png; in place of
/// PAGE stands "usage-unassigned", or page and dialog ("groups-edit").
class ScreenshotSeries : public QObject
{
    Q_OBJECT
public:
    /// @param window the console's Main; not owned, must outlive the series
    /// @param folder gets the files
    /// @param latest as Screenshot takes it, for each picture
    ScreenshotSeries(QQuickWindow &window, const QString &folder, std::optional<std::chrono::milliseconds> latest,
                     QObject *parent = nullptr);

signals:
    void taken(const QString &file);
    /// Comes once. @p error is empty when all files were written, else says which was not, and why.
    void finished(const QString &error);

private:
    struct Picture
    {
        int page = 0; ///< in the order of ConsolePages
        int scheme = 0; ///< of Theme.qml
        QString place; ///< on it; empty: where it is
        QString dialog; ///< over it; empty: none
        QSize size;
        QString file;
    };

    void takeNext();

    QQuickWindow &m_window;
    std::optional<std::chrono::milliseconds> m_latest;
    QList<Picture> m_pictures; // still to be taken
    std::unique_ptr<Screenshot> m_current;
};
