#include "game/Enemy.h"

#include <algorithm>
#include <cmath>

#include "engine/Math.h"
#include "engine/Orvel.h"
#include "engine/String.h"
#include "game/EnemyPlasma.h"
#include "game/EnemyWeapon.h"
#include "game/Explosions.h"
#include "game/Friend.h"
#include "game/Game.h"
#include "game/Main.h"
#include "game/Powerup.h"
#include "game/Resources.h"
#include "game/ScoreCounter.h"
#include "game/SoundEffects.h"
#include "game/TextIndicator.h"
#include "game/WorldWrap.h"
#include "scene/Group.h"
#include "scene/ParticleSlice.h"
#include "scene/ParticleSystem.h"
#include "scene/Scene2D.h"
#include "scene/Sprite.h"
#include "scene/Text.h"

using orvel::Math;
using orvel::Orvel;
using orvel::vec2;
using orvel::vec4;

namespace {

float distance(vec2 a, vec2 b) {
    const float dx = a.x - b.x;
    const float dy = a.y - b.y;
    return std::sqrt(dx * dx + dy * dy);
}

// Placement gives up looking for a spot this far from every friend after five attempts.
const int SPAWN_ATTEMPTS = 5;
const float SPAWN_CLEARANCE = 1024.0f;

} // namespace

// ---------------------------------------------------------------------------------------------
// Enemy

Enemy::Enemy()
    : weapon(new EnemyPlasma()), target(), velocity(), factor(1.0f), maxSpeed(50.0f), hitPoints(0.0f),
      score(100), fadeStart(0.0f), fadeEnd(0.0f), sightRange(800.0f), attackRange(800.0f),
      dropChance(0.0f) {
    radius = 100.0f;
}

Enemy::~Enemy() {
    delete weapon;
    if (g_game) {
        g_game->enemies.remove(this);
        g_game->actors.remove(static_cast<Actor*>(this));
    }
}

void Enemy::spawn() {
    const float w = g_world->worldWidth;
    const float h = g_world->worldHeight;
    g_world->add(weapon);
    hitPoints = 25.0f;
    score = 100;
    velocity = vec2(0.0f, 0.0f);

    // `nearest` is kept across the attempts: once one attempt came within the clearance of a
    // friend, all five are made and the last one stands.
    float nearest = 9000.0f;
    for (int attempt = 0; attempt < SPAWN_ATTEMPTS; ++attempt) {
        position.x = g_rand.randf(0.0f, w);
        position.y = g_rand.randf(0.0f, h);
        const orvel::Stack<Friend*>& friends = g_game->friends;
        for (unsigned i = 0; i < friends.count; ++i) {
            nearest = std::min(nearest, distance(position, friends.data[i]->position));
        }
        if (nearest >= SPAWN_CLEARANCE) break;
    }
    target.x = g_rand.randf(0.0f, w);
    target.y = g_rand.randf(0.0f, h);

    if (drawable) {
        fadeStart = (float)Orvel::currentTime;
        fadeEnd = (float)Orvel::currentTime + FADE_TIME;
        drawable->blendColor.a = 0;
        drawable->setScale(0.0f);
        drawable->setVisible(true);
    }
}

void Enemy::update() {
    updateFade();
    if (!searchFriends() && distance(target, position) < radius) {
        target.x = g_rand.randf(0.0f, g_world->worldWidth);
        target.y = g_rand.randf(0.0f, g_world->worldHeight);
    }
    steer();
    weapon->position = orvel::vec3(position.x, position.y, 0.0f);
    weapon->update();
    syncDrawable();
}

void Enemy::updateFade() {
    if (!drawable) return;
    const float now = (float)Orvel::currentTime;
    if (now < fadeEnd) {
        const float t = (now - fadeStart) / (fadeEnd - fadeStart);
        drawable->blendColor.a = (uint8_t)(t * 255.0f);
        scale = t;
    } else if (fadeEnd != 0.0f) {
        // The enemy's own scale keeps the last fade frame's value, and the synchronisation puts
        // it back on the drawable: the enemy stays just under full size for life.
        drawable->blendColor.a = 255;
        drawable->setScale(1.0f);
        fadeEnd = 0.0f;
    }
}

// Targets the nearest-found copy of a friend in sight; attacks the first copy in range.
// Returns whether it attacked.
bool Enemy::searchFriends() {
    vec2 shifts[WorldWrap::COPIES];
    WorldWrap::copyOffsets(g_world->worldWidth, g_world->worldHeight, shifts);
    const orvel::Stack<Friend*>& friends = g_game->friends;
    for (unsigned i = 0; i < friends.count; ++i) {
        const vec2 p = friends.data[i]->position;
        for (const vec2& shift : shifts) {
            const vec2 copy(p.x + shift.x, p.y + shift.y);
            const float d = distance(copy, position);
            if (d < sightRange) {
                target = copy;
                if (d < attackRange) {
                    attack();
                    return true;
                }
            }
        }
    }
    return false;
}

void Enemy::steer() {
    vec2 toTarget(target.x - position.x, target.y - position.y);
    const float dist = toTarget.length();
    vec2 a = toTarget.normalize();
    a *= 3.0f * maxSpeed;
    // Inside half the attack range the enemy backs off sideways and circles its target;
    // inside a quarter it stops accelerating and coasts.
    if ((double)dist < (double)attackRange * 0.5) {
        a *= -0.5f;
        a = vec2(-a.y, a.x);
        if ((double)dist < (double)attackRange * 0.25) a = vec2(0.0f, 0.0f);
    }
    velocity.x += a.x * Orvel::sync;
    velocity.y += a.y * Orvel::sync;
    velocity.clamp(-maxSpeed, maxSpeed);
    position.x += velocity.x * Orvel::sync;
    position.y += velocity.y * Orvel::sync;
}

bool Enemy::damage(float amount) {
    hitPoints -= amount;
    if (hitPoints > 0.0f) return true;

    // destroy() deletes the enemy: read what the score text needs first.
    const int paid = score;
    const vec2 where = position;
    destroy();
    TextIndicator::show(g_world, orvel::strInt(paid).getCString(), where);
    return false;
}

SoundEffect Enemy::explosionSound() const { return SFX_SMALL_EXPLOSION; }

void Enemy::attack() { weapon->shoot(vec2(target.x - position.x, target.y - position.y)); }

void Enemy::destroy() {
    hitPoints = 0.0f;
    emitExplosion(ENEMY_EXPLOSION, position, radius);
    g_sound.playAt(explosionSound(), position);
    g_world->add(g_game->explosionSlice);

    if (g_game->scoreCounter) g_game->scoreCounter->addValue(score);

    if (g_rand.randf() < dropChance) {
        Powerup* powerup = new Powerup();
        powerup->position = position;
        if (powerup->drawable && drawable) powerup->drawable->insertBefore(drawable);
        g_game->powerups.push(powerup);
        g_game->actors.push(powerup);
        g_sound.playAt(SFX_POWERUP_APPEARS, position);
    }

    if (drawable) drawable->setVisible(false);
    delete this;
}

// ---------------------------------------------------------------------------------------------
// EnemyShip

EnemyShip::EnemyShip(orvel::Texture* bodyTexture, orvel::Texture* glowTexture, float size, const Stats& s)
    : group(new Group()), sprite(new Sprite(bodyTexture, size, size)), glow(new Sprite(glowTexture, size, size)),
      stats(s) {
    glow->setDrawMode(BlendAdd);
    group->add(sprite);
    group->add(glow);
    drawable = group;
}

EnemyShip::~EnemyShip() {
    delete sprite;
    delete glow;
    delete group;
    drawable = nullptr;
}

void EnemyShip::update() {
    Enemy::update();
    const vec2 ahead(position.x + velocity.x, position.y + velocity.y);
    group->setRotation(Math::angle(position, ahead) + 90.0f);
}

void EnemyShip::spawn() {
    Enemy::spawn();
    const float d = g_game->difficulty;
    sightRange = 3000.0f;
    radius = stats.radius;
    maxSpeed = stats.maxSpeed;
    dropChance = stats.dropChance;
    hitPoints = stats.hitPoints * d;
    score = (int)(stats.score * d);
}

// ---------------------------------------------------------------------------------------------
// The seven types: body art, glow art, sprite size, then radius, speed, drop chance, hit points
// and score at difficulty 1.

Fighter::Fighter()
    : EnemyShip(Resources::enemy_fighter_tex, Resources::enemy_fighter_glow_tex, 96.0f,
                Stats{32.0f, 160.0f, 0.4f, 30.0f, 50.0f}) {
    spawn();
}

Fighter2::Fighter2()
    : EnemyShip(Resources::enemy_fighter2_tex, Resources::enemy_fighter2_glow_tex, 136.0f,
                Stats{50.0f, 120.0f, 0.55f, 65.0f, 125.0f}) {
    spawn();
}

Hammerhead::Hammerhead()
    : EnemyShip(Resources::enemy_hammerhead_tex, Resources::enemy_hammerhead_glow_tex, 136.0f,
                Stats{50.0f, 95.0f, 0.7f, 95.0f, 350.0f}) {
    spawn();
}

SoundEffect Hammerhead::explosionSound() const { return SFX_LARGE_EXPLOSION; }

Probe::Probe()
    : EnemyShip(Resources::enemy_probe_tex, Resources::enemy_probe_glow_tex, 82.0f,
                Stats{32.0f, 195.0f, 0.1f, 15.0f, 100.0f}) {
    spawn();
}

Probe2::Probe2()
    : EnemyShip(Resources::enemy_probe_tex, Resources::enemy_probe_glow_tex, 96.0f,
                Stats{42.0f, 235.0f, 0.15f, 25.0f, 175.0f}) {
    spawn();
}

Hammerhead2::Hammerhead2()
    : EnemyShip(Resources::enemy_hammerhead2_tex, Resources::enemy_hammerhead2_glow_tex, 172.0f,
                Stats{80.0f, 65.0f, 0.9f, 165.0f, 750.0f}) {
    spawn();
}

SoundEffect Hammerhead2::explosionSound() const { return SFX_LARGE_EXPLOSION; }

Probe3::Probe3()
    : EnemyShip(Resources::enemy_probe3_tex, Resources::enemy_probe3_glow_tex, 116.0f,
                Stats{42.0f, 265.0f, 0.2f, 35.0f, 225.0f}) {
    spawn();
}
