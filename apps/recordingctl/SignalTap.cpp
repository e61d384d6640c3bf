#include "SignalTap.h"

#include "PluginInterface.h"

#include <utility>

SignalTap::SignalTap(QObject *source, Receiver receiver)
    : m_signals(PluginInterface(*source->metaObject()).signalMethods())
    , m_receiver(std::move(receiver))
{
    const int firstSlot = QObject::staticMetaObject.methodCount();
    for (int number = 0; number < m_signals.size(); ++number)
        QMetaObject::connect(source, m_signals.at(number).methodIndex(), this, firstSlot + number,
                             Qt::DirectConnection);
}

int SignalTap::qt_metacall(QMetaObject::Call call, int id, void **arguments)
{
    id = QObject::qt_metacall(call, id, arguments);
    if (id < 0 || call != QMetaObject::InvokeMetaMethod || id >= m_signals.size())
        return id;
    const QMetaMethod signal = m_signals.at(id);
    QVariantList values;
    for (int index = 0; index < signal.parameterCount(); ++index)
        values.append(QVariant(signal.parameterMetaType(index), arguments[index + 1]));
    m_receiver(signal, values);
    return -1;
}
