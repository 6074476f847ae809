#include "engine/Recycler.h"

#include <new>

namespace orvel {

namespace {

// Size classes are multiples of GRAIN bytes up to LARGEST; each block starts with a header that
// names its class (0: an empty or large block straight from the heap), so give() needs no size.
const std::size_t GRAIN = 16;
const std::size_t LARGEST = 1024;
const std::size_t CLASSES = LARGEST / GRAIN + 1;
const std::size_t HEADER = alignof(std::max_align_t) > GRAIN ? alignof(std::max_align_t) : GRAIN;

#if defined(__SANITIZE_ADDRESS__)
// Under AddressSanitizer freed blocks go back to the heap at once, so a use after free is caught.
const bool KEEP_FREED = false;
#else
const bool KEEP_FREED = true;
#endif

struct FreeBlock {
    FreeBlock* next;
};

FreeBlock* lists[CLASSES];
unsigned listLengths[CLASSES];
std::size_t waiting;

std::size_t& classOf(void* block) {
    return *reinterpret_cast<std::size_t*>(static_cast<char*>(block) - HEADER);
}

// A block from the heap of `bytes` bytes after its header.
void* fromHeap(std::size_t sizeClass, std::size_t bytes) {
    char* raw = static_cast<char*>(::operator new(HEADER + bytes));
    void* block = raw + HEADER;
    classOf(block) = sizeClass;
    return block;
}

} // namespace

void* Recycler::take(std::size_t size) {
    const std::size_t sizeClass = size <= LARGEST ? (size + GRAIN - 1) / GRAIN : 0;
    if (sizeClass && lists[sizeClass]) {
        FreeBlock* block = lists[sizeClass];
        lists[sizeClass] = block->next;
        --listLengths[sizeClass];
        waiting -= sizeClass * GRAIN;
        return block;
    }
    return fromHeap(sizeClass, sizeClass ? sizeClass * GRAIN : size);
}

void Recycler::give(void* block) {
    if (!block) return;
    const std::size_t sizeClass = classOf(block);
    if (!sizeClass || !KEEP_FREED) {
        ::operator delete(static_cast<char*>(block) - HEADER);
        return;
    }
    FreeBlock* freed = static_cast<FreeBlock*>(block);
    freed->next = lists[sizeClass];
    lists[sizeClass] = freed;
    ++listLengths[sizeClass];
    waiting += sizeClass * GRAIN;
}

void Recycler::reserve(std::size_t size, unsigned count) {
    if (size == 0 || size > LARGEST || !KEEP_FREED) return;
    const std::size_t sizeClass = (size + GRAIN - 1) / GRAIN;
    while (listLengths[sizeClass] < count) give(fromHeap(sizeClass, sizeClass * GRAIN));
}

std::size_t Recycler::waitingBytes() {
    return waiting;
}

} // namespace orvel
