#include "CommandForms.h"

#include "StationVocabulary.h"

#include <QDateTime>

#include <algorithm>
#include <limits>

namespace {

constexpr qsizetype any = std::numeric_limits<qsizetype>::max();

template<qint64 least, qint64 most>
QString wholeNumber(const QString &value)
{
    bool ok = false;
    const qint64 number = value.toLongLong(&ok);
    if (ok && number >= least && number <= most)
        return {};
    return most == std::numeric_limits<int>::max()
        ? QStringLiteral("a whole number from %1").arg(least)
        : QStringLiteral("a whole number from %1 to %2").arg(least).arg(most);
}

QString seconds(const QString &value)
{
    constexpr double longest = 86400; // a day
    bool ok = false;
    const double number = value.toDouble(&ok);
    return ok && number >= 0.001 && number <= longest
        ? QString()
        : QStringLiteral("a number of seconds from 0.001 to %1").arg(longest);
}

QString megabytes(const QString &value)
{
    bool ok = false;
    const qint64 number = value.toLongLong(&ok);
    return ok && number >= 0 && number % 1024 == 0 ? QString() : QStringLiteral("a multiple of 1024 MB from 0");
}

QString pathKind(const QString &value)
{
    const QStringList kinds{QStringLiteral("Local"), QStringLiteral("NetHost"), QStringLiteral("NetDomain")};
    return kinds.contains(value) ? QString() : QStringLiteral("Local, NetHost or NetDomain");
}

QString someText(const QString &value)
{
    return value.isEmpty() ? QStringLiteral("some text") : QString();
}

QString utcTime(const QString &value)
{
    const QDateTime time = QDateTime::fromString(value, Qt::ISODate);
    return time.isValid() && time.timeSpec() == Qt::UTC ? QString()
                                                        : QStringLiteral("a time in UTC like 2026-03-20T00:00:00Z");
}

QString resolution(const QString &value)
{
    return value == StationResolution::hour || value == StationResolution::day ? QString()
                                                                               : QStringLiteral("hour or day");
}

constexpr int intMax = std::numeric_limits<int>::max();

constexpr auto common = "json connect data station";

constexpr CommandForm commands[] = {
    {"list", 0, 0, "", "", "", "every invokable, signal and enumeration of the plug-in"},
    {"call", 1, any, "NAME [ARGUMENT...]", "", "timeout", "call an invokable and wait for its answer"},
    {"watch", 0, 0, "", "", "timeout count all", "print events, signals, usage and alarms as they come"},
    {"stations", 0, 0, "", "", "timeout", "all stations: whether they are up, short of days, free space and alarms"},
    {"each", 2, any, "PATTERN -- COMMAND [ARGUMENT...]", "", "parallel timeout",
     "the same command for all stations whose id or name fits"},
    {"volumes", 0, 0, "", "", "timeout", "this station's volumes"},
    {"folders", 0, 1, "[PATH]", "", "timeout", "the folders in PATH; the roots of the volumes without it"},
    {"mkdir", 1, 1, "PATH", "", "timeout", "make the folder PATH, parents included"},
    {"tree", 0, 0, "", "", "timeout", "the station and its recording groups"},
    {"groups", 0, 0, "", "", "timeout", "the recording groups with their paths and reserves"},
    {"group-add", 1, 1, "NAME", "path", "kind reserve recovery reserved-time member time-shift seamless timeout",
     "make a recording group; prints its id"},
    {"group-update", 1, 1, "GROUP", "", "name reserved-time add-member remove-member time-shift seamless timeout",
     "change a recording group"},
    {"group-remove", 1, any, "GROUP...", "", "timeout", "remove recording groups; recorded files stay"},
    {"group-path-add", 2, any, "GROUP PATH...", "", "kind reserve recovery timeout", "add paths to a recording group"},
    {"group-path-set", 2, any, "GROUP PATH...", "", "kind reserve recovery no-recovery timeout",
     "change paths of a recording group"},
    {"group-path-remove", 2, any, "GROUP PATH...", "", "timeout", "take paths off a recording group; files stay"},
    {"group-members", 1, 1, "GROUP", "", "timeout", "the cameras and streams that a recording group records"},
    {"cameras", 0, 0, "", "", "timeout", "the cameras that the station knows"},
    {"camera-add", 1, 1, "NAME", "", "streams timeout", "make a camera known to the station"},
    {"camera-remove", 1, 1, "NAME", "", "timeout", "make the station forget a camera that no group records"},
    {"site-sample", 0, 0, "", "", "timeout", "fill an empty station with cameras, groups and recordings to look at"},
    {"usage", 0, 0, "", "", "timeout all", "recorded and remaining days of the recording groups, and their volumes"},
    {"alarms", 0, 0, "", "", "past limit timeout", "volumes in trouble and recording groups short of days"},
    {"alarm-acknowledge", 2, 2, "KIND SUBJECT", "", "note withdraw timeout",
     "say that an alarm of the station is seen; it goes on"},
    {"storage", 0, 0, "", "", "timeout", "what each volume holds: recordings, other files and what is free"},
    {"recordings-unassigned", 0, 0, "", "", "timeout", "recordings that belong to no recording group"},
    {"recordings-assign", 2, 2, "PLACE GROUP", "", "timeout", "move such recordings into a group on the same volume"},
    {"recordings-delete", 1, 1, "PLACE", "", "confirm timeout", "delete such recordings for good"},
    {"forecast", 1, any, "COMMAND [ARGUMENT...]", "", "timeout",
     "what a group-add, -update, -remove or -path- command would do; changes nothing"},
    {"activity", 0, 0, "", "", "group from until limit timeout", "who edited what, the newest first"},
    {"history", 2, 2, "group|volume NAME|PATH", "", "from until resolution timeout",
     "what the figures of a recording group or volume were"},
    {"nas", 0, 0, "", "", "timeout", "the NAS servers that the station knows"},
    {"nas-add", 1, 1, "HOST", "", "user domain password timeout", "add a NAS server; prints its id"},
    {"nas-update", 1, 1, "SERVER", "", "host user domain password timeout", "change a NAS server"},
    {"nas-remove", 1, 1, "SERVER", "", "timeout", "remove a NAS server"},
    {"nas-folders", 1, 1, "PATH", "", "user domain password timeout", "the folders in PATH of a NAS server"},
    {"nas-capacity", 1, 1, "PATH", "", "user domain password timeout", "what the share of PATH holds"},
    {"nas-volumes", 1, any, "PATH...", "", "timeout", "use paths of NAS servers as volumes"},
};

/// Whether @p name is one of @p words, which are separated by spaces.
bool isAmong(const char *words, const char *name)
{
    return QString::fromLatin1(words).split(u' ').contains(QLatin1String(name));
}

QString optionText(const OptionForm &option)
{
    QString text = QStringLiteral("--%1").arg(QLatin1String(option.name));
    if (option.value)
        text += u' ' + QLatin1String(option.value);
    return option.repeats ? text + QStringLiteral("...") : text;
}

QString optionLines(const CommandForm *form)
{
    QString text = QStringLiteral("\nOptions:\n");
    for (const OptionForm &option : optionForms()) {
        const bool shown =
            form ? takesOption(*form, option) : isAmong("json connect data station timeout count", option.name);
        if (shown)
            text += QStringLiteral("  %1  %2\n").arg(optionText(option), -27).arg(QLatin1String(option.what));
    }
    return text;
}

} // namespace

const QList<OptionForm> &optionForms()
{
    static const QList<OptionForm> forms{
        {"path", "PATH", true, someText, "folder that the recording group writes to"},
        {"kind", "KIND", false, pathKind, "of the paths: Local (default), NetHost or NetDomain"},
        {"reserve", "MB", false, megabytes, "reserved space on each of the paths, a multiple of 1024 (default 2048)"},
        {"recovery", nullptr, false, nullptr, "the paths take recordings that are fetched later"},
        {"no-recovery", nullptr, false, nullptr, "they do not"},
        {"name", "NAME", false, someText, "new name of the recording group"},
        {"reserved-time", "MINUTES", false, wholeNumber<0, intMax>, "how long recordings are kept; 0: no such rule"},
        {"member", "CAMERA[:STREAM]", true, someText, "record this stream of the camera (default 0)"},
        {"add-member", "CAMERA[:STREAM]", true, someText, "record this stream, too"},
        {"remove-member", "CAMERA[:STREAM]", true, someText, "no more; without STREAM every stream of the camera"},
        {"time-shift", nullptr, false, nullptr, "the members given are recorded for time shift"},
        {"seamless", nullptr, false, nullptr, "the members given are recorded seamlessly"},
        {"streams", "N", false, wholeNumber<1, 16>, "how many streams the camera has (default 1)"},
        {"host", "HOST", false, someText, "new host of the NAS server"},
        {"user", "USER", false, nullptr, "who logs on (default Guest)"},
        {"domain", "DOMAIN", false, nullptr, "where the user is known (default Host)"},
        {"password", "-|@FILE", false, nullptr, "read from standard input or a file, never typed here"},
        {"from", "TIME", false, utcTime, "of this time and later (default: all)"},
        {"until", "TIME", false, utcTime, "before this time"},
        {"resolution", "STEP", false, resolution, "one sample for each hour, or for each day (default)"},
        {"group", "GROUP", false, someText, "edits of this recording group alone"},
        {"limit", "N", false, wholeNumber<1, 1000>, "no more entries than that (default 100)"},
        {"past", nullptr, false, nullptr, "those of the station that are over, the last one first"},
        {"note", "TEXT", false, someText, "what others shall know, up to 1000 characters"},
        {"withdraw", nullptr, false, nullptr, "it is not acknowledged any more"},
        {"confirm", "NAME", false, nullptr, "the name of the folder, which is asked for otherwise"},
        {"all", nullptr, false, nullptr, "of all stations"},
        {"parallel", "N", false, wholeNumber<1, 64>, "at most so many stations at a time (default 8)"},
        {"json", nullptr, false, nullptr, "results as JSON; one line for each with watch"},
        {"connect", "URL", false, someText,
         "the station: local:DIR, mqtts://BROKER/ID, or embedded:DIR inside this process ($RECORDING_CONNECT)"},
        {"data", "DIR", false, someText, "the station's data folder, short for --connect local:DIR"},
        {"station", "ID", false, someText, "the station of that id in place of the one that the URL names"},
        {"timeout", "SECONDS", false, seconds, "for the station (default 30); how long watch lasts (default for ever)"},
        {"count", "N", false, wholeNumber<1, intMax>, "watch: end after N lines"},
    };
    return forms;
}

const CommandForm *commandForm(const QString &name)
{
    for (const CommandForm &form : commands) {
        if (name == QLatin1String(form.name))
            return &form;
    }
    return nullptr;
}

bool takesOption(const CommandForm &form, const OptionForm &option)
{
    return isAmong(common, option.name) || isAmong(form.needs, option.name) || isAmong(form.takes, option.name);
}

QStringList neededOptions(const CommandForm &form)
{
    return QString::fromLatin1(form.needs).split(u' ', Qt::SkipEmptyParts);
}

bool mayBeForecast(const CommandForm &form)
{
    return isAmong("group-add group-update group-remove group-path-add group-path-set group-path-remove", form.name);
}

QStringList commandNames()
{
    QStringList names;
    for (const CommandForm &form : commands)
        names.append(QLatin1String(form.name));
    return names;
}

QString usageText(const CommandForm &form)
{
    QString text = QStringLiteral("recordingctl %1").arg(QLatin1String(form.name));
    if (*form.arguments)
        text += u' ' + QLatin1String(form.arguments);
    for (const OptionForm &option : optionForms()) {
        if (isAmong(form.needs, option.name))
            text += u' ' + optionText(option);
        else if (isAmong(form.takes, option.name) && qstrcmp(option.name, "timeout") != 0)
            text += QStringLiteral(" [%1]").arg(optionText(option));
    }
    return text;
}

QString helpText(const CommandForm *form)
{
    if (form)
        return QStringLiteral("Usage: %1\n%2\n").arg(usageText(*form), QLatin1String(form->what)) + optionLines(form);
    QString text = QStringLiteral("Usage: recordingctl COMMAND [ARGUMENT...] [OPTION...]\n"
                                  "The recording-management plug-in and a station on this machine, by hand and in "
                                  "scripts.\n\nCommands:\n");
    for (const CommandForm &command : commands)
        text +=
            QStringLiteral("  %1  %2\n")
                .arg(QStringLiteral("%1 %2").arg(QLatin1String(command.name), QLatin1String(command.arguments)), -30)
                .arg(QLatin1String(command.what));
    text += optionLines(nullptr);
    text += QStringLiteral(
        "  COMMAND --help               what the command takes besides\n"
        "  --help, --version\n"
        "  --                           what follows is no option, also when it begins with a dash\n"
        "\n"
        "GROUP is the name or the id of a recording group, SERVER the host or the id of a NAS server.\n"
        "\n"
        "Arguments of call go by the types that list shows: texts as they are; true or false; numbers; enumerators by\n"
        "name or number; lists and maps as JSON. A list of texts may be one plain text. A password is - (standard\n"
        "input) or @FILE.\n"
        "\n"
        "Exit codes: 0 done, 1 the station or the plug-in said no, 2 wrong use, 3 no answer in time.\n");
    return text;
}
