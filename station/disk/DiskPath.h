#pragma once

#include <filesystem>

class DiskVisit;

/// What a path leads to.
struct DiskPath
{
    std::filesystem::path canonical; ///< absolute, symbolic links resolved
    bool isFolder = false;
    int error = 0; ///< a number of the system; ETIMEDOUT when a disk on the way does not answer
};

/// Follows @p path, which is absolute, as the system would, and enters every disk on the way with @p visit before it is
/// touched: where a link leads to another disk, it is that one that may not answer.
DiskPath resolved(const std::filesystem::path &path, DiskVisit &visit);
