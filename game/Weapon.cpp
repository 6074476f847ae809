#include "game/Weapon.h"

#include <algorithm>

#include "engine/Math.h"
#include "engine/Stack.h"
#include "game/Enemy.h"
#include "game/Friend.h"
#include "game/Game.h"
#include "game/Main.h"
#include "game/WorldWrap.h"
#include "scene/Scene2D.h"

using orvel::Math;
using orvel::Stack;
using orvel::vec2;

namespace {

const hit_struct NO_HIT = {nullptr, vec2()};

// Squared distance along one axis from v to the nearest point of [lo, hi], clamped as
// Math::clampf does; a copy's distance to the segment's box is the sum over its two axes.
inline float axisGapSquared(float v, float lo, float hi) {
    const float nearest = v > hi ? hi : (lo > v ? lo : v);
    const float d = nearest - v;
    return d * d;
}

// The candidate's own result: where the ray enters its circle, or no hit when the line
// passes outside it.
bool narrowPhase(const hit_struct& candidate, const vec2& from, const vec2& to, hit_struct& result) {
    const float r = candidate.actor->radius;
    if (!(Math::distanceTo(from, to, candidate.point) < r)) return false;
    result.actor = candidate.actor;
    result.point = Math::getNearIntersectPoint(from, to, candidate.point, r);
    return true;
}

// Stable insertion sort by key: each element goes after every earlier one with an equal or
// smaller key (found by binary search), moved there by adjacent swaps of hit and key together.
void sortByKey(Stack<hit_struct>& hits, Stack<float>& keys) {
    for (unsigned i = 1; i < hits.count; ++i) {
        const float key = keys.data[i];
        unsigned lo = 0;
        unsigned hi = i;
        while (lo < hi) {
            const unsigned mid = (lo + hi) / 2;
            if (keys.data[mid] <= key)
                lo = mid + 1;
            else
                hi = mid;
        }
        for (unsigned j = i; j > lo; --j) {
            std::swap(keys.data[j], keys.data[j - 1]);
            std::swap(hits.data[j], hits.data[j - 1]);
        }
    }
}

} // namespace

template <typename T>
hit_struct findHitAmong(const Stack<T*>& targets, const vec2& from, const vec2& to) {
    // Scratch memory for every call; grows by doubling past 64 candidates and is never freed.
    static Stack<hit_struct> hits(64);
    static Stack<float> distances(64);
    hits.clear();
    distances.clear();

    const float minX = std::min(from.x, to.x);
    const float maxX = std::max(from.x, to.x);
    const float minY = std::min(from.y, to.y);
    const float maxY = std::max(from.y, to.y);
    const float W = g_world ? g_world->worldWidth : 0.0f;
    const float H = g_world ? g_world->worldHeight : 0.0f;
    if (targets.count == 0) return NO_HIT;

    // Broad phase: the first of the nine copies whose circle reaches the segment's box.
    for (unsigned i = 0; i < targets.count; ++i) {
        Actor* actor = targets.data[i];
        const float x = actor->position.x;
        const float y = actor->position.y;
        // Indexed as WorldWrap::AXIS_SHIFT: unshifted, plus the extent, minus the extent.
        const float xs[3] = {x, x + W, x - W};
        const float ys[3] = {y, y + H, y - H};
        const float gx[3] = {axisGapSquared(xs[0], minX, maxX), axisGapSquared(xs[1], minX, maxX),
                             axisGapSquared(xs[2], minX, maxX)};
        const float gy[3] = {axisGapSquared(ys[0], minY, maxY), axisGapSquared(ys[1], minY, maxY),
                             axisGapSquared(ys[2], minY, maxY)};
        const float r2 = actor->radius * actor->radius;
        for (const unsigned char* c : WorldWrap::COPY_AXES) {
            if (gx[c[0]] + gy[c[1]] < r2) {
                hits.push(hit_struct{actor, vec2(xs[c[0]], ys[c[1]])});
                break;
            }
        }
    }

    hit_struct result = NO_HIT;
    if (hits.count == 0) return result;
    if (hits.count == 1) {
        narrowPhase(hits.data[0], from, to, result);
        return result;
    }

    // Narrow phase in order of distance from `from`; candidates the line misses are skipped.
    for (unsigned i = 0; i < hits.count; ++i) {
        const float dx = hits.data[i].point.x - from.x;
        const float dy = hits.data[i].point.y - from.y;
        distances.push(dx * dx + dy * dy);
    }
    sortByKey(hits, distances);
    for (unsigned i = 0; i < hits.count; ++i) {
        if (narrowPhase(hits.data[i], from, to, result)) return result;
    }
    return NO_HIT;
}

template hit_struct findHitAmong<Enemy>(const Stack<Enemy*>&, const vec2&, const vec2&);
template hit_struct findHitAmong<Friend>(const Stack<Friend*>&, const vec2&, const vec2&);

hit_struct Weapon::findHit(const vec2& from, const vec2& to, float) {
    if (!g_game) return NO_HIT;
    return findHitAmong(g_game->enemies, from, to);
}

bool Weapon::damageTarget(Actor* target, float amount) {
    return static_cast<Enemy*>(target)->damage(amount);
}
