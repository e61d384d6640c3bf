#include "Child.h"

#include "Measuring.h"
#include "Program.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

#include <unistd.h>

namespace {
constexpr int longestEnd = 20'000; // milliseconds
}

Child::Child(const QString &program, const QStringList &arguments)
    : m_name(QFileInfo(program).fileName())
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(program, arguments);
    require(m_process.waitForStarted(), "there is no " + program.toStdString());
}

Child::~Child()
{
    m_process.closeWriteChannel();
    if (!m_process.waitForFinished(longestEnd))
        m_process.kill();
    m_process.waitForFinished(longestEnd);
}

void Child::say(const QString &word)
{
    m_process.write(word.toUtf8() + '\n');
    m_process.waitForBytesWritten();
}

QJsonObject Child::take(const QString &key)
{
    while (m_process.canReadLine())
        m_lines.append(QJsonDocument::fromJson(m_process.readLine()).object());
    for (qsizetype i = 0; i < m_lines.size(); ++i) {
        if (m_lines[i].contains(key))
            return m_lines.takeAt(i);
    }
    return {};
}

QJsonObject Child::hear(const QString &key, std::chrono::seconds patience)
{
    const QDeadlineTimer deadline(patience);
    for (;;) {
        const QJsonObject line = take(key);
        if (!line.isEmpty())
            return line;
        const bool isThere = m_process.waitForReadyRead(static_cast<int>(deadline.remainingTime()));
        require(isThere || m_process.canReadLine(),
                m_name.toStdString() + (deadline.hasExpired() ? " did not say in time: " : " ended before it said: ")
                    + key.toStdString());
    }
}

double Child::cpuSeconds() const
{
    return cpuSecondsOf(m_process.processId());
}

double Child::residentBytes() const
{
    return ::residentBytes(std::to_string(m_process.processId()));
}

double cpuSecondsOf(qint64 process)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(process));
    require(file.open(QIODevice::ReadOnly), "a process has ended that is measured");
    const QByteArray line = file.readAll();
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' '); // from the third on
    constexpr qsizetype userTime = 11;
    constexpr qsizetype systemTime = 12;
    const double ticks = fields.value(userTime).toDouble() + fields.value(systemTime).toDouble();
    return ticks / static_cast<double>(sysconf(_SC_CLK_TCK));
}
