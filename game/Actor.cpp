#include "game/Actor.h"

#include "engine/Math.h"
#include "game/Main.h"
#include "scene/Drawable.h"
#include "scene/Scene2D.h"

using orvel::Math;

Actor::Actor() : drawable(nullptr), position(), radius(0.0f), rotation(0.0f), scale(1.0f) {}

Actor::~Actor() {}

void Actor::update() { syncDrawable(); }

void Actor::syncDrawable() {
    position.x = Math::wrapf(position.x, 0.0f, g_world->worldWidth);
    position.y = Math::wrapf(position.y, 0.0f, g_world->worldHeight);
    if (drawable) {
        drawable->position = orvel::vec3(position.x, position.y, 0.0f);
        drawable->setScale(scale);
        drawable->setRotation(rotation);
    }
}
