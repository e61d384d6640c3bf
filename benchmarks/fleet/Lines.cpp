#include "Lines.h"

#include "Measuring.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <cstdio>
#include <utility>

#include <unistd.h>

void printLine(QJsonObject object)
{
    object.insert(QStringLiteral("at"), wallSeconds());
    const QByteArray line = QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fflush(stdout);
}

InputLines::InputLines(std::function<void(const QString &line)> take)
    : m_take(std::move(take))
    , m_notifier(STDIN_FILENO, QSocketNotifier::Read)
{
    if (!m_input.open(STDIN_FILENO, QIODevice::ReadOnly | QIODevice::Unbuffered))
        qFatal("Standard input cannot be read.");
    connect(&m_notifier, &QSocketNotifier::activated, this, &InputLines::read);
}

void InputLines::read()
{
    const QByteArray line = m_input.readLine();
    if (line.isEmpty()) {
        m_notifier.setEnabled(false);
        QCoreApplication::quit();
        return;
    }
    m_take(QString::fromUtf8(line.trimmed()));
}
