#include "engine/Orvel.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <SDL/SDL.h>
#include <GL/gl.h>

#include "engine/Color.h"
#include "engine/Gamepad.h"
#include "engine/PauseClock.h"
#include "engine/TypedKeys.h"
#include "engine/VertexArrays.h"
#include "engine/WindowState.h"

// Last, so that its macros (None, Bool, Status) reach none of the headers above.
#include <X11/Xlib.h>

namespace orvel {

SDL_Surface* Orvel::window = nullptr;
const char* Orvel::title = nullptr;
int Orvel::width = 0;
int Orvel::height = 0;
bool Orvel::fullscreen = false;
float Orvel::sync = 0;
int Orvel::sync16 = 0;
uint32_t Orvel::currentTime = 0;
uint32_t Orvel::lastTime = 0;
uint32_t Orvel::tm_current = 0;
uint32_t Orvel::tm_last = 0;
uint32_t Orvel::framenum = 0;
bool Orvel::autoexit = true;
Orvel::GEvent* Orvel::events = nullptr;
FramePacer Orvel::pacer;

namespace {

// Timer, video, no parachute and SDL's own event thread.
const Uint32 SDL_SUBSYSTEMS = SDL_INIT_TIMER | SDL_INIT_VIDEO | SDL_INIT_NOPARACHUTE | SDL_INIT_EVENTTHREAD;

const int KEY_COUNT = Orvel::GEvent::KEY_WORDS * 32;
const int BUTTON_COUNT = 32;

bool testBit(const uint32_t* words, unsigned bit) { return (words[bit >> 5] >> (bit & 31)) & 1; }

// Out-of-range numbers are tested as unsigned, so negatives are out of range too.
bool isKey(int key) { return Orvel::events && (unsigned)key < (unsigned)KEY_COUNT; }
bool isButton(int button) { return Orvel::events && (unsigned)button < (unsigned)BUTTON_COUNT; }

void handleEvent(Orvel::GEvent* e, const SDL_Event& event) {
    switch (event.type) {
    case SDL_KEYDOWN: {
        // SDL 1.2 key symbols stay below 512.
        unsigned k = event.key.keysym.sym;
        e->keysLive[k >> 5] |= 1u << (k & 31);
        TypedKeys::record((uint16_t)k, event.key.keysym.unicode);
        break;
    }
    case SDL_KEYUP: {
        unsigned k = event.key.keysym.sym;
        e->keysLive[k >> 5] &= ~(1u << (k & 31));
        break;
    }
    case SDL_MOUSEMOTION:
        e->mouseLiveX = event.motion.x;
        e->mouseLiveY = event.motion.y;
        break;
    case SDL_MOUSEBUTTONDOWN:
        e->buttonsLive |= 1u << (event.button.button % 32);
        break;
    case SDL_MOUSEBUTTONUP:
        e->buttonsLive &= ~(1u << (event.button.button % 32));
        break;
    case SDL_QUIT:
        e->closeRequested = true;
        break;
    case SDL_ACTIVEEVENT:
    case SDL_VIDEOEXPOSE:
        WindowState::handle(event);
        break;
    case SDL_JOYAXISMOTION:
    case SDL_JOYBUTTONDOWN:
    case SDL_JOYBUTTONUP:
    case SDL_JOYHATMOTION:
        Gamepad::handle(event);
        break;
    default:
        break;
    }
}

} // namespace

int __orvel_event_loop(void* gevent) {
    Orvel::GEvent* e = static_cast<Orvel::GEvent*>(gevent);
    SDL_Event event;
    memset(&event, 0, sizeof event);
    if (!e->running) return 0;
    for (;;) {
        while (SDL_PollEvent(&event)) handleEvent(e, event);
        SDL_Delay(10);
        if (!e->running) return 0;
    }
}

Orvel::GEvent::GEvent()
    : thread(nullptr), running(true), closeRequested(false), keysLive(), keys(), keysPrev(), mouseLiveX(0),
      mouseLiveY(0), mouseX(0), mouseY(0), mousePrevX(0), mousePrevY(0), buttonsLive(0), buttons(0),
      buttonsPrev(0) {}

Orvel::GEvent::~GEvent() { stop(); }

void Orvel::GEvent::start() {
    if (!thread) thread = SDL_CreateThread(__orvel_event_loop, this);
}

void Orvel::GEvent::stop() {
    if (thread) {
        running = false;
        SDL_WaitThread(thread, nullptr);
    }
    thread = nullptr;
}

void Orvel::GEvent::update() {
    memcpy(keysPrev, keys, sizeof keys);
    memcpy(keys, keysLive, sizeof keys);
    mousePrevX = mouseX;
    mousePrevY = mouseY;
    mouseX = mouseLiveX;
    mouseY = mouseLiveY;
    buttonsPrev = buttons;
    buttons = buttonsLive;
}

void Orvel::init(int w, int h, const char* caption, bool full, bool vsync) {
    fullscreen = full;
    // SDL's event thread reads the X connection while this thread draws and swaps. libX11 1.8 and
    // later lock every connection for that as they load; older ones need this call before the
    // first XOpenDisplay, and a second call does nothing.
    XInitThreads();
    // Subsystems that are already running are left as they are.
    if (SDL_WasInit(SDL_SUBSYSTEMS) == 0 && SDL_Init(SDL_SUBSYSTEMS) < 0) {
        fprintf(stderr, "Error initializing SDL: %s\n", SDL_GetError());
        exit(1);
    }
    width = w < 1 ? 640 : w;
    height = h < 1 ? 480 : h;
    title = caption ? caption : "Demo";

    SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
    SDL_GL_SetAttribute(SDL_GL_RED_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_GREEN_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_BLUE_SIZE, 8);
    // The 8-bit alpha also keeps SDL off a 30-bit screen's DirectColor visuals, whose 1024 colormap
    // entries overrun the 256-entry table that SDL fills as it sets up their gamma.
    SDL_GL_SetAttribute(SDL_GL_ALPHA_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_STENCIL_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_SWAP_CONTROL, vsync ? 1 : 0);

    // A failed mode leaves `window` null; drawing then goes nowhere.
    window = SDL_SetVideoMode(width, height, 32, SDL_OPENGL | (fullscreen ? SDL_FULLSCREEN : 0));
    SDL_WM_SetCaption(title, nullptr);
    SDL_ShowCursor(0);

    Color::init();

    if (!events) {
        events = new GEvent();
        events->start();
    }

    glHint(GL_LINE_SMOOTH_HINT, GL_NICEST);
    glHint(GL_POLYGON_SMOOTH_HINT, GL_NICEST);
    glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
    glHint(GL_TEXTURE_COMPRESSION_HINT, GL_NICEST);
}

bool Orvel::toggleFullscreen() {
    if (!window || SDL_WM_ToggleFullScreen(window) == 0) return false;
    fullscreen = !fullscreen;
    return true;
}

void Orvel::quit() {
    if (events) {
        events->stop();
        delete events;
        events = nullptr;
    }
    if (fullscreen) SDL_WM_ToggleFullScreen(window);
    SDL_Quit();

    window = nullptr;
    title = nullptr;
    width = 0;
    height = 0;
    sync = 0;
    sync16 = 0;
    currentTime = 0;
    lastTime = 0;
    tm_current = 0;
    tm_last = 0;
    autoexit = true;
}

void Orvel::setFrameTime(uint32_t last, uint32_t current) {
    currentTime = current;
    lastTime = last;
    float d = (float)(uint32_t)(current - last);
    sync = 0.001f * d;
    // Milliseconds scaled to 16.16 fixed-point seconds, truncated: 16 ms gives 1048.
    sync16 = (int)(d * 65.536f);
}

void Orvel::update() {
    if (events && events->closeRequested && autoexit) {
        quit();
        exit(0);
    }
    tm_last = tm_current;
    tm_current = PauseClock::gameTicks(SDL_GetTicks());
    // A frame never measures zero unless the clock stands still for a whole extra millisecond.
    // A held clock stands still on purpose.
    if (tm_current == tm_last && !PauseClock::held()) {
        SDL_Delay(1);
        tm_current = PauseClock::gameTicks(SDL_GetTicks());
    }
    setFrameTime(tm_last, tm_current);
    if (events) events->update();
    WindowState::update();
    Gamepad::update();
    SDL_GL_SwapBuffers();
    pacer.frameDone();
    ++framenum;
}

bool Orvel::keyDown(int key) { return isKey(key) && testBit(events->keys, key); }

bool Orvel::keyPressed(int key) {
    return isKey(key) && testBit(events->keys, key) && !testBit(events->keysPrev, key);
}

bool Orvel::keyReleased(int key) {
    return isKey(key) && !testBit(events->keys, key) && testBit(events->keysPrev, key);
}

int Orvel::mouseX() { return events ? events->mouseX : 0; }
int Orvel::mouseY() { return events ? events->mouseY : 0; }

bool Orvel::mouseDown(int button) { return isButton(button) && testBit(&events->buttons, button); }

bool Orvel::mousePressed(int button) {
    return isButton(button) && testBit(&events->buttons, button) && !testBit(&events->buttonsPrev, button);
}

bool Orvel::mouseReleased(int button) {
    return isButton(button) && !testBit(&events->buttons, button) && testBit(&events->buttonsPrev, button);
}

void Orvel::fillScreen() {
    // One quad, corners top-left, top-right, bottom-right, bottom-left.
    static const GLubyte colors[] = {255, 255, 255, 255, 255, 255, 255, 255,
                                     255, 255, 255, 255, 255, 255, 255, 255};
    static const GLfloat tcoords[] = {0, 1, 1, 1, 1, 0, 0, 0};
    static const GLfloat vcoords[] = {-1, 1, 1, 1, 1, -1, -1, -1};

    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();

    VertexArrays::bindTextured(vcoords, tcoords, colors);
    glDrawArrays(GL_QUADS, 0, 4);
}

} // namespace orvel
