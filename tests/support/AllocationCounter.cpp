#include "tests/support/AllocationCounter.h"

#include <atomic>
#include <cstdlib>
#include <new>

// Named on the link line so that the linker takes this file out of the test helpers' library into
// every program that links it; nothing calls the replaced operator new by name.
extern "C" {
int nightvectorCountAllocations = 0;
}

namespace {

std::atomic<std::size_t> g_count{0};
std::atomic<std::size_t> g_lastSize{0};

void* countedAllocation(std::size_t size) {
    ++g_count;
    g_lastSize = size;
    if (void* p = std::malloc(size ? size : 1)) return p;
    throw std::bad_alloc();
}

} // namespace

namespace testing_support {

std::size_t allocationCount() { return g_count; }
std::size_t lastAllocationSize() { return g_lastSize; }

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
void operator delete(void* p, const std::nothrow_t&) noexcept { std::free(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { std::free(p); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }
