#pragma once
// The framed score box in the top-left corner of the HUD.

#include "scene/Group.h"

class ScoreCounter;
class Sprite;

// The constructor builds the frame (hud_score, natural size, scale 0.5, added to the box) and the
// counter. The creator pushes `counter` onto g_game's actors, adds counter->text to g_hud, and
// places the box (hot spot TopLeft, position (100, 30)).
class HUD_ScoreBox : public Group {
public:
    HUD_ScoreBox();
    // Takes the counter off g_game's actors, deletes it, deletes the frame, then the group goes.
    ~HUD_ScoreBox() override;

    Sprite* frame;         // owned
    ScoreCounter* counter; // owned
};
