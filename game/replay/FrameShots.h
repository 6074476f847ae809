#pragma once
// Screenshots at chosen updates of a game, so that a game and its replay can be compared picture
// for picture: NIGHTVECTOR_SHOT_AT_FRAMES="600,1200" asks for one (as F1 takes it) in the frame
// whose update brings the session's count of updates to each number, whether the game is played
// or replayed. A frame that began paused takes none. Without the variable nothing is taken.

#include <cstddef>

class FrameShots {
public:
    static constexpr size_t MOST = 16;

    // The numbers of `list`, separated by commas; null or "" asks for none. Anything that is not
    // a number ends the list.
    void ask(const char* list);
    // After a frame drawn in play, its update done: whether a screenshot is due now, `updates`
    // being the count so far. Each number is answered once.
    bool due(size_t updates);
    size_t asked() const { return count; }

private:
    size_t frames[MOST] = {};
    bool taken[MOST] = {};
    size_t count = 0;
};
