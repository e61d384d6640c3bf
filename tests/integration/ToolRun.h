#pragma once

#include <QByteArray>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QTest>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

/// What came of one run of a tool; exitCode is -1 when it did not end by itself.
struct Run
{
    int exitCode = -1;
    QString output;
    QString errors;

    QStringList outputLines() const { return output.split(u'\n', Qt::SkipEmptyParts); }
    QStringList errorLines() const { return errors.split(u'\n', Qt::SkipEmptyParts); }
    QJsonObject json() const { return QJsonDocument::fromJson(output.toUtf8()).object(); }
    QJsonValue reply() const { return json(); } ///< the same, to look into: reply()["data"][0]
};

/// Waits for @p process to end by itself.
inline Run finished(QProcess &process)
{
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

/// That of this test, without wishes for the trace log.
inline QProcessEnvironment quietEnvironment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("RECORDING_TRACE_LEVEL"));
    environment.remove(QStringLiteral("RECORDING_TRACE_FILE"));
    return environment;
}

/// Waits until no station serves @p folder any more; tests tell stations not to linger.
inline bool waitForStationEnd(const QString &folder)
{
    return QTest::qWaitFor(
        [name = QFile::encodeName(folder)] {
            const int opened = open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            const bool isFree = opened < 0 || flock(opened, LOCK_EX | LOCK_NB) == 0;
            if (opened >= 0)
                close(opened);
            return isFree;
        },
        60'000); // a station that nobody came to waits ten seconds
}

/// Runs @p program, recordingctl as it is built, to its end and that of the station of "--data" in @p arguments.
inline Run run(const QStringList &arguments, const QByteArray &input = {}, const QString &program = RECORDINGCTL)
{
    QProcess process;
    process.setProcessEnvironment(quietEnvironment());
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    Run ended = finished(process);
    const qsizetype data = arguments.indexOf(QStringLiteral("--data"));
    if (data >= 0 && !waitForStationEnd(arguments.value(data + 1)))
        ended.exitCode = -1;
    return ended;
}

/// The words of a line of a table.
inline QStringList words(const QString &line)
{
    static const QRegularExpression gap(QStringLiteral("  +"));
    return line.split(gap);
}
