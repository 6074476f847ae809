#include "scene/Postprocess.h"

#include <gtest/gtest.h>

TEST(Postprocess, StartsWithItsTuningValues) {
    Postprocess p;
    EXPECT_EQ(p.factor1, 0.08f);
    EXPECT_EQ(p.factor2, 0.2f);
    EXPECT_EQ(p.factor3, 0.05f);
    EXPECT_EQ(p.factor4, 0.5f);
    EXPECT_EQ(p.scale1.x, 1.25f);
    EXPECT_EQ(p.scale1.y, 1.0f);
    EXPECT_EQ(p.scale2.x, 1.25f);
    EXPECT_EQ(p.scale2.y, 1.0f);
    EXPECT_EQ(p.mode, 1);
}

TEST(Postprocess, RenderChangesNothing) {
    Postprocess p;
    p.render();
    EXPECT_EQ(p.factor1, 0.08f);
    EXPECT_EQ(p.scale2.x, 1.25f);
    EXPECT_EQ(p.mode, 1);
}
