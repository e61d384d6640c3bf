#pragma once

#include <QObject>
#include <QString>

#include <chrono>
#include <optional>

class QQuickWindow;

/// Takes one picture of the console's window: when its page has settled and was rendered, or at the latest when asked
/// to.
class Screenshot : public QObject
{
    Q_OBJECT
public:
    /// @param window the console's Main; not owned, must outlive the picture
    /// @param latest after which the picture is taken as the page is then, waiting or refused; none: it is taken when
    /// the page has settled, and a page that could not be filled is an error
    Screenshot(QQuickWindow &window, const QString &file, std::optional<std::chrono::milliseconds> latest = {},
               QObject *parent = nullptr);

signals:
    /// Comes once. @p error is empty when the file was written, else says why it was not.
    void finished(const QString &error);

private slots:
    void waitForFrame();

private:
    void render();
    void take();

    QQuickWindow &m_window;
    QString m_file;
    bool m_isAnyStateTaken; // also that of a page that was not filled
    int m_framesToCome = 0;
};
