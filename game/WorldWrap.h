#pragma once
// The wrapping world: a torus of the world scene's size, where everything also stands at copies
// of itself shifted by the world's width and height.

#include "engine/Vector.h"

// A static-only holder. Hit tests, enemies and the MegaNuke look at an object and its eight
// copies, always in the same order: itself, then x + W, x - W, y + H, y - H, and the corners.
class WorldWrap {
public:
    static constexpr unsigned COPIES = 9;
    // Copy k shifts x by AXIS_SHIFT[COPY_AXES[k][0]] * W and y by AXIS_SHIFT[COPY_AXES[k][1]] * H.
    static constexpr unsigned char COPY_AXES[COPIES][2] = {{0, 0}, {1, 0}, {2, 0}, {0, 1}, {0, 2},
                                                           {1, 1}, {1, 2}, {2, 1}, {2, 2}};
    static constexpr float AXIS_SHIFT[3] = {0.0f, 1.0f, -1.0f};

    // The nine shifts of a w x h world in copy order, written out: the per-frame callers would
    // pay for multiplying by the table.
    static void copyOffsets(float w, float h, orvel::vec2 out[COPIES]) {
        out[0] = orvel::vec2(0.0f, 0.0f);
        out[1] = orvel::vec2(w, 0.0f);
        out[2] = orvel::vec2(-w, 0.0f);
        out[3] = orvel::vec2(0.0f, h);
        out[4] = orvel::vec2(0.0f, -h);
        out[5] = orvel::vec2(w, h);
        out[6] = orvel::vec2(w, -h);
        out[7] = orvel::vec2(-w, h);
        out[8] = orvel::vec2(-w, -h);
    }
};
