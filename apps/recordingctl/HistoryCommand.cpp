#include "HistoryCommand.h"

#include "CommandRun.h"
#include "JsonFields.h"
#include "Output.h"
#include "RecordingGroups.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "Units.h"

namespace {

constexpr qlonglong bytesPerKilobyte = 1024;

qlonglong numberIn(const QVariant &sample, const QString &key)
{
    return sample.toMap().value(key, -1).toLongLong();
}

QString bytesText(qlonglong bytes)
{
    return sizeText(bytes < 0 ? bytes : bytes / bytesPerKilobyte);
}

/// The request's words for what was typed. Nothing, with @p exitCode set, when there is no such thing.
QVariantMap subject(CommandRun &run, ExitCode *exitCode)
{
    const QString kind = run.line().arguments.at(0);
    const QString text = run.line().arguments.at(1);
    if (kind == QStringLiteral("volume"))
        return {{StationKey::kind, StationHistoryKind::volume}, {FieldKey::path, text}};
    const QString id = groupId(run, text, exitCode);
    if (id.isEmpty())
        return {};
    return {{StationKey::kind, StationHistoryKind::recordingGroup}, {StationKey::id, id}};
}

struct History
{
    CallOutcome outcome;
    QVariantList samples;
    QVariantList gaps;
};

/// All that the station has, reply after reply.
History readAll(CommandRun &run, QVariantMap request)
{
    History history;
    while (true) {
        history.outcome = run.callStation(StationCommandName::readHistory, request);
        if (history.outcome.exitCode != ExitCode::Done)
            return history;
        const QVariantMap part = history.outcome.parts.constLast().data.toMap();
        history.samples += part.value(StationKey::samples).toList();
        history.gaps += part.value(StationKey::gaps).toList();
        if (!part.contains(StationKey::moreFrom))
            return history;
        request.insert(StationKey::from, part.value(StationKey::moreFrom));
    }
}

void print(const History &history, bool isVolume)
{
    const TextTable table = isVolume ? volumeHistoryTable(history.samples) : groupHistoryTable(history.samples);
    printText(table.toString());
    for (const QVariant &gap : history.gaps) {
        const QVariantMap map = gap.toMap();
        printLine(QStringLiteral("No samples from %1 until %2: no station was sampling")
                      .arg(map.value(StationKey::from).toString(), map.value(StationKey::until).toString()));
    }
}

QJsonObject json(const History &history)
{
    return fieldsJson({{StationKey::samples, history.samples}, {StationKey::gaps, history.gaps}},
                      StationCommandName::readHistory);
}

} // namespace

TextTable groupHistoryTable(const QVariantList &samples)
{
    TextTable table({QStringLiteral("Time"), QStringLiteral("Recorded"), QStringLiteral("Remaining"),
                     QStringLiteral("Reserved time"), QStringLiteral("Per day"), QStringLiteral("Recordings"),
                     QStringLiteral("Reserved space")});
    for (const int column : {1, 2, 3, 4, 5, 6})
        table.setRightAligned(column);
    for (const QVariant &sample : samples) {
        const qlonglong minutes = numberIn(sample, FieldKey::recordingGroupReservedTime);
        const qlonglong megabytes = numberIn(sample, FieldKey::reserveSpace);
        table.addRow({sample.toMap().value(StationKey::time).toString(),
                      daysText(numberIn(sample, StationKey::recordedDays)),
                      daysText(numberIn(sample, StationKey::remainingDays)),
                      minutes < 0 ? daysText(minutes) : minutesText(minutes),
                      bytesText(numberIn(sample, StationKey::oneDayUsage)),
                      bytesText(numberIn(sample, StationKey::recordedBytes)),
                      sizeText(megabytes < 0 ? megabytes : megabytes * 1024)});
    }
    return table;
}

TextTable volumeHistoryTable(const QVariantList &samples)
{
    TextTable table(
        {QStringLiteral("Time"), QStringLiteral("Size"), QStringLiteral("Free"), QStringLiteral("Recordings")});
    for (const int column : {1, 2, 3})
        table.setRightAligned(column);
    for (const QVariant &sample : samples) {
        table.addRow({sample.toMap().value(StationKey::time).toString(),
                      sizeText(numberIn(sample, FieldKey::volumeSize)),
                      sizeText(numberIn(sample, FieldKey::volumeAvailableSize)),
                      bytesText(numberIn(sample, StationKey::recordedBytes))});
    }
    return table;
}

ExitCode showHistory(CommandRun &run)
{
    const QString kind = run.line().arguments.at(0);
    const bool isVolume = kind == QStringLiteral("volume");
    if (!isVolume && kind != QStringLiteral("group"))
        return run.wrongUse(QStringLiteral("history: group or volume was expected, not \"%1\"").arg(kind));
    ExitCode exitCode = ExitCode::Done;
    QVariantMap request = subject(run, &exitCode);
    if (request.isEmpty())
        return exitCode;
    request.insert(StationKey::resolution, run.line().value(StationKey::resolution, StationResolution::day));
    for (const QString &option : {StationKey::from, StationKey::until}) {
        if (run.line().has(option))
            request.insert(option, run.line().value(option));
    }
    const History history = readAll(run, request);
    return run.end(history.outcome, {[&] { return json(history); }, [&] { print(history, isVolume); }});
}
