#include "HeapWatch.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <new>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

namespace {

struct Watched
{
    const void *address;
    bool freed;
};

std::array<Watched, 1024> watched; // fixed: the heap itself is under test
std::size_t watchedCount = 0;
int allocationsToFailure = -1; // below 0: none is due
AllocationFailure::Kind failingKind = AllocationFailure::Kind::Nothrow;
std::size_t failingSize = 0; // 0: any

// Qt's constructors leave behind what they had allocated when an allocation in them throws: not ours to count.
void countLeaks([[maybe_unused]] bool count)
{
#ifdef __SANITIZE_ADDRESS__
    count ? __lsan_enable() : __lsan_disable();
#endif
}

bool failsNow(AllocationFailure::Kind kind, std::size_t size)
{
    return allocationsToFailure >= 0 && kind == failingKind && (failingSize == 0 || size == failingSize)
        && allocationsToFailure-- == 0;
}

void *allocate(std::size_t size)
{
    return std::malloc(std::max<std::size_t>(size, 1));
}

void *allocateOrThrow(std::size_t size)
{
    void *const address = failsNow(AllocationFailure::Kind::Throwing, size) ? nullptr : allocate(size);
    if (!address)
        throw std::bad_alloc();
    return address;
}

void release(void *address)
{
    for (std::size_t i = watchedCount; i > 0; --i) {
        Watched &entry = watched[i - 1];
        if (entry.address == address && !entry.freed) {
            entry.freed = true;
            break;
        }
    }
    std::free(address);
}

} // namespace

void watchAllocation(const void *address)
{
    if (watchedCount == watched.size())
        std::abort();
    watched[watchedCount++] = {address, false};
}

bool isFreed(const void *address)
{
    for (std::size_t i = watchedCount; i > 0; --i) {
        if (watched[i - 1].address == address)
            return watched[i - 1].freed;
    }
    return false;
}

AllocationFailure::AllocationFailure(int nth, Kind kind, std::size_t size)
{
    failingKind = kind;
    failingSize = size;
    if (kind == Kind::Throwing)
        countLeaks(false);
    allocationsToFailure = nth;
}

AllocationFailure::~AllocationFailure()
{
    if (failingKind == Kind::Throwing)
        countLeaks(true);
    allocationsToFailure = -1;
}

bool AllocationFailure::happened() const
{
    return allocationsToFailure < 0;
}

void *operator new(std::size_t size)
{
    return allocateOrThrow(size);
}

void *operator new[](std::size_t size)
{
    return allocateOrThrow(size);
}

void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    if (failsNow(AllocationFailure::Kind::Nothrow, size))
        return nullptr;
    return allocate(size);
}

void operator delete(void *address) noexcept
{
    release(address);
}

void operator delete[](void *address) noexcept
{
    release(address);
}

void operator delete(void *address, std::size_t) noexcept
{
    release(address);
}

void operator delete[](void *address, std::size_t) noexcept
{
    release(address);
}

void operator delete(void *address, const std::nothrow_t &) noexcept
{
    release(address);
}
