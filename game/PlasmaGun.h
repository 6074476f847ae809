#pragma once
// A plasma gun: projectiles in a ProjectileRing, aimed at what its base class targets.

#include "engine/Vector.h"
#include "game/ProjectileRing.h"
#include "game/SoundEffects.h"
#include "scene/Drawable.h"

// The numbers that make one plasma gun.
struct PlasmaSettings {
    unsigned initialShots; // slots and spark slices the ring starts with
    float damageMin, damageMax;
    float rate; // shots per second
    float energyCost;
    float shotRadius;     // world units
    Color4ub color;       // of every projectile
    orvel::vec4 sparkMin; // colour range of the sparks a hit throws
    orvel::vec4 sparkMax;
    SoundEffect shotSound; // at the muzzle, for every shot
    SoundEffect hitSound;  // where a shot hits a target that lives on
};

// Base is Weapon (shots hit the enemies) or EnemyWeapon (shots hit the friends).
template <typename Base> class PlasmaGun : public Base {
public:
    using Shot = ProjectileRing::Shot;

    // The ring's slots and slices on g_game's particle system, which must exist.
    explicit PlasmaGun(const PlasmaSettings& settings)
        : ring(settings.initialShots, settings.color, settings.shotRadius, settings.sparkMin,
               settings.sparkMax),
          shotSound(settings.shotSound) {
        ring.hitSound = settings.hitSound;
        this->damageMin = settings.damageMin;
        this->damageMax = settings.damageMax;
        this->rate = settings.rate;
        this->energyCost = settings.energyCost;
        this->setDrawMode(BlendAdd);
    }
    PlasmaGun(const PlasmaGun&) = delete;
    PlasmaGun& operator=(const PlasmaGun&) = delete;

    // The rate gate, then a shot from the gun's position along `dir`. A full ring doubles
    // instead of refusing the shot.
    float shoot(const orvel::vec2& dir) override {
        const float allowed = Base::shoot(dir);
        if (allowed == 0.0f) return allowed;
        const orvel::vec2 muzzle(this->position.x, this->position.y);
        ring.fire(muzzle, dir);
        g_sound.playAt(shotSound, muzzle);
        return allowed;
    }
    // Moves every live shot; a shot that hits ends, damages its target and sparks.
    void update() override { ring.update(*this); }
    // One square per live shot, once per view rectangle, additively.
    void draw(SceneState& state) override { ring.draw(state); }
    // Doubles the ring.
    void growArray() { ring.grow(); }

    ProjectileRing ring;
    SoundEffect shotSound;
};
