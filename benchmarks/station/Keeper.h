#pragma once

#include <string>
#include <vector>

/// Folders for everything that a run writes. They go with all that is in them when the process ends, however it ends:
/// another process, which hears of nothing else, waits for that.
class Keeper
{
public:
    /// Makes a new folder in each of @p parents. To be called before there are threads. Throws std::system_error.
    explicit Keeper(const std::vector<std::string> &parents);
    /// Waits until the folders are gone.
    ~Keeper();
    Keeper(const Keeper &) = delete;
    Keeper &operator=(const Keeper &) = delete;

    const std::string &folder(std::size_t index) const { return m_folders.at(index); }

private:
    std::vector<std::string> m_folders;
    int m_pipe = -1; // closed by the end of this process
    int m_remover = -1;
};
