#pragma once

#include <QObject>
#include <QProcess>
#include <QString>

/// Starts the program of a station, recording-stationd, for a data folder. It goes on when this process ends.
class StationProgram : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;
    ~StationProgram() override;

    /// Starts a station for @p folder unless one runs; finished() follows. Never blocks.
    void start(const QString &folder);

    /// The program: $RECORDING_STATIOND, else recording-stationd beside this program, else in $PATH. Empty where there
    /// is none.
    static QString path();

signals:
    /// The station takes clients, or, with a sentence in @p error, none could be started.
    void finished(const QString &error);

private:
    void end(const QString &error);

    QProcess m_process;
};
