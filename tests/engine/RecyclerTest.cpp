#include "engine/Recycler.h"

#include <cstddef>
#include <cstdint>

#include <gtest/gtest.h>

#include "tests/support/AllocationCounter.h"

using orvel::Recycled;
using orvel::Recycler;
using testing_support::allocationCount;

// Under AddressSanitizer freed blocks go straight back to the heap, so there is nothing to reuse.
#if defined(__SANITIZE_ADDRESS__)
#define SKIP_WITHOUT_RECYCLING() GTEST_SKIP() << "freed blocks are not kept under AddressSanitizer"
#else
#define SKIP_WITHOUT_RECYCLING() (void)0
#endif

// Each test uses sizes of its own, so blocks left waiting by another test never interfere.

TEST(Recycler, FreedBlockIsHandedOutAgainForAnySizeOfItsClass) {
    SKIP_WITHOUT_RECYCLING();
    void* block = Recycler::take(1000);
    Recycler::give(block);
    const std::size_t before = allocationCount();
    // 993 to 1008 bytes share one class of 16-byte steps.
    EXPECT_EQ(Recycler::take(993), block);
    EXPECT_EQ(allocationCount(), before);
    Recycler::give(block);
}

TEST(Recycler, AnotherSizeClassGetsAnotherBlock) {
    SKIP_WITHOUT_RECYCLING();
    void* block = Recycler::take(968);
    Recycler::give(block);
    const std::size_t before = allocationCount();
    void* other = Recycler::take(980);
    EXPECT_NE(other, block);
    EXPECT_EQ(allocationCount(), before + 1);
    Recycler::give(other);
}

TEST(Recycler, BlocksAboveTheLargestClassGoBackToTheHeap) {
    void* block = Recycler::take(1025);
    const std::size_t waiting = Recycler::waitingBytes();
    Recycler::give(block);
    EXPECT_EQ(Recycler::waitingBytes(), waiting);
    const std::size_t before = allocationCount();
    Recycler::give(Recycler::take(1025));
    EXPECT_EQ(allocationCount(), before + 1);
}

TEST(Recycler, ReserveTopsUpTheListToTheCount) {
    SKIP_WITHOUT_RECYCLING();
    const std::size_t waiting = Recycler::waitingBytes();
    const std::size_t before = allocationCount();
    // 945 bytes fall in the class of 960-byte blocks.
    Recycler::reserve(945, 3);
    EXPECT_EQ(allocationCount(), before + 3);
    EXPECT_EQ(Recycler::waitingBytes(), waiting + 3 * 960);
    Recycler::reserve(945, 2);
    Recycler::reserve(950, 3);
    EXPECT_EQ(allocationCount(), before + 3);

    void* blocks[4];
    for (int i = 0; i < 3; ++i) blocks[i] = Recycler::take(945);
    EXPECT_EQ(allocationCount(), before + 3);
    EXPECT_EQ(Recycler::waitingBytes(), waiting);
    blocks[3] = Recycler::take(945);
    EXPECT_EQ(allocationCount(), before + 4);
    for (void* b : blocks) Recycler::give(b);
}

TEST(Recycler, ReserveOfALargeOrEmptySizeDoesNothing) {
    const std::size_t waiting = Recycler::waitingBytes();
    const std::size_t before = allocationCount();
    Recycler::reserve(4096, 5);
    Recycler::reserve(0, 5);
    EXPECT_EQ(allocationCount(), before);
    EXPECT_EQ(Recycler::waitingBytes(), waiting);
}

TEST(Recycler, BlocksAreAlignedForAnyType) {
    for (std::size_t size : {1u, 8u, 24u, 100u, 1024u, 5000u}) {
        void* block = Recycler::take(size);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0u) << size;
        Recycler::give(block);
    }
}

TEST(Recycler, GivingNullDoesNothing) {
    const std::size_t waiting = Recycler::waitingBytes();
    Recycler::give(nullptr);
    EXPECT_EQ(Recycler::waitingBytes(), waiting);
}

namespace {

struct Popup : Recycled {
    char text[900];
    virtual ~Popup() = default;
};

struct BigPopup : Popup {
    char more[24];
};

} // namespace

TEST(Recycler, RecycledObjectsOfADerivedClassReuseTheirOwnSize) {
    SKIP_WITHOUT_RECYCLING();
    Popup* small = new Popup();
    Popup* big = new BigPopup();
    void* smallBlock = small;
    void* bigBlock = big;
    delete small;
    delete big;
    const std::size_t before = allocationCount();
    Popup* again = new BigPopup();
    EXPECT_EQ(static_cast<void*>(again), bigBlock);
    Popup* smallAgain = new Popup();
    EXPECT_EQ(static_cast<void*>(smallAgain), smallBlock);
    EXPECT_EQ(allocationCount(), before);
    delete again;
    delete smallAgain;
}
