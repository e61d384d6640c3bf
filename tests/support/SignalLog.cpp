#include "SignalLog.h"

#include "ModelText.h"

#include <QMetaMethod>
#include <QVariant>

#include <utility>

namespace {

QString argumentText(QMetaType type, const void *value)
{
    const QVariant variant(type, value);
    if (type == QMetaType::fromType<QVariantList>())
        return QStringLiteral("[%1]").arg(variant.toList().size());
    if (type == QMetaType::fromType<QString>())
        return u'"' + variant.toString() + u'"';
    return variant.toString();
}

// A slot has the number of its signal, moved behind the methods that every QObject has.
const int firstOwn = QObject::staticMetaObject.methodCount();

} // namespace

SignalLog::SignalLog(QObject *source, std::function<QString()> state)
    : m_source(source)
    , m_state(std::move(state))
{
    const QMetaObject *meta = source->metaObject();
    for (int signal = firstOwn; signal < meta->methodCount(); ++signal) {
        if (meta->method(signal).methodType() == QMetaMethod::Signal)
            QMetaObject::connect(source, signal, this, firstOwn + signal, Qt::DirectConnection);
    }
}

int SignalLog::qt_metacall(QMetaObject::Call call, int id, void **arguments)
{
    const int signal = id - firstOwn;
    if (call != QMetaObject::InvokeMetaMethod || signal < firstOwn)
        return QObject::qt_metacall(call, id, arguments);
    const QMetaMethod method = m_source->metaObject()->method(signal);
    QStringList texts;
    for (int i = 0; i < method.parameterCount(); ++i)
        texts.append(argumentText(method.parameterMetaType(i), arguments[i + 1]));
    QString line = QStringLiteral("%1(%2)").arg(QString::fromLatin1(method.name()), texts.join(QStringLiteral(", ")));
    if (m_state)
        line += QStringLiteral(" with ") + m_state();
    m_lines.append(line);
    return -1;
}

QStringList SignalLog::take()
{
    return std::exchange(m_lines, {});
}
