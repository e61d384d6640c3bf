#include "FaultyDisk.h"
#include "ToolRun.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// The library that makes disks fail for other tests, under the system's own programs.
class FaultyDiskTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void callsFailBelowTheFolder_data();
    void callsFailBelowTheFolder();
    void whatIsReadAloneIsNotBefallen();
    void oneCallAloneFails();
    void callsHang();

private:
    QString path(const char *name) const { return m_folder->filePath(QString::fromLatin1(name)); }
    QProcessEnvironment environment(const QString &fault, const char *folder) const;
    Run runWith(const QString &fault, const QString &command) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void FaultyDiskTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    for (const char *name : {"a/b", "ab"})
        QVERIFY(QDir().mkpath(path(name)));
}

QProcessEnvironment FaultyDiskTest::environment(const QString &fault, const char *folder) const
{
    QProcessEnvironment environment = quietEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    setDiskFaults(environment, {fault + u'=' + path(folder)}, path("log"));
    return environment;
}

/// Runs a shell's @p command in the test's folder.
Run FaultyDiskTest::runWith(const QString &fault, const QString &command) const
{
    QProcess process;
    process.setWorkingDirectory(m_folder->path());
    process.setProcessEnvironment(environment(fault, "a"));
    process.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), command});
    return finished(process);
}

void FaultyDiskTest::callsFailBelowTheFolder_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("error"); // empty: none
    const QString eio = QStringLiteral("Input/output error");
    const QString enospc = QStringLiteral("No space left on device");
    const QString erofs = QStringLiteral("Read-only file system");
    const auto row = [](const char *fault, const char *command, const QString &error) {
        QTest::addRow("%s: %s", fault, command) << QString::fromLatin1(fault) << QString::fromLatin1(command) << error;
    };
    row("EIO", "stat a", eio);
    row("EIO", "stat a/b", eio);
    row("EIO", "ls a", eio);
    row("EIO", "stat ab", {});
    row("EIO", "stat .", {});
    row("EIO", "stat -f a", eio);
    row("EIO", "cat a/b", eio);
    row("EIO", "readlink -f a/b/c/d && exit 1; readlink -v a", eio);
    row("EIO", "mkdir a/c", eio);
    row("EIO", "mv a ab", eio);
    row("EIO", "rmdir a/b", eio);
    row("ENOSPC", "mkdir a/c", enospc);
    row("ENOSPC", "touch a/c", enospc);
    row("EROFS", "mkdir a/c", erofs);
    row("EROFS", "rm -d a/b", erofs);
}

void FaultyDiskTest::callsFailBelowTheFolder()
{
    QFETCH(QString, fault);
    QFETCH(QString, command);
    QFETCH(QString, error);
    const Run call = runWith(fault, command);
    QCOMPARE(call.exitCode == 0, error.isEmpty());
    QVERIFY2(call.errors.contains(error), qPrintable(call.errors));
    QCOMPARE(befallenCalls(path("log")).isEmpty(), error.isEmpty());
    QVERIFY(QDir(path("a/b")).exists());
}

void FaultyDiskTest::whatIsReadAloneIsNotBefallen()
{
    for (const char *fault : {"ENOSPC", "EROFS"}) {
        const Run call = runWith(QString::fromLatin1(fault), QStringLiteral("ls a"));
        QCOMPARE(call.exitCode, 0);
        QCOMPARE(call.output, QStringLiteral("b\n"));
    }
}

void FaultyDiskTest::oneCallAloneFails()
{
    const Run stat = runWith(QStringLiteral("EIO.readdir"), QStringLiteral("stat a"));
    QCOMPARE(stat.exitCode, 0);
    const Run list = runWith(QStringLiteral("EIO.readdir"), QStringLiteral("ls a"));
    QVERIFY(list.exitCode != 0);
    QCOMPARE(befallenCalls(path("log")), QStringList{QStringLiteral("readdir ") + path("a")});
}

void FaultyDiskTest::callsHang()
{
    QProcess process;
    process.setProcessEnvironment(environment(QStringLiteral("hang"), "a"));
    process.start(QStringLiteral("/bin/cat"), {path("a/b")});
    QVERIFY(process.waitForStarted());
    QTRY_VERIFY(!befallenCalls(path("log")).isEmpty());
    QCOMPARE(process.state(), QProcess::Running);
    process.kill();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
}

QTEST_GUILESS_MAIN(FaultyDiskTest)
#include "tst_faulty_disk.moc"
