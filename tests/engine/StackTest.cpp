#include "engine/Stack.h"

#include <vector>

#include <gtest/gtest.h>

#include "tests/support/AllocationCounter.h"

using orvel::Stack;
using testing_support::allocationCount;
using testing_support::lastAllocationSize;

namespace {

// The stack's elements in order, as many as it counts.
std::vector<int> elements(const Stack<int>& s) { return std::vector<int>(s.data, s.data + s.count); }

} // namespace

TEST(Stack, NewStackHoldsCapacityPlusOneZeroedElements) {
    std::size_t before = allocationCount();
    Stack<int> s(16);
    EXPECT_EQ(allocationCount(), before + 1);
    EXPECT_EQ(lastAllocationSize(), 17 * sizeof(int));
    EXPECT_EQ(s.capacity, 16u);
    EXPECT_EQ(s.count, 0u);
    for (unsigned i = 0; i <= 16; ++i) EXPECT_EQ(s.data[i], 0) << i;
}

TEST(Stack, AcceptsCapacityPushesWithoutReallocation) {
    Stack<int> s(16);
    int* block = s.data;
    std::size_t before = allocationCount();
    for (int i = 0; i < 16; ++i) s.push(i * 3);
    EXPECT_EQ(allocationCount(), before);
    EXPECT_EQ(s.data, block);
    EXPECT_EQ(s.capacity, 16u);
    EXPECT_EQ(s.count, 16u);
}

TEST(Stack, PushIntoFullStackDoublesCapacityAndKeepsElements) {
    Stack<int> s(16);
    for (int i = 0; i < 16; ++i) s.push(i * 3);
    std::size_t before = allocationCount();
    s.push(100);
    EXPECT_EQ(allocationCount(), before + 1);
    EXPECT_EQ(lastAllocationSize(), 33 * sizeof(int));
    EXPECT_EQ(s.capacity, 32u);
    EXPECT_EQ(s.count, 17u);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(s.data[i], i * 3) << i;
    EXPECT_EQ(s.data[16], 100);
}

TEST(Stack, IndexInRangeReturnsElement) {
    Stack<int> s(4);
    s.push(7);
    s.push(8);
    EXPECT_EQ(s[0], 7);
    EXPECT_EQ(s[1], 8);
}

TEST(Stack, IndexOutOfRangeYieldsSpareElement) {
    Stack<int> s(8);
    s.push(1);
    s.push(2);
    s.push(3);
    EXPECT_EQ(&s[5], &s.data[8]);
    s[5] = 42;
    EXPECT_EQ(s.data[8], 42);
    EXPECT_EQ(s.data[0], 1);
    EXPECT_EQ(s.data[1], 2);
    EXPECT_EQ(s.data[2], 3);
    EXPECT_EQ(s.count, 3u);
    for (unsigned i = 3; i < 8; ++i) EXPECT_EQ(s.data[i], 0) << i;
}

TEST(Stack, IndexAtCountIsAlreadyOutOfRange) {
    Stack<int> s(8);
    s.push(1);
    EXPECT_EQ(&s[1], &s.data[8]);
}

TEST(Stack, ClearKeepsMemoryAndRefillAllocatesNothing) {
    Stack<float> s(4);
    for (int i = 0; i < 9; ++i) s.push(float(i));
    float* block = s.data;
    ASSERT_EQ(s.capacity, 16u);
    s.clear();
    EXPECT_EQ(s.count, 0u);
    EXPECT_TRUE(s.isEmpty());
    std::size_t before = allocationCount();
    for (int i = 0; i < 16; ++i) s.push(float(i));
    EXPECT_EQ(allocationCount(), before);
    EXPECT_EQ(s.data, block);
}

TEST(Stack, PopTakesTheLastElement) {
    Stack<int> s(4);
    s.push(1);
    s.push(2);
    EXPECT_EQ(s.pop(), 2);
    EXPECT_EQ(s.count, 1u);
    EXPECT_EQ(s.pop(), 1);
    EXPECT_EQ(s.count, 0u);
}

TEST(Stack, PopOnEmptyStackYieldsSpareElement) {
    Stack<int> s(4);
    s.data[4] = 9;
    EXPECT_EQ(&s.pop(), &s.data[4]);
    EXPECT_EQ(s.count, 0u);
}

TEST(Stack, RemoveAtMovesTheLastElementIntoTheSlot) {
    Stack<int> s(8);
    for (int v : {10, 20, 30, 40}) s.push(v);
    s.removeAt(1);
    EXPECT_EQ(elements(s), (std::vector<int>{10, 40, 30}));
}

TEST(Stack, RemoveAtTheLastSlotShortensTheStack) {
    Stack<int> s(8);
    for (int v : {10, 20, 30}) s.push(v);
    s.removeAt(2);
    EXPECT_EQ(elements(s), (std::vector<int>{10, 20}));
}

TEST(Stack, RemoveTakesOnlyTheFirstEqualElement) {
    Stack<int> s(8);
    for (int v : {5, 7, 5, 9}) s.push(v);
    EXPECT_TRUE(s.remove(5));
    EXPECT_EQ(elements(s), (std::vector<int>{9, 7, 5}));
}

TEST(Stack, RemoveOfAMissingValueChangesNothing) {
    Stack<int> s(8);
    for (int v : {1, 2, 3}) s.push(v);
    EXPECT_FALSE(s.remove(4));
    EXPECT_EQ(elements(s), (std::vector<int>{1, 2, 3}));
}
