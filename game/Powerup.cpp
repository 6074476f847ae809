#include "game/Powerup.h"

#include "engine/Math.h"
#include "engine/Orvel.h"
#include "engine/Random.h"
#include "engine/String.h"
#include "game/Friend.h"
#include "game/Game.h"
#include "game/Main.h"
#include "game/Player.h"
#include "game/Resources.h"
#include "game/ScoreCounter.h"
#include "game/SoundEffects.h"
#include "game/TextIndicator.h"
#include "game/desktop/ScreenFlash.h"
#include "scene/Fader.h"
#include "scene/Group.h"
#include "scene/Scene2D.h"
#include "scene/Sprite.h"
#include "scene/Text.h"

using orvel::Math;
using orvel::Orvel;
using orvel::vec2;
using orvel::vec4;

namespace {

// Side of the sprite and its glow, world units.
const float SIZE = 48.0f;
// Columns and rows of both animation sheets.
const int FRAMES_X = 16;
const int FRAMES_Y = 16;
// Units a collected powerup's message starts above it.
const float MESSAGE_RISE = 35.0f;

// The kind from two draws: nine in ten are upgrades, the rest split 30:30:10:10:20:10 out of 110.
int drawKind() {
    const int r = g_rand.randi(0, 100);
    if (r <= 89) return Powerup::UPGRADE;
    const int q = g_rand.randi(0, 110);
    if (q < 30) return Powerup::ENERGY;
    if (q < 60) return Powerup::SHIELD;
    if (q < 70) return Powerup::EXTRA_SCORE;
    if (q < 80) return Powerup::HULL;
    if (q <= 99) return Powerup::SPEED_BOOST;
    return Powerup::MEGA_NUKE;
}

} // namespace

vec4 Powerup::ic;

Powerup::Powerup()
    : kind(0), group(new Group()), sprite(new Sprite(Resources::powerup_anim_tex, SIZE, SIZE)),
      glow(new Sprite(Resources::powerup_glow_anim_tex, SIZE, SIZE)), velocity(), animFrame(0.0f),
      animSpeed(25.0f), collecting(false), collectStart(0.0f), collectEnd(0.0f), collectFrom(),
      collector(nullptr) {
    const float first = g_rand.randf(-75.0f, 75.0f);
    const float second = g_rand.randf(-75.0f, 75.0f);
    velocity = vec2(second, first);
    kind = drawKind();

    Sprite* sheets[2] = {sprite, glow};
    for (Sprite* s : sheets) {
        s->animated = true;
        s->framesX = FRAMES_X;
        s->framesY = FRAMES_Y;
        s->frame = 0;
    }
    glow->setDrawMode(BlendAdd);
    group->add(sprite);
    group->add(glow);
    drawable = group;
}

Powerup::~Powerup() {
    if (g_game) {
        g_game->powerups.remove(this);
        g_game->actors.remove(this);
    }
    delete sprite;
    delete glow;
    delete group;
}

void Powerup::update() {
    animFrame = Math::wrapf(animFrame + animSpeed * Orvel::sync, 0.0f, (float)(sprite->framesX * sprite->framesY));
    sprite->frame = (int)animFrame;
    glow->frame = (int)animFrame;
    const float now = (float)Orvel::currentTime;

    if (!collecting) {
        position += velocity * Orvel::sync;
        velocity *= (float)(1.0 - 0.2 * (double)Orvel::sync);
        // Plain distance, no wrap: only a friend on the same side of the edge collects.
        const orvel::Stack<Friend*>& friends = g_game->friends;
        for (unsigned i = 0; i < friends.count; ++i) {
            Friend* f = friends.data[i];
            if ((f->position - position).length() < f->pickupRadius) {
                collecting = true;
                collector = f;
                collectStart = now;
                collectEnd = now + (float)COLLECT_TIME;
                collectFrom = position;
                break;
            }
        }
    } else {
        // Stays with its first collector whoever comes near meanwhile.
        const float t = Math::clampf((now - collectStart) / (collectEnd - collectStart), 0.0f, 1.0f);
        position = Math::sin_lerp(t, collectFrom, collector->position);
        scale = Math::sin_lerp(t, 1.0f, 0.0f);
        if (t >= 1.0f) {
            collect();
            delete this;
            return;
        }
    }
    syncDrawable();
}

void Powerup::collect() {
    static bool colourMade = false;
    if (!colourMade) {
        ic = vec4(0.1f, 1.0f, 0.15f, 1.0f);
        colourMade = true;
    }
    Player* player = g_game->player;
    g_sound.play(SFX_POWERUP_COLLECTED, kind);
    orvel::String message;
    switch (kind) {
    case UPGRADE: {
        const int amount = 10 * g_rand.randi(1, 5);
        g_game->upgradePoints += amount;
        if (g_game->weaponCounter) g_game->weaponCounter->addValue(amount);
        message = "Upgrade +";
        message += orvel::strInt(amount);
        break;
    }
    case ENERGY:
        if (player) player->energy = player->maxEnergy;
        message = "Energy restored";
        break;
    case SHIELD:
        if (player) player->shield = player->maxShield;
        message = "Shield restored";
        break;
    case EXTRA_SCORE: {
        const int score = 100 * g_rand.randi(5, 15);
        if (g_game->scoreCounter) g_game->scoreCounter->addValue(score);
        message = "Extra score";
        break;
    }
    case HULL:
        // Back to maxHull, below the hull of a fresh spawn.
        if (player) player->hull = player->maxHull;
        message = "Hull restored";
        break;
    case SPEED_BOOST: {
        // Recorded only: nothing reads the boost.
        const float now = (float)Orvel::currentTime;
        const int seconds = g_rand.randi(5, 10);
        if (player) {
            player->speedBoost = true;
            player->speedBoostStart = now;
            player->speedBoostEnd = now + 1000.0f * (float)seconds;
        }
        message = "Speed boost";
        break;
    }
    case MEGA_NUKE: {
        g_sound.play(SFX_MEGANUKE);
        if (player) g_game->killEnemiesInRadius(player->position, g_rand.randf(720.0f, 820.0f));
        const float d = g_rand.randf(950.0f, 1250.0f);
        if (g_fader) ScreenFlash::flash(*g_fader, vec4(1.0f, 1.0f, 1.0f, 1.0f), (unsigned)d);
        g_game->screenShake(d, d / 5.0f);
        message = "Free MegaNuke";
        break;
    }
    default:
        break;
    }

    TextIndicator* indicator =
        TextIndicator::show(g_world, message.getCString(), vec2(position.x, position.y - MESSAGE_RISE));
    indicator->text->color = ic;
    // The text starts above the powerup as well, not only the actor.
    indicator->text->position = orvel::vec3(position.x, position.y - MESSAGE_RISE, 0.0f);
}
