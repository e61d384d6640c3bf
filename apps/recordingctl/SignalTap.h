#pragma once

#include <QList>
#include <QMetaMethod>
#include <QObject>
#include <QVariantList>

#include <functional>

/// Receives every signal that the class of an object adds to QObject's, known only by the meta-object.
class SignalTap : public QObject // no Q_OBJECT: it stands in for slots that no compiler has seen
{
public:
    using Receiver = std::function<void(const QMetaMethod &signal, const QVariantList &arguments)>;

    /// Calls @p receiver within each emission.
    /// @param source not owned; may end first
    SignalTap(QObject *source, Receiver receiver);

    int qt_metacall(QMetaObject::Call call, int id, void **arguments) override;

private:
    QList<QMetaMethod> m_signals; // by the number of the slot that stands for each
    Receiver m_receiver;
};
