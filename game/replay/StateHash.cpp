#include "game/replay/StateHash.h"

#include <cstring>

#include "engine/Random.h"
#include "game/Actor.h"
#include "game/Enemy.h"
#include "game/Friend.h"
#include "game/Game.h"
#include "game/Main.h"
#include "game/Player.h"
#include "game/ScoreCounter.h"
#include "scene/ParticleSystem.h"

namespace {

// FNV-1a, 64 bits, fed a value's bytes at a time.
class Fnv {
public:
    void add(const void* data, size_t size) {
        const unsigned char* p = static_cast<const unsigned char*>(data);
        for (size_t i = 0; i < size; ++i) {
            h ^= p[i];
            h *= 0x100000001b3ull;
        }
    }
    void add(float v) { add(&v, sizeof v); }
    void add(int v) { add(&v, sizeof v); }
    void add(const orvel::vec2& v) {
        add(v.x);
        add(v.y);
    }
    uint64_t value() const { return h; }

private:
    uint64_t h = 0xcbf29ce484222325ull;
};

} // namespace

uint64_t stateHash(const Game& game) {
    Fnv f;
    f.add((int)game.actors.count);
    for (unsigned i = 0; i < game.actors.count; ++i) {
        const Actor* a = game.actors.data[i];
        f.add(a->position);
        f.add(a->rotation);
        f.add(a->radius);
        f.add(a->scale);
    }
    f.add((int)game.enemies.count);
    for (unsigned i = 0; i < game.enemies.count; ++i) f.add(game.enemies.data[i]->hitPoints);
    f.add((int)game.friends.count);
    for (unsigned i = 0; i < game.friends.count; ++i) f.add(game.friends.data[i]->hull);
    f.add((int)game.powerups.count);
    if (const Player* p = game.player) {
        f.add(p->velocity);
        f.add(p->cameraLead);
        f.add(p->energy);
        f.add(p->respawnStart);
        f.add(p->respawnEnd);
        f.add(p->spawnStart);
        f.add(p->spawnEnd);
    }
    f.add(game.scoreCounter ? game.scoreCounter->value : 0);
    f.add(game.wave);
    f.add(game.lives);
    f.add(game.upgradePoints);
    f.add(game.nextWaveTime);
    f.add(game.difficulty);
    f.add(game.running ? 1 : 0);
    f.add(g_rand.intCursor);
    f.add(g_rand.floatCursor);
    f.add(ParticleSystem::random.intCursor);
    f.add(ParticleSystem::random.floatCursor);
    return f.value();
}
