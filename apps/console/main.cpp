#include "ClientSession.h"
#include "ConsoleOptions.h"
#include "ConsoleSession.h"
#include "ConsoleSettings.h"
#include "ConsoleTypes.h"
#include "CoreDumps.h"
#include "Display.h"
#include "FollowClient.h"
#include "PluginHost.h"
#include "Screenshot.h"
#include "ScreenshotSeries.h"
#include "StationLog.h"
#include "embedded/EmbeddedLink.h"
#include "link/LocalLink.h"
#include "link/MqttLink.h"

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

int takePictures(QQuickWindow &window, const ConsoleOptions &options)
{
    QTimer patience; // with each picture
    patience.setSingleShot(true);
    const auto leave = [](const QString &error) {
        if (!error.isEmpty())
            print(stderr, QStringLiteral("No screenshot: %1").arg(error));
        QGuiApplication::exit(error.isEmpty() ? Done : Failed);
    };
    QObject::connect(&patience, &QTimer::timeout, &patience,
                     [leave] { leave(QStringLiteral("the page did not get its data in time.")); });
    patience.start(longestStart);
    if (options.screenshots.isEmpty()) {
        const Screenshot screenshot(window, options.screenshot, options.latest);
        QObject::connect(&screenshot, &Screenshot::finished, &patience, leave);
        return QGuiApplication::exec();
    }
    const ScreenshotSeries series(window, options.screenshots, options.latest);
    QObject::connect(&series, &ScreenshotSeries::finished, &patience, leave);
    QObject::connect(&series, &ScreenshotSeries::taken, &patience, [&patience](const QString &file) {
        print(stdout, file);
        std::fflush(stdout);
        patience.start(longestStart);
    });
    return QGuiApplication::exec();
}

int run(const ConsoleOptions &options)
{
    renderWithoutGraphicsCard();
    QQuickStyle::setStyle(QStringLiteral("Basic"));

    PluginHost::loadTraceLibrary(PluginHost::traceLibraryOfPrograms());
    ClientSession client;
    ClientSession::Options clientOptions;
    clientOptions.url = options.url;
    clientOptions.figuresPause = ClientSession::figuresPauseOfWindows;
    clientOptions.linkKinds = QList<StationLink::Kind>{LocalLink::kind(), EmbeddedLink::kind()} + MqttLink::kinds();
    if (!client.start(clientOptions)) {
        print(stderr, client.error());
        return client.plugin() ? WrongUse : Failed;
    }
    ConsoleSession session;
    followClient(client, session);

    ConsoleSettings settings(options.isForPictures() ? QString() : ConsoleSettings::userFile());
    QQmlApplicationEngine engine;
    prepareConsoleEngine(engine);
    QVariantMap properties{
        {QStringLiteral("recording"), QVariant::fromValue(client.plugin())},
        {QStringLiteral("session"), QVariant::fromValue(&session)},
        {QStringLiteral("settings"), QVariant::fromValue(&settings)},
        {QStringLiteral("startPage"), options.page},
        {QStringLiteral("startPlace"), options.folder},
    };
    if (options.scheme)
        properties.insert(QStringLiteral("startScheme"), static_cast<int>(*options.scheme));
    if (options.textSize > 0)
        properties.insert(QStringLiteral("startTextSize"), options.textSize);
    if (options.size.isValid())
        properties.insert(QStringLiteral("startSize"), QSizeF(options.size));
    engine.setInitialProperties(properties);
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/RecordingConsole/Main.qml")));
    auto *window =
        engine.rootObjects().isEmpty() ? nullptr : qobject_cast<QQuickWindow *>(engine.rootObjects().constFirst());
    if (!window) {
        print(stderr, QStringLiteral("The console's window could not be loaded; the lines above say why."));
        return Failed;
    }
    return options.isForPictures() ? takePictures(*window, options) : QGuiApplication::exec();
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
    QGuiApplication::setDesktopFileName(QStringLiteral("com.meridon.RecordingConsole"));
    const int exitCode = run(options);
    std::fflush(nullptr);
    if (StationThread::isAnythingLeftBehind())
        std::_Exit(exitCode);
    return exitCode;
}
