#include "game/Main.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <malloc.h>
#include <sys/stat.h>

#include <SDL/SDL.h>
#include <SDL/SDL_mixer.h>

#include "engine/CrashReport.h"
#include "engine/DisplayRate.h"
#include "engine/GL.h"
#include "engine/Gamepad.h"
#include "engine/Orvel.h"
#include "engine/PauseClock.h"
#include "engine/PointerGrab.h"
#include "engine/Screenshot.h"
#include "engine/String.h"
#include "engine/Texture.h"
#include "game/Game.h"
#include "game/GameSessions.h"
#include "game/GamepadControl.h"
#include "game/LoadingBar.h"
#include "game/Menu.h"
#include "game/MixerOutput.h"
#include "game/Pause.h"
#include "game/Resources.h"
#include "game/ScoreCounter.h"
#include "game/SoundEffects.h"
#include "game/arcade/GameOverScreen.h"
#include "game/arcade/IntroScores.h"
#include "game/desktop/CommandLine.h"
#include "game/desktop/DisplaySwitch.h"
#include "game/desktop/GameWindow.h"
#include "game/desktop/Settings.h"
#include "game/desktop/SettingsPanel.h"
#include "game/replay/FrameShots.h"
#include "game/replay/LastReplay.h"
#include "game/replay/ReplayViewer.h"
#include "game/scores/ScoreFile.h"
#include "scene/DirectScene2D.h"
#include "scene/Fader.h"
#include "scene/Scene2D.h"
#include "scene/Text.h"

using namespace orvel;

int runlevel = RUNLEVEL_MENU;
Scene2D* g_world = nullptr;
DirectScene2D* g_hud = nullptr;
Fader* g_fader = nullptr;
Game* g_game = nullptr;
Menu* g_menu = nullptr;
Random g_rand(0xd34db33f);
Mix_Music* music = nullptr;
Apology* g_apology = nullptr;

namespace {

const char* const CAPTION = "Nightvector - Unfinished CVC '11 version";
const float WORLD_SIZE = 4096;

struct IntroLine {
    const char* text;
    float extraGap; // added above the line, beyond the usual spacing
};

const IntroLine INTRO_LINES[] = {
    {"Nightvector", 0},
    {"===========", 0},
    {"The joke's on us. Turns out we didn't quite make", 35},
    {"the video shoot deadline. A lot of functionality", 0},
    {"in the game is in a state of near-completion. We", 0},
    {"are working non-stop here at Convocat to bring", 0},
    {"the game to you in its intended form by Saturday.", 0},
    {"However, for the time being, what we can", 25},
    {"show is a game-only demo for 64 bit Linux.", 0},
    {"A Windows build is in the pipeline. :)", 0},
    {"-- Pale Orbit --", 35},
    {"We know we're losing...", 35},
    {"But we're losing with our boots on.", 0},
};
const int CREDIT_LINE = 10;
const float INTRO_TOP = 25;
const float INTRO_SPACING = 9;

// The top-ten table over the intro (H); made at start-up.
IntroScores* introScores = nullptr;
// Where the settings are kept; null without a home.
SettingsFile* settingsFile = nullptr;

// The effects' chunks on the open device; g_sound plays through it once they are loaded.
MixerOutput effectOutput;

// The pointer kept on the picture in full screen, and let go while paused.
PointerGrab pointerGrab;

bool startInput() {
    return DisplaySwitch::plainReturnPressed() || Orvel::keyPressed(SDLK_SPACE) || Orvel::keyPressed(SDLK_KP_ENTER) ||
           Orvel::mouseDown(1) || Orvel::mouseDown(2) || Orvel::mouseDown(3);
}

void fadeToBlack() {
    g_fader->color = vec4(0, 0, 0, 1);
    g_fader->fadeOut(1000);
}

void endIntro() {
    if (!g_apology) return;
    if (introScores) introScores->hide();
    g_hud->clear();
    g_world->clear();
    for (unsigned i = 0; i < g_apology->lines.count; ++i) delete g_apology->lines.data[i];
    delete g_apology;
    g_apology = nullptr;
}

void startGame() {
    g_fader->fadeIn(500);
    endIntro();
    // Begun as every later game and every replay begins, from a seed the replay keeps.
    const int seed = (int)time(nullptr);
    GameSessions::begin(seed);
    if (g_lastReplay) g_lastReplay->begin((uint32_t)seed);
    runlevel = RUNLEVEL_GAME;
    Mix_PlayMusic(music, -1);
}

// The viewer plays the game just played, from the Game Over screen, which comes back after it.
bool watchingLastGame = false;

// R after Game Over: the last game, watched again from its start.
void watchLastGame() {
    const std::vector<uint8_t>& bytes = g_lastReplay->recorderInUse().file().bytes();
    replay::Replay replay;
    std::string error;
    if (!replay::read(bytes.data(), bytes.size(), replay, error)) return;
    g_replayViewer = new ReplayViewer(replay);
    g_replayViewer->start();
    watchingLastGame = true;
}

// The end of the replay, or Escape: the game as the recording ended it, and the Game Over
// screen where it was.
void stopWatching() {
    g_replayViewer->fastForward();
    delete g_replayViewer;
    g_replayViewer = nullptr;
    watchingLastGame = false;
}

// In place of the intro: the replay's session begun, and played from the next frame on.
void startReplay(const replay::Replay& replay) {
    endIntro();
    g_replayViewer = new ReplayViewer(replay);
    g_replayViewer->start();
    g_fader->color = vec4(0, 0, 0, 1);
    g_fader->fadeIn(500);
    runlevel = RUNLEVEL_GAME;
    Mix_PlayMusic(music, -1);
}

// After a game over, once the fade to black has ended: the last session goes and a new one starts
// as the first did, the music playing on.
void playAgain() {
    g_gameOver->reset();
    GameSessions::end();
    const int seed = (int)time(nullptr);
    GameSessions::begin(seed);
    if (g_lastReplay) g_lastReplay->begin((uint32_t)seed);
    g_fader->fadeIn(500);
}

int screenshot_num = 1;

String screenshotName(int number) { return "screenshot_" + strInt(number) + ".bmp"; }

void saveScreenshot() {
    // A file of an earlier run keeps its name: the numbering goes on past it.
    screenshot_num = firstFreeScreenshotNumber(screenshot_num);
    String name = screenshotName(screenshot_num);
    Screenshot::saveScreenshot(name.getCString());
    ++screenshot_num;
}

} // namespace

int firstFreeScreenshotNumber(int from) {
    struct stat entry;
    // lstat: a dangling link is taken too, so that nothing is written through it.
    while (lstat(screenshotName(from).getCString(), &entry) == 0) ++from;
    return from;
}

void resetScreenshotNumbers() { screenshot_num = 1; }

Apology::Apology() : lines(128) {
    g_hud->clear();
    float cx = (float)(Orvel::getScreenWidth() * 0.5);
    float y = INTRO_TOP;
    for (int i = 0; i < (int)(sizeof INTRO_LINES / sizeof INTRO_LINES[0]); ++i) {
        Text* line = new Text(Resources::font_medium, INTRO_LINES[i].text);
        y += INTRO_LINES[i].extraGap;
        line->position.x = cx;
        line->position.y = y;
        line->position.z = 0;
        line->setHotSpot(Top);
        lines.push(line);
        // The credit line alone is anchored by its left end at the centre, off the others' axis.
        if (i == CREDIT_LINE) line->setHotSpot(TopLeft);
        g_hud->add(line);
        y += line->size.y + INTRO_SPACING;
    }
}

bool loadMusic() {
    const char* path = "sfx/music1.ogg";
    SDL_InitSubSystem(SDL_INIT_AUDIO);
    // Stereo with a 1024-frame buffer (23 ms): effects are placed left and right and heard when
    // they happen; a mono device with a 1.5 s buffer could do neither. The music sounds the same.
    // Without a device nothing could play the track, so it is not loaded at all.
    if (Mix_OpenAudio(44100, AUDIO_S16LSB, 2, 1024) != 0) {
        fprintf(stderr, "Could not open audio: %s\n", Mix_GetError());
        return false;
    }
    music = Mix_LoadMUS(path);
    if (!music) fprintf(stderr, "Could not load %s: %s\n", path, Mix_GetError());
    return true;
}

void loadSoundEffects() {
    effectOutput.load("sfx");
    g_sound.setOutput(&effectOutput);
}

void startAudio() {
    // Without a device no mixer call is made for the effects at all.
    if (!loadMusic()) return;
    loadSoundEffects();
    applyVolumes();
}

void applyVolumes() {
    Mix_VolumeMusic(
        (int)std::lround((float)MIX_MAX_VOLUME * MUSIC_LEVEL * (float)g_settings.musicVolume / Settings::VOLUME_MAX));
    effectOutput.setGain((float)g_settings.effectsVolume / Settings::VOLUME_MAX);
}

void shareOneHeap() { mallopt(M_ARENA_MAX, 1); }

void startUp(bool fullscreen) {
    shareOneHeap();
    // The OpenGL window needs X; without a display SDL must fail rather than fall back to a
    // text-mode driver that cannot show it. A driver the user chose is left alone.
    setenv("SDL_VIDEODRIVER", "x11", 0);
    // Before the window: SDL's event thread polls the joysticks, and SDL sets up its joystick list
    // without the lock that thread takes, so that list must be complete before the thread starts.
    Gamepad::open();
    if (!GameWindow::open(1280, 720, CAPTION, fullscreen)) {
        Orvel::quit();
        exit(1);
    }
    // The window shows the loading bar from its first moment until the intro's first frame.
    LoadingBar::show(0, 1);
    Orvel::update();
    Resources::onProgress = LoadingBar::show;
    Resources::load();
    Resources::onProgress = nullptr;
    g_rand.init((int)time(nullptr));

    g_world = new Scene2D(-1, -1);
    g_world->worldWidth = WORLD_SIZE;
    g_world->worldHeight = WORLD_SIZE;
    g_hud = new DirectScene2D(-1, -1);

    g_fader = new Fader();
    runlevel = RUNLEVEL_INTRO;
    Orvel::update();
    g_fader->color = vec4(1, 1, 1, 1);

    g_world->debugDraw = false;
    g_hud->debugDraw = false;
    // The world's copy replaces the screen's pixels rather than blending over them.
    g_world->copyOverBlack = true;
    g_apology = new Apology();
    const std::string scores = ScoreFile::defaultPath();
    introScores = new IntroScores(scores);
    delete g_lastReplay;
    g_lastReplay = new LastReplay(LastReplay::defaultPath());
    g_gameOver = new GameOverScreen(scores);
    startAudio();

    printf("Used texture memory: %f megabytes\n", (double)((float)Texture::usedMemory * (1.0f / 1048576.0f)));
    fflush(stdout);
}

void runFrameLogic() {
    g_gamepad.apply(SDL_GetTicks());
    if (DisplaySwitch::requested()) DisplaySwitch::toggle(settingsFile);
    if (runlevel == RUNLEVEL_MENU) g_menu->update();
    // Escape that ends watching the last game does not also quit.
    bool stoppedWatching = false;
    if (runlevel == RUNLEVEL_GAME && g_replayViewer) {
        g_replayViewer->update();
        if (watchingLastGame && (g_replayViewer->finished() || Orvel::keyPressed(SDLK_ESCAPE))) {
            stopWatching();
            stoppedWatching = true;
        }
    } else if (runlevel == RUNLEVEL_GAME) {
        g_pause.update(SDL_GetTicks());
        if (!g_pause.paused) {
            if (g_lastReplay) g_lastReplay->beforeUpdate();
            g_game->update();
            if (g_lastReplay) g_lastReplay->afterUpdate(*g_game);
            if (g_gameOver) g_gameOver->update();
        }
    }
    pointerGrab.update(Orvel::fullscreen && !g_pause.paused);

    // Drawn again after the logic on purpose; the next pass's clear wipes it.
    g_fader->draw();

    if (runlevel == RUNLEVEL_INTRO && g_fader->done() && startInput()) {
        fadeToBlack();
        runlevel = RUNLEVEL_TO_GAME;
    }
    if (runlevel == RUNLEVEL_INTRO && introScores && Orvel::keyPressed(SDLK_h)) introScores->toggle();
    if (runlevel == RUNLEVEL_TO_GAME && g_fader->done()) startGame();
    if (runlevel == RUNLEVEL_GAME && g_gameOver && g_gameOver->phase() == GameOverScreen::LEAVING &&
        g_fader->done())
        playAgain();
    if (runlevel == RUNLEVEL_GAME && !g_replayViewer && !stoppedWatching && g_gameOver &&
        g_gameOver->phase() == GameOverScreen::TABLE && g_lastReplay && !g_lastReplay->recording() &&
        Orvel::keyPressed(SDLK_r))
        watchLastGame();

    // Escape waits for a running fade to finish; the music fades 50 ms ahead of the picture. A
    // replay played to its end leaves the same way.
    const bool replayOver = runlevel == RUNLEVEL_GAME && g_replayViewer && g_replayViewer->finished();
    if (g_fader->done() && ((Orvel::keyPressed(SDLK_ESCAPE) && !stoppedWatching) || replayOver)) {
        // A replay watched to its end says where the game stood: the score and wave it was kept with.
        if (replayOver && g_replayViewer->divergence() < 0 && g_game) {
            printf("Replay ended: score %d, wave %d\n", g_game->scoreCounter ? g_game->scoreCounter->value : 0,
                   g_game->wave);
            fflush(stdout);
        }
        // Out of a pause first: the fades run on the clock, and the music fades from playing.
        g_pause.leave(SDL_GetTicks());
        // A name being typed is kept as it stands.
        if (g_gameOver) g_gameOver->confirmName();
        fadeToBlack();
        Mix_FadeOutMusic(950);
        g_sound.fadeOutAll(950);
        runlevel = RUNLEVEL_FADING_OUT;
        // A game left before it was over is kept as it stands.
        if (g_lastReplay && g_game) g_lastReplay->save(*g_game);
    }
    if (Orvel::keyPressed(SDLK_F1)) saveScreenshot();
    if (runlevel == RUNLEVEL_FADING_OUT && g_fader->done()) runlevel = RUNLEVEL_QUIT;
}

namespace {

// The game-over screen in play, the scores table over the intro.
void drawScreens() {
    if (runlevel == RUNLEVEL_GAME && g_replayViewer) g_replayViewer->draw();
    if (runlevel == RUNLEVEL_GAME && g_gameOver && !g_replayViewer) g_gameOver->draw();
    if (runlevel == RUNLEVEL_INTRO && introScores) introScores->draw();
}

// A frame while paused: the frozen picture drawn and shown when it has to be, otherwise only the
// input read, at about 20 frames a second; then the same logic as in play.
void runPausedFrame() {
    if (g_pause.pictureDue()) {
        clearForFrame();
        g_world->draw();
        g_hud->draw();
        g_pause.drawOverlay();
        Orvel::update();
        g_pause.pictureShown();
    } else {
        PauseClock::idleFrame(Pause::PAUSED_FRAME_MS);
    }
    runFrameLogic();
}

} // namespace

void clearForFrame() {
    // A colour clear under a copy that replaces every pixel would only be overwritten unseen.
    const bool covered = g_world && g_world->copyOverBlack;
    glClear((covered ? 0 : GL_COLOR_BUFFER_BIT) | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
}

namespace {

FrameShots frameShots;

// Updates of the session in play, or of the replay being watched.
size_t updatesSoFar() {
    if (g_replayViewer) return g_replayViewer->framesPlayed();
    return g_lastReplay ? g_lastReplay->recorderInUse().file().frameCount() : 0;
}

} // namespace

void runFrame() {
    if (g_pause.paused) {
        runPausedFrame();
        return;
    }
    clearForFrame();
    g_world->draw();
    g_hud->draw();
    drawScreens();
    g_fader->draw();
    Orvel::update();
    runFrameLogic();
    if (runlevel == RUNLEVEL_GAME && frameShots.asked() > 0 && frameShots.due(updatesSoFar())) saveScreenshot();
}

namespace {

void keepReplayAtExit() {
    if (g_lastReplay && g_game) g_lastReplay->save(*g_game);
}

// The settings as the file keeps them. The command line's choices are not among them: they hold
// for this run, and a change saved later does not write them into the file.
void loadSettings() {
    const std::string path = SettingsFile::defaultPath();
    if (path.empty()) return;
    settingsFile = new SettingsFile(path);
    g_settings = settingsFile->load();
}

} // namespace

int runNightvector(int argc, char** argv) {
    LaunchOptions options;
    std::string out, err;
    switch (CommandLine::parse(argc, argv, options, out, err)) {
    case CommandLine::EXIT_OK:
        fputs(out.c_str(), stdout);
        return 0;
    case CommandLine::EXIT_USAGE:
        fputs(err.c_str(), stderr);
        return CommandLine::USAGE_STATUS;
    case CommandLine::RUN:
        break;
    }
    // A crash that a player meets leaves its signal, thread and stack on standard error.
    CrashReport::install("nightvector");
    // A replay is read and checked before anything else: a file that cannot be played starts
    // nothing.
    replay::Replay replay;
    if (!options.replayFile.empty()) {
        std::string error;
        if (!ReplayViewer::load(options.replayFile, replay, error)) {
            fprintf(stderr, "nightvector: cannot play %s: %s\n", options.replayFile.c_str(), error.c_str());
            return CommandLine::USAGE_STATUS;
        }
    }
    frameShots.ask(getenv("NIGHTVECTOR_SHOT_AT_FRAMES"));
    loadSettings();
    bool fullscreen = g_settings.fullscreen;
    if (options.display != LaunchOptions::DISPLAY_UNSET)
        fullscreen = options.display == LaunchOptions::DISPLAY_FULLSCREEN;
    startUp(fullscreen);
    // Loading ran as fast as it could; from the intro on, frames come at most at the cap.
    const int cap = options.frameCap >= 0 ? options.frameCap : g_settings.frameCap;
    Orvel::pacer.setCap(cap == Settings::FRAME_CAP_DISPLAY ? DisplayRate::refreshHz() : cap);
    g_pause.panel = new SettingsPanel(settingsFile);
    if (!options.replayFile.empty()) startReplay(replay);
    // Closing the window ends the program inside a frame: the game being played is kept then.
    std::atexit(keepReplayAtExit);
    while (runlevel != RUNLEVEL_QUIT) runFrame();
    Orvel::quit();
    return 0;
}
