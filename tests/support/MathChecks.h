#pragma once
// Checks of the engine's maths types shared by tests of several layers.

#include <gtest/gtest.h>

#include "engine/Matrix.h"
#include "engine/Vector.h"

namespace testing_support {

// Each of the six elements of `m` within 1e-3 of m0..m5.
inline void expectMat2Near(const orvel::mat2& m, float m0, float m1, float m2, float m3, float m4, float m5) {
    const float expected[6] = {m0, m1, m2, m3, m4, m5};
    for (int i = 0; i < 6; ++i)
        EXPECT_NEAR(m.m[i], expected[i], 1e-3f) << "element " << i;
}

} // namespace testing_support
