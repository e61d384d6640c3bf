#include "ServiceLog.h"

#include "PrintableText.h"

#include <QByteArray>

#include <atomic>

#include <systemd/sd-daemon.h>
#include <unistd.h>

Q_LOGGING_CATEGORY(serviceLog, "recording.service", QtInfoMsg)

namespace {
std::atomic<LogForm> logForm = LogForm::Plain;

const char *levelPrefix(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return SD_DEBUG;
    case QtInfoMsg:
        return SD_INFO;
    case QtWarningMsg:
        return SD_WARNING;
    case QtCriticalMsg:
        return SD_ERR;
    case QtFatalMsg:
        return SD_CRIT;
    }
    return SD_ERR;
}

/// In one piece: lines of several threads do not mix.
void writeLine(QtMsgType type, const QString &text)
{
    const QByteArray prefix = logForm == LogForm::Journal ? QByteArray(levelPrefix(type)) : QByteArray();
    const QByteArray line = prefix + text.toUtf8() + '\n';
    static_cast<void>(!write(STDERR_FILENO, line.constData(), static_cast<size_t>(line.size())));
}

void writeMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    const QString text = qFormatLogMessage(type, context, printable(message));
    if (!text.isNull())
        writeLine(type, text);
}
} // namespace

LogForm wantedLogForm()
{
    const bool isService = qEnvironmentVariableIsSet("JOURNAL_STREAM") || qEnvironmentVariableIsSet("INVOCATION_ID");
    return isService && isatty(STDERR_FILENO) == 0 ? LogForm::Journal : LogForm::Plain;
}

void startServiceLog(LogForm form)
{
    logForm = form;
    qInstallMessageHandler(writeMessage);
}

void writeError(const QString &error)
{
    writeLine(QtCriticalMsg, QStringLiteral("recording-stationd: ") + printable(error));
}
