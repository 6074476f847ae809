#include "engine/TypedKeys.h"

#include <SDL/SDL.h>

namespace orvel {

std::atomic<bool> TypedKeys::on(false);
std::atomic<unsigned> TypedKeys::head(0), TypedKeys::tail(0);
TypedKeys::Key TypedKeys::ring[CAPACITY];

void TypedKeys::enable(bool value) {
    if (value) {
        // The taking side drops what was recorded before: keys typed in play are not a name.
        tail.store(head.load(std::memory_order_acquire), std::memory_order_release);
    }
    SDL_EnableUNICODE(value ? 1 : 0);
    on.store(value, std::memory_order_release);
}

void TypedKeys::record(uint16_t sym, uint16_t character) {
    if (!enabled()) return;
    const unsigned h = head.load(std::memory_order_relaxed);
    if (h - tail.load(std::memory_order_acquire) >= CAPACITY) return;
    ring[h % CAPACITY] = Key{sym, character};
    head.store(h + 1, std::memory_order_release);
}

bool TypedKeys::take(Key& key) {
    const unsigned t = tail.load(std::memory_order_relaxed);
    if (t == head.load(std::memory_order_acquire)) return false;
    key = ring[t % CAPACITY];
    tail.store(t + 1, std::memory_order_release);
    return true;
}

} // namespace orvel
