// The quad batch's vertex layout: corners in drawing order with their texture corners and colour.

#include "scene/QuadBatch.h"

#include <array>

#include <gtest/gtest.h>

#include "tests/support/AllocationCounter.h"

using orvel::vec2;
using testing_support::allocationCount;

namespace {

const Color4ub COLOR = {10, 20, 30, 40};

// Position and texture coordinates of one corner: x, y, u, v.
using Corner = std::array<float, 4>;

// The batch holds exactly one quad with these corners in this order, each in COLOR.
void expectOneQuad(const QuadBatch& batch, const std::array<Corner, 4>& corners) {
    ASSERT_EQ(batch.vertices.count, 4u);
    for (unsigned i = 0; i < 4; ++i) {
        const QuadBatch::Vertex& v = batch.vertices.data[i];
        EXPECT_EQ((Corner{v.x, v.y, v.u, v.v}), corners[i]) << "corner " << i;
        EXPECT_EQ((std::array<int, 4>{v.r, v.g, v.b, v.a}), (std::array<int, 4>{10, 20, 30, 40}))
            << "corner " << i;
    }
}

} // namespace

TEST(QuadBatch, VerticesAreTwentyBytes) {
    EXPECT_EQ(sizeof(QuadBatch::Vertex), 20u);
}

TEST(QuadBatch, RectangleGoesRoundFromItsSmallestCorner) {
    QuadBatch batch(4);
    batch.pushRect(1, 2, 5, 7, 0.25f, 0.5f, 0.75f, 1.0f, COLOR);
    expectOneQuad(batch,
                  {Corner{1, 2, 0.25f, 0.5f}, {5, 2, 0.75f, 0.5f}, {5, 7, 0.75f, 1.0f}, {1, 7, 0.25f, 1.0f}});
}

TEST(QuadBatch, SquareShowsTheWholeImageAroundItsCentre) {
    QuadBatch batch(4);
    batch.pushSquare(10, 20, 3, COLOR);
    expectOneQuad(batch, {Corner{7, 17, 0, 0}, {13, 17, 1, 0}, {13, 23, 1, 1}, {7, 23, 0, 1}});
}

TEST(QuadBatch, QuadKeepsItsCornersInTheGivenOrder) {
    QuadBatch batch(4);
    batch.pushQuad(vec2(0, 0), vec2(4, 1), vec2(3, 5), vec2(-1, 4), COLOR);
    expectOneQuad(batch, {Corner{0, 0, 0, 0}, {4, 1, 1, 0}, {3, 5, 1, 1}, {-1, 4, 0, 1}});
}

TEST(QuadBatch, CountsQuadsAndClearsWithoutFreeing) {
    QuadBatch batch(2);
    batch.pushSquare(0, 0, 1, COLOR);
    batch.pushSquare(5, 5, 1, COLOR);
    EXPECT_EQ(batch.quadCount(), 2u);
    const QuadBatch::Vertex* block = batch.vertices.data;
    batch.clear();
    EXPECT_TRUE(batch.isEmpty());
    EXPECT_EQ(batch.quadCount(), 0u);
    const std::size_t before = allocationCount();
    batch.pushSquare(0, 0, 1, COLOR);
    batch.pushSquare(5, 5, 1, COLOR);
    EXPECT_EQ(allocationCount(), before);
    EXPECT_EQ(batch.vertices.data, block);
}
