#pragma once

#include "files/OpenFile.h"

#include <QString>

/// Keeps a data folder for one station: the lock is the folder's own, so that it can be had on a disk that takes
/// nothing. Held for the process's life: it goes with the process however that ends, and is never broken.
class FolderLock
{
public:
    /// Tries to take the lock of @p folder, which has to exist. Never waits.
    explicit FolderLock(const QString &folder);

    bool isHeld() const { return m_isHeld; }
    /// Why it is not: who holds it, by program and process id, or what is in the way. An English sentence.
    const QString &reason() const { return m_reason; }
    /// Whether it is not because another process holds it.
    bool isTaken() const { return m_isTaken; }

private:
    OpenFile m_folder;
    QString m_reason;
    bool m_isHeld = false;
    bool m_isTaken = false;
};
