#pragma once

#include <QObject>
#include <QStringList>

#include <functional>

/// Writes down every signal of an object, in order: name and arguments as text, such as getVolumeResponded(true).
/// An optional function adds what holds at the moment of the signal, such as a model's rows.
class SignalLog : public QObject
{
    // No Q_OBJECT: the log answers to slots made up from the signals of whatever it listens to.
public:
    explicit SignalLog(QObject *source, std::function<QString()> state = {});

    int qt_metacall(QMetaObject::Call call, int id, void **arguments) override;

    /// What was written since the last call.
    QStringList take();

private:
    QObject *m_source;
    std::function<QString()> m_state;
    QStringList m_lines;
};
