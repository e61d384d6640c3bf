#pragma once

#include <string>

/// A folder for everything that a run writes. It goes with all that is in it when the process ends, however it ends:
/// another process, which hears of nothing else, waits for that.
class Keeper
{
public:
    /// Makes a new folder in @p parent. To be called before there are threads. Throws std::system_error.
    explicit Keeper(const std::string &parent);
    /// Waits until the folder is gone.
    ~Keeper();
    Keeper(const Keeper &) = delete;
    Keeper &operator=(const Keeper &) = delete;

    const std::string &folder() const { return m_folder; }

private:
    std::string m_folder;
    int m_pipe = -1; // closed by the end of this process
    int m_remover = -1;
};
