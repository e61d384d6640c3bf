#include "TraceRecorder.h"

#include "tracerecorder/TraceRecorderLibrary.h"

#include <QLibrary>

namespace {

constexpr std::uint32_t severityMask = 0xff;
constexpr int errorSeverity = 2;

TraceRecorderTake takeFunction()
{
    const auto take =
        reinterpret_cast<TraceRecorderTake>(QLibrary::resolve(QStringLiteral("ZarnLogUtl"), "TraceRecorder_Take"));
    if (!take)
        qFatal("The recording trace library is not on LD_LIBRARY_PATH; run the test with ctest.");
    return take;
}

} // namespace

QList<TraceLine> takeTraceRecords()
{
    static const TraceRecorderTake take = takeFunction();
    std::size_t count = 0;
    const TraceRecord *const records = take(&count);
    QList<TraceLine> lines;
    for (std::size_t i = 0; i < count; ++i) {
        const TraceRecord &record = records[i];
        lines.append({static_cast<int>(record.level & severityMask), QString::fromUtf8(record.text),
                      QString::fromUtf8(record.sourceFile), record.line});
    }
    return lines;
}

QStringList takeTraceLines()
{
    QStringList texts;
    const QList<TraceLine> lines = takeTraceRecords();
    for (const TraceLine &line : lines)
        texts.append((line.severity == errorSeverity ? QStringLiteral("error: ") : QStringLiteral("trace: "))
                     + line.text);
    return texts;
}

QStringList takeErrorLines()
{
    QStringList texts;
    const QList<TraceLine> lines = takeTraceRecords();
    for (const TraceLine &line : lines) {
        if (line.severity == errorSeverity)
            texts.append(line.text);
    }
    return texts;
}
