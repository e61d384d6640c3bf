#include "Keeper.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {
[[noreturn]] void fail(const std::string &what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

[[noreturn]] void removeAtEnd(const std::vector<std::string> &folders, int pipe)
{
    setsid(); // a Ctrl-C is for the other process
    char nothing = 0;
    while (read(pipe, &nothing, 1) != 0) { }
    for (const std::string &folder : folders) {
        std::error_code error;
        std::filesystem::remove_all(folder, error);
        if (error)
            std::fprintf(stderr, "%s cannot be removed: %s\n", folder.c_str(), error.message().c_str());
    }
    _exit(0);
}
} // namespace

Keeper::Keeper(const std::vector<std::string> &parents)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        fail("pipe");
    for (const std::string &parent : parents) {
        std::string folder = parent + "/station-benchmark-XXXXXX";
        if (!mkdtemp(folder.data()))
            fail("no folder can be made in " + parent);
        m_folders.push_back(folder);
    }
    m_remover = fork();
    if (m_remover < 0)
        fail("fork");
    if (m_remover == 0) {
        close(ends[1]);
        removeAtEnd(m_folders, ends[0]);
    }
    close(ends[0]);
    m_pipe = ends[1];
}

Keeper::~Keeper()
{
    close(m_pipe);
    waitpid(m_remover, nullptr, 0);
}
