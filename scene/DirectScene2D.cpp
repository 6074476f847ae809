#include "scene/DirectScene2D.h"

#include "engine/Orvel.h"
#include "scene/Shaders.h"

using orvel::mat2;
using orvel::Orvel;
using orvel::vec2;

DirectScene2D::DirectScene2D(int width, int height)
    : previousCamera(vec2(0, 0), 1.0f, 0.0f),
      camera(&defaultCamera), tuning{80.0f, 2.0f, 10.0f, 0.5f}, tuningColor{255, 255, 255, 255},
      tuningFactor(0.1f), enabled(true), debugDraw(true), wrap(true), skipTransparent(true) {
    screenWidth = width == -1 ? Orvel::getScreenWidth() : width;
    screenHeight = height == -1 ? Orvel::getScreenHeight() : height;
    defaultCamera = Camera2D(vec2((float)(screenWidth / 2), (float)(screenHeight / 2)), 1.0f, 0.0f);
    worldWidth = (float)screenWidth;
    worldHeight = (float)screenHeight;

    Shaders::init();
}

DirectScene2D::~DirectScene2D() {
    clear();
}

void DirectScene2D::draw() {
    drawSceneTree(*this);
}

void DirectScene2D::setCamera(Camera2D* c) {
    camera = c ? c : &defaultCamera;
}

mat2 DirectScene2D::worldToScreenMatrix() const {
    return rootWorldToScreenMatrix(*this);
}

mat2 DirectScene2D::screenToWorldMatrix() const {
    return rootScreenToWorldMatrix(*this);
}

vec2 DirectScene2D::worldToScreen(const vec2& p) const {
    return rootWorldToScreen(*this, p);
}

vec2 DirectScene2D::screenToWorld(const vec2& p) const {
    return rootScreenToWorldMatrix(*this) * p;
}
