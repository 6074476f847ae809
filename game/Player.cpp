#include "game/Player.h"

#include <cmath>
#include <cstdio>

#include <SDL/SDL_keysym.h>

#include "engine/Math.h"
#include "engine/Orvel.h"
#include "engine/Random.h"
#include "engine/String.h"
#include "game/Explosions.h"
#include "game/Game.h"
#include "game/Laser.h"
#include "game/Main.h"
#include "game/Plasma.h"
#include "game/Resources.h"
#include "game/SoundEffects.h"
#include "game/TextIndicator.h"
#include "scene/DirectScene2D.h"
#include "scene/Group.h"
#include "scene/ParticleEmitter.h"
#include "scene/ParticleSlice.h"
#include "scene/ParticleSystem.h"
#include "scene/Scene2D.h"
#include "scene/Sprite.h"
#include "scene/Text.h"

using orvel::Math;
using orvel::Orvel;
using orvel::vec2;
using orvel::vec3;
using orvel::vec4;

namespace {

// SDL mouse buttons of the two weapons.
const int BUTTON_PLASMA = 1;
const int BUTTON_LASER = 3;

// Units per second squared of thrust and of braking.
const float THRUST = 500.0f;
const float BRAKE = 300.0f;
// Exhaust particles per second while thrusting.
const unsigned TRAIL_RATE = 100;
// Hull of a fresh ship after a respawn.
const float SPAWN_HULL = 125.0f;
// ms of the invulnerable grow-in, of the wait after a death and of the respawn flight.
const float GROW_TIME = 1000.0f;
const float RESPAWN_WAIT = 2500.0f;
const float RESPAWN_FLIGHT = 3500.0f;
// Distance from the world origin of the point the ship flies back to.
const float RESPAWN_DISTANCE = 1920.0f;

// The exhaust: short-lived blue puffs that shrink to nothing, born at the emitter's point.
const ParticleBurst EXHAUST = {0, 200, 500, 0.0f, 40.0f, 48.0f, 0.0f, 5.0f, 0.0f, 50.0f, 50.0f,
                               vec4(0.35f, 0.5f, 0.8f, 0.3f), vec4(0.35f, 0.6f, 1.0f, 0.5f)};

// Limits the length of v to `limit`, keeping its direction.
void limitLength(vec2& v, float limit) {
    const float length = v.length();
    v.normalize();
    v *= Math::clampf(length, 0.0f, limit);
}

void wrapPosition(vec2& p) {
    if (!g_world) return;
    p.x = Math::wrapf(p.x, 0.0f, g_world->worldWidth);
    p.y = Math::wrapf(p.y, 0.0f, g_world->worldHeight);
}

} // namespace

Player::Player()
    : trail(nullptr), trailEmitter(nullptr), plasma(nullptr), laser(nullptr), group(nullptr),
      bottomSprite(nullptr), middleSprite(nullptr), topSprite(nullptr), bottomGlow(nullptr), topGlow(nullptr),
      energyText(nullptr), velocity(), cameraLead(), energy(350.0f), maxEnergy(350.0f), energyRegen(35.0f),
      spareC(1.0f), thrustCost(25.0f), maxLead(0.0f), speedBoost(false), speedBoostStart(0.0f),
      speedBoostEnd(0.0f), respawnStart(0.0f), respawnEnd(0.0f), spawnStart(0.0f), spawnEnd(0.0f),
      deathPosition(), respawnPosition() {
    hull = SPAWN_HULL;
    pickupRadius = 150.0f;
    radius = 32.0f;

    trail = new ParticleSystem(256);
    trail->texture = Resources::proc_particle0_tex;
    trail->drawMode = BlendAdd;
    trail->defaultSlice->setDrawMode(BlendAdd);
    trailEmitter = trail->createEmitter(nullptr);
    trailEmitter->setParticles(EXHAUST);

    group = new Group();
    laser = new Laser();
    plasma = new Plasma();
    bottomSprite = new Sprite(Resources::player_bot_tex, 64.0f, 64.0f);
    middleSprite = new Sprite(Resources::player_mid_tex, 64.0f, 64.0f);
    topSprite = new Sprite(Resources::player_top_tex, 64.0f, 64.0f);
    bottomGlow = new Sprite(Resources::player_bot_glow_tex, 60.0f, 60.0f);
    topGlow = new Sprite(Resources::player_top_glow_tex, 72.0f, 72.0f);
    bottomGlow->setDrawMode(BlendAdd);
    topGlow->setDrawMode(BlendAdd);
    bottomGlow->blendColor.a = 107;

    if (g_world) g_world->add(trail->defaultSlice);
    group->add(bottomSprite);
    group->add(bottomGlow);
    group->add(middleSprite);
    group->add(topSprite);
    group->add(topGlow);
    drawable = group;

    laser->color = Laser::BEAM_COLOR;

    energyText = new Text(Resources::font_big, "Energy: 350");
    energyText->fontSize = 15.0f;
    energyText->setHotSpot(TopLeft);
    energyText->position = vec3(5.0f, 25.0f, 0.0f);
    maxLead = vec2(500.0f, 500.0f).length();
}

Player::~Player() {
    delete trail;
    delete laser;
    delete plasma;
    delete bottomSprite;
    delete middleSprite;
    delete topSprite;
    delete bottomGlow;
    delete topGlow;
    delete group;
    delete energyText;
}

void Player::update() {
    const float now = (float)Orvel::currentTime;
    const float sync = Orvel::sync;

    energy = Math::clampf(energy + energyRegen * sync, 0.0f, maxEnergy);
    // A fixed buffer: the text changes every frame.
    char line[32];
    std::snprintf(line, sizeof(line), "Energy: %d", (int)energy);
    energyText->setText(line);
    energyText->setHotSpot(TopLeft);

    if (now < spawnEnd) {
        // Growing in: invulnerable and out of control.
        scale = (now - spawnStart) / (spawnEnd - spawnStart);
    } else if (respawnEnd == 0.0f) {
        updateControl();
    } else if (now < respawnEnd) {
        updateRespawnFlight(now);
    } else {
        position = respawnPosition;
        spawn();
    }

    laser->update();
    plasma->update();
    updatePhysics();
    updateLooks(now);
}

// Thrust, braking, exhaust and both weapons; only while alive and grown in.
void Player::updateControl() {
    scale = 1.0f;
    spawnStart = spawnEnd = 0.0f;
    const float sync = Orvel::sync;
    const float a = THRUST * sync;
    const float b = BRAKE * sync;
    float dx = 0.0f;
    float dy = 0.0f;
    if (Orvel::keyDown(SDLK_w)) dy = -a;
    if (Orvel::keyDown(SDLK_s)) dy += a;
    if (Orvel::keyDown(SDLK_a)) dx = -a;
    if (Orvel::keyDown(SDLK_d)) dx += a;
    const bool steeringX = dx != 0.0f;
    const bool steeringY = dy != 0.0f;

    if (steeringX || steeringY) {
        const float c = thrustCost * sync;
        const float rest = energy - c;
        if (rest < 0.0f) {
            // Too little energy: a push in proportion to what is left.
            dx *= energy / c;
            dy *= energy / c;
            energy = 0.0f;
            velocity += vec2(dx, dy);
        } else if (rest > 0.0f) {
            energy -= c;
            velocity += vec2(dx, dy);
        } else {
            // Exactly spent: the energy goes, the push does not come.
            energy = 0.0f;
        }
    }

    // Braking per axis without key input, never past 0.
    if (!steeringX) {
        if (velocity.x > 0.0f)
            velocity.x = velocity.x - b > 0.0f ? velocity.x - b : 0.0f;
        else if (velocity.x < 0.0f)
            velocity.x = velocity.x + b < 0.0f ? velocity.x + b : 0.0f;
    }
    if (!steeringY) {
        if (velocity.y > 0.0f)
            velocity.y = velocity.y - b > 0.0f ? velocity.y - b : 0.0f;
        else if (velocity.y < 0.0f)
            velocity.y = velocity.y + b < 0.0f ? velocity.y + b : 0.0f;
    }

    trailEmitter->position = position;
    if (!steeringX && !steeringY) {
        trailEmitter->rate = 0;
    } else {
        trailEmitter->rate = TRAIL_RATE;
        trailEmitter->direction = vec2(-velocity.x, -velocity.y);
    }
    trail->update();

    const vec2 mouse((float)Orvel::mouseX(), (float)Orvel::mouseY());
    const vec2 aim = (g_world ? g_world->screenToWorld(mouse) : mouse) - position;
    plasma->position = vec3(position.x, position.y, 0.0f);
    if (Orvel::mouseDown(BUTTON_PLASMA) && energy > plasma->energyCost) energy -= plasma->shoot(aim);
    laser->position = vec3(position.x, position.y, 0.0f);
    if (Orvel::mouseDown(BUTTON_LASER) && energy > laser->energyCost) energy -= laser->shoot(aim);
}

// Waits, then eases from the place of death to the respawn point.
void Player::updateRespawnFlight(float now) {
    if (now < respawnStart) return;
    const float t = (now - respawnStart) / (respawnEnd - respawnStart);
    position = Math::sin_lerp(t, deathPosition, respawnPosition);
}

// Speed limit, camera lead, and the first wrap with the drawable's synchronisation.
void Player::updatePhysics() {
    const float sync = Orvel::sync;
    limitLength(velocity, MAX_SPEED);
    cameraLead += velocity * (1.0f / MAX_SPEED) * velocity.length() * sync;
    cameraLead *= 1.0f - (cameraLead.length() / maxLead) * sync;
    limitLength(cameraLead, MAX_SPEED);
    syncDrawable();
}

// Glow pulse, movement, second wrap and sprite spin.
void Player::updateLooks(float now) {
    const int top = (int)((energy / maxEnergy) * ((std::sin(now * 0.005f) * 0.1f + 0.9f) * 255.0f));
    topGlow->blendColor.a = (uint8_t)top;
    bottomGlow->blendColor.a = (uint8_t)Math::clampi(top - 100, 0, 255);

    position += velocity * Orvel::sync;
    wrapPosition(position);

    bottomSprite->rotate(-165.0f * Orvel::sync);
    bottomGlow->setRotation(bottomSprite->rotation.z);
    middleSprite->rotate(20.0f * Orvel::sync);
    group->markDirty();
}

bool Player::damage(float amount) {
    if ((float)Orvel::currentTime < spawnEnd) return true;
    hull -= amount;
    if (hull > 0.0f) {
        g_sound.play(SFX_PLAYER_HIT);
        return true;
    }
    hull = 1.0f;
    destroy();
    return false;
}

void Player::destroy() {
    const float now = (float)Orvel::currentTime;

    hull = 0.0f;
    g_sound.play(SFX_PLAYER_DEATH);
    emitExplosion(PLAYER_BLUE_BURST, position, radius);
    emitExplosion(PLAYER_FIRE_BURST, position, radius);
    if (g_world) g_world->add(g_game->explosionSlice);

    scale = 0.0f;
    deathPosition = position;

    if (g_game->lives > 0) {
        respawnStart = now + RESPAWN_WAIT;
        respawnEnd = respawnStart + RESPAWN_FLIGHT;
        const float first = g_rand.randf(-1.0f, 1.0f);
        const float second = g_rand.randf(-1.0f, 1.0f);
        vec2 direction(second, first);
        direction.normalize();
        // An absolute world point; wrapped once the ship reaches it.
        respawnPosition = direction * RESPAWN_DISTANCE;
    } else {
        // Gone for good: the session sees hull 0 with no lives and ends the game.
        g_game->actors.remove(static_cast<Actor*>(this));
        // Its laser is updated no more, so a hum it carries would never end.
        g_sound.hum(false);
        if (drawable) drawable->remove();
    }

    velocity = vec2(0.0f, 0.0f);
    // Out of the enemies' sight until the respawn, or for good.
    g_game->friends.remove(this);
}

void Player::spawn() {
    const float now = (float)Orvel::currentTime;
    scale = 0.0f;
    hull = SPAWN_HULL;
    spawnStart = now;
    spawnEnd = now + GROW_TIME;
    g_sound.play(SFX_RESPAWN);

    g_game->lives -= 1;
    orvel::String line = orvel::strInt(g_game->lives);
    line += " lives left";
    TextIndicator::showBanner(line.getCString());

    if (respawnStart - respawnEnd != 0.0f) {
        g_game->friends.push(this);
        respawnStart = respawnEnd = 0.0f;
    }
}
