// The game's window on the tests' 1280 x 720 screen: full screen where the screen is large enough,
// a window with one line on standard error where it is not.

#include <string>

#include <SDL/SDL.h>
#include <gtest/gtest.h>

#include "engine/Orvel.h"
#include "game/desktop/GameWindow.h"

using orvel::Orvel;

namespace {

class GameWindowTest : public ::testing::Test {
protected:
    void TearDown() override {
        if (Orvel::window) Orvel::quit();
    }
    // Opens the window as asked; `errors` gets what that wrote to standard error.
    bool open(int width, int height, bool fullscreen) {
        testing::internal::CaptureStderr();
        const bool opened = GameWindow::open(width, height, "Game window", fullscreen);
        errors = testing::internal::GetCapturedStderr();
        return opened;
    }
    std::string errors;
};

TEST_F(GameWindowTest, FullScreenTheScreenCanGiveOpensInFullScreenAndSaysNothing) {
    ASSERT_TRUE(open(1280, 720, true));
    ASSERT_NE(Orvel::window, nullptr);
    EXPECT_TRUE(Orvel::fullscreen);
    EXPECT_TRUE(Orvel::window->flags & SDL_FULLSCREEN);
    EXPECT_EQ(errors, "");
}

TEST_F(GameWindowTest, FullScreenLargerThanTheScreenOpensAWindowOfTheSameSizeWithOneLine) {
    ASSERT_TRUE(open(1600, 900, true));
    ASSERT_NE(Orvel::window, nullptr);
    EXPECT_FALSE(Orvel::fullscreen);
    EXPECT_FALSE(Orvel::window->flags & SDL_FULLSCREEN);
    EXPECT_TRUE(Orvel::window->flags & SDL_OPENGL);
    EXPECT_EQ(Orvel::window->w, 1600);
    EXPECT_EQ(Orvel::window->h, 900);
    EXPECT_EQ(errors, "Could not start in full screen: the display refused (No video mode large enough for "
                      "1600x900); playing in a window\n");
}

TEST_F(GameWindowTest, AWindowLargerThanTheScreenIsOpenedAsAsked) {
    ASSERT_TRUE(open(1600, 900, false));
    ASSERT_NE(Orvel::window, nullptr);
    EXPECT_FALSE(Orvel::fullscreen);
    EXPECT_EQ(Orvel::window->w, 1600);
    EXPECT_EQ(errors, "");
}

} // namespace
