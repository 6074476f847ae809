#include "game/HUDScoreBox.h"

#include "game/Game.h"
#include "game/Main.h"
#include "game/Resources.h"
#include "game/ScoreCounter.h"
#include "scene/Sprite.h"

namespace {

const float FRAME_SCALE = 0.5f;

} // namespace

HUD_ScoreBox::HUD_ScoreBox() {
    frame = new Sprite(Resources::hud_score_tex, -1, -1);
    frame->setScale(FRAME_SCALE);
    counter = new ScoreCounter();
    add(frame);
}

HUD_ScoreBox::~HUD_ScoreBox() {
    if (g_game) g_game->removeActor(counter);
    delete counter;
    delete frame;
}
