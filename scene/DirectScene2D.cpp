#include "scene/DirectScene2D.h"

DirectScene2D::DirectScene2D(int width, int height) : SceneRoot(width, height) {}

void DirectScene2D::draw() {
    // The HUD's own scratch memory, apart from the world's.
    static Scratch scratch;

    drawTree(scratch);
}
