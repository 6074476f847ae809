#include "scene/Fader.h"

#include "engine/GL.h"
#include "engine/Math.h"
#include "engine/Orvel.h"
#include "engine/ShaderProgram.h"
#include "engine/VertexArrays.h"
#include "scene/Shaders.h"

using orvel::Math;
using orvel::Orvel;

// A fade of 0 ms would divide by zero; it stands for the usual second instead.
static const unsigned int DEFAULT_FADE_MS = 1000;

Fader::Fader() : startTime(0), endTime(0), from(1.0f), to(0.0f), current(0.0f), color(0, 0, 0, 0) {}

void Fader::fadeOut(unsigned int ms) {
    start(0.0f, 1.0f, ms);
}

void Fader::fadeIn(unsigned int ms) {
    start(1.0f, 0.0f, ms);
}

void Fader::fadeInFrom(float opacity, unsigned int ms) {
    start(opacity, 0.0f, ms);
}

void Fader::start(float fromOpacity, float toOpacity, unsigned int ms) {
    if (ms == 0) ms = DEFAULT_FADE_MS;
    from = fromOpacity;
    to = toOpacity;
    startTime = Orvel::currentTime;
    endTime = startTime + ms;
}

bool Fader::done() const { return endTime < Orvel::currentTime; }

void Fader::draw() {
    uint32_t now = Orvel::currentTime;
    bool finished = endTime < now && current == to;
    // A finished fade-in has nothing left to cover.
    if (finished && !(current > 0.0f)) return;

    // A finished fade-out skips the curve and keeps covering the screen every frame.
    if (!finished) {
        // Differences as signed ms, so a clock set before startTime gives t < 0 instead of a huge t.
        float t = (float)(int32_t)(now - startTime) / (float)(int32_t)(endTime - startTime);
        current = Math::clampf(Math::sin_lerp(t, from, to), 0.0f, 1.0f);
        if (!(current > 0.0f)) return;
    }

    fill(color, current, -1.0f, -1.0f, 1.0f, 1.0f);
}

void Fader::fillRect(const orvel::vec4& rgb, float opacity, float left, float top, float right, float bottom) {
    const float w = (float)Orvel::getScreenWidth(), h = (float)Orvel::getScreenHeight();
    fill(rgb, opacity, 2.0f * left / w - 1.0f, 1.0f - 2.0f * bottom / h, 2.0f * right / w - 1.0f,
         1.0f - 2.0f * top / h);
}

void Fader::fill(const orvel::vec4& rgb, float opacity, float x0, float y0, float x1, float y1) {
    // Static so that the pointers left in GL's client state never dangle.
    static GLfloat vertices[8];
    static GLfloat colors[16];
    const GLfloat corners[8] = {x0, y0, x1, y0, x1, y1, x0, y1};
    for (int i = 0; i < 8; ++i) vertices[i] = corners[i];
    for (int i = 0; i < 16; i += 4) {
        colors[i + 0] = rgb.x;
        colors[i + 1] = rgb.y;
        colors[i + 2] = rgb.z;
        colors[i + 3] = opacity;
    }

    // Without the shader set (no scene root built yet) the fixed pipeline draws the same quad.
    if (Shaders::color_shader_fixed)
        Shaders::color_shader_fixed->bind();
    else
        glUseProgram(0);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();

    // Texture coordinates would only be read from whatever array was left bound; the scene
    // roots enable them again before their leaves.
    orvel::VertexArrays::bindColored(vertices, GL_FLOAT, colors);
    glDrawArrays(GL_QUADS, 0, 4);
}
