#pragma once
// The aiming cross on the HUD that follows the mouse and pulses its glow.

#include "scene/Group.h"

class Sprite;

// Built by Game::init and added to g_hud; Game::update calls update() first every frame.
class Reticle : public Group {
public:
    // The cross (reticle, 38 x 38) then the glow (reticle_glow, 40 x 40) above it; visible.
    Reticle();
    // Deletes cross and glow.
    ~Reticle() override;

    // Moves under the mouse in HUD coordinates and pulses the glow's alpha between 64 and 192.
    void update();

    Sprite* cross; // owned
    Sprite* glow;  // owned
};
