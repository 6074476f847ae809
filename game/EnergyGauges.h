#pragma once
// The ship's energy and hull gauges inside the weapon box.

#include <cstdint>

#include "scene/Drawable.h"

struct SceneState;

// A child of the weapon box, added after the frame (weaponBox->add(new EnergyGauges)) and owned by
// whoever creates it; the box's destructor only unlinks it.
// Every draw() it reads g_game's player (when set): energy of maxEnergy and hull of maxHull,
// each clamped to [0, 1], so a fresh spawn's 125 hull of 100 shows full. Energy fills the first
// dial's ring and the hull the second's, clockwise from the lower left; both arcs are
// shaped by hud_bars_mask and drawn from fixed vertex arrays: nothing is allocated per frame.
class EnergyGauges : public Drawable {
public:
    // Centred on its position, the size of the weapon box's frame, reading g_game.
    EnergyGauges();
    ~EnergyGauges() override;

    // v / max clamped to [0, 1]; 0 when max is not positive.
    static float fillFraction(float v, float max);

    // Copies the player's energy and hull into the fields; nothing when g_game or its player
    // is null.
    void sample();
    // sample() when followsGame, then both bars.
    void draw(SceneState& state) override;

    float energy;
    float maxEnergy;
    float hull;
    float maxHull;
    uint32_t energyColor; // orvel::Color layout (red in the low byte)
    uint32_t hullColor;
    bool followsGame; // sample g_game's player every draw()
};
