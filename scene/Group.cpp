#include "scene/Group.h"

#include "engine/Math.h"
#include "engine/Matrix.h"

using orvel::mat2;
using orvel::mat4;
using orvel::Math;
using orvel::vec2;
using orvel::vec3;
using orvel::vec4;

namespace {

// Widens [lo, hi] per component to hold p (x and y only, or all three).
void widen2(vec3& lo, vec3& hi, const vec2& p) {
    if (p.x < lo.x) lo.x = p.x;
    if (p.x > hi.x) hi.x = p.x;
    if (p.y < lo.y) lo.y = p.y;
    if (p.y > hi.y) hi.y = p.y;
}

void widen3(vec3& lo, vec3& hi, const vec3& p) {
    widen2(lo, hi, vec2(p.x, p.y));
    if (p.z < lo.z) lo.z = p.z;
    if (p.z > hi.z) hi.z = p.z;
}

} // namespace

Group::Group() {
    flags |= CONTAINER | DIRTY;
}

Group::~Group() {
    clear();
}

void Group::markContainerDirty() {
    markDirty();
}

void Group::updateSize() {
    if (!first) {
        size = vec3(0, 0, 0);
        flags &= ~DIRTY;
        return;
    }

    // Starting at the origin keeps the group's own origin inside its box, so its size is
    // measured from there.
    vec3 lo(0, 0, 0);
    vec3 hi(0, 0, 0);
    for (Drawable* child = first; child; child = child->next) {
        if (child->flags & DIRTY) child->updateSize();

        if (!(child->flags & NODE_3D)) {
            mat2 m;
            m.translate(child->position.x, child->position.y)
                .rotate(Math::toRadian(child->rotation.z))
                .scale(child->scale);
            float hx = child->size.x * 0.5f;
            float hy = child->size.y * 0.5f;
            float cx = child->hotSpot.x;
            float cy = child->hotSpot.y;
            widen2(lo, hi, m * vec2(cx - hx, cy - hy));
            widen2(lo, hi, m * vec2(cx + hx, cy - hy));
            widen2(lo, hi, m * vec2(cx - hx, cy + hy));
            widen2(lo, hi, m * vec2(cx + hx, cy + hy));
        } else {
            mat4 m;
            m.translate(child->position)
                .rotate(vec4(0, 0, 1, Math::toRadian(child->rotation.z)))
                .rotate(vec4(0, 1, 0, Math::toRadian(child->rotation.y)))
                .rotate(vec4(1, 0, 0, Math::toRadian(child->rotation.x)))
                .scale(vec3(child->scale, child->scale, child->scale));
            vec3 half = child->size * 0.5f;
            for (int i = 0; i < 8; ++i) {
                vec3 corner(child->hotSpot.x + ((i & 1) ? half.x : -half.x),
                            child->hotSpot.y + ((i & 2) ? half.y : -half.y),
                            child->hotSpot.z + ((i & 4) ? half.z : -half.z));
                widen3(lo, hi, m * corner);
            }
        }
    }
    size = vec3(hi.x - lo.x, hi.y - lo.y, hi.z - lo.z);
    flags &= ~DIRTY;
}

void Group::draw(SceneState&) {}
