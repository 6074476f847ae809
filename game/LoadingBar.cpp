#include "game/LoadingBar.h"

#include <SDL/SDL.h>

#include "engine/GL.h"
#include "engine/Orvel.h"

using orvel::Orvel;

unsigned LoadingBar::framesShown = 0;
uint32_t (*LoadingBar::clock)() = SDL_GetTicks;

namespace {

// The track in a dim blue, the filled part in the HUD's light cyan.
const GLubyte TRACK[4] = {28, 44, 64, 255};
const GLubyte FILL[4] = {120, 220, 255, 255};

uint32_t lastShown = 0;

// A rectangle in window pixels (y down) as one quad; the arrays stay static for GL's pointers.
void drawRect(int x, int y, int w, int h, const GLubyte* color) {
    static GLfloat vertices[8];
    static GLubyte colors[16];
    const GLfloat quad[8] = {(GLfloat)x,       (GLfloat)y,       (GLfloat)(x + w), (GLfloat)y,
                             (GLfloat)(x + w), (GLfloat)(y + h), (GLfloat)x,       (GLfloat)(y + h)};
    for (int i = 0; i < 8; ++i) vertices[i] = quad[i];
    for (int i = 0; i < 16; ++i) colors[i] = color[i % 4];
    glVertexPointer(2, GL_FLOAT, 0, vertices);
    glColorPointer(4, GL_UNSIGNED_BYTE, 0, colors);
    glDrawArrays(GL_QUADS, 0, 4);
}

} // namespace

int LoadingBar::filledWidth(unsigned done, unsigned total, int width) {
    const int length = width - 2 * SIDE_GAP;
    if (total == 0 || length <= 0) return 0;
    if (done >= total) return length;
    return (int)((long long)length * done / total);
}

void LoadingBar::reset() {
    framesShown = 0;
    lastShown = 0;
}

void LoadingBar::show(unsigned done, unsigned total) {
    const uint32_t now = clock();
    const bool full = total > 0 && done >= total;
    if (framesShown > 0 && !full && now - lastShown < MIN_FRAME_MS) return;

    const int width = Orvel::getScreenWidth();
    const int height = Orvel::getScreenHeight();
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(0, width, height, 0, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    GLint program = 0;
    glGetIntegerv(GL_CURRENT_PROGRAM, &program);
    glUseProgram(0);

    glViewport(0, 0, width, height);
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_BLEND);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    const int y = height - BOTTOM_GAP - HEIGHT;
    drawRect(SIDE_GAP, y, width - 2 * SIDE_GAP, HEIGHT, TRACK);
    const int filled = filledWidth(done, total, width);
    if (filled > 0) drawRect(SIDE_GAP, y, filled, HEIGHT, FILL);

    glUseProgram((GLuint)program);
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    glPopClientAttrib();
    glPopAttrib();

    SDL_GL_SwapBuffers();
    lastShown = now;
    ++framesShown;
}
