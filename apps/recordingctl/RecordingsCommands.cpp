#include "RecordingsCommands.h"

#include "ClientSession.h"
#include "CommandRun.h"
#include "Commands.h"
#include "Interruption.h"
#include "JsonFields.h"
#include "Output.h"
#include "RecordingGroups.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "Units.h"
#include "UsageCommands.h"
#include "link/StationCalls.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QSocketNotifier>
#include <QTimer>

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace {

QString bytesText(const QVariant &bytes)
{
    const qlonglong number = bytes.toLongLong();
    return sizeText(number < 0 ? number : number / 1024);
}

QString countText(const QVariant &count)
{
    return count.toLongLong() < 0 ? QStringLiteral("unknown") : count.toString();
}

QJsonValue deletionJson(const QVariantMap &place)
{
    if (!place.contains(StationKey::deletion))
        return {};
    const QVariantMap deletion = place.value(StationKey::deletion).toMap();
    return fieldsJson({{QStringLiteral("begunAt"), deletion.value(StationKey::begun)},
                       {QStringLiteral("endedAt"), deletion.value(StationKey::ended)},
                       {QStringLiteral("isRunning"), deletion.value(StationKey::running)},
                       {QStringLiteral("code"), deletion.value(StationKey::returnCode)}});
}

QJsonObject placeJson(const QVariantMap &place)
{
    QVariantMap fields{{QStringLiteral("isNas"), place.value(StationKey::kind) == StationVolumeKind::NAS},
                       {QStringLiteral("isCounted"), place.value(StationKey::counted)}};
    for (const QString &key :
         {StationKey::place, FieldKey::path, StationKey::folder, FieldKey::volumePath, FieldKey::volumeName,
          StationKey::state, StationKey::recordedBytes, StationKey::recordedFiles, StationKey::recordedDays,
          StationKey::oldestDay, StationKey::newestDay, StationKey::cameras, StationKey::countedAt})
        fields.insert(key, place.value(key));
    QJsonObject json = fieldsJson(fields);
    json.insert(StationKey::deletion, deletionJson(place));
    return json;
}

QJsonArray placesJson(const QVariantList &places)
{
    QJsonArray array;
    for (const QVariant &place : places)
        array.append(placeJson(place.toMap()));
    return array;
}

/// "cut off" is a deletion that no station ended.
QString deletionText(const QVariantMap &place)
{
    if (!place.contains(StationKey::deletion))
        return {};
    const QVariantMap deletion = place.value(StationKey::deletion).toMap();
    if (deletion.value(StationKey::running).toBool())
        return QStringLiteral("running");
    const QString code = deletion.value(StationKey::returnCode).toString();
    return code.isEmpty() ? QStringLiteral("cut off") : code;
}

/// That nobody knows all that is there; a place on a NAS server is counted by nobody any more.
bool isUnknown(const QVariantMap &place)
{
    const bool isThere = place.value(StationKey::state) == StationVolumeState::there
        || place.value(StationKey::state) == StationVolumeState::readOnly;
    return place.value(StationKey::recordedBytes).toLongLong() < 0
        || (isThere && !place.value(StationKey::counted).toBool());
}

struct Listing
{
    CallOutcome outcome;
    QVariantList places;
    QVariantList pending; ///< what the station does not know yet
};

Listing listed(CommandRun &run)
{
    Listing listing;
    listing.outcome = awaitFigures(run, &listing.pending);
    if (listing.outcome.exitCode != ExitCode::Done)
        return listing;
    listing.outcome = run.callStation(StationCommandName::listUnassignedRecordings);
    if (!listing.outcome.parts.isEmpty())
        listing.places = listing.outcome.parts.constLast().data.toList();
    return listing;
}

/// A line of standard input; the link to the station is served meanwhile. Empty where there is none.
QString typedLine()
{
    constexpr qsizetype longestLine = 4096;
    if (fcntl(STDIN_FILENO, F_GETFD) < 0)
        return {};
    QByteArray line;
    QEventLoop loop;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &loop, [&] {
        char byte = 0;
        const ssize_t count = read(STDIN_FILENO, &byte, 1);
        if (count < 0 && (errno == EINTR || errno == EAGAIN))
            return;
        if (count == 1 && byte != '\n' && line.size() < longestLine) {
            line += byte;
            return;
        }
        input.setEnabled(false);
        loop.quit();
    });
    loop.exec();
    return QString::fromUtf8(line.endsWith('\r') ? line.chopped(1) : line);
}

QString typedName(const QVariantMap &place)
{
    printError(QStringLiteral("Delete the recordings in %1 for good: %2, %3, %4 files? Type the name of the folder:")
                   .arg(place.value(StationKey::place).toString(), bytesText(place.value(StationKey::recordedBytes)),
                        daysText(place.value(StationKey::recordedDays).toLongLong()),
                        countText(place.value(StationKey::recordedFiles))));
    return typedLine();
}

/// Waits for the last "station.DeletionProgress" of a place; what it says, or nothing where none came.
class DeletionEnd
{
public:
    DeletionEnd(CommandRun &run, const QString &place)
        : m_run(run)
        , m_place(place)
    {
        m_timer.setSingleShot(true);
        QObject::connect(&m_timer, &QTimer::timeout, &m_loop, &QEventLoop::quit);
        QObject::connect(run.session().framework(), &HostFramework::eventDelivered, &m_loop,
                         [this](const QString &event, const QVariant &data) { take(event, data.toMap()); });
        QObject::connect(&run.session(), &ClientSession::stationStateChanged, &m_loop,
                         [this](const StationState &state) {
                             if (state.kind == StationState::Kind::Down)
                                 m_loop.quit();
                         });
    }

    QVariantMap wait()
    {
        const Interruption interruption([this] {
            m_run.session().stationCalls()->send(
                StationCommandName::cancelDeletion, QVariantMap{{StationKey::place, m_place}}, &m_loop,
                [this](const StationReply &reply) { tellCancelled(reply.returnCode); });
        });
        if (m_end.isEmpty()) {
            startTimer();
            m_loop.exec();
        }
        return m_end;
    }

private:
    void take(const QString &event, const QVariantMap &data)
    {
        if (event != StationEventName::DeletionProgress || data.value(StationKey::place) != m_place)
            return;
        startTimer();
        if (data.value(StationKey::running).toBool())
            return;
        m_end = data;
        m_loop.quit();
    }
    /// How far it came is told at the end, which may be a large file away.
    void tellCancelled(const QString &returnCode) const
    {
        if (returnCode == ReturnCode::Success)
            printError(QStringLiteral("interrupted: the station stops the deletion before its next file"));
        else if (returnCode != StationReturnCode::NoDeletion)
            printError(QStringLiteral("interrupted, but the deletion could not be cancelled: %1").arg(returnCode));
    }
    void startTimer() { m_timer.start(m_run.line().timeout.value_or(defaultTimeout)); }

    CommandRun &m_run;
    QString m_place;
    QEventLoop m_loop;
    QTimer m_timer; // since the station said something of it
    QVariantMap m_end;
};

QJsonObject deletedJson(const QVariantMap &end)
{
    QJsonObject json = fieldsJson({{StationKey::place, end.value(StationKey::place)},
                                   {QStringLiteral("deletedFiles"), end.value(StationKey::done)},
                                   {StationKey::deletedBytes, end.value(StationKey::deletedBytes)},
                                   {StationKey::leftFiles, end.value(StationKey::leftFiles)},
                                   {StationKey::leftBytes, end.value(StationKey::leftBytes)},
                                   {StationKey::leftEntries, end.value(StationKey::leftEntries)}});
    QJsonArray left;
    const QVariantList entries = end.value(StationKey::left).toList();
    for (const QVariant &entry : entries)
        left.append(fieldsJson(entry.toMap()));
    json.insert(StationKey::left, left);
    return json;
}

void printDeleted(const QVariantMap &end)
{
    printLine(QStringLiteral("Deleted: %1 files, %2")
                  .arg(countText(end.value(StationKey::done)), bytesText(end.value(StationKey::deletedBytes))));
    const qlonglong leftEntries = end.value(StationKey::leftEntries).toLongLong();
    if (leftEntries == 0)
        return;
    if (leftEntries < 0)
        return printLine(QStringLiteral("What is left is not known before it is counted again."));
    printLine(QStringLiteral("Left: %1 entries, %2 of recordings")
                  .arg(leftEntries)
                  .arg(bytesText(end.value(StationKey::leftBytes))));
    TextTable table({QStringLiteral("Path"), QStringLiteral("Reason")});
    const QVariantList entries = end.value(StationKey::left).toList();
    for (const QVariant &entry : entries) {
        table.addRow({printable(entry.toMap().value(FieldKey::path).toString()),
                      entry.toMap().value(StationKey::reason).toString()});
    }
    printText(table.toString());
}

} // namespace

TextTable unassignedTable(const QVariantList &places)
{
    TextTable table({QStringLiteral("Place"), QStringLiteral("Volume"), QStringLiteral("State"),
                     QStringLiteral("Bytes"), QStringLiteral("Files"), QStringLiteral("Recorded"),
                     QStringLiteral("From"), QStringLiteral("Until"), QStringLiteral("Cameras"),
                     QStringLiteral("Deletion")});
    for (const int column : {3, 4, 5})
        table.setRightAligned(column);
    for (const QVariant &value : places) {
        const QVariantMap place = value.toMap();
        table.addRow({printable(place.value(StationKey::place).toString()),
                      printable(place.value(FieldKey::volumeName).toString()),
                      place.value(StationKey::state).toString(), bytesText(place.value(StationKey::recordedBytes)),
                      countText(place.value(StationKey::recordedFiles)),
                      daysText(place.value(StationKey::recordedDays).toLongLong()),
                      place.value(StationKey::oldestDay).toString(), place.value(StationKey::newestDay).toString(),
                      printable(place.value(StationKey::cameras).toStringList().join(QStringLiteral(", "))),
                      deletionText(place)});
    }
    return table;
}

ExitCode showUnassigned(CommandRun &run)
{
    const Listing listing = listed(run);
    const ExitCode exitCode = run.end(listing.outcome,
                                      {[&listing] { return placesJson(listing.places); },
                                       [&listing] { printText(unassignedTable(listing.places).toString()); }});
    if (exitCode != ExitCode::Done)
        return exitCode;
    bool isAllKnown = listing.pending.isEmpty();
    for (const QVariant &value : listing.places) {
        const QVariantMap place = value.toMap();
        if (!isUnknown(place))
            continue;
        isAllKnown = false;
        const QString root = place.value(StationKey::place).toString();
        const QString text = QStringLiteral("the recordings in %1 have not been counted").arg(root);
        run.reportUnknown(QVariantMap{{StationKey::kind, StationAlarmKind::RecordingsNotCounted},
                                      {StationKey::subject, root},
                                      {StationKey::text, text},
                                      {StationKey::since, place.value(StationKey::countedAt)}},
                          QStringLiteral("unknown: ") + text);
    }
    reportPending(run, listing.pending);
    return isAllKnown ? ExitCode::Done : ExitCode::NoAnswer;
}

ExitCode assignRecordings(CommandRun &run)
{
    const QString place = run.line().arguments.at(0);
    ExitCode exitCode = ExitCode::Done;
    const QString id = groupId(run, run.line().arguments.at(1), &exitCode);
    if (id.isEmpty())
        return exitCode;
    const Listing listing = listed(run); // a station that was started just now has counted them
    if (listing.outcome.exitCode != ExitCode::Done)
        return run.end(listing.outcome);
    const CallOutcome outcome =
        run.callStation(StationCommandName::assignRecordings,
                        QVariantMap{{StationKey::place, place}, {FieldKey::recordingGroupID, id}});
    const QVariantMap moved = outcome.parts.isEmpty() ? QVariantMap() : outcome.parts.constLast().data.toMap();
    return run.end(outcome,
                   {[&] {
                        return fieldsJson({{StationKey::place, place},
                                           {QStringLiteral("groupId"), id},
                                           {FieldKey::path, moved.value(FieldKey::path)},
                                           {StationKey::movedDays, moved.value(StationKey::movedDays)}});
                    },
                    [&] {
                        printLine(QStringLiteral("%1 folders of days moved to %2")
                                      .arg(moved.value(StationKey::movedDays).toString(),
                                           printable(moved.value(FieldKey::path).toString())));
                    }});
}

ExitCode deleteRecordings(CommandRun &run)
{
    const CommandLine &line = run.line();
    const QString place = line.arguments.first();
    const Listing listing = listed(run);
    if (listing.outcome.exitCode != ExitCode::Done)
        return run.end(listing.outcome);
    QVariantMap found;
    for (const QVariant &value : listing.places) {
        if (value.toMap().value(StationKey::place) == place)
            found = value.toMap();
    }
    QString name = line.value(QStringLiteral("confirm"));
    if (!found.isEmpty() && !line.has(QStringLiteral("confirm")))
        name = typedName(found);
    DeletionEnd deletion(run, place);
    const CallOutcome outcome =
        run.callStation(StationCommandName::deleteRecordings,
                        QVariantMap{{StationKey::place, place}, {StationKey::confirmation, name}});
    if (outcome.exitCode != ExitCode::Done)
        return run.end(outcome);
    const QVariantMap end = deletion.wait();
    if (end.isEmpty()) {
        return run.noAnswer(
            QStringLiteral("nothing was heard of the end of the deletion in %1; it may go on").arg(place));
    }
    run.show({[&end] { return deletedJson(end); }, [&end] { printDeleted(end); }});
    const QString code = end.value(StationKey::returnCode).toString();
    if (code == ReturnCode::Success)
        return run.end(outcome);
    return run.refused(code, QStringLiteral("the deletion in %1 ended with %2").arg(place, code));
}
