#pragma once
// The framed weapon dials in the bottom-left corner of the HUD.

#include "scene/Group.h"

class ScoreCounter;
class Sprite;

// The constructor builds the frame (hud_power_dials, natural size, scale 0.5, added to the box)
// and three counters that are not put on any list. The creator places the box at
// (100, screen height - 50).
class HUD_WeaponBox : public Group {
public:
    HUD_WeaponBox();
    // Takes each counter off g_game's actors, deletes the counters, deletes the frame.
    ~HUD_WeaponBox() override;

    Sprite* frame;          // owned
    ScoreCounter* counter1; // owned
    ScoreCounter* counter2; // owned
    ScoreCounter* counter3; // owned; Game::weaponCounter
};
