#include "engine/GfxUtil.h"

#include <cstdio>

#include "engine/Color.h"
#include "engine/Math.h"
#include "engine/Shader.h"
#include "engine/ShaderProgram.h"
#include "engine/String.h"
#include "engine/Surface.h"
#include "engine/Vector.h"

namespace orvel {

void GfxUtil::drawGradientCircle(Surface* surface, int cx, int cy, int r, uint32_t colorOuter,
                                 uint32_t colorInner) {
    for (int y = cy - r; y < cy + r; ++y) {
        for (int x = cx - r; x < cx + r; ++x) {
            float d = vec2((float)Math::abs(cx - x), (float)Math::abs(cy - y)).length();
            if (d > r) continue;
            float t = 1 - d / r;
            int red = (int)Math::sin_lerp(t, Color::getR(colorOuter), Color::getR(colorInner));
            int green = (int)Math::sin_lerp(t, Color::getG(colorOuter), Color::getG(colorInner));
            int blue = (int)Math::sin_lerp(t, Color::getB(colorOuter), Color::getB(colorInner));
            surface->setPixel(x, y, Color::getColor(red, green, blue, 255));
        }
    }
}

void GfxUtil::drawGradientEllipse(Surface*, int, int, int, int, uint32_t, uint32_t) {}

void GfxUtil::blurSurface(Surface* surface, int radius) {
    blurSurface(surface, 0, 0, surface->width, surface->height, radius);
}

void GfxUtil::blurSurface(Surface*, int, int, int, int, int) {}

ShaderProgram* GfxUtil::loadShaderFromDisk(const char* dir, const char* name) {
    // Stages in the order they are read and attached.
    const int STAGES = 3;
    const char* extensions[STAGES] = {".vert", ".geom", ".frag"};
    const char codes[STAGES] = {Shader::VERTEX, Shader::GEOMETRY, Shader::FRAGMENT};

    String base(dir);
    base.append("/");
    base.append(name);
    String paths[STAGES] = {base + extensions[0], base + extensions[1], base + extensions[2]};

    bool present[STAGES];
    for (int i = 0; i < STAGES; ++i) {
        FILE* probe = std::fopen(paths[i].getCString(), "r");
        present[i] = probe != nullptr;
        if (probe) std::fclose(probe);
    }

    // Appending grows the string to an exact fit every time, so typical sources get room up front.
    String text;
    text.allocate(8096);
    char chunk[4096];
    Shader* stages[STAGES] = {nullptr, nullptr, nullptr};
    for (int i = 0; i < STAGES; ++i) {
        if (!present[i]) continue;
        // set("") rather than clear(): clear() would give the room back.
        text.set("");
        FILE* file = std::fopen(paths[i].getCString(), "r");
        // A file that vanished since the probe counts as missing.
        if (!file) continue;
        size_t n;
        while ((n = std::fread(chunk, 1, sizeof chunk - 1, file)) > 0) {
            chunk[n] = 0;
            text.append(chunk);
        }
        std::fclose(file);
        stages[i] = new Shader(codes[i], text.getCString(), (int)text.length(), paths[i].getCString());
    }

    ShaderProgram* program = new ShaderProgram();
    for (int i = 0; i < STAGES; ++i) {
        program->attach(stages[i]);
        // A stage that did not compile is left out of the program, so nothing else would free it.
        if (stages[i] && !stages[i]->isCompiled()) delete stages[i];
    }
    program->link();
    return program;
}

} // namespace orvel
