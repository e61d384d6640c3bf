#include <QDir>
#include <QHash>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

/// The console as it is built, run as an operator's machine runs it.
class tst_console : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void screenshotShowsThePage_data();
    void screenshotShowsThePage();
    void pictureUsesNothingThatIsRemembered();
    void pageWithoutDataIsNoPicture();
    void everyPageIsPictured();
    void aPictureIsTakenAtTheLatest();
    void noDisplayIsSaid_data();
    void noDisplayIsSaid();
    void noHomeIsSaid();
    void wrongUseIsSaid_data();
    void wrongUseIsSaid();
    void helpAndVersion();

private:
    struct Result
    {
        int exitCode = -1;
        QString output;
        QString error;
    };
    static Result run(const QStringList &arguments, const QStringList &unset = {}, const QString &variable = {},
                      const QString &value = {});
    QString file(const QString &name) const { return m_folder.filePath(name); }

    QTemporaryDir m_folder;
};

void tst_console::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    QVERIFY(m_folder.isValid());
}

tst_console::Result tst_console::run(const QStringList &arguments, const QStringList &unset, const QString &variable,
                                     const QString &value)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : unset)
        environment.remove(name);
    if (!variable.isEmpty())
        environment.insert(variable, value);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(CONSOLE), arguments);
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return {-1, {}, process.errorString() + QString::fromLocal8Bit(process.readAllStandardError())};
    return {process.exitCode(), QString::fromLocal8Bit(process.readAllStandardOutput()),
            QString::fromLocal8Bit(process.readAllStandardError())};
}

void tst_console::screenshotShowsThePage_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("dark");
    const auto row = [](const char *options, QSize size, bool dark) {
        QTest::newRow(options) << QString::fromLatin1(options).split(u' ') << size << dark;
    };
    row("--page volumes --theme light", {1280, 800}, false);
    row("--page volumes --theme dark --size 800x600", {800, 600}, true);
    row("--page cameras --theme light --size 400x600", {400, 600}, false);
    row("--page usage --theme light", {1280, 800}, false);
    row("--page usage --theme dark --size 400x700", {400, 700}, true);
    row("--page groups --theme light", {1280, 800}, false);
    row("--page groups --theme dark --size 800x600", {800, 600}, true);
    row("--page folders --theme light --size 480x640", {480, 640}, false);
    row("--page folders --folder / --theme dark", {1280, 800}, true);
    row("--page nas --theme light --size 400x600", {400, 600}, false);
}

void tst_console::screenshotShowsThePage()
{
    QFETCH(const QStringList, options);
    QFETCH(const QSize, size);
    QFETCH(const bool, dark);
    const QString picture = file(QStringLiteral("page.png"));
    const Result result =
        run(options
            + QStringList{QStringLiteral("--data"), file(QStringLiteral("station")), QStringLiteral("--platform"),
                          QStringLiteral("offscreen"), QStringLiteral("--screenshot"), picture});
    QVERIFY2(result.exitCode == 0, qPrintable(result.error));
    const QImage image(picture);
    QCOMPARE(image.size(), size);
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            colours.insert(image.pixel(x, y));
    }
    QVERIFY2(colours.size() > 30, qPrintable(QString::number(colours.size())));
    const QColor ground = image.pixelColor(size.width() - 4, size.height() / 2);
    QCOMPARE(ground.lightnessF() < 0.5F, dark);
}

void tst_console::pictureUsesNothingThatIsRemembered()
{
    const QByteArray remembered(R"([window]
page="[\"folders\"]"
place="[{\"height\":500,\"width\":600,\"x\":0,\"y\":0}]"
theme="[\"dark\"]"
)");
    QVERIFY(QDir(m_folder.path()).mkpath(QStringLiteral("config")));
    QFile settings(file(QStringLiteral("config/recording-console.ini")));
    QVERIFY(settings.open(QIODevice::WriteOnly));
    settings.write(remembered);
    settings.close();
    const QString picture = file(QStringLiteral("own.png"));
    const Result result = run({QStringLiteral("--data"), file(QStringLiteral("station")), QStringLiteral("--platform"),
                               QStringLiteral("offscreen"), QStringLiteral("--screenshot"), picture},
                              {}, QStringLiteral("XDG_CONFIG_HOME"), file(QStringLiteral("config")));
    QVERIFY2(result.exitCode == 0, qPrintable(result.error));
    const QImage image(picture);
    QCOMPARE(image.size(), QSize(1280, 800));
    QVERIFY(image.pixelColor(1276, 400).lightnessF() > 0.5F);
    QVERIFY(settings.open(QIODevice::ReadOnly));
    QCOMPARE(settings.readAll(), remembered);
}

void tst_console::pageWithoutDataIsNoPicture()
{
    const QString picture = file(QStringLiteral("refused.png"));
    const Result result = run({QStringLiteral("--platform"), QStringLiteral("offscreen"), QStringLiteral("--page"),
                               QStringLiteral("folders"), QStringLiteral("--folder"), file(QStringLiteral("nowhere")),
                               QStringLiteral("--screenshot"), picture});
    QCOMPARE(result.exitCode, 1);
    QVERIFY2(result.error.contains(QStringLiteral("There is no such folder.")), qPrintable(result.error));
    QVERIFY(!QFile::exists(picture));
}

void tst_console::everyPageIsPictured()
{
    QVERIFY(QDir(m_folder.path()).mkpath(QStringLiteral("set")));
    const QDir set(file(QStringLiteral("set")));
    const Result result = run({QStringLiteral("--data"), file(QStringLiteral("station")), QStringLiteral("--platform"),
                               QStringLiteral("offscreen"), QStringLiteral("--screenshots"), set.path()});
    QVERIFY2(result.exitCode == 0, qPrintable(result.error));
    const QStringList pictures = set.entryList({QStringLiteral("*.png")}, QDir::Files);
    QCOMPARE(result.output.trimmed().split(u'\n').size(), pictures.size());
    const auto read = [&set](const QString &name) {
        QFile picture(set.filePath(name));
        return picture.open(QFile::ReadOnly) ? picture.readAll() : QByteArray();
    };
    const QHash<QString, QString> dialogs{{u"groups-add"_s, u"groups"_s},
                                          {u"cameras-add"_s, u"cameras"_s},
                                          {u"nas-add"_s, u"nas"_s},
                                          {u"groups-help"_s, u"groups"_s}};
    for (auto dialog = dialogs.begin(); dialog != dialogs.end(); ++dialog) {
        const QByteArray picture = read(dialog.key() + u"-light-800x600.png"_s);
        QVERIFY2(!picture.isEmpty() && picture != read(dialog.value() + u"-light-800x600.png"_s),
                 qPrintable(dialog.key()));
        QVERIFY2(picture != read(dialog.key() + u"-dark-800x600.png"_s), qPrintable(dialog.key()));
    }
    QVERIFY2(read(u"usage-unassigned-dark-1280x800.png"_s) != read(u"usage-dark-1280x800.png"_s),
             "the recordings of no group have a page of their own");
    for (const char *page : {"volumes", "groups", "usage", "folders", "nas", "usage-unassigned"}) {
        QSet<QByteArray> seen;
        for (const char *theme : {"light", "dark"}) {
            for (const QSize size : {QSize(800, 600), QSize(1280, 800), QSize(1920, 1080)}) {
                const QString name = QStringLiteral("%1-%2-%3x%4.png")
                                         .arg(QLatin1String(page), QLatin1String(theme))
                                         .arg(size.width())
                                         .arg(size.height());
                QVERIFY2(pictures.contains(name), qPrintable(name));
                QFile picture(set.filePath(name));
                QVERIFY(picture.open(QFile::ReadOnly));
                seen.insert(picture.readAll());
                QCOMPARE(QImage(picture.fileName()).size(), size);
            }
        }
        QCOMPARE(seen.size(), 6);
    }
}

/// A picture of a page that waits or was refused, for those who want to see that.
void tst_console::aPictureIsTakenAtTheLatest()
{
    const QString picture = file(QStringLiteral("refused-and-taken.png"));
    const Result result =
        run({QStringLiteral("--platform"), QStringLiteral("offscreen"), QStringLiteral("--page"),
             QStringLiteral("folders"), QStringLiteral("--folder"), file(QStringLiteral("nowhere")),
             QStringLiteral("--screenshot"), picture, QStringLiteral("--after"), QStringLiteral("0.5")});
    QVERIFY2(result.exitCode == 0, qPrintable(result.error));
    QVERIFY(QFile::exists(picture));
}

void tst_console::noDisplayIsSaid_data()
{
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("value");
    QTest::newRow("none is named") << QString() << QString();
    QTest::newRow("nobody answers for X11") << QStringLiteral("DISPLAY") << QStringLiteral(":7777");
    QTest::newRow("no X11 display") << QStringLiteral("DISPLAY") << QStringLiteral("nonsense");
    QTest::newRow("nobody answers for Wayland") << QStringLiteral("WAYLAND_DISPLAY") << file(QStringLiteral("gone"));
}

void tst_console::noDisplayIsSaid()
{
    QFETCH(const QString, variable);
    QFETCH(const QString, value);
    const QStringList unset{QStringLiteral("DISPLAY"), QStringLiteral("WAYLAND_DISPLAY"),
                            QStringLiteral("QT_QPA_PLATFORM")};
    const Result result = run({}, unset, variable, value);
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(result.output, QString());
    QVERIFY2(result.error.contains(QStringLiteral("no display")), qPrintable(result.error));
    QVERIFY(result.error.contains(QStringLiteral("--platform offscreen --screenshot FILE")));
}

void tst_console::noHomeIsSaid()
{
    const Result result = run({QStringLiteral("--platform"), QStringLiteral("offscreen")},
                              {QStringLiteral("HOME"), QStringLiteral("XDG_DATA_HOME")});
    QCOMPARE(result.exitCode, 2);
    QVERIFY2(result.error.contains(QStringLiteral("HOME is not set")), qPrintable(result.error));
}

void tst_console::wrongUseIsSaid_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("words");
    const auto row = [](const char *options, const char *words) {
        QTest::newRow(options) << QString::fromLatin1(options).split(u' ') << QString::fromLatin1(words);
    };
    row("--page nowhere", "--page is 'nowhere', expected volumes, groups, cameras, usage, folders, nas or stations.");
    row("--theme blue", "--theme is 'blue', expected system, light or dark.");
    row("--text-size 90", "--text-size is '90', expected 100, 110, 125, 150, 175 or 200.");
    row("--size 800", "--size is '800', expected WIDTHxHEIGHT");
    row("--size 0x600", "--size is '0x600', expected WIDTHxHEIGHT");
    row("--size 99999x600", "--size is '99999x600', expected WIDTHxHEIGHT");
    row("--platform nosuch", "--platform is 'nosuch', expected one of ");
    row("--screenshot /nowhere/x.png", "--screenshot is '/nowhere/x.png', expected a file in a folder that exists.");
    row("--screenshots /nowhere", "--screenshots is '/nowhere', expected a folder that exists");
    row("--after 2", "--after is '2', expected seconds up to 50, and --screenshot or --screenshots with it.");
    row("--screenshot x.png --after soon", "--after is 'soon', expected seconds up to 50");
    row("--folder /srv", "--folder is for the folders page");
    row("--data /etc/passwd", "--data is '/etc/passwd', expected a folder.");
    row("--colour blue", "Unknown option 'colour'");
    row("volumes", "Unexpected argument 'volumes'");
}

void tst_console::wrongUseIsSaid()
{
    QFETCH(const QStringList, options);
    QFETCH(const QString, words);
    const Result result = run(options);
    QCOMPARE(result.exitCode, 2);
    QVERIFY2(result.error.startsWith(words), qPrintable(result.error));
    QCOMPARE(result.error.count(u'\n'), 1);
    QCOMPARE(result.output, QString());
}

void tst_console::helpAndVersion()
{
    const Result help = run({QStringLiteral("--help")}, {QStringLiteral("QT_QPA_PLATFORM")});
    QCOMPARE(help.exitCode, 0);
    for (const char *option : {"--page", "--folder", "--data", "--theme", "--text-size", "--size", "--platform",
                               "--screenshot", "--version"})
        QVERIFY2(help.output.contains(QString::fromLatin1(option)), option);
    const Result version = run({QStringLiteral("--version")}, {QStringLiteral("QT_QPA_PLATFORM")});
    QCOMPARE(version.exitCode, 0);
    QVERIFY(version.output.startsWith(QStringLiteral("recording-console ")));
}

QTEST_GUILESS_MAIN(tst_console)
#include "tst_console.moc"
