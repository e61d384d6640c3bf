#pragma once

#include <QFile>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

/// Faults of a disk for a program that a test starts: @p faults are rules as faultydisk/FaultyDisk.cpp has them, a line
/// in @p log is written for each call that one befalls. The test's target defines FAULTY_DISK_LIBRARY.
inline void setDiskFaults(QProcessEnvironment &environment, const QStringList &faults, const QString &log)
{
    environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FAULTY_DISK_LIBRARY));
    environment.insert(QStringLiteral("FAULTY_DISK"), faults.join(u';'));
    environment.insert(QStringLiteral("FAULTY_DISK_LOG"), log);
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
