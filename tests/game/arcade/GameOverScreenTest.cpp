// After Game Over: the result recorded once the text has faded in, a name typed into the table,
// the table and its hint, and the way to a new game; the new game itself through the main loop.

#include "game/arcade/GameOverScreen.h"

#include <cstdlib>
#include <ctime>
#include <string>

#include <SDL/SDL_keysym.h>

#include "engine/GL.h"
#include "engine/Orvel.h"
#include "engine/TypedKeys.h"
#include "game/Game.h"
#include "game/GameSessions.h"
#include "game/Main.h"
#include "game/Player.h"
#include "game/ScoreCounter.h"
#include "game/arcade/ScoreTableView.h"
#include "game/replay/LastReplay.h"
#include "game/scores/ScoreFile.h"
#include "scene/Fader.h"
#include "scene/Text.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/FileChecks.h"
#include "tests/support/GameSession.h"
#include "tests/support/PlayerHome.h"

using namespace testing_support;
using orvel::Orvel;
using orvel::TypedKeys;

namespace {

// Every game in these tests ends at this moment: 2025-11-24 16:02:03 UTC.
const int64_t GAME_END = 1764000123;
int64_t fixedClock() { return GAME_END; }

// The moment the "Game Over" text of a game that ends at START + 16 has faded in.
const uint32_t FADED_IN = START + 16 + 1500;

class GameOverScreenTest : public SessionTest {
protected:
    void SetUp() override {
        SessionTest::SetUp();
        setenv("TZ", "UTC", 1);
        tzset();
        GameOverScreen::wallClock = fixedClock;
        g_game->init();
        screen = new GameOverScreen(path);
        screen->defaultName = "alice";
    }
    void TearDown() override {
        delete screen;
        GameOverScreen::wallClock = savedClock;
        TypedKeys::enable(false);
        SessionTest::TearDown();
    }

    // Ends the game at START + 16 with `score` in wave `wave`.
    void endGame(int score, int wave) {
        g_game->scoreCounter->value = score;
        g_game->wave = wave;
        g_game->nextWaveTime = (float)(START + 60000);
        g_game->player->hull = 0.0f;
        g_game->lives = 0;
        step(START + 16);
        ASSERT_FALSE(g_game->running);
    }
    // One frame at `ms` with `key` held (-1 none) and `buttons`: the game, then the screen.
    void frame(uint32_t ms, int key = -1, uint32_t buttons = 0) {
        setInput(buttons, 640, 360, key);
        step(ms);
        screen->update();
    }
    // Types `text` as the event thread records it.
    static void type(const char* text) {
        for (const char* c = text; *c; ++c) {
            const char lower = *c >= 'A' && *c <= 'Z' ? (char)(*c + 32) : *c;
            TypedKeys::record((uint16_t)lower, (uint16_t)*c);
        }
    }
    std::string contents() const { return fileContents(path); }
    void putFullTable() {
        ScoreTable table;
        for (uint32_t i = 1; i <= 10; ++i) {
            ScoreEntry entry;
            entry.name = "p" + std::to_string(i);
            entry.score = i * 1000;
            entry.wave = 2;
            entry.when = 1700000000;
            table.add(entry);
        }
        int rank = 0;
        for (const ScoreEntry& entry : table.entries()) ScoreFile(path).record(entry, rank);
    }
    // Into the table with a game that does not make it, at FADED_IN.
    void reachTableWithoutEntry() {
        putFullTable();
        endGame(500, 2);
        frame(FADED_IN);
        ASSERT_EQ(screen->phase(), GameOverScreen::TABLE);
    }

    PlayerHome home;
    std::string path = home.dataHome() + "/nightvector/scores";
    GameOverScreen* screen = nullptr;
    int64_t (*savedClock)() = GameOverScreen::wallClock;
};

} // namespace

TEST_F(GameOverScreenTest, NothingIsShownOrSavedUntilTheGameOverTextHasFadedIn) {
    frame(START);
    EXPECT_EQ(screen->phase(), GameOverScreen::WAITING);
    endGame(4200, 5);
    frame(FADED_IN - 1);
    EXPECT_EQ(screen->phase(), GameOverScreen::WAITING);
    EXPECT_EQ(directoryListing(home.dataHome()), "");
    frame(FADED_IN);
    EXPECT_EQ(g_game->gameOverText->color.w, 1.0f);
    EXPECT_EQ(screen->phase(), GameOverScreen::NAME_ENTRY);
}

TEST_F(GameOverScreenTest, AGameThatMakesTheTableIsSavedAtOnceUnderTheLoginName) {
    endGame(4200, 5);
    frame(FADED_IN);
    EXPECT_EQ(screen->rank(), 0);
    EXPECT_EQ(contents(), "nightvector scores 2\n4200\t5\t1764000123\t-\talice\n");
    ASSERT_NE(screen->nameEntry(), nullptr);
    EXPECT_EQ(screen->nameEntry()->text(), "alice");
    EXPECT_TRUE(TypedKeys::enabled());
}

TEST_F(GameOverScreenTest, TheTypedNameReplacesTheLoginNameInTheFileOnReturn) {
    endGame(4200, 5);
    frame(FADED_IN);
    type("Bob");
    frame(FADED_IN + 16);
    EXPECT_EQ(screen->nameEntry()->text(), "Bob");
    EXPECT_EQ(contents(), "nightvector scores 2\n4200\t5\t1764000123\t-\talice\n");
    TypedKeys::record(SDLK_BACKSPACE, 8);
    type("x");
    TypedKeys::record(SDLK_RETURN, 13);
    frame(FADED_IN + 32);
    EXPECT_EQ(screen->phase(), GameOverScreen::TABLE);
    EXPECT_EQ(screen->nameEntry(), nullptr);
    EXPECT_FALSE(TypedKeys::enabled());
    EXPECT_EQ(contents(), "nightvector scores 2\n4200\t5\t1764000123\t-\tBox\n");
    EXPECT_EQ(screen->table().entries()[0].name, "Box");
    EXPECT_EQ(screen->rank(), 0);
}

TEST_F(GameOverScreenTest, KeysTypedInPlayAreNotPartOfTheName) {
    TypedKeys::enable(true);
    type("wasd");
    endGame(4200, 5);
    frame(FADED_IN);
    frame(FADED_IN + 16);
    EXPECT_EQ(screen->nameEntry()->text(), "alice");
}

TEST_F(GameOverScreenTest, ThePadsStartKeepsTheLoginName) {
    endGame(4200, 5);
    frame(FADED_IN);
    // Start holds Return in the frame's keys; nothing is typed.
    frame(FADED_IN + 16, SDLK_RETURN);
    EXPECT_EQ(screen->phase(), GameOverScreen::TABLE);
    EXPECT_EQ(contents(), "nightvector scores 2\n4200\t5\t1764000123\t-\talice\n");
}

TEST_F(GameOverScreenTest, ANameTypedWhenEscapeComesIsKept) {
    endGame(4200, 5);
    frame(FADED_IN);
    type("Zed");
    frame(FADED_IN + 16);
    screen->confirmName();
    EXPECT_EQ(screen->phase(), GameOverScreen::TABLE);
    EXPECT_EQ(contents(), "nightvector scores 2\n4200\t5\t1764000123\t-\tZed\n");
    // A second confirmation finds nothing to do.
    screen->confirmName();
    EXPECT_EQ(contents(), "nightvector scores 2\n4200\t5\t1764000123\t-\tZed\n");
}

TEST_F(GameOverScreenTest, AGameBelowAFullTableGoesStraightToTheTableAndLeavesTheFile) {
    putFullTable();
    const std::string before = contents();
    endGame(500, 2);
    frame(FADED_IN);
    EXPECT_EQ(screen->phase(), GameOverScreen::TABLE);
    EXPECT_EQ(screen->rank(), -1);
    EXPECT_EQ(screen->nameEntry(), nullptr);
    EXPECT_FALSE(TypedKeys::enabled());
    EXPECT_EQ(screen->table().entries().size(), 10u);
    EXPECT_EQ(contents(), before);
}

TEST_F(GameOverScreenTest, ReturnStartsTheFadeToBlackOnlyAfterTheGrace) {
    reachTableWithoutEntry();
    frame(FADED_IN + GameOverScreen::INPUT_GRACE_MS - 1, SDLK_RETURN);
    EXPECT_EQ(screen->phase(), GameOverScreen::TABLE);
    frame(FADED_IN + GameOverScreen::INPUT_GRACE_MS);
    frame(FADED_IN + GameOverScreen::INPUT_GRACE_MS + 16, SDLK_RETURN);
    EXPECT_EQ(screen->phase(), GameOverScreen::LEAVING);
    EXPECT_EQ(g_fader->startTime, FADED_IN + GameOverScreen::INPUT_GRACE_MS + 16);
    EXPECT_EQ(g_fader->endTime, FADED_IN + GameOverScreen::INPUT_GRACE_MS + 16 + 1000);
    EXPECT_EQ(g_fader->from, 0.0f);
    EXPECT_EQ(g_fader->to, 1.0f);
    EXPECT_EQ(g_fader->color.x + g_fader->color.y + g_fader->color.z, 0.0f);
}

TEST_F(GameOverScreenTest, SpaceKeypadEnterAndEachMouseButtonStartANewGame) {
    const int keys[] = {SDLK_SPACE, SDLK_KP_ENTER, -1, -1, -1};
    const uint32_t buttons[] = {0, 0, 1u << 1, 1u << 2, 1u << 3};
    endGame(4200, 5);
    for (int i = 0; i < 5; ++i) {
        // A screen of its own for each: the same game shown again, its table taken afresh.
        delete screen;
        screen = new GameOverScreen(path);
        const uint32_t t = FADED_IN + 1000 * (uint32_t)(i + 1);
        frame(t);
        ASSERT_EQ(screen->phase(), GameOverScreen::NAME_ENTRY);
        screen->confirmName();
        frame(t + GameOverScreen::INPUT_GRACE_MS);
        frame(t + GameOverScreen::INPUT_GRACE_MS + 16, keys[i], buttons[i]);
        EXPECT_EQ(screen->phase(), GameOverScreen::LEAVING) << i;
    }
}

TEST_F(GameOverScreenTest, AButtonHeldFromPlayStartsNothingAndAFreshClickDoes) {
    reachTableWithoutEntry();
    for (uint32_t t = FADED_IN + 16; t < FADED_IN + 1000; t += 16) frame(t, -1, LEFT_BUTTON);
    EXPECT_EQ(screen->phase(), GameOverScreen::TABLE);
    frame(FADED_IN + 1000);
    frame(FADED_IN + 1016, -1, LEFT_BUTTON);
    EXPECT_EQ(screen->phase(), GameOverScreen::LEAVING);
}

TEST_F(GameOverScreenTest, OtherKeysStartNothing) {
    reachTableWithoutEntry();
    const int keys[] = {SDLK_p, SDLK_w, SDLK_h, SDLK_F1, SDLK_r};
    uint32_t t = FADED_IN + 1000;
    for (int key : keys) {
        frame(t += 16, key);
        frame(t += 16);
    }
    EXPECT_EQ(screen->phase(), GameOverScreen::TABLE);
}

TEST_F(GameOverScreenTest, WithoutAScoresFileTheTableIsKeptForThisRun) {
    delete screen;
    screen = new GameOverScreen("");
    screen->defaultName = "alice";
    endGame(300, 1);
    frame(FADED_IN);
    type("Kim");
    TypedKeys::record(SDLK_RETURN, 13);
    frame(FADED_IN + 16);
    ASSERT_EQ(screen->table().entries().size(), 1u);
    EXPECT_EQ(screen->table().entries()[0].name, "Kim");
    EXPECT_EQ(screen->rank(), 0);
    EXPECT_EQ(directoryListing(home.dataHome()), "");
}

TEST_F(GameOverScreenTest, ResetWaitsForTheNextGameOver) {
    endGame(4200, 5);
    frame(FADED_IN);
    screen->reset();
    EXPECT_EQ(screen->phase(), GameOverScreen::WAITING);
    EXPECT_EQ(screen->rank(), -1);
    EXPECT_EQ(screen->nameEntry(), nullptr);
    EXPECT_FALSE(TypedKeys::enabled());
    EXPECT_TRUE(screen->table().entries().empty());
}

TEST_F(GameOverScreenTest, TheFadeToBlackOverTheMainLoopStartsAFreshSessionAndFadesIn) {
    g_gameOver = screen;
    runlevel = RUNLEVEL_GAME;
    reachTableWithoutEntry();
    frame(FADED_IN + 1000, SDLK_RETURN);
    ASSERT_EQ(screen->phase(), GameOverScreen::LEAVING);
    // The fade has not ended: the session stays.
    setTime(FADED_IN + 2000);
    runFrameLogic();
    EXPECT_EQ(screen->phase(), GameOverScreen::LEAVING);
    EXPECT_FALSE(g_game->running);
    setTime(FADED_IN + 2001);
    setInput(0, 640, 360);
    runFrameLogic();
    g_gameOver = nullptr;
    runlevel = RUNLEVEL_MENU;
    EXPECT_EQ(screen->phase(), GameOverScreen::WAITING);
    ASSERT_NE(g_game, nullptr);
    EXPECT_TRUE(g_game->running);
    EXPECT_EQ(g_game->scoreCounter->value, 0);
    EXPECT_EQ(g_game->wave, 0);
    EXPECT_EQ(g_game->lives, 3);
    EXPECT_EQ(g_fader->startTime, FADED_IN + 2001);
    EXPECT_EQ(g_fader->endTime, FADED_IN + 2001 + 500);
    EXPECT_EQ(g_fader->from, 1.0f);
    EXPECT_EQ(g_fader->to, 0.0f);
}

namespace {

// The same, drawing with the game's art.
class GameOverPictureTest : public GameOverScreenTest {
protected:
    GameOverPictureTest() { reloadResources = true; }

    static Pixels drawFrame(GameOverScreen* over) {
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
        g_world->draw();
        g_hud->draw();
        if (over) over->draw();
        return readScreen();
    }
};

} // namespace

TEST_F(GameOverPictureTest, ThePictureAboveTheScoreLineIsTheGameOverScreenAsBefore) {
    endGame(4200, 5);
    frame(FADED_IN);
    ASSERT_EQ(screen->phase(), GameOverScreen::NAME_ENTRY);
    const Pixels before = drawFrame(nullptr);
    const Pixels after = drawFrame(screen);
    // The score line is 24 pixels high about its centre.
    const int firstChanged = (int)GameOverScreen::SUMMARY_Y - 12;
    int differing = 0, below = 0;
    for (int y = 0; y < 720; ++y)
        for (int x = 0; x < 1280; ++x) {
            if (before.at(x, y) == after.at(x, y)) continue;
            if (y < firstChanged) ++differing;
            else ++below;
        }
    EXPECT_EQ(differing, 0);
    // The score line, the table and the hint are there below it.
    EXPECT_GT(below, 10000);
}

TEST_F(GameOverScreenTest, FramesOfTheNameEntryAndTheTableAllocateNothing) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "freed blocks are not kept under AddressSanitizer";
#endif
    endGame(4200, 5);
    frame(FADED_IN);
    ASSERT_EQ(screen->phase(), GameOverScreen::NAME_ENTRY);
    frame(FADED_IN + 16);
    size_t before = allocationCount();
    for (uint32_t f = 2; f < 62; ++f) frame(FADED_IN + f * 16);
    EXPECT_EQ(allocationCount(), before);
    screen->confirmName();
    frame(FADED_IN + 62 * 16);
    before = allocationCount();
    for (uint32_t f = 63; f < 123; ++f) frame(FADED_IN + f * 16);
    EXPECT_EQ(allocationCount(), before);
}

TEST_F(GameOverScreenTest, TwentyGamesOverAndAgainGiveTheHeapBackToTheFirstGamesLevel) {
    size_t afterFirst = 0;
    uint32_t t = START;
    for (int game = 0; game < 20; ++game) {
        // A game over, a name typed, the table, a new game.
        g_game->player->hull = 0.0f;
        g_game->lives = 0;
        g_game->scoreCounter->value = 100 * (game + 1);
        step(t += 16);
        frame(t += 1500);
        ASSERT_EQ(screen->phase(), GameOverScreen::NAME_ENTRY) << game;
        type("Ace");
        TypedKeys::record(SDLK_RETURN, 13);
        frame(t += 16);
        frame(t += GameOverScreen::INPUT_GRACE_MS);
        frame(t += 16, SDLK_SPACE);
        ASSERT_EQ(screen->phase(), GameOverScreen::LEAVING) << game;
        screen->reset();
        GameSessions::end();
        // Taken between sessions, where nothing of a game is left.
        if (game == 0) afterFirst = liveAllocationBytes();
        ASSERT_EQ(liveAllocationBytes(), afterFirst) << "after game " << game + 1;
        setTime(t += 1000);
        GameSessions::begin(5);
    }
}

TEST_F(GameOverScreenTest, AGameThatMakesTheTableKeepsItsRecordingAsTheEntrysReplay) {
    // Recorded as the main loop records: around every update, the game over closing the file.
    LastReplay recorded("");
    g_lastReplay = &recorded;
    recorded.begin(77);
    recorded.beforeUpdate();
    endGame(4200, 5);
    recorded.afterUpdate(*g_game);
    const bool closed = !recorded.recording();
    frame(FADED_IN);
    g_lastReplay = nullptr;
    ASSERT_TRUE(closed);
    const std::vector<uint8_t>& bytes = recorded.recorderInUse().file().bytes();
    ASSERT_GT(bytes.size(), 0u);
    EXPECT_EQ(contents(), "nightvector scores 2\n4200\t5\t1764000123\tbest-1764000123-4200.nvr\talice\n");
    EXPECT_EQ(fileContents(home.dataHome() + "/nightvector/replays/best-1764000123-4200.nvr"),
              std::string(bytes.begin(), bytes.end()));
}
