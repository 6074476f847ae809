#pragma once
// Small heap blocks kept for reuse. Objects that come and go during play (score popups, powerups,
// their sprites, the strings of their texts) take their memory from here, so once the first
// minutes of a game have freed a block of each size, later frames never call the heap again.

#include <cstddef>

namespace orvel {

class Recycler {
public:
    // A block of at least `size` bytes, aligned for any type: a freed block of the same size
    // class when one waits, otherwise a new one from the heap.
    static void* take(std::size_t size);
    // Puts a block from take() back on its list; null does nothing. Blocks above the largest
    // size class go back to the heap.
    static void give(void* block);

    // Tops up the list of blocks for objects of `size` bytes to at least `count` waiting blocks,
    // so the objects of that size made during play find memory ready. Large sizes are never
    // kept: nothing happens for them.
    static void reserve(std::size_t size, unsigned count);

    // Bytes of blocks waiting on the lists.
    static std::size_t waitingBytes();
};

// Base of a class whose objects are recycled: `new` and `delete` of it and of every class derived
// from it go through the Recycler. Arrays still come from the heap.
class Recycled {
public:
    static void* operator new(std::size_t size) { return Recycler::take(size); }
    static void operator delete(void* block) { Recycler::give(block); }
};

} // namespace orvel
