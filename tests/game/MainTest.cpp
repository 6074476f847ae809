// Runlevel logic of the main loop, stepped frame by frame with the clock and the input set
// directly; the intro screen's layout; loading the music.

#include "game/Main.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <malloc.h>
#include <string>

#include <SDL/SDL.h>
#include <SDL/SDL_mixer.h>
#include <sys/stat.h>
#include <unistd.h>

#include "engine/Font.h"
#include "engine/Orvel.h"
#include "engine/Surface.h"
#include "game/Game.h"
#include "game/Resources.h"
#include "scene/DirectScene2D.h"
#include "scene/Fader.h"
#include "scene/Scene2D.h"
#include "scene/Text.h"
#include "tests/support/AudioDirectory.h"
#include "tests/support/GLFixture.h"

using orvel::Orvel;
using testing_support::GLTest;

namespace {

// The program's state right after start-up, built on the test window: scene roots, fader, intro.
// A fresh directory made the working one while the object lives; the old one comes back and the
// new one goes with everything in it afterwards.
class InNewDirectory {
public:
    InNewDirectory() {
        char name[] = "/tmp/screenshotsXXXXXX";
        entered = mkdtemp(name) && getcwd(previous, sizeof previous) && chdir(name) == 0;
        dir = name;
    }
    ~InNewDirectory() {
        if (!entered) return;
        EXPECT_EQ(chdir(previous), 0);
        EXPECT_EQ(system(("rm -rf " + dir).c_str()), 0);
    }
    bool isEntered() const { return entered; }
    const std::string& path() const { return dir; }

private:
    char previous[4096] = {};
    std::string dir;
    bool entered = false;
};

class RunlevelTest : public GLTest {
protected:
    void SetUp() override {
        openWindow(1280, 720);
        if (!Resources::font_medium) {
            testing::internal::CaptureStdout();
            Resources::load();
            testing::internal::GetCapturedStdout();
        }
        g_world = new Scene2D(-1, -1);
        g_hud = new DirectScene2D(-1, -1);
        g_fader = new Fader();
        g_game = nullptr;
        runlevel = RUNLEVEL_INTRO;
        g_apology = new Apology();
        setTime(100000);
    }

    static void setTime(uint32_t ms) { Orvel::currentTime = ms; }

    // One frame's input snapshot with `key` held (or nothing for -1).
    static void frameWithKey(int key) {
        for (uint32_t& w : Orvel::events->keysLive) w = 0;
        if (key >= 0) Orvel::events->keysLive[key / 32] |= 1u << (key % 32);
        Orvel::events->update();
    }
    static void frameWithButtons(uint32_t buttons) {
        for (uint32_t& w : Orvel::events->keysLive) w = 0;
        Orvel::events->buttonsLive = buttons;
        Orvel::events->update();
    }
    // Steps the logic of one frame at time `ms` with `key` held.
    static void step(uint32_t ms, int key = -1) {
        setTime(ms);
        frameWithKey(key);
        runFrameLogic();
    }
};

} // namespace

TEST_F(RunlevelTest, ReturnAfterTheFaderIsDoneStartsTheFadeToBlack) {
    step(100000);
    step(100016, SDLK_RETURN);
    EXPECT_EQ(runlevel, RUNLEVEL_TO_GAME);
    EXPECT_EQ(g_fader->from, 0.0f);
    EXPECT_EQ(g_fader->to, 1.0f);
    EXPECT_EQ(g_fader->startTime, 100016u);
    EXPECT_EQ(g_fader->endTime, 101016u);
    EXPECT_EQ(g_fader->color.x, 0.0f);
    EXPECT_EQ(g_fader->color.w, 1.0f);
}

TEST_F(RunlevelTest, StartInputWhileAFadeRunsDoesNothing) {
    g_fader->fadeIn(500);
    step(100100, SDLK_RETURN);
    EXPECT_EQ(runlevel, RUNLEVEL_INTRO);
    EXPECT_EQ(g_fader->endTime, 100500u);
}

TEST_F(RunlevelTest, SpaceKeypadEnterAndEachHeldMouseButtonStartTheGame) {
    uint32_t t = 1000000;
    // Back on the intro with the last fade long finished.
    auto backToIntro = [&t]() {
        t += 1000000;
        runlevel = RUNLEVEL_INTRO;
        setTime(t - 5000);
        g_fader->fadeIn(0);
    };
    for (int key : {SDLK_SPACE, SDLK_KP_ENTER}) {
        backToIntro();
        step(t);
        step(t + 16, key);
        EXPECT_EQ(runlevel, RUNLEVEL_TO_GAME) << key;
    }
    for (int button = 1; button <= 3; ++button) {
        backToIntro();
        setTime(t);
        frameWithButtons(1u << button);
        frameWithButtons(1u << button); // held, not only pressed
        runFrameLogic();
        EXPECT_EQ(runlevel, RUNLEVEL_TO_GAME) << button;
    }
}

TEST_F(RunlevelTest, OtherButtonsAndKeysDoNotStartTheGame) {
    setTime(100000);
    frameWithButtons(1u << 4);
    runFrameLogic();
    step(100016, 'a');
    EXPECT_EQ(runlevel, RUNLEVEL_INTRO);
}

TEST_F(RunlevelTest, DoneFadeToBlackStartsGameTearsDownIntroAndFadesIn) {
    step(100000);
    step(100016, SDLK_RETURN);
    step(101000);
    EXPECT_EQ(runlevel, RUNLEVEL_TO_GAME);
    EXPECT_NE(g_apology, nullptr);
    step(101017);
    EXPECT_EQ(runlevel, RUNLEVEL_GAME);
    EXPECT_EQ(g_apology, nullptr);
    ASSERT_NE(g_game, nullptr);
    // The intro's 13 lines are gone; the HUD holds what the new session put there: its three
    // boxes, the reticle and the score text.
    EXPECT_EQ(g_hud->count, 5);
    EXPECT_EQ(g_fader->from, 1.0f);
    EXPECT_EQ(g_fader->to, 0.0f);
    EXPECT_EQ(g_fader->endTime, 101517u);
}

TEST_F(RunlevelTest, EscapeFadesOutThenEndsTheLoopWhenTheFadeIsDone) {
    step(100000, SDLK_ESCAPE);
    EXPECT_EQ(runlevel, RUNLEVEL_FADING_OUT);
    EXPECT_EQ(g_fader->endTime, 101000u);
    step(101000);
    EXPECT_EQ(runlevel, RUNLEVEL_FADING_OUT);
    step(101001);
    EXPECT_EQ(runlevel, RUNLEVEL_QUIT);
}

TEST_F(RunlevelTest, EscapeDuringTheFadeToBlackIsIgnored) {
    step(100000, SDLK_RETURN);
    step(100500, SDLK_ESCAPE);
    EXPECT_EQ(runlevel, RUNLEVEL_TO_GAME);
    EXPECT_EQ(g_fader->endTime, 101000u);
}

TEST_F(RunlevelTest, EscapeDuringTheGameFadesToBlackAndQuits) {
    runlevel = RUNLEVEL_GAME;
    g_game = new Game();
    step(100000, SDLK_ESCAPE);
    EXPECT_EQ(runlevel, RUNLEVEL_FADING_OUT);
    step(101001);
    EXPECT_EQ(runlevel, RUNLEVEL_QUIT);
}

TEST_F(RunlevelTest, F1SavesNumberedScreenshotsInEveryRunlevel) {
    InNewDirectory here;
    ASSERT_TRUE(here.isEntered());
    const std::string dir = here.path();
    resetScreenshotNumbers();
    step(100000, SDLK_F1);
    step(100016);
    g_fader->fadeOut(1000);
    step(100032, SDLK_F1);
    std::string first = dir + "/screenshot_1.bmp", second = dir + "/screenshot_2.bmp";
    EXPECT_EQ(access(first.c_str(), F_OK), 0);
    EXPECT_EQ(access(second.c_str(), F_OK), 0);
    EXPECT_NE(access((dir + "/screenshot_3.bmp").c_str(), F_OK), 0);
}

TEST_F(RunlevelTest, F1SkipsTheNamesOfAnEarlierRunsScreenshotsAndLeavesThemAlone) {
    InNewDirectory here;
    ASSERT_TRUE(here.isEntered());
    for (const char* earlier : {"screenshot_1.bmp", "screenshot_2.bmp", "screenshot_4.bmp"}) {
        FILE* f = fopen(earlier, "w");
        fputs("earlier run", f);
        fclose(f);
    }
    // A link to nowhere is a name taken too: nothing is written through it.
    ASSERT_EQ(symlink("/nonexistent/target.bmp", "screenshot_5.bmp"), 0);
    resetScreenshotNumbers();
    step(100000, SDLK_F1);
    step(100016);
    step(100032, SDLK_F1);
    EXPECT_EQ(firstFreeScreenshotNumber(1), 7);
    for (const char* earlier : {"screenshot_1.bmp", "screenshot_2.bmp", "screenshot_4.bmp"}) {
        char text[32] = {};
        FILE* f = fopen(earlier, "r");
        ASSERT_NE(f, nullptr);
        EXPECT_NE(fgets(text, sizeof text, f), nullptr);
        fclose(f);
        EXPECT_STREQ(text, "earlier run") << earlier;
    }
    struct stat shot {};
    ASSERT_EQ(stat("screenshot_3.bmp", &shot), 0);
    EXPECT_EQ(shot.st_size, 54 + 1280 * 720 * 3);
    ASSERT_EQ(stat("screenshot_6.bmp", &shot), 0);
    EXPECT_EQ(shot.st_size, 54 + 1280 * 720 * 3);
}

TEST_F(RunlevelTest, IntroHasThirteenCentredLinesAndTheCreditFromTheCentre) {
    ASSERT_EQ(g_apology->lines.count, 13u);
    EXPECT_EQ(g_hud->count, 13);
    // Cells of the medium font are 32 px high; lines are 32 + 9 apart plus the extra gaps.
    const float expectedY[13] = {25, 66, 142, 183, 224, 265, 306, 372, 413, 454, 530, 606, 647};
    float cellHeight = (float)(Resources::font_medium->surface->height / 16);
    ASSERT_EQ(cellHeight, 32.0f);
    for (unsigned i = 0; i < 13; ++i) {
        Text* line = static_cast<Text*>(g_apology->lines.data[i]);
        EXPECT_EQ(line->position.x, 640.0f) << i;
        EXPECT_EQ(line->position.y, expectedY[i]) << i;
        float expectedHotSpotX = i == 10 ? line->size.x * 0.5f : 0.0f;
        EXPECT_EQ(line->hotSpot.x, expectedHotSpotX) << i;
        EXPECT_EQ(line->hotSpot.y, line->size.y * 0.5f) << i;
    }
    EXPECT_STREQ(static_cast<Text*>(g_apology->lines.data[0])->text.getCString(), "Nightvector");
    EXPECT_STREQ(static_cast<Text*>(g_apology->lines.data[10])->text.getCString(), "-- Pale Orbit --");
}

// --- loadMusic: opening audio and loading the track from sfx/ of the working directory ---

namespace {

// A working directory of its own with an sfx/ folder (see AudioDirectoryTest).
class LoadMusicTest : public testing_support::AudioDirectoryTest {
protected:
    void writeTrack(const std::string& bytes) { std::ofstream("sfx/music1.ogg", std::ios::binary) << bytes; }

    // What loadMusic wrote on standard error.
    static std::string errorsOfLoadMusic() {
        testing::internal::CaptureStderr();
        loadMusic();
        return testing::internal::GetCapturedStderr();
    }

};

} // namespace

TEST_F(LoadMusicTest, TheRepositoryTrackLoadsWithoutAWord) {
    linkSound("music1.ogg");
    EXPECT_EQ(errorsOfLoadMusic(), "");
    EXPECT_NE(music, nullptr);
}

TEST_F(LoadMusicTest, MissingTrackIsReportedAndLeavesNoMusic) {
    EXPECT_EQ(errorsOfLoadMusic(), "Could not load sfx/music1.ogg: Couldn't open 'sfx/music1.ogg'\n");
    EXPECT_EQ(music, nullptr);
}

TEST_F(LoadMusicTest, TrackThatIsNoOggStreamIsReportedAndLeavesNoMusic) {
    writeTrack(std::string(4096, 'x'));
    EXPECT_EQ(errorsOfLoadMusic(), "Could not load sfx/music1.ogg: Not an Ogg Vorbis audio stream\n");
    EXPECT_EQ(music, nullptr);
}

TEST_F(LoadMusicTest, MissingAudioDeviceIsReportedAndNothingIsLoaded) {
    linkSound("music1.ogg");
    setenv("SDL_AUDIODRIVER", "nosuchdevice", 1);
    EXPECT_EQ(errorsOfLoadMusic(), "Could not open audio: No available audio device\n");
    EXPECT_EQ(music, nullptr);
}

namespace {

// The allocator's own report of its heaps, as XML.
std::string heapReport() {
    char* text = nullptr;
    size_t size = 0;
    FILE* out = open_memstream(&text, &size);
    malloc_info(0, out);
    fclose(out);
    std::string report(text, size);
    free(text);
    return report;
}

// Opens its window in the test, after what start-up does before it.
class OneHeapTest : public GLTest {
protected:
    void SetUp() override {}
};

} // namespace

TEST_F(OneHeapTest, ArtLoadsWithoutASecondHeapOnceTheHeapIsShared) {
    // In a fresh process of its own: threads that other tests started keep the heaps they have.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            // Start-up shares the heap before the window opens, and so before the driver's
            // threads start.
            shareOneHeap();
            openWindow(1280, 720);
            testing::internal::CaptureStdout();
            Resources::load();
            testing::internal::GetCapturedStdout();
            // Without it the image decoder gets a heap of its own, which keeps about 8 MiB after
            // loading.
            const std::string report = heapReport();
            const bool oneHeap = report.find("<heap nr=\"0\">") != std::string::npos &&
                                 report.find("<heap nr=\"1\">") == std::string::npos;
            if (!oneHeap) fprintf(stderr, "%s", report.c_str());
            _exit(oneHeap ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}
