#include "engine/FramePacer.h"

#include <algorithm>
#include <ctime>

namespace orvel {

namespace {

uint64_t steadyMicroseconds() {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return (uint64_t)t.tv_sec * 1000000u + (uint64_t)t.tv_nsec / 1000u;
}

void sleepMicroseconds(uint64_t us) {
    timespec t{(time_t)(us / 1000000u), (long)(us % 1000000u) * 1000L};
    while (nanosleep(&t, &t) != 0) {
    }
}

} // namespace

uint64_t (*FramePacer::clock)() = steadyMicroseconds;
void (*FramePacer::sleep)(uint64_t us) = sleepMicroseconds;

FramePacer::FramePacer() : fps(0), periodUs(0), lastEnd(0), deadline(0), ownTimes(), seen(0), isUnpaced(false) {}

void FramePacer::setCap(int value) {
    fps = value > 0 ? value : 0;
    periodUs = fps > 0 ? 1000000u / (uint64_t)fps : 0;
    lastEnd = 0;
    deadline = 0;
    seen = 0;
    isUnpaced = false;
}

uint64_t FramePacer::frameDone() {
    if (fps == 0) return 0;
    const uint64_t now = clock();
    if (lastEnd != 0) {
        ownTimes[seen % WINDOW] = (uint32_t)std::min<uint64_t>(now - lastEnd, UINT32_MAX);
        ++seen;
    }
    if (seen >= WINDOW) {
        uint32_t sorted[WINDOW];
        std::copy(ownTimes, ownTimes + WINDOW, sorted);
        std::nth_element(sorted, sorted + WINDOW / 2, sorted + WINDOW);
        isUnpaced = (double)sorted[WINDOW / 2] < MARGIN * (double)periodUs;
    }
    uint64_t slept = 0;
    if (!isUnpaced) {
        deadline = now;
    } else {
        // A frame that comes late starts the count again from itself, rather than hurrying the
        // next.
        deadline = deadline + periodUs > now ? deadline + periodUs : now;
        if (deadline > now) {
            slept = deadline - now;
            sleep(slept);
        }
    }
    // The next frame's own time starts when this one's sleep has ended, however long it took.
    lastEnd = slept > 0 ? clock() : now;
    return slept;
}

} // namespace orvel
