#include "game/Starfield.h"

#include <cmath>

#include "engine/GL.h"
#include "engine/Math.h"
#include "engine/Orvel.h"
#include "engine/Texture.h"
#include "game/Main.h"
#include "game/Resources.h"
#include "scene/Scene2D.h"
#include "scene/Shaders.h"

using orvel::Math;
using orvel::Orvel;
using orvel::vec2;
using orvel::vec3;

namespace {

const float SKY_BRIGHTNESS = 0.82f;
// ms of Orvel::currentTime per radian of the sky camera's path: one cycle in about 68 minutes.
const float SKY_PERIOD_SCALE = 650000.0f;
const float SKY_FOV = 50.0f;
const float PI_F = 3.14159265358979f;

} // namespace

Starfield::Starfield(int count)
    : starTexture(Resources::star_tex), stars(nullptr), starCount((unsigned)count), parallax(0.8f),
      minDepth(1.0f), maxDepth(30.0f), margin(50.0f), starWidth(32.0f), starHeight(15.0f), skyOn(1),
      starsOn(1), skyFirst(false) {
    // One spare record beyond the last star, zero-filled like the rest.
    stars = new Star[starCount + 1]();
    sky.left = Resources::skybox_left_tex;
    sky.right = Resources::skybox_right_tex;
    sky.front = Resources::skybox_front_tex;
    sky.back = Resources::skybox_back_tex;
    sky.top = Resources::skybox_top_tex;
    sky.bottom = Resources::skybox_bottom_tex;
    sky.rotX = 7.0f;
    sky.rotY = 0.0f;
    sky.rotZ = 56.0f;
    init();
    sky.brightness = SKY_BRIGHTNESS;
    setVisible(true);
}

Starfield::~Starfield() {
    delete[] stars;
}

void Starfield::init() {
    float w = (float)Orvel::getScreenWidth();
    float h = (float)Orvel::getScreenHeight();
    for (unsigned i = starCount; i-- > 0;) {
        Star& s = stars[i];
        // Drawn blue, green, red in this order: the sequence of g_rand depends on it.
        s.color[2] = (uint8_t)g_rand.randi(168, 255);
        s.color[1] = (uint8_t)g_rand.randi(168, 255);
        s.color[0] = (uint8_t)g_rand.randi(168, 255);
        s.color[3] = 255;
        s.x = g_rand.randf(-margin, w + margin);
        s.y = g_rand.randf(-margin, h + margin);
        s.depth = g_rand.randf(minDepth, maxDepth);
        s.size = g_rand.randf(0.2f, 0.7f);
        s.brightness = 1.0f - ((s.depth - minDepth) / (maxDepth - minDepth)) * s.size;
    }
}

void Starfield::move(vec2& delta) {
    move(delta.x, delta.y);
}

void Starfield::move(float dx, float dy) {
    float w = (float)Orvel::getScreenWidth();
    float h = (float)Orvel::getScreenHeight();
    // Stars drift against the camera; nearer ones (small depth) drift more.
    float mx = -dx * parallax;
    float my = -dy * parallax;
    for (unsigned i = 0; i < starCount; ++i) {
        Star& s = stars[i];
        s.x = Math::wrapf(s.x + mx / s.depth, -margin, w + margin);
        s.y = Math::wrapf(s.y + my / s.depth, -margin, h + margin);
    }
}

void Starfield::rotateSky(float ax, float ay, float az) {
    sky.rotX = Math::wrapf(sky.rotX + ax, 0.0f, 360.0f);
    sky.rotY = Math::wrapf(sky.rotY + ay, 0.0f, 360.0f);
    sky.rotZ = Math::wrapf(sky.rotZ + az, 0.0f, 360.0f);
}

void Starfield::draw(SceneState& state) {
    if (skyOn) drawSky();
    if (starsOn) drawStars(state);
}

void Starfield::drawSky() {
    // The faces never overlap, so on black adding (source alpha, one) is replacing.
    glBlendFunc(GL_SRC_ALPHA, skyFirst ? GL_ZERO : GL_ONE);
    float t = Math::wrapf(Orvel::currentTime / SKY_PERIOD_SCALE, -PI_F, PI_F);
    camera.eye = vec3(-25.0f * std::cos(1.8f * t), 9.0f - std::sin(1.1f * t), 25.0f * std::sin(1.4f * t));
    camera.fov = SKY_FOV;
    camera.lookAt(vec3(0.0f, 1.5f + std::cos(2.1f * t), 1.0f));
    camera.bind(orvel::Camera::PROJECTION | orvel::Camera::ROTATION | orvel::Camera::TRANSLATION);
    Shaders::useTextureFixed();
    sky.draw(&camera);
}

void Starfield::drawStars(SceneState& state) {
    // One block for every frame: filled up to a batch, drawn, emptied. The client arrays point
    // into it, so it never moves.
    static QuadBatch batch(BATCH_CAPACITY);
    batch.clear();

    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(state.projection2D->m);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(-(float)(Orvel::getScreenWidth() / 2), -(float)(Orvel::getScreenHeight() / 2), 0.0f);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    Shaders::useTextureFixed();
    // Without the star art the quads take whatever unit 0 holds: visible, never a crash.
    if (starTexture) starTexture->bind(GL_TEXTURE0);
    glEnable(GL_TEXTURE_2D);
    batch.bindArrays();

    for (unsigned i = 0; i < starCount; ++i) {
        const Star& s = stars[i];
        float hw = 0.5f * starWidth * s.size;
        float hh = 0.5f * starHeight * s.size;
        uint8_t a = (uint8_t)(s.color[3] * s.brightness);
        batch.pushRect(s.x - hw, s.y - hh, s.x + hw, s.y + hh, 0.0f, 0.0f, 1.0f, 1.0f,
                       Color4ub{s.color[0], s.color[1], s.color[2], a});
        if (batch.quadCount() == STARS_PER_BATCH) {
            batch.drawQuads();
            batch.clear();
        }
    }
    if (!batch.isEmpty()) batch.drawQuads();
    batch.clear();
}
