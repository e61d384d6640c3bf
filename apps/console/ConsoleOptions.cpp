#include "ConsoleOptions.h"

#include "ConsolePages.h"
#include "link/StationUrl.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QPluginLoader>
#include <QRegularExpression>

#include <memory>

namespace {
const QStringList schemes{QStringLiteral("system"), QStringLiteral("light"), QStringLiteral("dark")};
const QStringList textSizes{QStringLiteral("100"), QStringLiteral("110"), QStringLiteral("125"),
                            QStringLiteral("150"), QStringLiteral("175"), QStringLiteral("200")}; // as in Theme.qml
constexpr int smallestSide = 200;
constexpr int largestSide = 8192;
constexpr int longestWait = 50; // seconds for a picture

QString alternatives(const QStringList &words)
{
    return words.mid(0, words.size() - 1).join(QStringLiteral(", ")) + QStringLiteral(" or ") + words.constLast();
}

std::unique_ptr<QCommandLineParser> newParser()
{
    auto parser = std::make_unique<QCommandLineParser>();
    parser->setApplicationDescription(QStringLiteral("Shows and manages where a recording server stores video.\n\n"
                                                     "Without a display:\n"
                                                     "  recording-console --platform offscreen --screenshot FILE"));
    parser->addOptions({
        {QStringLiteral("page"),
         QStringLiteral("Page to begin with: %1. At first volumes, then the one shown last.")
             .arg(alternatives(ConsolePages::keys())),
         QStringLiteral("NAME")},
        {QStringLiteral("folder"), QStringLiteral("Folder that the folders page begins in."), QStringLiteral("PATH")},
        {QStringLiteral("connect"),
         QStringLiteral(
             "The station: local:DIR, one on this machine that is started where none runs, mqtts://BROKER/ID, "
             "one behind a broker, or embedded:DIR, one inside the console. At first $RECORDING_CONNECT, or this "
             "user's own."),
         QStringLiteral("URL")},
        {QStringLiteral("data"),
         QStringLiteral(
             "Folder that the station keeps its data in, made when it is missing; short for --connect local:DIR."),
         QStringLiteral("DIR")},
        {QStringLiteral("theme"),
         QStringLiteral(
             "Colours: light, dark, or system as the desktop has them. At first system, then the ones chosen last."),
         QStringLiteral("NAME")},
        {QStringLiteral("text-size"),
         QStringLiteral("Size of text in percent: %1. At first 100, then the one chosen last.")
             .arg(alternatives(textSizes)),
         QStringLiteral("PERCENT")},
        {QStringLiteral("size"), QStringLiteral("Size of the window. At first 1280x800, then as it was left."),
         QStringLiteral("WxH")},
        {QStringLiteral("platform"), QStringLiteral("Qt's platform plug-in: xcb, wayland, offscreen, ..."),
         QStringLiteral("NAME")},
        {QStringLiteral("screenshot"),
         QStringLiteral("Write a picture (PNG) of the page to FILE once its data is there, and leave."),
         QStringLiteral("FILE")},
        {QStringLiteral("screenshots"),
         QStringLiteral(
             "Write pictures of all pages to DIR, light and dark, at 800x600, 1280x800 and 1920x1080, and leave."),
         QStringLiteral("DIR")},
        {QStringLiteral("after"),
         QStringLiteral("Take each picture SECONDS after its page was asked for at the latest, waiting or refused."),
         QStringLiteral("SECONDS")},
        {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help.")},
        {{QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Show the version.")},
    });
    return parser;
}

ConsoleOptions refused(const QString &error)
{
    ConsoleOptions options;
    options.action = ConsoleOptions::Action::Refuse;
    options.error = error;
    return options;
}

QSize sizeFrom(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^([0-9]{1,5})x([0-9]{1,5})$"));
    const QRegularExpressionMatch match = form.match(text);
    const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
    const QSize smallest(smallestSide, smallestSide);
    const QSize largest(largestSide, largestSide);
    return size.expandedTo(smallest) == size && size.boundedTo(largest) == size ? size : QSize();
}
} // namespace

ConsoleOptions ConsoleOptions::parse(const QStringList &arguments)
{
    const auto parser = newParser();
    if (!parser->parse(arguments))
        return refused(parser->errorText());
    const auto value = [&parser](const char *name, const QString &otherwise = {}) {
        const QString option = QString::fromLatin1(name);
        return parser->isSet(option) ? parser->value(option) : otherwise;
    };

    ConsoleOptions options;
    if (parser->isSet(QStringLiteral("help"))) {
        options.action = Action::ShowHelp;
        return options;
    }
    if (parser->isSet(QStringLiteral("version"))) {
        options.action = Action::ShowVersion;
        return options;
    }
    if (!parser->positionalArguments().isEmpty())
        return refused(QStringLiteral("Unexpected argument '%1': the console takes options only.")
                           .arg(parser->positionalArguments().constFirst()));
    options.page = value("page");
    const QStringList pages = ConsolePages::keys();
    if (parser->isSet(QStringLiteral("page")) && !pages.contains(options.page))
        return refused(QStringLiteral("--page is '%1', expected %2.").arg(options.page, alternatives(pages)));
    const QString scheme = value("theme", schemes.constFirst());
    if (!schemes.contains(scheme))
        return refused(QStringLiteral("--theme is '%1', expected %2.").arg(scheme, alternatives(schemes)));
    if (parser->isSet(QStringLiteral("theme")))
        options.scheme = static_cast<Scheme>(schemes.indexOf(scheme));
    const QString textSize = value("text-size", textSizes.constFirst());
    if (!textSizes.contains(textSize))
        return refused(QStringLiteral("--text-size is '%1', expected %2.").arg(textSize, alternatives(textSizes)));
    if (parser->isSet(QStringLiteral("text-size")))
        options.textSize = textSize.toInt();
    if (parser->isSet(QStringLiteral("size"))) {
        options.size = sizeFrom(value("size"));
        if (!options.size.isValid())
            return refused(QStringLiteral("--size is '%1', expected WIDTHxHEIGHT with sides from %2 to %3, as in "
                                          "1280x800.")
                               .arg(value("size"))
                               .arg(smallestSide)
                               .arg(largestSide));
    }
    options.folder = value("folder");
    if (parser->isSet(QStringLiteral("folder")) && options.page != QStringLiteral("folders"))
        return refused(QStringLiteral("--folder is for the folders page, expected --page folders with it."));
    const QString dataFolder = value("data");
    if (parser->isSet(QStringLiteral("data")) && (dataFolder.isEmpty() || QFileInfo(dataFolder).isFile()))
        return refused(QStringLiteral("--data is '%1', expected a folder.").arg(dataFolder));
    const QString connect = value("connect");
    if (parser->isSet(QStringLiteral("connect")) && (connect.isEmpty() || !dataFolder.isEmpty()))
        return refused(
            QStringLiteral("--connect is '%1', expected a station's URL, and no --data beside it.").arg(connect));
    options.url = stationUrl(connect, dataFolder);
    options.screenshot = value("screenshot");
    if (parser->isSet(QStringLiteral("screenshot"))) {
        const QFileInfo file(options.screenshot);
        if (options.screenshot.isEmpty() || file.isDir() || !file.absoluteDir().exists())
            return refused(QStringLiteral("--screenshot is '%1', expected a file in a folder that exists.")
                               .arg(options.screenshot));
    }
    options.screenshots = value("screenshots");
    if (parser->isSet(QStringLiteral("screenshots"))
        && (!QFileInfo(options.screenshots).isDir() || !options.screenshot.isEmpty()))
        return refused(QStringLiteral("--screenshots is '%1', expected a folder that exists, and no --screenshot "
                                      "beside it.")
                           .arg(options.screenshots));
    if (parser->isSet(QStringLiteral("after"))) {
        bool isNumber = false;
        const double seconds = value("after").toDouble(&isNumber);
        if (!isNumber || seconds <= 0 || seconds > longestWait || !options.isForPictures())
            return refused(QStringLiteral("--after is '%1', expected seconds up to %2, and --screenshot or "
                                          "--screenshots with it.")
                               .arg(value("after"))
                               .arg(longestWait));
        options.latest = std::chrono::milliseconds(qRound(seconds * 1000));
    }
    options.platform = value("platform");
    if (parser->isSet(QStringLiteral("platform"))) {
        const QStringList platforms = installedPlatforms();
        if (!platforms.contains(options.platform.section(u':', 0, 0)))
            return refused(QStringLiteral("--platform is '%1', expected one of %2.")
                               .arg(options.platform, platforms.join(QStringLiteral(", "))));
    }
    return options;
}

QString ConsoleOptions::helpText()
{
    return newParser()->helpText();
}

QStringList installedPlatforms()
{
    QStringList names;
    const QStringList folders = QCoreApplication::libraryPaths();
    for (const QString &folder : folders) {
        const QDir platforms(folder + QStringLiteral("/platforms"));
        const QStringList files = platforms.entryList(QDir::Files);
        for (const QString &file : files) {
            const QJsonObject metaData = QPluginLoader(platforms.filePath(file)).metaData();
            const QJsonArray keys =
                metaData.value(QStringLiteral("MetaData")).toObject().value(QStringLiteral("Keys")).toArray();
            for (const QJsonValue key : keys)
                names.append(key.toString());
        }
    }
    names.removeDuplicates();
    names.sort();
    return names;
}
