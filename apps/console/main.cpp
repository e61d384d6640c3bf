#include "ClientSession.h"
#include "ConsoleOptions.h"
#include "ConsoleSession.h"
#include "ConsoleTypes.h"
#include "CoreDumps.h"
#include "Display.h"
#include "FollowClient.h"
#include "Screenshot.h"
#include "StationLog.h"
#include "StationSettings.h"

#include <QDir>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QTimer>

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {
enum ExitCode { Done = 0, Failed = 1, WrongUse = 2 };

constexpr std::chrono::seconds longestStart{60}; // longer than a station may take for a reply

QStringList argumentList(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return arguments;
}

void print(std::FILE *stream, const QString &text)
{
    std::fputs(qPrintable(text), stream);
    std::fputc('\n', stream);
}

void renderWithoutGraphicsCard()
{
    static const QStringList platforms{QStringLiteral("offscreen"), QStringLiteral("minimal"), QStringLiteral("vnc"),
                                       QStringLiteral("linuxfb")};
    if (platforms.contains(QGuiApplication::platformName()))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

int run(const ConsoleOptions &options)
{
    renderWithoutGraphicsCard();
    QQuickStyle::setStyle(QStringLiteral("Basic"));

    ClientSession client;
    ClientSession::Options clientOptions;
    clientOptions.dataFolder = options.dataFolder;
    if (!client.start(clientOptions)) {
        print(stderr, client.error());
        return Failed;
    }
    ConsoleSession session;
    followClient(client, session);

    QQmlApplicationEngine engine;
    prepareConsoleEngine(engine);
    engine.setInitialProperties({
        {QStringLiteral("recording"), QVariant::fromValue(client.plugin())},
        {QStringLiteral("session"), QVariant::fromValue(&session)},
        {QStringLiteral("startPage"), options.page},
        {QStringLiteral("startPlace"), options.folder},
        {QStringLiteral("scheme"), static_cast<int>(options.scheme)},
        {QStringLiteral("width"), options.size.width()},
        {QStringLiteral("height"), options.size.height()},
    });
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/RecordingConsole/Main.qml")));
    auto *window =
        engine.rootObjects().isEmpty() ? nullptr : qobject_cast<QQuickWindow *>(engine.rootObjects().constFirst());
    if (!window) {
        print(stderr, QStringLiteral("The console's window could not be loaded; the lines above say why."));
        return Failed;
    }
    if (options.screenshot.isEmpty())
        return QGuiApplication::exec();

    Screenshot screenshot(*window, options.screenshot);
    const auto leave = [](const QString &error) {
        if (!error.isEmpty())
            print(stderr, QStringLiteral("No screenshot: %1").arg(error));
        QGuiApplication::exit(error.isEmpty() ? Done : Failed);
    };
    QObject::connect(&screenshot, &Screenshot::finished, &screenshot, leave);
    QTimer::singleShot(longestStart, &screenshot,
                       [leave] { leave(QStringLiteral("the page did not get its data in time.")); });
    return QGuiApplication::exec();
}
} // namespace

int main(int argc, char **argv)
{
    forbidCoreDumps();
    QCoreApplication::setApplicationName(QStringLiteral("recording-console"));
    QCoreApplication::setApplicationVersion(QStringLiteral(RECORDING_VERSION));
    const ConsoleOptions options = ConsoleOptions::parse(argumentList(argc, argv));
    switch (options.action) {
    case ConsoleOptions::Action::ShowHelp: {
        const QCoreApplication application(argc, argv);
        std::fputs(qPrintable(ConsoleOptions::helpText()), stdout);
        return Done;
    }
    case ConsoleOptions::Action::ShowVersion:
        print(stdout, QStringLiteral("recording-console " RECORDING_VERSION));
        return Done;
    case ConsoleOptions::Action::Refuse:
        print(stderr, options.error);
        return WrongUse;
    case ConsoleOptions::Action::Run:
        break;
    }
    if (options.dataFolder.isEmpty() && defaultStationFolder().isEmpty()) {
        print(stderr,
              QStringLiteral("There is no folder for the station's data: HOME is not set. Name one with --data."));
        return WrongUse;
    }
    keepStationLogPrintable();
    if (!options.platform.isEmpty())
        qputenv("QT_QPA_PLATFORM", options.platform.toLocal8Bit());
    if (!hasDisplay()) {
        print(stderr,
              QStringLiteral("There is no display. A picture of a page can be had without one:\n"
                             "  recording-console --platform offscreen --screenshot FILE"));
        return WrongUse;
    }
    const QGuiApplication application(argc, argv);
    const int exitCode = run(options);
    std::fflush(nullptr);
    if (EmbeddedLink::isAnythingLeftBehind())
        std::_Exit(exitCode);
    return exitCode;
}
