#include "scene/Scene2D.h"

#include "engine/Framebuffer.h"
#include "engine/GL.h"
#include "engine/Orvel.h"
#include "engine/Texture.h"
#include "scene/Shaders.h"

using orvel::Framebuffer;
using orvel::Orvel;

namespace {

// The world's framebuffer: the colour target it draws to, and depth. The other three colour
// targets a framebuffer can carry are left out: nothing draws to them or reads them, and each
// would hold 3.5 MiB of zeros, resident, at 1280 x 720.
const unsigned FRAMEBUFFER_FLAGS = Framebuffer::COLOR0 | Framebuffer::DEPTH;

} // namespace

Scene2D::Scene2D(int width, int height)
    : SceneRoot(width, height), framebuffer(new Framebuffer(screenWidth, screenHeight, FRAMEBUFFER_FLAGS)),
      color0(framebuffer->color0), color1(framebuffer->color1), color2(framebuffer->color2),
      color3(framebuffer->color3), copyOverBlack(false) {
    // The target is only ever copied 1:1 onto the screen, where every pixel centre meets a texel
    // centre: nearest sampling reads the same texels as linear, with a quarter of the reads.
    color0->bind(GL_TEXTURE0);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glBindTexture(GL_TEXTURE_2D, 0);
}

Scene2D::~Scene2D() {
    delete framebuffer;
}

void Scene2D::draw() {
    // The world's own scratch memory, apart from the HUD's.
    static Scratch scratch;

    framebuffer->bind();
    if (copyOverBlack && !first && !debugDraw) {
        // Nothing to draw: the walk still keeps the camera's books, and the screen gets what the
        // copy of the cleared target would give it, the clear colour weighted by its alpha, from
        // a clear of its own at a fraction of a full-screen copy's cost.
        drawTree(scratch);
        Framebuffer::unbindFB();
        GLfloat c[4];
        glGetFloatv(GL_COLOR_CLEAR_VALUE, c);
        glClearColor(c[0] * c[3], c[1] * c[3], c[2] * c[3], c[3] * c[3]);
        glClear(GL_COLOR_BUFFER_BIT);
        glClearColor(c[0], c[1], c[2], c[3]);
        return;
    }
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    drawTree(scratch);
    copyToScreen();
}

// The framebuffer's colour texture over the whole screen, weighted by its alpha.
void Scene2D::copyToScreen() {
    Framebuffer::unbindFB();
    color0->bind(GL_TEXTURE0);
    // Over black, one minus source alpha times the screen adds nothing.
    glBlendFunc(GL_SRC_ALPHA, copyOverBlack ? GL_ZERO : GL_ONE_MINUS_SRC_ALPHA);
    // Whatever program the walk left bound, the copy samples the texture.
    Shaders::useTextureFixed();
    Orvel::fillScreen();
}
