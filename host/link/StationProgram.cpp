#include "StationProgram.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace {
const QString name = QStringLiteral("recording-stationd");
}

/// The station is no child of the process that is ended here.
StationProgram::~StationProgram()
{
    m_process.disconnect(this);
    m_process.kill();
    m_process.waitForFinished(100);
}

QString StationProgram::path()
{
    QString chosen = QFile::decodeName(qgetenv("RECORDING_STATIOND"));
    if (!chosen.isEmpty())
        return chosen;
    const QString beside = QCoreApplication::applicationDirPath() + u'/' + name;
    return QFileInfo(beside).isExecutable() ? beside : QStandardPaths::findExecutable(name);
}

void StationProgram::start(const QString &folder)
{
    if (m_process.state() != QProcess::NotRunning)
        return; // its end answers this, too
    const QString program = path();
    if (program.isEmpty()) {
        const QString error = QStringLiteral("No station runs, and the program %1 that would start one was not found "
                                             "beside this one, nor in PATH.")
                                  .arg(name);
        QMetaObject::invokeMethod(
            this, [this, error] { emit finished(error); }, Qt::QueuedConnection);
        return;
    }
    m_process.disconnect(this);
    connect(&m_process, &QProcess::finished, this, [this](int exitCode, QProcess::ExitStatus status) {
        if (status == QProcess::NormalExit && exitCode == 0)
            end({});
        else
            end(QString::fromUtf8(m_process.readAllStandardError()).simplified());
    });
    connect(&m_process, &QProcess::errorOccurred, this, [this, program](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            end(QStringLiteral("The station %1 cannot be started: %2.").arg(program, m_process.errorString()));
    });
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.start(program, {QStringLiteral("--on-demand"), QStringLiteral("--data"), folder});
}

void StationProgram::end(const QString &error)
{
    const bool failed = m_process.exitStatus() != QProcess::NormalExit || m_process.exitCode() != 0
        || m_process.error() == QProcess::FailedToStart;
    emit finished(failed && error.isEmpty() ? QStringLiteral("The station ended while it started.") : error);
}
