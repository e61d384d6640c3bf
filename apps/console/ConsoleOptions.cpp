#include "ConsoleOptions.h"

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
const QStringList pages{QStringLiteral("volumes"), QStringLiteral("groups"), QStringLiteral("usage"),
                        QStringLiteral("folders"), QStringLiteral("nas")};
const QStringList schemes{QStringLiteral("system"), QStringLiteral("light"), QStringLiteral("dark")};
constexpr int smallestSide = 200;
constexpr int largestSide = 8192;

std::unique_ptr<QCommandLineParser> newParser()
{
    auto parser = std::make_unique<QCommandLineParser>();
    parser->setApplicationDescription(QStringLiteral("Shows and manages where a recording server stores video.\n\n"
                                                     "Without a display:\n"
                                                     "  recording-console --platform offscreen --screenshot FILE"));
    parser->addOptions({
        {QStringLiteral("page"), QStringLiteral("Page to begin with: volumes, groups, usage, folders or nas."),
         QStringLiteral("NAME")},
        {QStringLiteral("folder"), QStringLiteral("Folder that the folders page begins in."), QStringLiteral("PATH")},
        {QStringLiteral("data"),
         QStringLiteral("Folder that the station inside the console keeps its data in; made when it is missing."),
         QStringLiteral("DIR")},
        {QStringLiteral("theme"), QStringLiteral("Colours: light, dark, or system as the desktop has them."),
         QStringLiteral("NAME")},
        {QStringLiteral("size"), QStringLiteral("Size of the window, 1280x800 at first."), QStringLiteral("WxH")},
        {QStringLiteral("platform"), QStringLiteral("Qt's platform plug-in: xcb, wayland, offscreen, ..."),
         QStringLiteral("NAME")},
        {QStringLiteral("screenshot"),
         QStringLiteral("Write a picture (PNG) of the page to FILE once its data is there, and leave."),
         QStringLiteral("FILE")},
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

QString alternatives(const QStringList &words)
{
    return words.mid(0, words.size() - 1).join(QStringLiteral(", ")) + QStringLiteral(" or ") + words.constLast();
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
    options.page = value("page", options.page);
    if (!pages.contains(options.page))
        return refused(QStringLiteral("--page is '%1', expected %2.").arg(options.page, alternatives(pages)));
    const QString scheme = value("theme", schemes.constFirst());
    if (!schemes.contains(scheme))
        return refused(QStringLiteral("--theme is '%1', expected %2.").arg(scheme, alternatives(schemes)));
    options.scheme = static_cast<Scheme>(schemes.indexOf(scheme));
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
    options.dataFolder = value("data");
    if (parser->isSet(QStringLiteral("data"))
        && (options.dataFolder.isEmpty() || QFileInfo(options.dataFolder).isFile()))
        return refused(QStringLiteral("--data is '%1', expected a folder.").arg(options.dataFolder));
    options.screenshot = value("screenshot");
    if (parser->isSet(QStringLiteral("screenshot"))) {
        const QFileInfo file(options.screenshot);
        if (options.screenshot.isEmpty() || file.isDir() || !file.absoluteDir().exists())
            return refused(QStringLiteral("--screenshot is '%1', expected a file in a folder that exists.")
                               .arg(options.screenshot));
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
