#pragma once

#include <cstddef>

/// Lets memory run out under everything that a test executable runs, Qt's own code included: malloc and its kin, and
/// operator new with them. A test that uses it links recording-test-memory, which replaces them. Single-threaded.

/// How many blocks are allocated at present.
std::ptrdiff_t liveBlocks();

/// While it lives, memory is refused.
class MemoryFailure
{
public:
    enum class Length {
        Once, ///< the nth allocation alone, counted from 0
        Lasting, ///< the nth allocation, counted from 0, and every one after it
    };

    /// @param nth none is refused when it is below 0
    MemoryFailure(int nth, Length length);
    ~MemoryFailure();

    MemoryFailure(const MemoryFailure &) = delete;
    MemoryFailure &operator=(const MemoryFailure &) = delete;

    /// Whether an allocation was refused.
    bool happened() const;
};
