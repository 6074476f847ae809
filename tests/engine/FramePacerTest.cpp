// Pacing without vertical sync: nothing happens while the frames are paced by the display or
// there is no cap; frames that come too fast are held to the cap once thirty of them showed it.

#include "engine/FramePacer.h"

#include <vector>

#include <gtest/gtest.h>

using orvel::FramePacer;

namespace {

uint64_t g_now = 0;
std::vector<uint64_t> g_sleeps;

uint64_t fakeClock() { return g_now; }
void fakeSleep(uint64_t us) {
    g_sleeps.push_back(us);
    g_now += us;
}

class FramePacerTest : public ::testing::Test {
protected:
    void SetUp() override {
        g_now = 1000000;
        g_sleeps.clear();
        FramePacer::clock = fakeClock;
        FramePacer::sleep = fakeSleep;
    }
    void TearDown() override {
        FramePacer::clock = savedClock;
        FramePacer::sleep = savedSleep;
    }
    // `frames` frames that each take `us` of their own before the pacer is told.
    uint64_t run(FramePacer& pacer, int frames, uint64_t us) {
        uint64_t slept = 0;
        for (int i = 0; i < frames; ++i) {
            g_now += us;
            slept += pacer.frameDone();
        }
        return slept;
    }

    uint64_t (*savedClock)() = FramePacer::clock;
    void (*savedSleep)(uint64_t) = FramePacer::sleep;
};

} // namespace

TEST_F(FramePacerTest, WithoutACapNothingIsMeasuredOrSlept) {
    FramePacer pacer;
    EXPECT_EQ(pacer.cap(), 0);
    EXPECT_EQ(run(pacer, 100, 1000), 0u);
    EXPECT_FALSE(pacer.unpaced());
    EXPECT_TRUE(g_sleeps.empty());
}

TEST_F(FramePacerTest, FramesAsLongAsTheDisplaysPeriodAreLeftAlone) {
    FramePacer pacer;
    pacer.setCap(60);
    // A swap that waits for the display: 16 667 us each.
    EXPECT_EQ(run(pacer, 200, 16667), 0u);
    EXPECT_FALSE(pacer.unpaced());
}

TEST_F(FramePacerTest, FastFramesRunFreeForThirtyFramesThenComeAtTheCap) {
    FramePacer pacer;
    pacer.setCap(60);
    // The first frame only starts the count; thirty own times are seen after thirty-one frames.
    EXPECT_EQ(run(pacer, 30, 2000), 0u);
    EXPECT_FALSE(pacer.unpaced());
    // The thirty-first is held to a period after the thirtieth.
    EXPECT_EQ(run(pacer, 1, 2000), 14666u);
    EXPECT_TRUE(pacer.unpaced());
    // From then on one frame every 16 666 us.
    g_sleeps.clear();
    const uint64_t from = g_now;
    run(pacer, 60, 2000);
    EXPECT_EQ(g_sleeps.size(), 60u);
    EXPECT_EQ(g_now - from, 60u * 16666u);
    for (uint64_t s : g_sleeps) EXPECT_EQ(s, 14666u);
}

TEST_F(FramePacerTest, AFrameThatComesLateIsNotMadeUpByHurryingTheNext) {
    FramePacer pacer;
    pacer.setCap(100);
    run(pacer, 31, 1000);
    ASSERT_TRUE(pacer.unpaced());
    g_sleeps.clear();
    // One slow frame of 50 ms: no sleep after it, and the next one is held a whole period.
    g_now += 50000;
    EXPECT_EQ(pacer.frameDone(), 0u);
    g_now += 1000;
    EXPECT_EQ(pacer.frameDone(), 9000u);
}

TEST_F(FramePacerTest, FramesThatSlowDownToThePeriodStopTheSleeping) {
    FramePacer pacer;
    pacer.setCap(60);
    run(pacer, 31, 2000);
    ASSERT_TRUE(pacer.unpaced());
    // Vertical sync comes back: the swap waits, frames take the whole period on their own.
    // The median of thirty is the sixteenth shortest: fifteen slow frames carry it.
    run(pacer, 14, 16667);
    EXPECT_TRUE(pacer.unpaced());
    run(pacer, 1, 16667);
    EXPECT_FALSE(pacer.unpaced());
    g_sleeps.clear();
    EXPECT_EQ(run(pacer, 10, 16667), 0u);
}

TEST_F(FramePacerTest, ANewCapStartsTheMeasuringAgain) {
    FramePacer pacer;
    pacer.setCap(60);
    run(pacer, 31, 2000);
    ASSERT_TRUE(pacer.unpaced());
    pacer.setCap(30);
    EXPECT_EQ(pacer.cap(), 30);
    EXPECT_FALSE(pacer.unpaced());
    EXPECT_EQ(run(pacer, 30, 2000), 0u);
    pacer.setCap(0);
    EXPECT_EQ(run(pacer, 100, 2000), 0u);
    pacer.setCap(-5);
    EXPECT_EQ(pacer.cap(), 0);
}
