#include "scene/Drawable.h"

#include <algorithm>
#include <cmath>

#include "engine/Color.h"
#include "engine/Math.h"
#include "scene/Container.h"

using orvel::Color;
using orvel::Math;
using orvel::vec2;
using orvel::vec3;

Drawable::Drawable()
    : parent(nullptr), next(nullptr), prev(nullptr), flags(VISIBLE | BlendAlpha), position(0, 0, 0),
      hotSpot(0, 0, 0), size(0, 0, 0), rotation(0, 0, 0), reserved(0, 0, 0), scale(1.0f) {
    // Every mask shifted down by its own shift: 255 in each channel.
    blendColor.r = (uint8_t)(Color::rmask >> Color::rshift);
    blendColor.g = (uint8_t)(Color::gmask >> Color::gshift);
    blendColor.b = (uint8_t)(Color::bmask >> Color::bshift);
    blendColor.a = (uint8_t)(Color::amask >> Color::ashift);
}

Drawable::~Drawable() {
    remove();
}

void Drawable::updateSize() {
    flags &= ~DIRTY;
}

void Drawable::markDirty() {
    flags |= DIRTY;
    if (parent) parent->markContainerDirty();
}

void Drawable::remove() {
    if (parent) parent->remove(this);
}

void Drawable::insertAfter(Drawable* other) {
    if (other && other->parent) other->parent->insertAfter(this, other);
}

void Drawable::insertBefore(Drawable* other) {
    if (other && other->parent) other->parent->insertBefore(this, other);
}

void Drawable::bringToFront() {
    if (parent) parent->bringToFront(this);
}

void Drawable::sendToBack() {
    if (parent) parent->sendToBack(this);
}

void Drawable::setBlendColor(unsigned int rgba) {
    blendColor.r = (uint8_t)((rgba & Color::rmask) >> Color::rshift);
    blendColor.g = (uint8_t)((rgba & Color::gmask) >> Color::gshift);
    blendColor.b = (uint8_t)((rgba & Color::bmask) >> Color::bshift);
    blendColor.a = (uint8_t)((rgba & Color::amask) >> Color::ashift);
}

void Drawable::setBlendColor(float r, float g, float b, float a) {
    // Truncation of a value in [0, 1]: 1 only for exactly 1.0, kept as this overload's rule.
    blendColor.r = (uint8_t)Math::clampf(r, 0.0f, 1.0f);
    blendColor.g = (uint8_t)Math::clampf(g, 0.0f, 1.0f);
    blendColor.b = (uint8_t)Math::clampf(b, 0.0f, 1.0f);
    blendColor.a = (uint8_t)Math::clampf(a, 0.0f, 1.0f);
}

void Drawable::setVisible(bool visible) {
    if (visible) {
        flags |= VISIBLE;
    } else {
        flags &= ~VISIBLE;
    }
}

DrawMode blendOf(uint32_t flags) {
    if (flags & BlendAlpha) return BlendAlpha;
    if (flags & BlendAdd) return BlendAdd;
    if (flags & BlendColor) return BlendColor;
    return BlendAlpha;
}

void Drawable::setDrawMode(unsigned int mode) {
    flags = (flags & ~DRAW_MODE_MASK) | (mode & DRAW_MODE_MASK);
}

Bounds Drawable::getBounds() const {
    float hx = size.x * 0.5f;
    float hy = size.y * 0.5f;
    float a = Math::toRadian(rotation.z);
    float s = std::sin(a);
    float c = std::cos(a);

    const vec2 corners[4] = {
        vec2(hotSpot.x + hx, hotSpot.y + hy),
        vec2(hotSpot.x - hx, hotSpot.y + hy),
        vec2(hotSpot.x + hx, hotSpot.y - hy),
        vec2(hotSpot.x - hx, hotSpot.y - hy),
    };
    float minX = 0, minY = 0, maxX = 0, maxY = 0;
    for (int i = 0; i < 4; ++i) {
        float x = c * corners[i].x - s * corners[i].y;
        float y = s * corners[i].x + c * corners[i].y;
        if (i == 0 || x < minX) minX = x;
        if (i == 0 || x > maxX) maxX = x;
        if (i == 0 || y < minY) minY = y;
        if (i == 0 || y > maxY) maxY = y;
    }

    Bounds b;
    b.x = minX * scale;
    b.y = minY * scale;
    b.width = maxX * scale - b.x;
    b.height = maxY * scale - b.y;
    b.x += position.x;
    b.y += position.y;
    return b;
}

void Drawable::setScale(float s) {
    scale = std::fabs(s);
}

void Drawable::setSize(float w, float h) {
    size.x = w;
    size.y = h;
}

void Drawable::setRotation(float deg) {
    rotation.z = Math::wrapf(deg, 0.0f, 360.0f);
}

void Drawable::rotate(float deg) {
    rotation.z = Math::wrapf(rotation.z + deg, 0.0f, 360.0f);
}

void Drawable::centerHotSpot() {
    hotSpot.x = 0;
    hotSpot.y = 0;
}

void Drawable::setHotSpot(HotSpotLocation location) {
    float hw = 0.5f * size.x;
    float hh = 0.5f * size.y;
    switch (location) {
    case TopLeft:
        setHotSpot(hw, hh);
        break;
    case TopRight:
        setHotSpot(-hw, hh);
        break;
    case Left:
        setHotSpot(hw, 0);
        break;
    case Top:
        setHotSpot(0, hh);
        break;
    case Center:
        setHotSpot(0, 0);
        break;
    case Right:
        setHotSpot(-hw, 0);
        break;
    case Bottom:
        setHotSpot(0, -hh);
        break;
    case BottomLeft:
        setHotSpot(hw, -hh);
        break;
    case BottomRight:
        setHotSpot(-hw, -hh);
        break;
    default:
        break;
    }
}

void Drawable::setHotSpot(float x, float y) {
    hotSpot.x = x;
    hotSpot.y = y;
}

vec2 localToGlobal(const vec2&) {
    return vec2(0, 0);
}

vec2 globalToLocal(const vec2&) {
    return vec2(0, 0);
}
