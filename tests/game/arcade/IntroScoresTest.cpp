// The top-ten table over the intro: H shows it as the file holds it at that moment, H hides it.

#include "game/arcade/IntroScores.h"

#include <string>

#include "engine/GL.h"
#include "engine/SafeFile.h"
#include "tests/support/FileChecks.h"
#include "tests/support/GameSession.h"
#include "tests/support/PlayerHome.h"

using namespace testing_support;

namespace {

class IntroScoresTest : public HudScene {
protected:
    void put(const std::string& bytes) {
        std::string error;
        ASSERT_TRUE(orvel::SafeFile::makeDirectories(home.dataHome() + "/nightvector", error));
        writeFileContents(path, bytes);
    }
    // Pixels of the heading's colour in the band where the intro's table puts its heading.
    static int countHeadingInk(const Pixels& p) {
        int n = 0;
        for (int y = 225; y < 245; ++y)
            for (int x = 415; x < 865; ++x) {
                const uint32_t c = p.at(x, y);
                n += blue(c) > 200 && green(c) > 150 && red(c) > 100 && red(c) < 190 ? 1 : 0;
            }
        return n;
    }
    // White ink in the band of the table's first row.
    static int countFirstRowInk(const Pixels& p) {
        int n = 0;
        for (int y = 255; y < 275; ++y)
            for (int x = 415; x < 865; ++x) n += red(p.at(x, y)) > 200 && blue(p.at(x, y)) > 200 ? 1 : 0;
        return n;
    }
    static Pixels drawOnBlack(IntroScores& scores) {
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        scores.draw();
        return readScreen();
    }

    PlayerHome home;
    std::string path = home.dataHome() + "/nightvector/scores";
};

} // namespace

TEST_F(IntroScoresTest, HShowsTheTableAsTheFileHoldsItAndHidesItAgain) {
    IntroScores scores(path);
    EXPECT_FALSE(scores.showing());
    EXPECT_EQ(countHeadingInk(drawOnBlack(scores)), 0);
    put("nightvector scores 1\n4200\t5\t1764000123\tVega\n");
    scores.toggle();
    EXPECT_TRUE(scores.showing());
    const Pixels shown = drawOnBlack(scores);
    EXPECT_GT(countHeadingInk(shown), 100);
    EXPECT_GT(countFirstRowInk(shown), 100);
    scores.toggle();
    EXPECT_FALSE(scores.showing());
    EXPECT_EQ(countHeadingInk(drawOnBlack(scores)), 0);
}

TEST_F(IntroScoresTest, WithoutAFileTheTableShowsEmpty) {
    IntroScores scores(path);
    scores.toggle();
    const Pixels shown = drawOnBlack(scores);
    EXPECT_GT(countHeadingInk(shown), 100);
    EXPECT_EQ(countFirstRowInk(shown), 0);
    // Reading made nothing on disk.
    EXPECT_EQ(directoryListing(home.dataHome()), "");
}

TEST_F(IntroScoresTest, HideLeavesNothingShown) {
    IntroScores scores("");
    scores.toggle();
    EXPECT_TRUE(scores.showing());
    scores.hide();
    EXPECT_FALSE(scores.showing());
    scores.hide();
    EXPECT_FALSE(scores.showing());
}
