#pragma once
// A radar node of the HUD that draws nothing; RadarDisplay is the working radar.

#include <cstdint>

#include "scene/Drawable.h"

struct SceneState;

// Nothing creates one; the class stays as a fixed part of the HUD's class set.
class Radar : public Drawable {
public:
    // All fields 0.
    Radar();
    ~Radar() override;

    // Nothing.
    void draw(SceneState& state) override;

    int32_t range;
    int32_t blipCount;
    int32_t mode;
};

// A radar engine slot that stays null; nothing reads it.
extern Radar* g_radarEngine;
