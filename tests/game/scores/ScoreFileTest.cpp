// The scores file as the player's data: created on the first entry, read back, never lost. Real
// faults: damaged and foreign files, a directory the player cannot write, a disk that fills up
// half-way, a writer killed at random moments, and two games saving at once.

#include "game/scores/ScoreFile.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <functional>
#include <random>
#include <string>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "engine/SafeFile.h"
#include "tests/game/scores/ScoreEntries.h"
#include "tests/support/FileChecks.h"
#include "tests/support/PlayerHome.h"
#include "tests/support/Processes.h"

using orvel::SafeFile;

namespace {

ScoreEntry entry(const std::string& name, uint32_t score, uint32_t wave = 3, int64_t when = 1764000000) {
    return testing_support::scoreEntry(name, score, wave, when);
}

class ScoreFileTest : public ::testing::Test {
protected:
    testing_support::PlayerHome home;
    std::string dir = home.dataHome() + "/nightvector";
    std::string path = dir + "/scores";

    void TearDown() override { SafeFile::writeCall = ::write; }

    static std::string contents(const std::string& file) { return testing_support::fileContents(file); }
    void put(const std::string& bytes) {
        std::string error;
        ASSERT_TRUE(SafeFile::makeDirectories(dir, error));
        testing_support::writeFileContents(path, bytes);
    }
    // Names in the scores directory but the lock file.
    std::string listing() const { return testing_support::directoryListing(dir, "scores.lock"); }
    // Runs `write` in two processes at once, writer 0 and writer 1, each with a file of its own
    // for the same path, and waits for both to end well.
    void twoWritersAtOnce(const std::function<void(ScoreFile&, uint32_t)>& write) {
        pid_t writers[2];
        for (uint32_t w = 0; w < 2; ++w) {
            writers[w] = fork();
            if (writers[w] == 0) {
                ScoreFile file(path);
                write(file, w);
                _exit(0);
            }
            ASSERT_GT(writers[w], 0);
        }
        for (pid_t writer : writers) {
            int status = -1;
            waitpid(writer, &status, 0);
            EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        }
    }
    // Ten entries named after `prefix`, scored 1000 to 10 000.
    static ScoreTable fullTable(const std::string& prefix) {
        ScoreTable table;
        for (uint32_t i = 1; i <= 10; ++i) table.add(entry(prefix + std::to_string(i), i * 1000));
        return table;
    }
};

} // namespace

TEST_F(ScoreFileTest, TheFileLivesInTheDataHome) { EXPECT_EQ(ScoreFile::defaultPath(), path); }

TEST_F(ScoreFileTest, NoFileIsAnEmptyTableAndNothingIsSaid) {
    testing::internal::CaptureStderr();
    EXPECT_TRUE(ScoreFile(path).load().entries().empty());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(listing(), "");
}

TEST_F(ScoreFileTest, TheFirstEntryCreatesTheDirectoryAndTheFile) {
    int rank = -2;
    const ScoreTable table = ScoreFile(path).record(entry("Ada", 4200, 5, 1764000123), rank);
    EXPECT_EQ(rank, 0);
    EXPECT_EQ(table.entries().size(), 1u);
    EXPECT_EQ(contents(path), "nightvector scores 2\n4200\t5\t1764000123\t-\tAda\n");
    EXPECT_EQ(listing(), "scores ");
}

TEST_F(ScoreFileTest, EachGameIsAddedToWhatTheFileHolds) {
    int rank = 0;
    ScoreFile(path).record(entry("one", 300), rank);
    ScoreFile(path).record(entry("two", 500), rank);
    EXPECT_EQ(rank, 0);
    ScoreFile(path).record(entry("three", 300), rank);
    EXPECT_EQ(rank, 2);
    EXPECT_EQ(contents(path), "nightvector scores 2\n"
                              "500\t3\t1764000000\t-\ttwo\n"
                              "300\t3\t1764000000\t-\tone\n"
                              "300\t3\t1764000000\t-\tthree\n");
}

TEST_F(ScoreFileTest, AGameBelowAFullTableLeavesTheFileUntouched) {
    put(fullTable("p").format());
    struct stat before {};
    stat(path.c_str(), &before);
    int rank = 0;
    const ScoreTable table = ScoreFile(path).record(entry("low", 1000), rank);
    EXPECT_EQ(rank, -1);
    EXPECT_EQ(table.entries().back().name, "p1");
    struct stat after {};
    stat(path.c_str(), &after);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(contents(path), fullTable("p").format());
}

TEST_F(ScoreFileTest, RenameChangesTheRecordedEntryInWhatTheFileHoldsNow) {
    int rank = 0;
    const ScoreEntry mine = entry("alice", 400, 2, 1764000400);
    ScoreFile(path).record(mine, rank);
    // Another game ends meanwhile, from another window.
    ScoreFile(path).record(entry("other", 900), rank);
    const ScoreTable table = ScoreFile(path).rename(mine, "Ace", rank);
    EXPECT_EQ(rank, 1);
    EXPECT_EQ(table.entries()[1].name, "Ace");
    EXPECT_EQ(contents(path), "nightvector scores 2\n"
                              "900\t3\t1764000000\t-\tother\n"
                              "400\t2\t1764000400\t-\tAce\n");
}

TEST_F(ScoreFileTest, RenameOfAnEntryNoLongerHeldLeavesTheFileUntouched) {
    put(fullTable("p").format());
    struct stat before {};
    stat(path.c_str(), &before);
    int rank = 0;
    ScoreFile(path).rename(entry("gone", 5000), "Ace", rank);
    EXPECT_EQ(rank, -1);
    struct stat after {};
    stat(path.c_str(), &after);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(contents(path), fullTable("p").format());
}

TEST_F(ScoreFileTest, ADamagedFileKeepsWhatReadsSaysSoOnceAndGoesAsideBeforeTheFirstWrite) {
    const std::string original = "nightvector scores 1\n700\t2\t5\tkept\n\x01\x02junk\n300\t1\t5\talso kept\n";
    put(original);
    ScoreFile file(path);
    testing::internal::CaptureStderr();
    EXPECT_EQ(file.load().entries().size(), 2u);
    int rank = 0;
    const ScoreTable table = file.record(entry("new", 500), rank);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Scores file " + path + " has 1 damaged line: kept 2 entries; the next score saved moves it to " +
                  path + ".bad\n");
    EXPECT_EQ(rank, 1);
    EXPECT_EQ(contents(path + ".bad"), original);
    EXPECT_EQ(contents(path), "nightvector scores 2\n"
                              "700\t2\t5\t-\tkept\n"
                              "500\t3\t1764000000\t-\tnew\n"
                              "300\t1\t5\t-\talso kept\n");
    EXPECT_EQ(table.format(), contents(path));
}

TEST_F(ScoreFileTest, BinaryJunkIsAForeignFileWithNothingToKeep) {
    std::mt19937 rng(7);
    std::string junk;
    for (int i = 0; i < 10000; ++i) junk += (char)(rng() & 0xff);
    put(junk);
    testing::internal::CaptureStderr();
    int rank = 0;
    ScoreFile(path).record(entry("after", 10), rank);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Scores file " + path + " is not a scores file of this version: kept 0 entries; the next score saved "
              "moves it to " + path + ".bad\n");
    EXPECT_EQ(contents(path + ".bad"), junk);
    EXPECT_EQ(contents(path), "nightvector scores 2\n10\t3\t1764000000\t-\tafter\n");
}

TEST_F(ScoreFileTest, AHugeFileIsReadOnlyToItsFirst64KiB) {
    // A megabyte of entries; the best ones come last, beyond what is read.
    std::string text = "nightvector scores 1\n";
    while (text.size() < 1024 * 1024) text += "100\t1\t1\tearly\n";
    text += "999999\t1\t1\tlate\n";
    put(text);
    testing::internal::CaptureStderr();
    const ScoreTable table = ScoreFile(path).load();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Scores file " + path + " is longer than 64 KiB: kept 10 entries; the next score saved moves it to " +
                  path + ".bad\n");
    ASSERT_EQ(table.entries().size(), 10u);
    EXPECT_EQ(table.entries().front().name, "early");
}

TEST_F(ScoreFileTest, ADirectoryInThePlaceOfTheFileIsMovedAside) {
    std::string error;
    ASSERT_TRUE(SafeFile::makeDirectories(path, error));
    testing::internal::CaptureStderr();
    int rank = 0;
    ScoreFile(path).record(entry("here", 50), rank);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Scores file " + path + " cannot be read (Is a directory): kept 0 entries; the next score saved moves "
              "it to " + path + ".bad\n");
    struct stat info {};
    ASSERT_EQ(stat((path + ".bad").c_str(), &info), 0);
    EXPECT_TRUE(S_ISDIR(info.st_mode));
    EXPECT_EQ(contents(path), "nightvector scores 2\n50\t3\t1764000000\t-\there\n");
}

TEST_F(ScoreFileTest, ALoopOfLinksIsMovedAsideWithoutAHang) {
    std::string error;
    ASSERT_TRUE(SafeFile::makeDirectories(dir, error));
    symlink((dir + "/other").c_str(), path.c_str());
    symlink(path.c_str(), (dir + "/other").c_str());
    testing::internal::CaptureStderr();
    int rank = 0;
    ScoreFile(path).record(entry("looped", 50), rank);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Scores file " + path + " cannot be read (Too many levels of symbolic links): kept 0 entries; the next "
              "score saved moves it to " + path + ".bad\n");
    EXPECT_EQ(contents(path), "nightvector scores 2\n50\t3\t1764000000\t-\tlooped\n");
}

TEST_F(ScoreFileTest, InADirectoryThePlayerCannotWriteTheTableStillHoldsTheGameAndOneLineSaysWhy) {
    put(fullTable("p").format());
    chmod(home.home().c_str(), 0755);
    chmod(home.dataHome().c_str(), 0755);
    chmod(path.c_str(), 0644);
    chmod(dir.c_str(), 0555);
    // Made here and open to all, so that the child can write what it says into it.
    const std::string errors = home.home() + "/errors.txt";
    testing_support::writeFileContents(errors, "");
    chmod(errors.c_str(), 0666);
    const int result = processes::runUnprivileged([&] {
        if (!freopen(errors.c_str(), "w", stderr)) return 9;
        int rank = -2;
        const ScoreTable table = ScoreFile(path).record(entry("best", 99999), rank);
        fflush(stderr);
        return rank == 0 && table.entries().front().name == "best" ? 0 : 1;
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(contents(errors), "Could not save the scores to " + path + ": Permission denied\n");
    EXPECT_EQ(contents(path), fullTable("p").format());
}

TEST_F(ScoreFileTest, ADiskThatFillsUpHalfWayKeepsTheOldTable) {
    put(fullTable("p").format());
    SafeFile::writeCall = testing_support::writeHalfThenDiskFull;
    testing::internal::CaptureStderr();
    int rank = 0;
    const ScoreTable table = ScoreFile(path).record(entry("best", 99999), rank);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Could not save the scores to " + path + ": No space left on device\n");
    EXPECT_EQ(rank, 0);
    EXPECT_EQ(table.entries().front().name, "best");
    EXPECT_EQ(contents(path), fullTable("p").format());
    EXPECT_EQ(listing(), "scores ");
}

TEST_F(ScoreFileTest, AWriterKilledAtFiveHundredRandomMomentsLeavesTheOldTableOrTheNew) {
    const std::string a = fullTable("a").format(), b = fullTable("b").format();
    put(a);
    std::mt19937 rng(4242);
    int sawA = 0, sawB = 0;
    for (int kill = 0; kill < 500; ++kill) {
        const pid_t writer = fork();
        if (writer == 0) {
            std::string error;
            for (;;) {
                SafeFile::replace(path, b, error);
                SafeFile::replace(path, a, error);
            }
        }
        ASSERT_GT(writer, 0);
        usleep(rng() % 4000);
        ::kill(writer, SIGKILL);
        waitpid(writer, nullptr, 0);
        const std::string now = contents(path);
        ASSERT_TRUE(now == a || now == b) << "after kill " << kill << ":\n" << now;
        sawA += now == a;
        sawB += now == b;
    }
    // The kills fell both ways, so both tables were being written over each other.
    EXPECT_GT(sawA, 0);
    EXPECT_GT(sawB, 0);
    ScoreTable::Reading reading;
    ScoreTable::parse(contents(path), reading);
    EXPECT_FALSE(reading.damaged());
    // The next write clears any name a killed writer left behind.
    std::string error;
    ASSERT_TRUE(SafeFile::replace(path, a, error));
    EXPECT_EQ(listing(), "scores ");
}

TEST_F(ScoreFileTest, TwoGamesSavingTwoHundredEntriesEachAtOnceKeepTheTopTenOfAllFourHundred) {
    twoWritersAtOnce([&](ScoreFile& file, uint32_t w) {
        for (uint32_t i = 0; i < 200; ++i) {
            int rank = 0;
            // Writer 0 saves the odd scores 1 to 399, writer 1 the even ones 2 to 400.
            file.record(entry("w" + std::to_string(w) + "-" + std::to_string(i), 2 * i + 1 + w), rank);
        }
    });
    testing::internal::CaptureStderr();
    const ScoreTable table = ScoreFile(path).load();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    ASSERT_EQ(table.entries().size(), 10u);
    for (uint32_t k = 0; k < 10; ++k) {
        const uint32_t score = 400 - k;
        EXPECT_EQ(table.entries()[k].score, score);
        const int w = (int)((score - 1) % 2);
        EXPECT_EQ(table.entries()[k].name, "w" + std::to_string(w) + "-" + std::to_string((score - 1 - w) / 2));
    }
}

namespace {

// A recording's stand-in: bytes that tell whose game it was.
std::vector<uint8_t> recording(const std::string& whose) { return std::vector<uint8_t>(whose.begin(), whose.end()); }

// Fails every write after the first `allowed` ones.
int writesAllowed = 0;
ssize_t writeSomeThenFail(int fd, const void* data, size_t size) {
    if (writesAllowed-- > 0) return ::write(fd, data, size);
    errno = EIO;
    return -1;
}

} // namespace

TEST_F(ScoreFileTest, AGameThatMakesTheTableKeepsItsReplayBesideTheScores) {
    int rank = -2;
    ScoreFile file(path);
    const ScoreTable table = file.record(entry("Ada", 4200, 5, 1764000123), recording("Ada's game"), rank);
    EXPECT_EQ(rank, 0);
    EXPECT_EQ(file.replaysDirectory(), dir + "/replays");
    EXPECT_EQ(table.entries()[0].replay, "best-1764000123-4200.nvr");
    EXPECT_EQ(contents(path), "nightvector scores 2\n4200\t5\t1764000123\tbest-1764000123-4200.nvr\tAda\n");
    EXPECT_EQ(contents(dir + "/replays/best-1764000123-4200.nvr"), "Ada's game");
    EXPECT_EQ(listing(), "replays scores ");
}

TEST_F(ScoreFileTest, AGameBelowAFullTableKeepsNoReplay) {
    put(fullTable("p").format());
    int rank = 0;
    ScoreFile(path).record(entry("low", 1000), recording("low"), rank);
    EXPECT_EQ(rank, -1);
    EXPECT_EQ(listing(), "scores ");
}

TEST_F(ScoreFileTest, AnEntryThatFallsOutOfTheTableTakesItsReplayWithIt) {
    ScoreFile file(path);
    int rank = 0;
    for (uint32_t i = 1; i <= 10; ++i) file.record(entry("p" + std::to_string(i), i * 1000), recording("p"), rank);
    EXPECT_EQ(testing_support::directoryListing(dir + "/replays"),
              "best-1764000000-1000.nvr best-1764000000-10000.nvr best-1764000000-2000.nvr "
              "best-1764000000-3000.nvr best-1764000000-4000.nvr best-1764000000-5000.nvr "
              "best-1764000000-6000.nvr best-1764000000-7000.nvr best-1764000000-8000.nvr "
              "best-1764000000-9000.nvr ");
    file.record(entry("best", 99999), recording("best"), rank);
    EXPECT_EQ(rank, 0);
    EXPECT_EQ(testing_support::directoryListing(dir + "/replays"),
              "best-1764000000-10000.nvr best-1764000000-2000.nvr best-1764000000-3000.nvr "
              "best-1764000000-4000.nvr best-1764000000-5000.nvr best-1764000000-6000.nvr "
              "best-1764000000-7000.nvr best-1764000000-8000.nvr best-1764000000-9000.nvr "
              "best-1764000000-99999.nvr ");
    EXPECT_EQ(contents(dir + "/replays/best-1764000000-99999.nvr"), "best");
}

TEST_F(ScoreFileTest, TwoEqualGamesInTheSameSecondKeepAReplayEach) {
    ScoreFile file(path);
    int rank = 0;
    file.record(entry("one", 500, 3, 1764000000), recording("first"), rank);
    const ScoreTable table = file.record(entry("two", 500, 3, 1764000000), recording("second"), rank);
    EXPECT_EQ(rank, 1);
    EXPECT_EQ(table.entries()[0].replay, "best-1764000000-500.nvr");
    EXPECT_EQ(table.entries()[1].replay, "best-1764000000-500-2.nvr");
    EXPECT_EQ(contents(dir + "/replays/best-1764000000-500.nvr"), "first");
    EXPECT_EQ(contents(dir + "/replays/best-1764000000-500-2.nvr"), "second");
}

TEST_F(ScoreFileTest, RenameKeepsTheEntrysReplay) {
    ScoreFile file(path);
    int rank = 0;
    const ScoreEntry mine = entry("alice", 400, 2, 1764000400);
    file.record(mine, recording("alice"), rank);
    file.rename(mine, "Ace", rank);
    EXPECT_EQ(contents(path), "nightvector scores 2\n400\t2\t1764000400\tbest-1764000400-400.nvr\tAce\n");
    EXPECT_EQ(contents(dir + "/replays/best-1764000400-400.nvr"), "alice");
}

TEST_F(ScoreFileTest, AnOlderFileWithoutReplaysIsReadWholeAndWrittenInTheNewForm) {
    put("nightvector scores 1\n700\t2\t5\tkept\n");
    ScoreFile file(path);
    testing::internal::CaptureStderr();
    EXPECT_EQ(file.load().entries().size(), 1u);
    int rank = 0;
    file.record(entry("new", 900, 3, 1764000000), recording("new"), rank);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(contents(path), "nightvector scores 2\n"
                              "900\t3\t1764000000\tbest-1764000000-900.nvr\tnew\n"
                              "700\t2\t5\t-\tkept\n");
    EXPECT_EQ(listing(), "replays scores ");
}

TEST_F(ScoreFileTest, AReplayThatCannotBeWrittenLeavesTheEntryWithoutOneAndOneLineSaysWhy) {
    // A file where the replays' directory should be.
    put("");
    testing_support::writeFileContents(dir + "/replays", "not a directory");
    std::remove(path.c_str());
    testing::internal::CaptureStderr();
    int rank = 0;
    ScoreFile(path).record(entry("Ada", 4200, 5, 1764000123), recording("Ada"), rank);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Could not keep the replay " + dir + "/replays/best-1764000123-4200.nvr: Not a directory\n");
    EXPECT_EQ(rank, 0);
    EXPECT_EQ(contents(path), "nightvector scores 2\n4200\t5\t1764000123\t-\tAda\n");
}

TEST_F(ScoreFileTest, WhenTheScoresCannotBeWrittenTheNewReplayIsNotLeftBehind) {
    put(fullTable("p").format());
    // The replay's single write goes through; the scores' write fails.
    writesAllowed = 1;
    SafeFile::writeCall = writeSomeThenFail;
    testing::internal::CaptureStderr();
    int rank = 0;
    ScoreFile(path).record(entry("best", 99999), recording("best"), rank);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Could not save the scores to " + path + ": Input/output error\n");
    EXPECT_EQ(contents(path), fullTable("p").format());
    EXPECT_EQ(testing_support::directoryListing(dir + "/replays"), "");
}

TEST_F(ScoreFileTest, TwoGamesSavingReplaysAtOnceLeaveExactlyTheTopTensReplays) {
    twoWritersAtOnce([&](ScoreFile& file, uint32_t w) {
        for (uint32_t i = 0; i < 60; ++i) {
            int rank = 0;
            const uint32_t score = 2 * i + 1 + w;
            file.record(entry("w" + std::to_string(w), score), recording(std::to_string(score)), rank);
        }
    });
    const ScoreTable table = ScoreFile(path).load();
    ASSERT_EQ(table.entries().size(), 10u);
    for (uint32_t k = 0; k < 10; ++k) {
        const ScoreEntry& e = table.entries()[k];
        EXPECT_EQ(e.score, 120 - k);
        EXPECT_EQ(e.replay, "best-1764000000-" + std::to_string(e.score) + ".nvr");
        EXPECT_EQ(contents(dir + "/replays/" + e.replay), std::to_string(e.score));
    }
    EXPECT_EQ(testing_support::directoryListing(dir + "/replays"),
              "best-1764000000-111.nvr best-1764000000-112.nvr best-1764000000-113.nvr best-1764000000-114.nvr "
              "best-1764000000-115.nvr best-1764000000-116.nvr best-1764000000-117.nvr best-1764000000-118.nvr "
              "best-1764000000-119.nvr best-1764000000-120.nvr ");
}
