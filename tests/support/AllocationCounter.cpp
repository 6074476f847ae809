#include "tests/support/AllocationCounter.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include <malloc.h>

// Named on the link line so that the linker takes this file out of the test helpers' library into
// every program that links it; nothing calls the replaced operator new by name.
extern "C" {
int nightvectorCountAllocations = 0;
}

namespace {

std::atomic<std::size_t> g_count{0};
std::atomic<std::size_t> g_lastSize{0};
// Bytes of the blocks handed out through operator new and not yet deleted.
std::atomic<std::size_t> g_liveBytes{0};

void* countedAllocation(std::size_t size) {
    ++g_count;
    g_lastSize = size;
    if (void* p = std::malloc(size ? size : 1)) {
        g_liveBytes += malloc_usable_size(p);
        return p;
    }
    throw std::bad_alloc();
}

void countedFree(void* p) {
    if (!p) return;
    g_liveBytes -= malloc_usable_size(p);
    std::free(p);
}

} // namespace

namespace testing_support {

std::size_t allocationCount() { return g_count; }
std::size_t lastAllocationSize() { return g_lastSize; }
std::size_t liveAllocationBytes() { return g_liveBytes; }

} // namespace testing_support

void* operator new(std::size_t size) { return countedAllocation(size); }
void* operator new[](std::size_t size) { return countedAllocation(size); }
// The nothrow forms (the GL driver's compiler uses them) come from the same heap, so the deletes
// below may free them; the library's own forms would call the counted ones above anyway.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return countedAllocation(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept { return operator new(size, tag); }
void operator delete(void* p, const std::nothrow_t&) noexcept { countedFree(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { countedFree(p); }
void operator delete(void* p) noexcept { countedFree(p); }
void operator delete[](void* p) noexcept { countedFree(p); }
void operator delete(void* p, std::size_t) noexcept { countedFree(p); }
void operator delete[](void* p, std::size_t) noexcept { countedFree(p); }
