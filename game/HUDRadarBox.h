#pragma once
// The framed radar dials in the bottom-right corner of the HUD.

#include "scene/Group.h"

class Sprite;

// The constructor builds the frame (hud_radar_dials, natural size, scale 0.5, added to the box).
// The creator places the box at (screen width - 130, screen height - 130).
class HUD_RadarBox : public Group {
public:
    HUD_RadarBox();
    // Deletes the frame.
    ~HUD_RadarBox() override;

    Sprite* frame; // owned
};
