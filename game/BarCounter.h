#pragma once
// A bar gauge node of the HUD that draws nothing; EnergyGauges draws the working gauges.

#include <cstdint>

#include "scene/Drawable.h"

struct SceneState;

// Nothing creates one; the class stays as a fixed part of the HUD's class set.
class BarCounter : public Drawable {
public:
    // All fields 0.
    BarCounter();
    ~BarCounter() override;

    // Nothing.
    void draw(SceneState& state) override;

    int32_t value;
    int32_t maxValue;
    int32_t shownValue;
    int32_t segments;
    int32_t barWidth;
    int32_t barHeight;
    int32_t rollStart;
    int32_t rollEnd;
};
