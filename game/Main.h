#pragma once
// The program: its globals, start-up, main loop and top-level modes (runlevels), and the intro screen.

#include "engine/Random.h"
#include "engine/Stack.h"

class Drawable;
class DirectScene2D;
class Fader;
class Game;
class Menu;
class Scene2D;
struct _Mix_Music;
typedef struct _Mix_Music Mix_Music;

// Top-level modes.
enum Runlevel {
    RUNLEVEL_QUIT = 0,    // leave the loop
    RUNLEVEL_MENU = 1,    // menu: kept in the build, never entered
    RUNLEVEL_GAME = 2,    // game running
    RUNLEVEL_INTRO = 3,   // intro screen shown, waiting for a start input
    RUNLEVEL_TO_GAME = 4, // intro fading to black, then the game starts
    RUNLEVEL_FADING_OUT = -1,
};

extern int runlevel;
extern Scene2D* g_world;     // the world scene root
extern DirectScene2D* g_hud; // the screen-space HUD root
extern Fader* g_fader;       // full-screen colour fader
extern Game* g_game;         // the game session; null until the intro ends
extern Menu* g_menu;         // never assigned
extern orvel::Random g_rand; // shared game randomness, reseeded from the clock at start-up
extern Mix_Music* music;     // the one music track; null when it could not be loaded

// The intro text screen, built into g_hud. It owns its Text nodes; the main loop deletes them
// when the game starts.
class Apology {
public:
    orvel::Stack<Drawable*> lines;

    Apology();
};

// The intro screen while it is shown; null once the game has started.
extern Apology* g_apology;

// Opens audio (44.1 kHz, 16-bit, stereo) and loads the music. A missing device or a track that
// will not load leaves the game silent, with one line on standard error ("Could not open audio:
// ..." or "Could not load sfx/music1.ogg: ..."). True when the device opened.
bool loadMusic();
// Loads the sound effects from sfx/ onto the open device and plays g_sound through them; each
// file that will not load prints one line on standard error and stays silent.
void loadSoundEffects();
// loadMusic, then loadSoundEffects and applyVolumes when the device opened.
void startAudio();
// The music's share of the mixer's full volume at a music volume of 10: 8 dB under the effects,
// which play at the mixer's full volume at 10, so that the effects carry the action over it.
constexpr float MUSIC_LEVEL = 0.4f;
// The music and the effects at the volumes g_settings holds, each in steps of a tenth of its
// level at 10.
void applyVolumes();

// Makes every thread allocate from the one main heap. The image decoder's freed memory then goes
// back to the system with the trim at the end of loading, instead of staying in a heap of its own
// (about 8 MiB) for the rest of the run; the driver's threads allocate little. Call it before any
// thread starts: a thread that has allocated keeps the heap it has.
void shareOneHeap();

// The first number from `from` on that no file or link "screenshot_<number>.bmp" in the working
// directory has.
int firstFreeScreenshotNumber(int from);
// Numbers the screenshots from 1 again, as a new run does (for tests that play several runs).
void resetScreenshotNumbers();

// Start-up: window (full screen unless `fullscreen` is false), resources, scene roots, fader,
// intro screen, music and sound effects, memory report.
void startUp(bool fullscreen = true);
// The start of every drawn frame: clears the depth and stencil buffers, and the colour too unless
// the world's copy replaces every pixel of the screen.
void clearForFrame();
// One pass of the main loop: draw, end the frame, then the runlevel's logic and the global keys.
void runFrame();
// The runlevel logic and global keys of one frame, after Orvel::update.
void runFrameLogic();
// The whole program: the command line read, start-up, the loop while runlevel is not 0, shut-down.
// Returns 0, or CommandLine::USAGE_STATUS after a mistake on the command line (nothing started).
int runNightvector(int argc, char** argv);
