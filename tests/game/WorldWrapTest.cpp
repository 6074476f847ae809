#include "game/WorldWrap.h"

#include <gtest/gtest.h>

using orvel::vec2;

TEST(WorldWrap, CopyOffsetsFollowTheAxisTable) {
    vec2 out[WorldWrap::COPIES];
    WorldWrap::copyOffsets(4096.0f, 2048.0f, out);
    const float xs[3] = {0.0f, 4096.0f, -4096.0f};
    const float ys[3] = {0.0f, 2048.0f, -2048.0f};
    for (unsigned k = 0; k < WorldWrap::COPIES; ++k) {
        EXPECT_EQ(out[k].x, xs[WorldWrap::COPY_AXES[k][0]]) << k;
        EXPECT_EQ(out[k].y, ys[WorldWrap::COPY_AXES[k][1]]) << k;
    }
}

TEST(WorldWrap, CopiesComeItselfThenSidesThenCorners) {
    vec2 out[WorldWrap::COPIES];
    WorldWrap::copyOffsets(10.0f, 20.0f, out);
    const vec2 expected[WorldWrap::COPIES] = {vec2(0, 0),   vec2(10, 0),   vec2(-10, 0),  vec2(0, 20),  vec2(0, -20),
                                              vec2(10, 20), vec2(10, -20), vec2(-10, 20), vec2(-10, -20)};
    for (unsigned k = 0; k < WorldWrap::COPIES; ++k) {
        EXPECT_EQ(out[k].x, expected[k].x) << k;
        EXPECT_EQ(out[k].y, expected[k].y) << k;
    }
}

TEST(WorldWrap, AxisShiftsAreNoneThenPlusThenMinus) {
    EXPECT_EQ(WorldWrap::AXIS_SHIFT[0], 0.0f);
    EXPECT_EQ(WorldWrap::AXIS_SHIFT[1], 1.0f);
    EXPECT_EQ(WorldWrap::AXIS_SHIFT[2], -1.0f);
}
