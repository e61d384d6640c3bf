#include "FaultyDisk.h"
#include "ToolRun.h"
#include "VolumeFolder.h"

#include <QDate>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>

namespace {
constexpr int mostForTheEnd = 2000; // milliseconds
} // namespace

/// recordingctl with a disk that hangs: it answers, says so, and ends.
class HungDiskTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void volumesAreListedBesideOneThatHangs();
    void aFolderThatHangsIsRefused_data();
    void aFolderThatHangsIsRefused();
    void aFolderThatHangsIsListedInItsParent();
    void aPathThatHangsIsRefused();
    void everyPathThatHangsIsNamed();
    void aFolderThatFailsIsRefused_data();
    void aFolderThatFailsIsRefused();
    void namesDoNotSteerTheTerminal();
    void theEndWaitsForNoDisk_data();
    void theEndWaitsForNoDisk();

private:
    QString path(const char *name) const { return m_folder->filePath(QString::fromLatin1(name)); }
    QStringList faults(const char *call) const { return {QString::fromLatin1(call) + u'=' + path("disk")}; }
    QString log() const { return path("log"); }
    QProcessEnvironment environment(const QStringList &faults) const;
    Run runWith(const QStringList &faults, const QStringList &arguments) const;
    QStringList onData(const QStringList &arguments) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void HungDiskTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>(onAVolume(QStringLiteral("hung-disk-XXXXXX")));
    QVERIFY(QDir().mkpath(path("disk/folder")));
}

QProcessEnvironment HungDiskTest::environment(const QStringList &faults) const
{
    QProcessEnvironment environment = quietEnvironment();
    setDiskFaults(environment, faults, log());
    return environment;
}

QStringList HungDiskTest::onData(const QStringList &arguments) const
{
    return arguments + QStringList{QStringLiteral("--data"), path("data")};
}

Run HungDiskTest::runWith(const QStringList &faults, const QStringList &arguments) const
{
    QProcess process;
    process.setProcessEnvironment(environment(faults));
    process.start(RECORDINGCTL, onData(arguments));
    return finished(process);
}

void HungDiskTest::volumesAreListedBesideOneThatHangs()
{
    // The root's own folder alone, and nothing below it.
    const Run volumes = runWith({QStringLiteral("hang=/")}, {QStringLiteral("volumes")});
    QVERIFY(!befallenCalls(log()).isEmpty());
    QCOMPARE(volumes.exitCode, 3);
    QCOMPARE(volumes.outputLines().filter(QRegularExpression(QStringLiteral("^System +/ +0[.,]00 KB "))).size(), 1);
    QVERIFY2(volumes.errors.contains(QStringLiteral("The volume / does not answer.")), qPrintable(volumes.errors));
    const Run json = runWith({QStringLiteral("hang=/")}, {QStringLiteral("volumes"), QStringLiteral("--json")});
    QCOMPARE(json.exitCode, 3);
    QCOMPARE(json.reply()[QStringLiteral("returnCode")], QJsonValue(QStringLiteral("NotKnownYet")));
    QCOMPARE(json.reply()[QStringLiteral("unknown")][0][QStringLiteral("subject")], QJsonValue(QStringLiteral("/")));
    const QJsonArray rows = json.reply()[QStringLiteral("data")].toArray();
    const QJsonObject root = rows.last().toObject(); // always there, and the last one
    QCOMPARE(root[QStringLiteral("path")], QJsonValue(QStringLiteral("/")));
    QVERIFY(root[QStringLiteral("sizeBytes")].isNull() && root[QStringLiteral("availableBytes")].isNull());
}

void HungDiskTest::aFolderThatHangsIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("listing") << QStringList{QStringLiteral("call"), QStringLiteral("getServerDir"),
                                            QStringLiteral("disk/folder")};
    QTest::newRow("making") << QStringList{QStringLiteral("call"), QStringLiteral("createDirectory"),
                                           QStringLiteral("disk/folder/new")};
}

void HungDiskTest::aFolderThatHangsIsRefused()
{
    QFETCH(QStringList, arguments);
    arguments.last() = m_folder->filePath(arguments.last());
    const Run call = runWith(faults("hang"), arguments);
    QVERIFY(!befallenCalls(log()).isEmpty());
    QCOMPARE(call.exitCode, 1);
    QVERIFY2(call.errors.contains(QStringLiteral("VolumeNotAnswering")), qPrintable(call.errors));
}

void HungDiskTest::aFolderThatHangsIsListedInItsParent()
{
    QVERIFY(QDir().mkpath(path("disk/other")));
    const Run call = runWith({QStringLiteral("hang=") + path("disk/folder")},
                             {QStringLiteral("call"), QStringLiteral("getServerDir"), path("disk")});
    QCOMPARE(call.exitCode, 0);
    QVERIFY2(call.output.contains(QStringLiteral("folder")) && call.output.contains(QStringLiteral("other")),
             qPrintable(call.output));
}

void HungDiskTest::aPathThatHangsIsRefused()
{
    const Run call =
        runWith(faults("hang"),
                {QStringLiteral("group-add"), QStringLiteral("North"), QStringLiteral("--path"), path("disk/folder")});
    QVERIFY(!befallenCalls(log()).isEmpty());
    QCOMPARE(call.exitCode, 1);
    QVERIFY2(call.errors.contains(QStringLiteral("VolumeNotAnswering")), qPrintable(call.errors));
}

void HungDiskTest::everyPathThatHangsIsNamed()
{
    for (const char *name : {"disk/a", "disk/b", "disk/c"}) {
        QVERIFY(QDir().mkpath(path(name)));
        const Run added =
            run(onData({QStringLiteral("group-add"), QString::fromLatin1(name), QStringLiteral("--path"), path(name)}));
        QVERIFY2(added.exitCode == 0, qPrintable(added.errors));
    }
    const Run alarms = runWith(faults("hang"), {QStringLiteral("alarms")});
    QCOMPARE(alarms.exitCode, 1);
    for (const char *name : {"disk/a", "disk/b", "disk/c"}) {
        const QString told = QStringLiteral("The disk of the folder %1 does not answer").arg(path(name));
        QVERIFY2((alarms.output + alarms.errors).contains(told), qPrintable(alarms.output + alarms.errors));
    }
}

void HungDiskTest::aFolderThatFailsIsRefused_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("reason");
    QTest::newRow("read error") << QStringLiteral("EIO") << QStringLiteral("CannotCreate");
    QTest::newRow("full") << QStringLiteral("ENOSPC") << QStringLiteral("VolumeFull");
    QTest::newRow("read-only") << QStringLiteral("EROFS") << QStringLiteral("VolumeReadOnly");
}

void HungDiskTest::aFolderThatFailsIsRefused()
{
    QFETCH(QString, fault);
    QFETCH(QString, reason);
    const Run call =
        runWith({fault + u'=' + path("disk")},
                {QStringLiteral("group-add"), QStringLiteral("North"), QStringLiteral("--path"), path("disk/folder")});
    QCOMPARE(call.exitCode, 1);
    QVERIFY2(call.errors.contains(reason), qPrintable(call.errors));
    const Run making = runWith({fault + u'=' + path("disk")},
                               {QStringLiteral("call"), QStringLiteral("createDirectory"), path("disk/folder/new")});
    QCOMPARE(making.exitCode, 1);
    QVERIFY2(making.errors.contains(reason), qPrintable(making.errors));
    QVERIFY(!QFileInfo::exists(path("disk/folder/new")));
}

void HungDiskTest::namesDoNotSteerTheTerminal()
{
    const QString name = QStringLiteral("a\x1b[31m\nb\u202e");
    QVERIFY(QDir().mkpath(path("disk/") + name + QStringLiteral("/North")));
    const QStringList add{QStringLiteral("group-add"), QStringLiteral("North"), QStringLiteral("--path"),
                          path("disk/") + name};
    QCOMPARE(run(onData(add)).exitCode, 0);
    const Run usage = runWith(faults("EIO.readdir"), {QStringLiteral("usage")});
    const QString line = QStringLiteral("The recordings in %1 cannot be read.")
                             .arg(path("disk/") + QStringLiteral("a\\x1b[31m\\nb\\u202e/North"));
    QFile file(path("data/station.log"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString log = QString::fromUtf8(file.readAll());
    QVERIFY2(log.contains(line), qPrintable(log));
    for (const QString &text : {usage.output, usage.errors, log})
        QVERIFY(!text.contains(u'\x1b') && !text.contains(u'\u202e'));
}

void HungDiskTest::theEndWaitsForNoDisk_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<int>("signal");
    QTest::newRow("reading a folder, SIGTERM") << QStringLiteral("readdir") << SIGTERM;
    QTest::newRow("reading a folder, SIGINT") << QStringLiteral("readdir") << SIGINT;
    QTest::newRow("looking at a folder, SIGTERM") << QStringLiteral("stat") << SIGTERM;
}

void HungDiskTest::theEndWaitsForNoDisk()
{
    QFETCH(QString, call);
    QFETCH(int, signal);
    const QString day = QDate::currentDate().toString(Qt::ISODate);
    QVERIFY(QDir().mkpath(path("disk/folder/North/Gate/") + day));
    const Run added = run(
        onData({QStringLiteral("group-add"), QStringLiteral("North"), QStringLiteral("--path"), path("disk/folder")}));
    QVERIFY2(added.exitCode == 0, qPrintable(added.errors));

    QProcess watch;
    watch.setProcessEnvironment(environment({QStringLiteral("hang.%1=%2").arg(call, path("disk"))}));
    watch.start(RECORDINGCTL, onData({QStringLiteral("watch")}));
    QTRY_VERIFY_WITH_TIMEOUT(!befallenCalls(log()).filter(call + u' ' + path("disk")).isEmpty(), 20000);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(::kill(static_cast<pid_t>(watch.processId()), signal), 0);
    QVERIFY(watch.waitForFinished());
    QVERIFY2(timer.elapsed() < mostForTheEnd, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(watch.exitStatus(), QProcess::NormalExit);
    QCOMPARE(watch.exitCode(), 0);
}

QTEST_GUILESS_MAIN(HungDiskTest)
#include "tst_hung_disk.moc"
