#include "MemoryFailure.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>

// The allocator behind the replaced functions.
#ifdef SANITIZERS_ALLOCATE
#define BEHIND(function) __interceptor_##function
#else
#define BEHIND(function) __libc_##function
#endif

extern "C" {
void *BEHIND(malloc)(std::size_t size);
void *BEHIND(calloc)(std::size_t count, std::size_t size);
void *BEHIND(realloc)(void *block, std::size_t size);
void *BEHIND(memalign)(std::size_t alignment, std::size_t size);
void BEHIND(free)(void *block);
}

namespace {

std::atomic<std::ptrdiff_t> live = 0;
int allocationsToFailure = -1; // below 0: none is due
bool failureLasts = false;
bool failureHappened = false;

bool isRefused()
{
    if (allocationsToFailure < 0)
        return false;
    if (allocationsToFailure > 0) {
        --allocationsToFailure;
        return false;
    }
    failureHappened = true;
    if (!failureLasts)
        allocationsToFailure = -1;
    errno = ENOMEM;
    return true;
}

void *counted(void *block)
{
    if (block)
        live.fetch_add(1, std::memory_order_relaxed);
    return block;
}

} // namespace

std::ptrdiff_t liveBlocks()
{
    return live.load(std::memory_order_relaxed);
}

MemoryFailure::MemoryFailure(int nth, Length length)
{
    failureLasts = length == Length::Lasting;
    failureHappened = false;
    allocationsToFailure = nth;
}

MemoryFailure::~MemoryFailure()
{
    allocationsToFailure = -1;
}

bool MemoryFailure::happened() const
{
    return failureHappened;
}

extern "C" {

[[gnu::visibility("default")]] void *malloc(std::size_t size)
{
    return isRefused() ? nullptr : counted(BEHIND(malloc)(size));
}

[[gnu::visibility("default")]] void *calloc(std::size_t count, std::size_t size)
{
    return isRefused() ? nullptr : counted(BEHIND(calloc)(count, size));
}

[[gnu::visibility("default")]] void *realloc(void *block, std::size_t size)
{
    if (!block)
        return malloc(size);
    return isRefused() ? nullptr : BEHIND(realloc)(block, size); // none of ours asks for 0 bytes
}

[[gnu::visibility("default")]] void *memalign(std::size_t alignment, std::size_t size)
{
    return isRefused() ? nullptr : counted(BEHIND(memalign)(alignment, size));
}

[[gnu::visibility("default")]] void *aligned_alloc(std::size_t alignment, std::size_t size)
{
    return memalign(alignment, size);
}

[[gnu::visibility("default")]] int posix_memalign(void **result, std::size_t alignment, std::size_t size)
{
    void *const block = memalign(alignment, size);
    if (!block)
        return ENOMEM;
    *result = block;
    return 0;
}

[[gnu::visibility("default")]] void free(void *block)
{
    if (block)
        live.fetch_sub(1, std::memory_order_relaxed);
    BEHIND(free)(block);
}
}
