#include "OpenFiles.h"

#include "Program.h"

#include <string>

#include <sys/resource.h>

namespace {
constexpr long othersOfAProcess = 200; // files, libraries, pipes
}

long raiseOpenFiles()
{
    rlimit limit = {};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
    getrlimit(RLIMIT_NOFILE, &limit);
    return static_cast<long>(limit.rlim_cur);
}

void requireConnections(int count)
{
    const long allowed = raiseOpenFiles();
    require(allowed >= count + othersOfAProcess,
            std::to_string(count) + " stations need as many connections in one process, and this user may have "
                + std::to_string(allowed)
                + " open files: raise the hard limit (ulimit -Hn, or LimitNOFILE= of the service)");
}
