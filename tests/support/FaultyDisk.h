#pragma once

#include <QFile>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

/// Faults of a disk for a program that a test starts: @p faults are rules as faultydisk/FaultyDisk.cpp has them, a line
/// in @p log is written for each call that one befalls. @p gate is the file that switches some faults. The test's
/// target defines FAULTY_DISK_LIBRARY.
inline void setDiskFaults(QProcessEnvironment &environment, const QStringList &faults, const QString &log,
                          const QString &gate = {})
{
    environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FAULTY_DISK_LIBRARY));
    environment.insert(QStringLiteral("FAULTY_DISK"), faults.join(u';'));
    environment.insert(QStringLiteral("FAULTY_DISK_LOG"), log);
    environment.insert(QStringLiteral("FAULTY_DISK_GATE"), gate);
    // AddressSanitizer asks to be loaded first; behind this library it works as well.
    QString options = environment.value(QStringLiteral("ASAN_OPTIONS"));
    options += (options.isEmpty() ? QString() : QStringLiteral(":")) + QStringLiteral("verify_asan_link_order=0");
    environment.insert(QStringLiteral("ASAN_OPTIONS"), options);
}

/// The calls that a fault befell so far, each as "call path".
inline QStringList befallenCalls(const QString &log)
{
    QFile file(log);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)
                                          : QStringList();
}

/// The same for whatever this process starts from now on, until the object ends.
class DiskFaults
{
public:
    DiskFaults(const QStringList &faults, const QString &log, const QString &gate)
        : m_before(QProcessEnvironment::systemEnvironment())
        , m_gate(gate)
    {
        QProcessEnvironment environment = m_before;
        setDiskFaults(environment, faults, log, gate);
        for (const QString &name : names)
            qputenv(qPrintable(name), environment.value(name).toUtf8());
    }
    DiskFaults(const DiskFaults &) = delete;
    DiskFaults &operator=(const DiskFaults &) = delete;
    ~DiskFaults()
    {
        setGate(false);
        for (const QString &name : names) {
            if (m_before.contains(name))
                qputenv(qPrintable(name), m_before.value(name).toUtf8());
            else
                qunsetenv(qPrintable(name));
        }
    }

    /// Makes the file of the gate, or removes it. Whether it was the other way before.
    bool setGate(bool isThere)
    {
        QFile file(m_gate);
        return isThere ? !file.exists() && file.open(QIODevice::WriteOnly) : file.remove();
    }

private:
    static inline const QStringList names{QStringLiteral("LD_PRELOAD"), QStringLiteral("FAULTY_DISK"),
                                          QStringLiteral("FAULTY_DISK_LOG"), QStringLiteral("FAULTY_DISK_GATE"),
                                          QStringLiteral("ASAN_OPTIONS")};

    QProcessEnvironment m_before;
    QString m_gate;
};
