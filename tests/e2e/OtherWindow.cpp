// Another SDL OpenGL program, for the start-up storm: it opens a window of its own over whatever
// is on the screen, draws spinning frames with SDL's own event polling for the milliseconds its
// argument names (600 without one), then quits. A player alternating between games does the same.

#include <cstdlib>

#include <GL/gl.h>
#include <SDL/SDL.h>

int main(int argc, char** argv) {
    const Uint32 lifeMs = argc > 1 ? (Uint32)std::atoi(argv[1]) : 600;
    if (SDL_Init(SDL_INIT_VIDEO) < 0) return 1;
    SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
    if (!SDL_SetVideoMode(640, 480, 32, SDL_OPENGL)) {
        SDL_Quit();
        return 2;
    }
    SDL_WM_SetCaption("Another game", "Another game");
    const Uint32 start = SDL_GetTicks();
    float angle = 0;
    while (SDL_GetTicks() - start < lifeMs) {
        SDL_Event event;
        while (SDL_PollEvent(&event)) {
        }
        glClearColor(0.1f, 0.2f, 0.3f, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        glLoadIdentity();
        glRotatef(angle += 3, 0, 0, 1);
        glBegin(GL_QUADS);
        glColor3f(1, 0, 0);
        glVertex2f(-0.5f, -0.5f);
        glColor3f(0, 1, 0);
        glVertex2f(0.5f, -0.5f);
        glColor3f(0, 0, 1);
        glVertex2f(0.5f, 0.5f);
        glColor3f(1, 1, 0);
        glVertex2f(-0.5f, 0.5f);
        glEnd();
        SDL_GL_SwapBuffers();
    }
    SDL_Quit();
    return 0;
}
