#include <cstdio>

namespace {

// Whoever loads this library leaves a file in the current folder.
struct Mark
{
    Mark()
    {
        if (std::FILE *file = std::fopen("planted library was loaded", "w"))
            std::fclose(file);
    }
};

const Mark mark;

} // namespace
