#include "game/replay/FrameShots.h"

#include <cstdlib>

void FrameShots::ask(const char* list) {
    count = 0;
    for (const char* at = list; at && *at && count < MOST;) {
        char* end = nullptr;
        const unsigned long long n = strtoull(at, &end, 10);
        if (end == at || *at < '0' || *at > '9') break;
        taken[count] = false;
        frames[count++] = (size_t)n;
        if (*end != ',') break;
        at = end + 1;
    }
}

bool FrameShots::due(size_t updates) {
    for (size_t i = 0; i < count; ++i) {
        if (!taken[i] && frames[i] == updates) {
            taken[i] = true;
            return true;
        }
    }
    return false;
}
