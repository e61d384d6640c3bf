#pragma once

#include <QObject>
#include <QString>

class QQuickWindow;

/// Takes one picture of the console's window: when its page has settled and was rendered, and not before.
class Screenshot : public QObject
{
    Q_OBJECT
public:
    /// @param window the console's Main; not owned, must outlive the picture
    Screenshot(QQuickWindow &window, const QString &file, QObject *parent = nullptr);

signals:
    /// Comes once. @p error is empty when the file was written, else says why it was not.
    void finished(const QString &error);

private slots:
    void waitForFrame();

private:
    void take();

    QQuickWindow &m_window;
    QString m_file;
    int m_framesToCome = 0;
};
