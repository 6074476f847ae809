#include "game/HUDWeaponBox.h"

#include "game/Game.h"
#include "game/Main.h"
#include "game/Resources.h"
#include "game/ScoreCounter.h"
#include "scene/Sprite.h"

namespace {

const float FRAME_SCALE = 0.5f;

} // namespace

HUD_WeaponBox::HUD_WeaponBox() {
    frame = new Sprite(Resources::hud_power_dials_tex, -1, -1);
    frame->setScale(FRAME_SCALE);
    counter1 = new ScoreCounter();
    counter2 = new ScoreCounter();
    counter3 = new ScoreCounter();
    add(frame);
}

HUD_WeaponBox::~HUD_WeaponBox() {
    if (g_game) {
        g_game->removeActor(counter1);
        g_game->removeActor(counter2);
        g_game->removeActor(counter3);
    }
    delete counter1;
    delete counter2;
    delete counter3;
    delete frame;
}
