#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

/// What came of one run of a tool; exitCode is -1 when it did not end by itself.
struct Run
{
    int exitCode = -1;
    QString output;
    QString errors;

    QStringList outputLines() const { return output.split(u'\n', Qt::SkipEmptyParts); }
    QStringList errorLines() const { return errors.split(u'\n', Qt::SkipEmptyParts); }
    QJsonObject json() const { return QJsonDocument::fromJson(output.toUtf8()).object(); }
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

/// Runs @p program, recordingctl as it is built, to its end.
inline Run run(const QStringList &arguments, const QByteArray &input = {}, const QString &program = RECORDINGCTL)
{
    QProcess process;
    process.setProcessEnvironment(quietEnvironment());
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    return finished(process);
}

/// The words of a line of a table.
inline QStringList words(const QString &line)
{
    static const QRegularExpression gap(QStringLiteral("  +"));
    return line.split(gap);
}
