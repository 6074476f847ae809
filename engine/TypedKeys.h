#pragma once
// Keys typed for text entry, in the order they were typed: the event thread records every key
// press with the character it types while entry is on, and the main thread takes them one by
// one. A frame's key snapshot would lose a key pressed and released between two frames, and
// knows nothing of the keyboard layout or of Shift.

#include <atomic>
#include <cstdint>

namespace orvel {

class TypedKeys {
public:
    // Key presses held at most; more, typed before the main thread takes any, are dropped.
    static constexpr unsigned CAPACITY = 64;

    struct Key {
        uint16_t sym;       // SDL key symbol
        uint16_t character; // the character it types (UCS-2), 0 for none
    };

    TypedKeys() = delete;

    // Main thread. Turns recording on, with nothing recorded yet and SDL's translation of key
    // presses to characters on; or off, with the translation off again.
    static void enable(bool on);
    static bool enabled() { return on.load(std::memory_order_acquire); }

    // Event thread: records one key press; nothing while entry is off or the ring is full.
    static void record(uint16_t sym, uint16_t character);
    // Main thread: the oldest key press not taken yet; false when there is none.
    static bool take(Key& key);

private:
    static std::atomic<bool> on;
    // Written by the recording side only (head) or the taking side only (tail); each index only
    // grows, the ring slot is the index modulo CAPACITY.
    static std::atomic<unsigned> head, tail;
    static Key ring[CAPACITY];
};

} // namespace orvel
