#pragma once

#include <QFile>
#include <QJsonObject>
#include <QObject>
#include <QSocketNotifier>
#include <QString>

#include <functional>

// What the processes of a measurement say to each other: lines of JSON one way, words the other.

/// Prints @p object as one line of JSON. "at" is added: seconds on a clock that all processes of this machine share.
void printLine(QJsonObject object);

/// Hands each line of standard input to @p take; the application quits at its end.
class InputLines : public QObject
{
    Q_OBJECT
public:
    explicit InputLines(std::function<void(const QString &line)> take);

private:
    void read();

    std::function<void(const QString &line)> m_take;
    QFile m_input;
    QSocketNotifier m_notifier;
};
