#include "game/HUDWeaponBox.h"

#include "game/Game.h"
#include "game/Main.h"
#include "game/Resources.h"
#include "game/ScoreCounter.h"
#include "scene/Sprite.h"

namespace {

const float FRAME_SCALE = 0.5f;

// Takes the first occurrence of `actor` off g_game's actors by swapping in the last entry;
// nothing when there is no game or the actor is not listed.
void removeFromActors(Actor* actor) {
    if (!g_game) return;
    orvel::Stack<Actor*>& actors = g_game->actors;
    for (unsigned i = 0; i < actors.count; ++i) {
        if (actors.data[i] == actor) {
            actors.data[i] = actors.data[actors.count - 1];
            --actors.count;
            return;
        }
    }
}

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
    removeFromActors(counter1);
    removeFromActors(counter2);
    removeFromActors(counter3);
    delete counter1;
    delete counter2;
    delete counter3;
    delete frame;
}
