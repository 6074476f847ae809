#include "game/HUDRadarBox.h"

#include "game/Resources.h"
#include "scene/Sprite.h"

namespace {

const float FRAME_SCALE = 0.5f;

} // namespace

HUD_RadarBox::HUD_RadarBox() {
    frame = new Sprite(Resources::hud_radar_dials_tex, -1, -1);
    frame->setScale(FRAME_SCALE);
    add(frame);
}

HUD_RadarBox::~HUD_RadarBox() {
    delete frame;
}
