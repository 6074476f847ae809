#include "scene/Camera2D.h"

#include <gtest/gtest.h>

TEST(Camera2D, StartsAtTheOriginUnzoomedAndUnturned) {
    Camera2D c;
    EXPECT_EQ(c.position.x, 0);
    EXPECT_EQ(c.position.y, 0);
    EXPECT_EQ(c.zoom, 1);
    EXPECT_EQ(c.rotation, 0);
}

TEST(Camera2D, TakesPositionZoomAndRotation) {
    Camera2D c(orvel::vec2(3, 4), 2, 45);
    EXPECT_EQ(c.position.x, 3);
    EXPECT_EQ(c.position.y, 4);
    EXPECT_EQ(c.zoom, 2);
    EXPECT_EQ(c.rotation, 45);
}
