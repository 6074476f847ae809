// The screenshots asked for at chosen updates: the list read from its text, each number answered
// once, whatever order the numbers come in.

#include "game/replay/FrameShots.h"

#include <gtest/gtest.h>

TEST(FrameShots, NothingAskedTakesNothing) {
    FrameShots shots;
    shots.ask(nullptr);
    EXPECT_EQ(shots.asked(), 0u);
    EXPECT_FALSE(shots.due(0));
    shots.ask("");
    EXPECT_EQ(shots.asked(), 0u);
}

TEST(FrameShots, EachNumberIsDueOnceAtExactlyThatCount) {
    FrameShots shots;
    shots.ask("240,60,480");
    EXPECT_EQ(shots.asked(), 3u);
    EXPECT_FALSE(shots.due(59));
    EXPECT_TRUE(shots.due(60));
    // The same count again, as in frames that begin paused or follow the game's end: no second one.
    EXPECT_FALSE(shots.due(60));
    EXPECT_FALSE(shots.due(241));
    EXPECT_TRUE(shots.due(240));
    EXPECT_TRUE(shots.due(480));
    EXPECT_FALSE(shots.due(480));
}

TEST(FrameShots, TheListEndsAtWhatIsNotANumber) {
    FrameShots shots;
    shots.ask("10,x,30");
    EXPECT_EQ(shots.asked(), 1u);
    shots.ask("-5,10");
    EXPECT_EQ(shots.asked(), 0u);
    shots.ask("7,");
    EXPECT_EQ(shots.asked(), 1u);
    EXPECT_TRUE(shots.due(7));
}

TEST(FrameShots, AtMostSixteenNumbersAreTaken) {
    FrameShots shots;
    shots.ask("1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18");
    EXPECT_EQ(shots.asked(), FrameShots::MOST);
    EXPECT_TRUE(shots.due(16));
    EXPECT_FALSE(shots.due(17));
}

TEST(FrameShots, AskingAgainForgetsWhatWasAnswered) {
    FrameShots shots;
    shots.ask("5");
    EXPECT_TRUE(shots.due(5));
    shots.ask("5");
    EXPECT_TRUE(shots.due(5));
}
