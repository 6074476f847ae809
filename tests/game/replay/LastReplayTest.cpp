// The last game kept as last.nvr in the player's data home: written once when the game is over
// or left, read back whole, replaced by the next game, and a file that cannot be written is
// reported in one line while the game goes on.

#include "game/replay/LastReplay.h"

#include <string>

#include <unistd.h>

#include "engine/SafeFile.h"
#include "tests/support/FileChecks.h"
#include "tests/support/GameSession.h"
#include "tests/support/PlayerHome.h"

using namespace testing_support;
using orvel::Orvel;

namespace {

class LastReplayTest : public SessionTest {
protected:
    void SetUp() override {
        SessionTest::SetUp();
        g_game->init();
    }

    // `n` more updates 16 ms apart, from START on, steering right.
    void play(LastReplay& last, int n) {
        for (int i = 0; i < n; ++i) {
            setInput(0, 700, 300, SDLK_d);
            Orvel::setFrameTime(time, time + 16);
            time += 16;
            last.beforeUpdate();
            g_game->update();
            last.afterUpdate(*g_game);
        }
    }

    static replay::Replay readBack(const std::string& path) {
        const std::string bytes = fileContents(path);
        replay::Replay r;
        std::string error;
        EXPECT_TRUE(replay::read((const uint8_t*)bytes.data(), bytes.size(), r, error)) << error;
        return r;
    }

    PlayerHome home;
    uint32_t time = START; // the clock of the last update played
};

} // namespace

TEST_F(LastReplayTest, TheFileLivesInTheDataHome) {
    EXPECT_EQ(LastReplay::defaultPath(), home.dataHome() + "/nightvector/replays/last.nvr");
}

TEST_F(LastReplayTest, AGameLeftIsSavedOnceAndReadsBack) {
    LastReplay last(LastReplay::defaultPath());
    last.begin(77);
    play(last, 100);
    EXPECT_EQ(fileContents(last.filePath()), "");
    last.save(*g_game);
    EXPECT_FALSE(last.recording());
    replay::Replay r = readBack(last.filePath());
    EXPECT_EQ(r.header.seed, 77u);
    ASSERT_EQ(r.frames.size(), 100u);
    EXPECT_EQ(r.frames[0].keys, replay::KEY_D);
    EXPECT_EQ(r.frames[99].time, START + 1600);
    EXPECT_EQ(r.result.lives, 3);
    // Saving again before the next game changes nothing.
    const std::string first = fileContents(last.filePath());
    play(last, 10);
    last.save(*g_game);
    EXPECT_EQ(fileContents(last.filePath()), first);
}

TEST_F(LastReplayTest, TheGameOverEndsTheRecordingAndSavesIt) {
    LastReplay last(LastReplay::defaultPath());
    last.begin(5);
    play(last, 30);
    g_game->running = false;
    play(last, 1);
    EXPECT_FALSE(last.recording());
    EXPECT_EQ(readBack(last.filePath()).frames.size(), 31u);
}

TEST_F(LastReplayTest, TheNextGameReplacesTheLastOnesFile) {
    LastReplay last(LastReplay::defaultPath());
    last.begin(1);
    play(last, 40);
    last.save(*g_game);
    last.begin(2);
    play(last, 20);
    last.save(*g_game);
    const replay::Replay r = readBack(last.filePath());
    EXPECT_EQ(r.header.seed, 2u);
    EXPECT_EQ(r.frames.size(), 20u);
}

TEST_F(LastReplayTest, AFullDiskIsReportedInOneLineAndKeepsTheLastFile) {
    LastReplay last(LastReplay::defaultPath());
    last.begin(3);
    play(last, 10);
    last.save(*g_game);
    const std::string kept = fileContents(last.filePath());
    last.begin(4);
    play(last, 10);
    orvel::SafeFile::writeCall = writeHalfThenDiskFull;
    testing::internal::CaptureStderr();
    last.save(*g_game);
    const std::string said = testing::internal::GetCapturedStderr();
    orvel::SafeFile::writeCall = ::write;
    EXPECT_EQ(said, "Could not keep the replay " + last.filePath() + ": No space left on device\n");
    EXPECT_EQ(fileContents(last.filePath()), kept);
    EXPECT_EQ(directoryListing(home.dataHome() + "/nightvector/replays"), "last.nvr ");
}

TEST_F(LastReplayTest, WithoutAHomeTheGameIsRecordedButNotSaved) {
    LastReplay last("");
    last.begin(9);
    play(last, 5);
    testing::internal::CaptureStderr();
    last.save(*g_game);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(last.recorderInUse().file().frameCount(), 5u);
}
