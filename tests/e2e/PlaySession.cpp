#include "tests/e2e/PlaySession.h"

#include <string>

#include <gtest/gtest.h>

namespace e2e {

void enterPlay(GameProcess& game, int mouseX, int mouseY, int settleMs) {
    ASSERT_TRUE(game.waitForOutput("megabytes\n")) << game.output() << game.errors();
    pause(300);
    game.moveMouse(mouseX, mouseY);
    game.holdKey("Return");
    pause(settleMs);
    ASSERT_TRUE(game.isRunning());
}

void quitWithEscape(GameProcess& game) {
    game.holdKey("Escape");
    EXPECT_EQ(game.waitForExit(), 0);
}

bool nextScreenshot(GameProcess& game, const Surroundings& dir, int& number, Image& image) {
    while (dir.exists("screenshot_" + std::to_string(number + 1) + ".bmp")) ++number;
    for (int press = 0; press < 5; ++press) {
        game.holdKey("F1");
        for (int waited = 0; waited < 5000; waited += 50) {
            for (int n = number + 1; n <= number + 1 + press; ++n)
                if (loadBmp(dir.path() + "/screenshot_" + std::to_string(n) + ".bmp", image)) {
                    number = n;
                    return image.width == 1280 && image.height == 720;
                }
            pause(50);
        }
    }
    return false;
}

} // namespace e2e
