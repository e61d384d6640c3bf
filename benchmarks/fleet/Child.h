#pragma once

#include <QJsonObject>
#include <QList>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <chrono>
#include <string>

/// A process that takes part in a measurement and speaks as Lines.h has it. It ends with this object.
class Child
{
public:
    /// Throws std::runtime_error where the program does not start.
    Child(const QString &program, const QStringList &arguments);
    ~Child();
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

    void say(const QString &word);
    /// Waits for the first line that has @p key and was not asked for before. Throws std::runtime_error where none
    /// comes in time or the process ends.
    QJsonObject hear(const QString &key, std::chrono::seconds patience = std::chrono::seconds(60));

    /// In seconds, of all its threads so far.
    double cpuSeconds() const;
    double residentBytes() const;

private:
    QJsonObject take(const QString &key);

    QString m_name;
    QProcess m_process;
    QList<QJsonObject> m_lines;
};

/// The CPU time of the process of that number, in seconds. Throws std::runtime_error where there is none.
double cpuSecondsOf(qint64 process);
