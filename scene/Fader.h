#pragma once
// A colour over the whole screen whose opacity follows a timed fade: hides mode changes.

#include <cstdint>

#include "engine/Vector.h"

// Not a scene node: the main loop calls draw() itself, after both scene roots.
class Fader {
public:
    // Idle and clear: a fade-in from 1 to 0 that ended at time 0.
    Fader();

    // Opacity eases from 0 to 1 over `ms` (0 means 1000) starting now: the screen becomes covered.
    void fadeOut(unsigned int ms);
    // Opacity eases from 1 to 0 over `ms` (0 means 1000) starting now: the cover goes away.
    void fadeIn(unsigned int ms);
    // The same from `opacity` instead of 1: a flash that never covers the whole picture.
    void fadeInFrom(float opacity, unsigned int ms);
    // True once the current time is past endTime.
    bool done() const;
    // Recomputes `current` for the current time and covers the screen with it. Loads identity
    // projection and model-view matrices and leaves alpha blending on. The main loop calls it
    // twice a frame; the second call finds the same time and so the same opacity.
    void draw();

    // Covers the rectangle of screen pixels from (left, top) to (right, bottom) with `rgb` (w
    // not drawn) at `opacity`, the way draw() covers the screen.
    static void fillRect(const orvel::vec4& rgb, float opacity, float left, float top, float right, float bottom);

    uint32_t startTime; // ms of Orvel::currentTime when the fade began
    uint32_t endTime;   // ms of Orvel::currentTime when it ends
    float from;         // opacity at startTime
    float to;           // opacity at endTime
    float current;      // opacity drawn last, [0, 1]
    // Fill colour (r, g, b, a) in x, y, z, w, each 0..1. Opacity comes from `current`; w is not drawn.
    orvel::vec4 color;

private:
    // Opacity eases from `fromOpacity` to `toOpacity` over `ms` (0 means 1000) starting now.
    void start(float fromOpacity, float toOpacity, unsigned int ms);
    // Covers (x0, y0) to (x1, y1) in normalised device coordinates.
    static void fill(const orvel::vec4& rgb, float opacity, float x0, float y0, float x1, float y1);
};
