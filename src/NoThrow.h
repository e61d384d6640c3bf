#pragma once

#include <new>
#include <utility>

/// No exception leaves the plug-in, whoever threw it: what is called from outside runs in one of these, and so does
/// each step of a reply or event that must not keep the later steps from being done. What ends here leaves an error
/// line in the trace log under the name of @p function.

/// Writes the error line of the exception that is being handled.
void traceException(const char *function) noexcept;

/// What @p work returns; @p fallback where an exception ended it. The fallback alone tells that memory ran out.
template<typename Result, typename Work>
Result noThrow(const char *function, Result fallback, Work &&work) noexcept
{
    try {
        return std::forward<Work>(work)();
    } catch (const std::bad_alloc &) {
        return fallback;
    } catch (...) {
        traceException(function);
        return fallback;
    }
}

/// Whether @p work came to its end.
template<typename Work>
bool noThrow(const char *function, Work &&work) noexcept
{
    try {
        std::forward<Work>(work)();
        return true;
    } catch (...) {
        traceException(function);
        return false;
    }
}
