#include "SambaServer.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {
struct Run
{
    int exitCode = -1;
    QByteArray output; // and the errors
};

/// How @p password may stand in a file, plain and in the encodings that come about by themselves.
QHash<QString, QByteArray> spellings(const QString &password)
{
    const QByteArray utf8 = password.toUtf8();
    const auto utf16 = [&password](bool isBigEndian) {
        QByteArray bytes;
        for (const QChar character : password) {
            bytes.append(static_cast<char>(isBigEndian ? character.row() : character.cell()));
            bytes.append(static_cast<char>(isBigEndian ? character.cell() : character.row()));
        }
        return bytes;
    };
    return {{QStringLiteral("UTF-8"), utf8},
            {QStringLiteral("UTF-16, little endian"), utf16(false)},
            {QStringLiteral("UTF-16, big endian"), utf16(true)},
            {QStringLiteral("base64"), utf8.toBase64(QByteArray::OmitTrailingEquals)},
            {QStringLiteral("hex"), utf8.toHex()}};
}
} // namespace

/// Everything that station and client write while NAS servers are added, used and changed is searched for the password.
class NoPasswordIsWrittenTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void theSearchFindsEverySpelling();
    void stationAndClientWriteNoPassword();

private:
    Run recordingctl(const QStringList &arguments, const QString &password = {}) const;
    QStringList placesOf(const QString &password, const QByteArray &output) const;

    SambaServer m_server;
    QTemporaryDir m_folder; // data of station and client, and their logs
};

void NoPasswordIsWrittenTest::initTestCase()
{
    m_server.addShare(QStringLiteral("video"));
    QVERIFY(QDir(m_server.folderOf(QStringLiteral("video"))).mkpath(QStringLiteral("cam1")));
    QVERIFY2(m_server.start(), qPrintable(m_server.error()));
}

/// Runs the tool with everything that it can log, and hands it @p password on its standard input.
Run NoPasswordIsWrittenTest::recordingctl(const QStringList &arguments, const QString &password) const
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"HOME", "TMPDIR", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"})
        environment.insert(QString::fromLatin1(name), m_folder.path());
    environment.insert(QStringLiteral("RECORDING_TRACE_FILE"), m_folder.filePath(QStringLiteral("trace.log")));
    environment.insert(QStringLiteral("RECORDING_TRACE_LEVEL"), QStringLiteral("trace"));
    environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("*=true"));
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(RECORDINGCTL), arguments);
    process.write(password.toUtf8() + '\n');
    process.closeWriteChannel();
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), process.readAll()};
}

/// In which files below the folder, and where in @p output, the password stands.
QStringList NoPasswordIsWrittenTest::placesOf(const QString &password, const QByteArray &output) const
{
    QHash<QString, QByteArray> contents{{QStringLiteral("output"), output}};
    QDirIterator files(m_folder.path(), QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        contents.insert(file.fileName(), file.open(QIODevice::ReadOnly) ? file.readAll() : password.toUtf8());
    }
    const QHash<QString, QByteArray> words = spellings(password);
    QStringList places;
    for (auto content = contents.cbegin(); content != contents.cend(); ++content) {
        for (auto word = words.cbegin(); word != words.cend(); ++word) {
            if (content.value().contains(word.value()))
                places.append(content.key() + QStringLiteral(": ") + word.key());
        }
    }
    places.sort();
    return places;
}

void NoPasswordIsWrittenTest::theSearchFindsEverySpelling()
{
    const QHash<QString, QByteArray> words = spellings(m_server.password());
    for (auto word = words.cbegin(); word != words.cend(); ++word) {
        QFile file(m_folder.filePath(QStringLiteral("a/.leak")));
        QVERIFY(QDir(m_folder.path()).mkpath(QStringLiteral("a")) && file.open(QIODevice::WriteOnly));
        file.write("x" + word.value() + "x");
        file.close();
        const QStringList expected{file.fileName() + QStringLiteral(": ") + word.key()};
        QCOMPARE(placesOf(m_server.password(), {}), expected);
        QVERIFY(file.remove());
    }
}

void NoPasswordIsWrittenTest::stationAndClientWriteNoPassword()
{
    const QString host = m_server.host();
    const QString video = QStringLiteral("//%1/video").arg(host);
    const QStringList logOn{QStringLiteral("--user"), m_server.userName(), QStringLiteral("--password"),
                            QStringLiteral("-")};
    const QString right = m_server.password();
    const QString wrong = QStringLiteral("Falsch-") + right;
    const struct
    {
        QStringList arguments;
        QString password;
        bool succeeds;
    } steps[] = {
        {QStringList{QStringLiteral("nas-add"), host} + logOn, wrong, false},
        {QStringList{QStringLiteral("nas-add"), host} + logOn, right, true},
        {QStringList{QStringLiteral("nas-add"), host} + logOn, right, false},
        {{QStringLiteral("nas")}, {}, true},
        {{QStringLiteral("nas"), QStringLiteral("--json")}, {}, true},
        {{QStringLiteral("nas-folders"), video}, {}, true},
        {QStringList{QStringLiteral("nas-folders"), video} + logOn, right, true},
        {{QStringLiteral("nas-capacity"), video}, {}, true},
        {{QStringLiteral("nas-volumes"), video}, {}, true},
        {{QStringLiteral("nas-volumes"), video + QStringLiteral("/missing")}, {}, false},
        {QStringList{QStringLiteral("nas-update"), host} + logOn, wrong, false},
        {QStringList{QStringLiteral("nas-update"), host} + logOn, right, true},
    };
    QByteArray output;
    for (const auto &step : steps) {
        const Run run = recordingctl(step.arguments, step.password);
        QVERIFY2((run.exitCode == 0) == step.succeeds, step.arguments.join(u' ').toUtf8() + ": " + run.output);
        output += run.output;
    }
    QVERIFY(QFile::exists(m_folder.filePath(QStringLiteral("trace.log"))));
    QVERIFY(QFile::exists(m_folder.filePath(QStringLiteral("recording-station/station.db"))));
    QVERIFY(QFile::exists(m_folder.filePath(QStringLiteral("recording-station/nas.key"))));
    // The station ends a moment after its last client, and takes its socket with it, which nobody can read.
    QTRY_COMPARE(placesOf(right, output).join(u'\n'), QString());
}

QTEST_GUILESS_MAIN(NoPasswordIsWrittenTest)
#include "tst_no_password_is_written.moc"
