#include "StationLog.h"

#include "PrintableText.h"

#include <cstring>

Q_LOGGING_CATEGORY(stationLog, "recording.station", QtWarningMsg)

namespace {
QtMessageHandler nextHandler = nullptr;

void writePrintable(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    const bool isOurs = context.category && std::strcmp(context.category, stationLog().categoryName()) == 0;
    nextHandler(type, context, isOurs ? printable(message) : message);
}
} // namespace

void keepStationLogPrintable()
{
    const QtMessageHandler before = qInstallMessageHandler(writePrintable);
    if (before != writePrintable)
        nextHandler = before;
}
