#pragma once

#include <cstddef>

/// Watches and disturbs the C++ heap of the test executable. A test that uses it has its operator new and delete
/// replaced. Single-threaded.

/// Follows the object at @p address, which must be alive, until it is freed.
void watchAllocation(const void *address);

/// Whether the object that watchAllocation() follows was freed. False for an address that was never watched.
bool isFreed(const void *address);

/// While it lives, the nth allocation of its kind fails, counted from 0; every other one goes well.
class AllocationFailure
{
public:
    enum class Kind {
        Nothrow, ///< with std::nothrow: answers null
        Throwing, ///< throws std::bad_alloc
    };

    /// @param size only allocations of this many bytes count; 0 for all
    explicit AllocationFailure(int nth, Kind kind = Kind::Nothrow, std::size_t size = 0);
    ~AllocationFailure();

    AllocationFailure(const AllocationFailure &) = delete;
    AllocationFailure &operator=(const AllocationFailure &) = delete;

    /// Whether the allocation was asked for, and refused.
    bool happened() const;
};
