#include "SambaServer.h"
#include "ToolRun.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

/// NAS servers by hand: the tool, the plug-in, a station with a data folder of its own and a real server.
class TestRecordingctlNas : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void serverFromBeginningToEnd();
    void aLostKeyIsToldByEveryCommand();

private:
    Run ctl(const QStringList &arguments, const QByteArray &input = {}) const
    {
        return run(arguments + QStringList{"--data", m_folder.filePath("station")}, input);
    }

    QTemporaryDir m_folder{QCoreApplication::applicationDirPath() + "/nas-XXXXXX"};
    SambaServer m_server;
};

void TestRecordingctlNas::initTestCase()
{
    QVERIFY(m_folder.isValid());
    m_server.addShare("rec");
    QVERIFY2(m_server.start(), qPrintable(m_server.error()));
    QVERIFY(QDir(m_server.folderOf("rec")).mkpath("north yard"));
}

void TestRecordingctlNas::serverFromBeginningToEnd()
{
    const QString host = m_server.host();
    const QByteArray password = m_server.password().toUtf8() + '\n';
    const Run wrong = ctl({"nas-add", host, "--user", m_server.userName(), "--password", "-"}, "wrong\n");
    QCOMPARE(wrong.exitCode, 1);
    QCOMPARE(wrong.errors, "recordingctl: addNASServer: the station refused: LogonNASServerFaled\n");

    const Run add = ctl({"nas-add", host, "--user", m_server.userName(), "--password", "-"}, password);
    QCOMPARE(add.errors, QString());
    const QString id = add.output.trimmed();
    QVERIFY(!id.isEmpty());
    const Run servers = ctl({"nas"});
    QCOMPARE(words(servers.outputLines().value(1)), (QStringList{host, m_server.userName(), "Host", id}));
    QVERIFY(!ctl({"nas", "--json"}).output.contains(m_server.password()));

    // Logs on as the station does: no password is given.
    const QString path = QStringLiteral("//%1/rec").arg(host);
    const Run folders = ctl({"nas-folders", path});
    QCOMPARE(folders.errors, QString());
    QCOMPARE(folders.output, "north yard\n");
    const Run capacity = ctl({"nas-capacity", path});
    QCOMPARE(capacity.errors, QString());
    QCOMPARE(words(capacity.outputLines().value(0).trimmed()), (QStringList{"Size", "Free", "Used"}));
    const Run volumes = ctl({"nas-volumes", path});
    QCOMPARE(volumes.errors, QString());
    QVERIFY2(volumes.output.contains(path), qPrintable(volumes.output));
    const QString missing = QStringLiteral("//%1/nothing").arg(host);
    const Run partly = ctl({"nas-volumes", path, missing});
    QCOMPARE(partly.exitCode, 1);
    QVERIFY2(partly.output.contains(path), qPrintable(partly.output));
    QVERIFY2(partly.errors.contains("recordingctl: " + missing + " is no volume"), qPrintable(partly.errors));
    const QJsonValue reply = ctl({"nas-volumes", path, missing, "--json"}).reply();
    QCOMPARE(reply["returnCode"], QJsonValue("NotAVolume"));
    QVERIFY(!reply["data"].toArray().isEmpty());
    QCOMPARE(
        reply["error"]["elements"],
        QJsonValue(QJsonArray{QJsonObject{
            {"element", "path"}, {"index", 1}, {"value", missing}, {"code", "NotAVolume"}, {"reason", QJsonValue()}}}));

    QFile file(m_folder.filePath("password"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(password) > 0);
    file.close();
    QCOMPARE(ctl({"nas-update", host, "--password", "@" + file.fileName(), "--domain", "TESTNAS"}).errors, QString());
    QCOMPARE(words(ctl({"nas"}).outputLines().value(1)), (QStringList{host, m_server.userName(), "TESTNAS", id}));
    const QString elsewhere = QStringLiteral("localhost:%1").arg(m_server.port());
    const Run moved = ctl({"nas-update", host, "--host", elsewhere});
    QCOMPARE(moved.exitCode, 2);
    QVERIFY2(moved.errors.startsWith("recordingctl: nas-update: another --host needs --password"),
             qPrintable(moved.errors));
    QCOMPARE(words(ctl({"nas"}).outputLines().value(1)), (QStringList{host, m_server.userName(), "TESTNAS", id}));
    QCOMPARE(ctl({"nas-update", host, "--host", elsewhere, "--password", "-"}, password).errors, QString());
    QCOMPARE(ctl({"nas-update", elsewhere, "--host", elsewhere.toUpper(), "--domain", "Host"}).errors, QString());
    QCOMPARE(ctl({"nas-update", elsewhere.toUpper(), "--host", host, "--password", "-"}, password).errors, QString());
    const Run typed = ctl({"nas-update", host, "--password", m_server.password()});
    QCOMPARE(typed.exitCode, 2);
    QVERIFY(!typed.errors.contains(m_server.password()));

    QCOMPARE(ctl({"nas-remove", id}).errors, QString());
    QCOMPARE(ctl({"nas"}).outputLines().size(), 1);
    QCOMPARE(ctl({"nas-remove", host}).errors,
             QStringLiteral("recordingctl: nas-remove: there is no NAS server \"%1\"; \"nas\" lists them\n").arg(host));
}

void TestRecordingctlNas::aLostKeyIsToldByEveryCommand()
{
    const QString host = m_server.host();
    const QString path = QStringLiteral("//%1/rec").arg(host);
    const QByteArray password = m_server.password().toUtf8() + '\n';
    const Run add = ctl({"nas-add", host, "--user", m_server.userName(), "--password", "-"}, password);
    QCOMPARE(add.errors, QString());
    const QString key = m_folder.filePath("station/nas.key");
    QVERIFY(QFile::rename(key, key + 'x'));
    const QList<QStringList> commands{{"nas-folders", path},
                                      {"nas-capacity", path},
                                      {"nas-volumes", path},
                                      {"nas-update", host, "--domain", "TESTNAS"},
                                      {"nas-add", QStringLiteral("localhost:%1").arg(m_server.port())}};
    for (const QStringList &command : commands) {
        const Run refused = ctl(command);
        QVERIFY2(refused.exitCode == 1 && refused.errors.contains("NasKeyUnusable"),
                 qPrintable(command.first() + ": " + refused.errors));
    }
    QCOMPARE(ctl({"nas"}).outputLines().size(), 2); // still listed
    QVERIFY(!QFile::exists(key));
    QCOMPARE(ctl({"nas-remove", add.output.trimmed()}).exitCode, 0);
    QVERIFY(QFile::remove(key + 'x'));
}

QTEST_GUILESS_MAIN(TestRecordingctlNas)
#include "tst_recordingctl_nas.moc"
