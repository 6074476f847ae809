#pragma once
// The engine's static core: the window and GL context, the frame clock, and input state.

#include <cstdint>

#include "engine/FramePacer.h"

struct SDL_Surface;
struct SDL_Thread;

namespace orvel {

// Body of the input event thread; `gevent` is the Orvel::GEvent it fills. Returns 0.
int __orvel_event_loop(void* gevent);

// There are no instances: the program calls Orvel::init, Orvel::update, Orvel::keyDown, ...
// A frame is: the caller draws, calls update() (frame time, input snapshot, buffer swap),
// then runs its logic, which reads sync, sync16, currentTime and the input queries.
class Orvel {
public:
    // Input state shared by the event thread and the main thread. No locks: the event thread
    // writes only the live fields, each word whole, and the main thread copies them into
    // the frame snapshot once a frame; a snapshot may mix two moments, never a torn word.
    class GEvent {
    public:
        static const int KEY_WORDS = 16; // 512 key bits, bit k = SDL key symbol k

        SDL_Thread* thread;  // the running event thread, null when not running
        bool running;        // the event thread keeps going while true
        bool closeRequested; // set by the event thread on SDL's quit event
        uint32_t keysLive[KEY_WORDS];
        uint32_t keys[KEY_WORDS];     // this frame
        uint32_t keysPrev[KEY_WORDS]; // the frame before
        int mouseLiveX, mouseLiveY;
        int mouseX, mouseY;         // window pixels, origin top-left, this frame
        int mousePrevX, mousePrevY; // the frame before
        uint32_t buttonsLive;       // bit b = SDL button b (1 left, 2 middle, 3 right, 4/5 wheel)
        uint32_t buttons;
        uint32_t buttonsPrev;

        GEvent();
        ~GEvent();
        GEvent(const GEvent&) = delete;
        GEvent& operator=(const GEvent&) = delete;

        // Starts the event thread unless one runs.
        void start();
        // Ends and joins the thread. `running` stays false, so a stopped GEvent cannot start again.
        void stop();
        // Main thread, once a frame: the live state becomes this frame's, this frame's the previous.
        void update();
    };

    static SDL_Surface* window; // the video surface of the open mode
    static const char* title;   // caption passed to init, not copied
    static int width;
    static int height;
    static bool fullscreen;
    static float sync;            // last frame's length, seconds
    static int sync16;            // last frame's length, 16.16 fixed-point seconds
    static uint32_t currentTime;  // SDL ticks (ms) at the latest update
    static uint32_t lastTime;     // SDL ticks (ms) at the update before
    static uint32_t tm_current;
    static uint32_t tm_last;
    static uint32_t framenum;     // update calls since start, never reset
    static bool autoexit;         // a window-close request ends the program inside update
    static GEvent* events;        // owned; created by init, destroyed by quit
    static FramePacer pacer;      // holds the frames to its cap where the display does not; no cap
                                  // until one is set

    // Opens the window: sizes below 1 become 640 x 480, a null title "Demo". Exits the process
    // with status 1 when SDL cannot start.
    static void init(int width, int height, const char* title, bool fullscreen, bool vsync);
    // Stops the event thread, leaves full-screen mode, shuts SDL down; init may follow again.
    static void quit();
    // Ends a frame: measures it, snapshots the input, swaps the buffers, and where the pacer
    // has a cap and the swap does not wait for the display, sleeps until the next frame is due.
    static void update();
    // Sets the clock fields for a frame that ran from tick `last` to tick `current` (ms).
    static void setFrameTime(uint32_t last, uint32_t current);

    // Switches between full screen and a window, keeping the GL context. False, with the mode as
    // it was, when there is no window or the display refuses.
    static bool toggleFullscreen();
    static void setAutoExit(bool value) { autoexit = value; }
    static bool getAutoExit() { return autoexit; }
    static int getScreenWidth() { return width; }
    static int getScreenHeight() { return height; }

    // Keys are SDL 1.2 key symbols; anything outside 0..511 is never down.
    static bool keyDown(int key);
    static bool keyPressed(int key);  // down this frame, up the frame before
    static bool keyReleased(int key); // up this frame, down the frame before
    static int mouseX();
    static int mouseY();
    // Buttons are SDL button numbers; anything outside 0..31 is never down.
    static bool mouseDown(int button);
    static bool mousePressed(int button);
    static bool mouseReleased(int button);

    // Draws one quad over the whole viewport with identity matrices (full-screen passes).
    // Leaves the vertex, texture-coordinate and colour arrays enabled.
    static void fillScreen();
};

} // namespace orvel
