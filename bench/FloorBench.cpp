// The floor of a frame: the work every frame of the game cannot avoid, drawn the plain way with
// OpenGL alone, outside the game's code: the screen cleared, the world target cleared, one
// full-screen textured quad for the sky into it, the target copied to the screen with one
// full-screen quad, and the buffer swap. The whole-frame rows are judged as ratios to it, so that
// they mean the same on any renderer; a saving in the game's own passes shows as a lower ratio.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <vector>

#include <SDL/SDL.h>
#include <benchmark/benchmark.h>

#include "bench/FloorBench.h"
#include "engine/GL.h"
#include "engine/Orvel.h"

namespace {

const int WIDTH = 1280;
const int HEIGHT = 720;
// The sky's texture: one face of the skybox's size.
const int SKY_SIZE = 1024;
const int WARM_UP_FRAMES = 60;
const int MEASURED_FRAMES = 600;

double floorMedian = 0.0;

// A full-screen quad with texture coordinates, in clip space.
void drawTexturedScreen(GLuint texture) {
    static const GLfloat vertices[8] = {-1, -1, 1, -1, 1, 1, -1, 1};
    static const GLfloat coords[8] = {0, 0, 1, 0, 1, 1, 0, 1};
    glBindTexture(GL_TEXTURE_2D, texture);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glDisableClientState(GL_COLOR_ARRAY);
    glVertexPointer(2, GL_FLOAT, 0, vertices);
    glTexCoordPointer(2, GL_FLOAT, 0, coords);
    glDrawArrays(GL_QUADS, 0, 4);
}

GLuint makeTexture(int width, int height, const std::vector<uint32_t>* pixels) {
    GLuint id = 0;
    glGenTextures(1, &id);
    glBindTexture(GL_TEXTURE_2D, id);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 pixels ? pixels->data() : nullptr);
    return id;
}

void Floor(benchmark::State& state) {
    if (!orvel::Orvel::window) {
        state.SkipWithError("no window");
        return;
    }
    // A sky with something in every texel, so that no sampling short cut applies.
    std::vector<uint32_t> sky((size_t)SKY_SIZE * SKY_SIZE);
    for (size_t i = 0; i < sky.size(); ++i) sky[i] = 0xff000000u | (uint32_t)(i * 2654435761u >> 8);
    const GLuint skyTexture = makeTexture(SKY_SIZE, SKY_SIZE, &sky);
    const GLuint targetTexture = makeTexture(WIDTH, HEIGHT, nullptr);
    GLuint target = 0;
    glGenFramebuffersEXT(1, &target);
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, target);
    glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT, GL_TEXTURE_2D, targetTexture, 0);
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, 0);

    glUseProgram(0);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    glEnable(GL_TEXTURE_2D);
    glColor4f(1, 1, 1, 1);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glViewport(0, 0, WIDTH, HEIGHT);

    auto frame = [&] {
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, target);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        drawTexturedScreen(skyTexture);
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, 0);
        drawTexturedScreen(targetTexture);
        SDL_GL_SwapBuffers();
        glFinish();
    };
    for (int i = 0; i < WARM_UP_FRAMES; ++i) frame();

    std::vector<double> ms;
    ms.reserve((size_t)state.max_iterations);
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        frame();
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        state.SetIterationTime(seconds);
        ms.push_back(seconds * 1000.0);
    }
    std::sort(ms.begin(), ms.end());
    floorMedian = ms.empty() ? 0.0 : ms[ms.size() / 2];
    state.counters["median_ms"] = floorMedian;
    state.counters["p99_ms"] = ms.empty() ? 0.0 : ms[std::min(ms.size() - 1, ms.size() * 99 / 100)];
    state.counters["allocs/frame"] = 0.0;

    glDeleteFramebuffersEXT(1, &target);
    glDeleteTextures(1, &targetTexture);
    glDeleteTextures(1, &skyTexture);
    glDisable(GL_TEXTURE_2D);
}

} // namespace

double FloorBench::medianMs() {
    return floorMedian;
}

BENCHMARK(Floor)->Iterations(MEASURED_FRAMES)->UseManualTime()->Unit(benchmark::kMillisecond);
