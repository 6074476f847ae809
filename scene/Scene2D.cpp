#include "scene/Scene2D.h"

#include "engine/Framebuffer.h"
#include "engine/GL.h"
#include "engine/Orvel.h"
#include "engine/Texture.h"
#include "scene/Shaders.h"

using orvel::Framebuffer;
using orvel::Orvel;

namespace {

// Attachment flags of the world scene's framebuffer: four colour targets and depth.
const unsigned FRAMEBUFFER_FLAGS = 31;

} // namespace

Scene2D::Scene2D(int width, int height)
    : SceneRoot(width, height), framebuffer(new Framebuffer(screenWidth, screenHeight, FRAMEBUFFER_FLAGS)),
      color0(framebuffer->color0), color1(framebuffer->color1), color2(framebuffer->color2),
      color3(framebuffer->color3) {}

Scene2D::~Scene2D() {
    delete framebuffer;
}

void Scene2D::draw() {
    // The world's own scratch memory, apart from the HUD's.
    static Scratch scratch;

    framebuffer->bind();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    drawTree(scratch);
    copyToScreen();
}

// The framebuffer's colour texture over the whole screen.
void Scene2D::copyToScreen() {
    Framebuffer::unbindFB();
    color0->bind(GL_TEXTURE0);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    // Whatever program the walk left bound, the copy samples the texture.
    Shaders::useTextureFixed();
    Orvel::fillScreen();
}
