#pragma once

#include "Program.h"

#include <cstdio>
#include <string>

#include <stdlib.h>

/// New folders for everything that a run writes. They go with all that is in them when the process ends, however it
/// ends: another process, which hears of nothing else, waits for that.
class Keeper
{
public:
    Keeper()
        : m_remover(popen("trap '' INT TERM HUP; exec xargs --null rm -rf --", "we")) // begins when the pipe is closed
    {
        require(m_remover != nullptr, "no process can be started");
    }
    /// Waits until the folders are gone.
    ~Keeper() { pclose(m_remover); }
    Keeper(const Keeper &) = delete;
    Keeper &operator=(const Keeper &) = delete;

    /// Makes a new folder in @p parent. Throws std::runtime_error.
    std::string newFolder(const std::string &parent)
    {
        std::string folder = parent + "/station-benchmark-XXXXXX";
        require(mkdtemp(folder.data()) != nullptr, "no folder can be made in " + parent);
        std::fwrite(folder.c_str(), 1, folder.size() + 1, m_remover); // with the null
        std::fflush(m_remover);
        return folder;
    }

private:
    FILE *m_remover;
};
