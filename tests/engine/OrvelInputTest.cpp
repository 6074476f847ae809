#include "engine/Orvel.h"

#include <gtest/gtest.h>

using orvel::Orvel;

namespace {

// Input queries read Orvel::events; these tests own one without an event thread.
class OrvelInputTest : public ::testing::Test {
protected:
    void SetUp() override { Orvel::events = new Orvel::GEvent(); }
    void TearDown() override {
        delete Orvel::events;
        Orvel::events = nullptr;
    }
    static void setLiveKey(int k, bool down) {
        uint32_t bit = 1u << (k % 32);
        uint32_t& word = Orvel::events->keysLive[k / 32];
        word = down ? word | bit : word & ~bit;
    }
};

// The input of one frame as GEvent keeps it: key word 3, the mouse and the buttons.
struct Frame {
    uint32_t keyWord3;
    int mouseX, mouseY;
    uint32_t buttons;
};

void setLive(Orvel::GEvent* e, const Frame& live) {
    e->keysLive[3] = live.keyWord3;
    e->mouseLiveX = live.mouseX;
    e->mouseLiveY = live.mouseY;
    e->buttonsLive = live.buttons;
}

// `now` is this frame's input and `previous` the frame's before.
void expectFrames(const Orvel::GEvent* e, const Frame& now, const Frame& previous) {
    EXPECT_EQ(e->keys[3], now.keyWord3);
    EXPECT_EQ(e->mouseX, now.mouseX);
    EXPECT_EQ(e->mouseY, now.mouseY);
    EXPECT_EQ(e->buttons, now.buttons);
    EXPECT_EQ(e->keysPrev[3], previous.keyWord3);
    EXPECT_EQ(e->mousePrevX, previous.mouseX);
    EXPECT_EQ(e->mousePrevY, previous.mouseY);
    EXPECT_EQ(e->buttonsPrev, previous.buttons);
}

} // namespace

TEST_F(OrvelInputTest, NewGEventIsZeroedAndWantsToRun) {
    Orvel::GEvent* e = Orvel::events;
    EXPECT_EQ(e->thread, nullptr);
    EXPECT_TRUE(e->running);
    EXPECT_FALSE(e->closeRequested);
    for (int i = 0; i < Orvel::GEvent::KEY_WORDS; ++i) {
        EXPECT_EQ(e->keysLive[i], 0u);
        EXPECT_EQ(e->keys[i], 0u);
        EXPECT_EQ(e->keysPrev[i], 0u);
    }
    EXPECT_EQ(e->mouseLiveX, 0);
    EXPECT_EQ(e->mouseLiveY, 0);
    EXPECT_EQ(e->mouseX, 0);
    EXPECT_EQ(e->mouseY, 0);
    EXPECT_EQ(e->mousePrevX, 0);
    EXPECT_EQ(e->mousePrevY, 0);
    EXPECT_EQ(e->buttonsLive, 0u);
    EXPECT_EQ(e->buttons, 0u);
    EXPECT_EQ(e->buttonsPrev, 0u);
}

TEST_F(OrvelInputTest, UpdateShiftsLiveStateIntoFrameAndFrameIntoPrevious) {
    Orvel::GEvent* e = Orvel::events;
    setLive(e, {0xA5, 12, 34, 6});
    e->update();
    expectFrames(e, {0xA5, 12, 34, 6}, {0, 0, 0, 0});

    // The mouse's y stays where it was.
    setLive(e, {0x1, 56, 34, 0});
    e->update();
    expectFrames(e, {0x1, 56, 34, 0}, {0xA5, 12, 34, 6});
}

TEST_F(OrvelInputTest, KeyEdgesLastOneFrameAndDownLastsWhileHeld) {
    const int k = 97;
    setLiveKey(k, true);
    Orvel::events->update();
    EXPECT_TRUE(Orvel::keyPressed(k));
    EXPECT_TRUE(Orvel::keyDown(k));
    EXPECT_FALSE(Orvel::keyReleased(k));

    Orvel::events->update();
    EXPECT_FALSE(Orvel::keyPressed(k));
    EXPECT_TRUE(Orvel::keyDown(k));

    setLiveKey(k, false);
    Orvel::events->update();
    EXPECT_TRUE(Orvel::keyReleased(k));
    EXPECT_FALSE(Orvel::keyDown(k));
    EXPECT_FALSE(Orvel::keyPressed(k));

    Orvel::events->update();
    EXPECT_FALSE(Orvel::keyReleased(k));
}

TEST_F(OrvelInputTest, PressAndReleaseBetweenTwoUpdatesAreNeverSeen) {
    setLiveKey(13, true);
    setLiveKey(13, false);
    Orvel::events->update();
    EXPECT_FALSE(Orvel::keyPressed(13));
    EXPECT_FALSE(Orvel::keyDown(13));
    EXPECT_FALSE(Orvel::keyReleased(13));
}

TEST_F(OrvelInputTest, HighestKeySymbolIsAddressable) {
    setLiveKey(511, true);
    Orvel::events->update();
    EXPECT_TRUE(Orvel::keyDown(511));
    EXPECT_EQ(Orvel::events->keys[15], 0x80000000u);
}

TEST_F(OrvelInputTest, KeysOutsideZeroTo511AreNeverDown) {
    for (int i = 0; i < Orvel::GEvent::KEY_WORDS; ++i) Orvel::events->keysLive[i] = 0xFFFFFFFF;
    Orvel::events->update();
    EXPECT_FALSE(Orvel::keyDown(512));
    EXPECT_FALSE(Orvel::keyDown(-1));
    EXPECT_FALSE(Orvel::keyPressed(512));
    EXPECT_FALSE(Orvel::keyPressed(-1));
    for (int i = 0; i < Orvel::GEvent::KEY_WORDS; ++i) Orvel::events->keysLive[i] = 0;
    Orvel::events->update();
    EXPECT_FALSE(Orvel::keyReleased(512));
    EXPECT_FALSE(Orvel::keyReleased(-1));
}

TEST_F(OrvelInputTest, ButtonEdgesLastOneFrame) {
    Orvel::events->buttonsLive = 1u << 3;
    Orvel::events->update();
    EXPECT_TRUE(Orvel::mousePressed(3));
    EXPECT_TRUE(Orvel::mouseDown(3));
    EXPECT_FALSE(Orvel::mouseDown(1));
    Orvel::events->update();
    EXPECT_FALSE(Orvel::mousePressed(3));
    EXPECT_TRUE(Orvel::mouseDown(3));
    Orvel::events->buttonsLive = 0;
    Orvel::events->update();
    EXPECT_TRUE(Orvel::mouseReleased(3));
    EXPECT_FALSE(Orvel::mouseDown(3));
}

TEST_F(OrvelInputTest, ButtonsOutsideZeroTo31AreNeverDown) {
    Orvel::events->buttonsLive = 0xFFFFFFFF;
    Orvel::events->update();
    EXPECT_TRUE(Orvel::mouseDown(31));
    EXPECT_FALSE(Orvel::mouseDown(32));
    EXPECT_FALSE(Orvel::mouseDown(-1));
    EXPECT_FALSE(Orvel::mousePressed(32));
    Orvel::events->buttonsLive = 0;
    Orvel::events->update();
    EXPECT_FALSE(Orvel::mouseReleased(32));
    EXPECT_FALSE(Orvel::mouseReleased(-1));
}

TEST_F(OrvelInputTest, MousePositionIsTheFrameSnapshot) {
    Orvel::events->mouseLiveX = 640;
    Orvel::events->mouseLiveY = 360;
    EXPECT_EQ(Orvel::mouseX(), 0);
    Orvel::events->update();
    EXPECT_EQ(Orvel::mouseX(), 640);
    EXPECT_EQ(Orvel::mouseY(), 360);
}

TEST(Orvel, SixteenMillisecondFrameGivesSyncAndTruncatedFixedPoint) {
    Orvel::setFrameTime(1000, 1016);
    EXPECT_EQ(Orvel::sync, 0.001f * 16.0f);
    EXPECT_FLOAT_EQ(Orvel::sync, 0.016f);
    EXPECT_EQ(Orvel::sync16, 1048); // 16 * 65.536 = 1048.576
    EXPECT_EQ(Orvel::currentTime, 1016u);
    EXPECT_EQ(Orvel::lastTime, 1000u);
}

TEST(Orvel, OneMillisecondFrameGives65InFixedPoint) {
    Orvel::setFrameTime(7, 8);
    EXPECT_EQ(Orvel::sync, 0.001f);
    EXPECT_EQ(Orvel::sync16, 65); // 65.536 truncated
}

TEST(Orvel, ZeroLengthFrameGivesZero) {
    Orvel::setFrameTime(500, 500);
    EXPECT_EQ(Orvel::sync, 0.0f);
    EXPECT_EQ(Orvel::sync16, 0);
}

TEST(Orvel, TickCounterWrapMeasuresUnsignedDifference) {
    Orvel::setFrameTime(0xFFFFFFF0u, 0x00000010u);
    EXPECT_EQ(Orvel::sync, 0.001f * 32.0f);
    EXPECT_EQ(Orvel::sync16, 2097); // 32 * 65.536 = 2097.152
}

TEST(Orvel, AutoExitStartsTrueAndIsWritable) {
    EXPECT_TRUE(Orvel::getAutoExit());
    Orvel::setAutoExit(false);
    EXPECT_FALSE(Orvel::getAutoExit());
    Orvel::setAutoExit(true);
    EXPECT_TRUE(Orvel::autoexit);
}

TEST(Orvel, QueriesWithoutInputStateAreFalse) {
    ASSERT_EQ(Orvel::events, nullptr);
    EXPECT_FALSE(Orvel::keyDown(13));
    EXPECT_FALSE(Orvel::mouseDown(1));
    EXPECT_EQ(Orvel::mouseX(), 0);
}
