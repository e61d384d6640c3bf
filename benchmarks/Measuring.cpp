#include "Measuring.h"

#include <malloc.h>

#include <algorithm>
#include <cstring>
#include <ctime>

double threadSeconds()
{
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double heapInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

bool takeArgument(const char *argument, int &count, char **arguments)
{
    char **const end = arguments + count;
    char **const left =
        std::remove_if(arguments + 1, end, [argument](const char *text) { return !std::strcmp(text, argument); });
    count = static_cast<int>(left - arguments);
    return left != end;
}
