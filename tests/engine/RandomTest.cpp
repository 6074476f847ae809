#include "engine/Random.h"

#include <cstdlib>
#include <vector>

#include <gtest/gtest.h>

using orvel::Random;

namespace {

const int SEED = (int)0xd34db33f;
const int N = 65536;

// The tables as the C library generator fills them: int and float draws alternate per slot.
struct ExpectedTables {
    std::vector<int> ints;
    std::vector<float> floats;
    explicit ExpectedTables(int seed) : ints(N), floats(N) {
        srand(seed);
        for (int i = 0; i < N; ++i) {
            ints[i] = rand() & 0x7fffffff;
            floats[i] = (float)((double)(rand() & 0x7fffffff) / 2147483648.0);
        }
    }
};

} // namespace

TEST(Random, InitFillsBothTablesFromAlternatingCRandDraws) {
    ExpectedTables expected(SEED);
    Random r(SEED);
    EXPECT_EQ(r.intCursor, 0);
    EXPECT_EQ(r.floatCursor, 0);
    for (int i = 0; i < N; ++i) {
        ASSERT_EQ(r.intTable[i], expected.ints[i]) << i;
        ASSERT_EQ(r.floatTable[i], expected.floats[i]) << i;
    }
}

TEST(Random, FloatTableValuesLieBetweenZeroAndOne) {
    Random r(12345);
    for (int i = 0; i < N; ++i) {
        ASSERT_GE(r.floatTable[i], 0.0f);
        ASSERT_LE(r.floatTable[i], 1.0f);
    }
}

TEST(Random, RandiReturnsTableValuesInOrder) {
    ExpectedTables expected(SEED);
    Random r(SEED);
    for (int i = 0; i < 100; ++i) EXPECT_EQ(r.randi(), expected.ints[i]) << i;
    EXPECT_EQ(r.intCursor, 100);
}

TEST(Random, SecondPassYieldsThirtyOneBitComplements) {
    ExpectedTables expected(SEED);
    Random r(SEED);
    EXPECT_EQ(r.randi(), expected.ints[0]);
    for (int i = 1; i < N; ++i) r.randi();
    EXPECT_EQ(r.intCursor, 0);
    EXPECT_EQ(r.randi(), ~expected.ints[0] & 0x7fffffff);
    EXPECT_EQ(r.randi(), ~expected.ints[1] & 0x7fffffff);
}

TEST(Random, IntSequenceRepeatsAfter131072Draws) {
    Random r(SEED);
    std::vector<int> first(2 * N);
    for (int& v : first) v = r.randi();
    for (int i = 0; i < 2 * N; ++i) ASSERT_EQ(r.randi(), first[i]) << i;
}

TEST(Random, SameSeedGivesSameSequence) {
    Random a(777), b(777);
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(a.randi(), b.randi());
        ASSERT_EQ(a.randf(), b.randf());
    }
}

TEST(Random, ReseedingRestartsCursorsAndRefillsTables) {
    ExpectedTables expected(99);
    Random r(SEED);
    for (int i = 0; i < 10; ++i) r.randf();
    r.randi();
    r.init(99);
    EXPECT_EQ(r.intCursor, 0);
    EXPECT_EQ(r.floatCursor, 0);
    EXPECT_EQ(r.randi(), expected.ints[0]);
    EXPECT_EQ(r.randf(), expected.floats[0]);
}

TEST(Random, RandfAtZeroCursorsLeavesComplementInSlotZero) {
    ExpectedTables expected(SEED);
    Random r(SEED);
    EXPECT_EQ(r.randf(), expected.floats[0]);
    EXPECT_EQ(r.floatTable[0], 1.0f - expected.floats[0]);
    EXPECT_EQ(r.floatCursor, 1);
    EXPECT_EQ(r.floatTable[1], expected.floats[1]);
}

TEST(Random, RandfWritesComplementIntoSlotOfIntCursor) {
    ExpectedTables expected(SEED);
    Random r(SEED);
    r.randi();
    EXPECT_EQ(r.randf(), expected.floats[0]);
    EXPECT_EQ(r.floatTable[0], expected.floats[0]);
    EXPECT_EQ(r.floatTable[1], 1.0f - expected.floats[0]);
    // The next draw reads the slot just overwritten.
    EXPECT_EQ(r.randf(), 1.0f - expected.floats[0]);
}

TEST(Random, RandiOfEqualBoundsReturnsBoundWithoutDrawing) {
    Random r(SEED);
    EXPECT_EQ(r.randi(5, 5), 5);
    EXPECT_EQ(r.intCursor, 0);
}

TEST(Random, RandiOfNIsRemainderOfNextValue) {
    ExpectedTables expected(SEED);
    Random r(SEED);
    EXPECT_EQ(r.randi(10), expected.ints[0] % 10);
    EXPECT_EQ(r.randi(7), expected.ints[1] % 7);
}

TEST(Random, RandiOfRangeAddsRemainderToLowerBound) {
    ExpectedTables expected(SEED);
    Random r(SEED);
    EXPECT_EQ(r.randi(1000, 1200), 1000 + expected.ints[0] % 200);
    EXPECT_EQ(r.randi(-5, 5), -5 + expected.ints[1] % 10);
}

TEST(Random, RandiOfRangeStaysInHalfOpenInterval) {
    Random r(4242);
    for (int i = 0; i < 10000; ++i) {
        int v = r.randi(500, 600);
        ASSERT_GE(v, 500);
        ASSERT_LT(v, 600);
    }
}

TEST(Random, RandfOfMaxScalesNextValue) {
    ExpectedTables expected(SEED);
    Random r(SEED);
    EXPECT_EQ(r.randf(360.0f), expected.floats[0] * 360.0f);
}

TEST(Random, RandfOfRangeScalesAndOffsetsNextValue) {
    ExpectedTables expected(SEED);
    Random r(SEED);
    EXPECT_EQ(r.randf(9.0f, 12.0f), expected.floats[0] * (12.0f - 9.0f) + 9.0f);
}
