#pragma once
// A full-screen pass over the finished frame; it has no work yet and render() does nothing.

#include "engine/Vector.h"

class Postprocess {
public:
    // Stores the starting values below; creates no GL objects.
    Postprocess();

    // Does nothing.
    void render();

    // Tuning for the pass; nothing reads them.
    float factor1; // 0.08
    float factor2; // 0.2
    float factor3; // 0.05
    float factor4; // 0.5
    orvel::vec2 scale1; // (1.25, 1.0)
    orvel::vec2 scale2; // (1.25, 1.0)
    int mode;           // 1
};
