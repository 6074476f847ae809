// The replay file: written and read back exactly, small, built without allocating frame by
// frame, and every damaged, cut, foreign or newer file refused with its reason before anything
// of it is used.

#include "game/replay/ReplayFormat.h"

#include <cmath>
#include <initializer_list>
#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/AllocationCounter.h"

using namespace replay;

namespace {

Header someHeader() {
    Header h;
    h.gameVersion = "1.4.0";
    h.seed = 0xdeadbeef;
    h.screenWidth = 1280;
    h.screenHeight = 720;
    h.screenShake = false;
    h.softFlashes = true;
    return h;
}

// Frame i of a lively game: steps of 16 and 17 ms, one long step, the sync off the step now and
// then, keys and buttons changing, the pointer circling and at the screen's far corners, and a
// hash every 60 frames.
Frame lively(size_t i) {
    static uint32_t time = 0;
    if (i == 0) time = 5000;
    Frame f;
    const uint32_t step = i == 700 ? 2500 : (i % 3 == 0 ? 17 : 16);
    time += step;
    f.time = time;
    f.sync = i % 50 == 7 ? 33 : step;
    f.keys = (uint8_t)((i / 40) % 16);
    f.buttons = (uint8_t)(((i / 90) % 2) << 1 | ((i / 130) % 2) << 3);
    f.mouseX = (int16_t)(640 + std::lround(300 * std::cos((double)i / 30)));
    f.mouseY = (int16_t)(360 + std::lround(300 * std::sin((double)i / 30)));
    if (i == 1500) f.mouseX = -32768, f.mouseY = 32767;
    if (i % 60 == 59) {
        f.hasHash = true;
        f.hash = 0x9e3779b97f4a7c15ull * (i + 1);
    }
    return f;
}

std::vector<uint8_t> livelyFile(size_t frames, std::vector<Frame>* written = nullptr) {
    Writer w;
    w.begin(someHeader());
    for (size_t i = 0; i < frames; ++i) {
        const Frame f = lively(i);
        if (written) written->push_back(f);
        w.add(f);
    }
    w.finish(Result{123456789012ll, 17, -1});
    return w.bytes();
}

std::string errorOf(const std::vector<uint8_t>& bytes) {
    Replay r;
    std::string error;
    if (read(bytes.data(), bytes.size(), r, error)) return "";
    EXPECT_TRUE(r.frames.empty());
    return error;
}

// The tags of the file's chunks, in order, read by their framing alone.
std::string chunkTags(const std::vector<uint8_t>& bytes) {
    std::string tags;
    size_t p = 4;
    while (p < bytes.size()) {
        tags += (char)bytes[p++];
        size_t length = 0;
        for (int shift = 0;; shift += 7) {
            const uint8_t b = bytes[p++];
            length |= (size_t)(b & 0x7f) << shift;
            if (!(b & 0x80)) break;
        }
        p += length + 4;
    }
    return tags;
}

} // namespace

TEST(ReplayFormat, Crc32IsZipsCrc) {
    const char* check = "123456789";
    EXPECT_EQ(crc32((const uint8_t*)check, 9), 0xCBF43926u);
    EXPECT_EQ(crc32(nullptr, 0), 0u);
    // Continued over two parts, it is the CRC of the whole.
    EXPECT_EQ(crc32((const uint8_t*)check + 4, 5, crc32((const uint8_t*)check, 4)), 0xCBF43926u);
}

TEST(ReplayFormat, AFileReadsBackExactlyAsItWasWritten) {
    std::vector<Frame> written;
    const std::vector<uint8_t> bytes = livelyFile(3000, &written);
    Replay r;
    std::string error;
    ASSERT_TRUE(read(bytes.data(), bytes.size(), r, error)) << error;
    EXPECT_EQ(r.header.format, FORMAT);
    EXPECT_EQ(r.header.gameVersion, "1.4.0");
    EXPECT_EQ(r.header.seed, 0xdeadbeefu);
    EXPECT_EQ(r.header.screenWidth, 1280);
    EXPECT_EQ(r.header.screenHeight, 720);
    EXPECT_FALSE(r.header.screenShake);
    EXPECT_TRUE(r.header.softFlashes);
    ASSERT_EQ(r.frames.size(), 3000u);
    for (size_t i = 0; i < written.size(); ++i) ASSERT_TRUE(r.frames[i] == written[i]) << "frame " << i;
    EXPECT_EQ(r.frames[1500].mouseX, -32768);
    EXPECT_EQ(r.frames[1500].mouseY, 32767);
    EXPECT_EQ(r.result.score, 123456789012ll);
    EXPECT_EQ(r.result.wave, 17);
    EXPECT_EQ(r.result.lives, -1);
}

TEST(ReplayFormat, FramesComeInChunksOf1024BetweenTheHeaderAndTheEnd) {
    EXPECT_EQ(chunkTags(livelyFile(2049)), "HFFFE");
    EXPECT_EQ(chunkTags(livelyFile(1024)), "HFE");
    EXPECT_EQ(chunkTags(livelyFile(0)), "HE");
    Replay r;
    std::string error;
    const std::vector<uint8_t> empty = livelyFile(0);
    ASSERT_TRUE(read(empty.data(), empty.size(), r, error)) << error;
    EXPECT_TRUE(r.frames.empty());
}

namespace {

// A file of two frames and then `steady` frames each 16 ms after the one before, with the
// same input.
size_t steadyFileSize(int steady) {
    Writer w;
    w.begin(someHeader());
    Frame f;
    f.time = 1000;
    f.sync = 16;
    w.add(f);
    for (int i = 0; i <= steady; ++i) {
        f.time += 16;
        w.add(f);
    }
    w.finish(Result{});
    return w.bytes().size();
}

} // namespace

TEST(ReplayFormat, AFrameLikeTheOneBeforeTakesOneByte) {
    // Every length and count in both files still fits in one byte.
    EXPECT_EQ(steadyFileSize(100) - steadyFileSize(0), 100u);
}

TEST(ReplayFormat, TenMinutesOfBusyPlayTakeUnder200KB) {
    // 36,000 frames at 60 a second, the pointer moving in every one of them.
    const std::vector<uint8_t> bytes = livelyFile(36000);
    EXPECT_LT(bytes.size(), 200000u) << bytes.size();
}

TEST(ReplayFormat, TheWriterAllocatesInStepsNotFrameByFrame) {
    Writer w;
    w.begin(someHeader());
    w.add(lively(0));
    size_t framesThatAllocated = 0;
    for (size_t i = 1; i < 36000; ++i) {
        const Frame f = lively(i);
        const size_t before = testing_support::allocationCount();
        w.add(f);
        if (testing_support::allocationCount() != before) ++framesThatAllocated;
    }
    EXPECT_LE(framesThatAllocated, 36u);
}

TEST(ReplayFormat, EveryCutIsRefusedAsCutShort) {
    const std::vector<uint8_t> bytes = livelyFile(1100);
    for (size_t n = 0; n < bytes.size(); ++n) {
        const std::vector<uint8_t> cut(bytes.begin(), bytes.begin() + (long)n);
        ASSERT_EQ(errorOf(cut), n < 4 ? "not a Nightvector replay" : "cut short") << "after " << n << " bytes";
    }
}

TEST(ReplayFormat, EveryChangedByteIsRefused) {
    const std::vector<uint8_t> bytes = livelyFile(1100);
    for (size_t i = 0; i < bytes.size(); ++i)
        for (uint8_t flip : {0x01, 0x80}) {
            std::vector<uint8_t> changed = bytes;
            changed[i] ^= flip;
            ASSERT_NE(errorOf(changed), "") << "byte " << i << " flipped by " << (int)flip;
        }
}

TEST(ReplayFormat, AnotherFormatIsNamedAsSuch) {
    Header h = someHeader();
    h.format = 2;
    Writer w;
    w.begin(h);
    w.add(lively(0));
    w.finish(Result{});
    EXPECT_EQ(errorOf(w.bytes()), "made in replay format 2, and this game reads format 1");
}

TEST(ReplayFormat, ForeignAndEmptyFilesAreNotReplays) {
    EXPECT_EQ(errorOf({}), "not a Nightvector replay");
    const std::vector<uint8_t> png = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    EXPECT_EQ(errorOf(png), "not a Nightvector replay");
    const std::string text = "nightvector scores 1\n";
    EXPECT_EQ(errorOf(std::vector<uint8_t>(text.begin(), text.end())), "not a Nightvector replay");
}

TEST(ReplayFormat, ALengthNoChunkCanHaveIsDamageAndNothingIsAllocatedForIt) {
    // "NVRP", a header tag and a length of 2 MiB - 1 with a few bytes after it.
    std::vector<uint8_t> bytes = {'N', 'V', 'R', 'P', 'H', 0xff, 0xff, 0x7f, 1, 2, 3, 4, 5, 6, 7, 8};
    const size_t before = testing_support::allocationCount();
    EXPECT_EQ(errorOf(bytes), "damaged (its header does not check)");
    EXPECT_LE(testing_support::allocationCount() - before, 2u);
    // A length that runs on in continuation bytes.
    bytes = {'N', 'V', 'R', 'P', 'H', 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x01};
    EXPECT_EQ(errorOf(bytes), "damaged (its header does not check)");
}

TEST(ReplayFormat, BytesAfterTheEndAreDamage) {
    std::vector<uint8_t> bytes = livelyFile(10);
    bytes.push_back(0);
    EXPECT_EQ(errorOf(bytes), "damaged (its end does not match its frames)");
}

TEST(ReplayFormat, AFileLargerThanAnyReplayIsRefusedUnread) {
    std::vector<uint8_t> bytes = livelyFile(10);
    bytes.resize(MAX_FILE_BYTES + 1);
    EXPECT_EQ(errorOf(bytes), "too large to be a replay");
}

TEST(ReplayFormat, TenThousandMutatedFilesAreReadOrRefusedWithAReason) {
    const std::vector<uint8_t> whole = livelyFile(1500);
    std::mt19937 rng(20261125);
    int refused = 0;
    for (int n = 0; n < 10000; ++n) {
        std::vector<uint8_t> bytes = whole;
        const int edits = 1 + (int)(rng() % 4);
        for (int e = 0; e < edits && !bytes.empty(); ++e) {
            const size_t at = rng() % bytes.size();
            switch (rng() % 5) {
            case 0: // a bit flipped
                bytes[at] ^= (uint8_t)(1u << (rng() % 8));
                break;
            case 1: // a byte replaced
                bytes[at] = (uint8_t)rng();
                break;
            case 2: // cut there
                bytes.resize(at);
                break;
            case 3: // a byte put in
                bytes.insert(bytes.begin() + (long)at, (uint8_t)rng());
                break;
            default: // a run of bytes taken out
                bytes.erase(bytes.begin() + (long)at, bytes.begin() + (long)std::min(bytes.size(), at + 1 + rng() % 64));
                break;
            }
        }
        replay::Replay r;
        std::string error;
        if (read(bytes.data(), bytes.size(), r, error)) {
            // Only a file that is whole again can read: the same frames.
            ASSERT_EQ(r.frames.size(), 1500u) << "mutation " << n;
        } else {
            ASSERT_FALSE(error.empty()) << "mutation " << n;
            ASSERT_TRUE(r.frames.empty()) << "mutation " << n;
            ++refused;
        }
    }
    EXPECT_GE(refused, 9990);
}

TEST(ReplayFormat, ATimeStepNoGameTakesIsRefused) {
    const auto withFrames = [](std::initializer_list<Frame> frames) {
        Writer w;
        w.begin(someHeader());
        for (const Frame& f : frames) w.add(f);
        w.finish(Result{});
        return errorOf(w.bytes());
    };
    Frame a, b;
    a.time = 4000000000u;
    a.sync = 16;
    b = a;
    b.time = a.time + MAX_STEP_MS;
    b.sync = MAX_STEP_MS;
    // An hour is the most: a suspended machine's step, kept.
    EXPECT_EQ(withFrames({a, b}), "");
    b.time = a.time + MAX_STEP_MS + 1;
    EXPECT_EQ(withFrames({a, b}), "damaged (a time step of more than an hour)");
    b.time = a.time + 16;
    b.sync = MAX_STEP_MS + 1;
    EXPECT_EQ(withFrames({a, b}), "damaged (a time step of more than an hour)");
    // Backwards.
    b.sync = 16;
    b.time = a.time - 1;
    EXPECT_EQ(withFrames({a, b}), "damaged (a time step of more than an hour)");
    // Across the clock's wrap it is one step forwards.
    a.time = 0xFFFFFFF0u;
    b.time = 0x10u;
    EXPECT_EQ(withFrames({a, b}), "");
}

TEST(ReplayFormat, AWholeReplayWrittenAtOnceIsTheFileItWasReadFrom) {
    const std::vector<uint8_t> file = livelyFile(2500);
    Replay r;
    std::string error;
    ASSERT_TRUE(read(file.data(), file.size(), r, error)) << error;
    EXPECT_EQ(write(r), file);
}
