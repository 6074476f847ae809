// The one routine for the player's files: whole replacement that never leaves a partial file or a
// stray temporary, reading that stops at a limit and never blocks, moving a bad file aside, and
// the lock between processes.

#include "engine/SafeFile.h"

#include <cerrno>
#include <string>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/support/FileChecks.h"
#include "tests/support/PlayerHome.h"
#include "tests/support/Processes.h"

using orvel::SafeFile;

namespace {

class SafeFileTest : public ::testing::Test {
protected:
    testing_support::PlayerHome home;
    std::string dir = home.home() + "/files";

    void SetUp() override { ASSERT_EQ(mkdir(dir.c_str(), 0755), 0); }
    void TearDown() override { SafeFile::writeCall = ::write; }

    static std::string contents(const std::string& path) { return testing_support::fileContents(path); }
    static void put(const std::string& path, const std::string& bytes) {
        testing_support::writeFileContents(path, bytes);
    }
    std::string listing() const { return testing_support::directoryListing(dir); }
};

} // namespace

TEST_F(SafeFileTest, ReplaceWritesTheWholeFileAndLeavesNothingElse) {
    std::string error;
    ASSERT_TRUE(SafeFile::replace(dir + "/table", "first\n", error)) << error;
    ASSERT_TRUE(SafeFile::replace(dir + "/table", "second, longer\n", error)) << error;
    EXPECT_EQ(contents(dir + "/table"), "second, longer\n");
    EXPECT_EQ(listing(), "table ");
}

TEST_F(SafeFileTest, ANewFileIsThePlayersAloneAndAnOldOneKeepsItsPermissions) {
    std::string error;
    ASSERT_TRUE(SafeFile::replace(dir + "/new", "x", error));
    struct stat info {};
    ASSERT_EQ(stat((dir + "/new").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
    put(dir + "/old", "y");
    chmod((dir + "/old").c_str(), 0644);
    ASSERT_TRUE(SafeFile::replace(dir + "/old", "z", error));
    ASSERT_EQ(stat((dir + "/old").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0644u);
}

TEST_F(SafeFileTest, AWriteThatFailsHalfWayLeavesTheOldFileAndNoTemporary) {
    put(dir + "/table", "the old table\n");
    SafeFile::writeCall = testing_support::writeHalfThenDiskFull;
    std::string error;
    EXPECT_FALSE(SafeFile::replace(dir + "/table", std::string(10000, 'n'), error));
    EXPECT_EQ(error, "No space left on device");
    EXPECT_EQ(contents(dir + "/table"), "the old table\n");
    EXPECT_EQ(listing(), "table ");
}

TEST_F(SafeFileTest, InADirectoryThePlayerCannotWriteReplaceFailsAndTheFileStays) {
    put(dir + "/table", "kept\n");
    chmod(home.home().c_str(), 0755);
    chmod((dir + "/table").c_str(), 0644);
    chmod(dir.c_str(), 0555);
    const int result = processes::runUnprivileged([this] {
        std::string error;
        const bool replaced = SafeFile::replace(dir + "/table", "lost?\n", error);
        return !replaced && error == "Permission denied" ? 0 : 1;
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(contents(dir + "/table"), "kept\n");
    EXPECT_EQ(listing(), "table ");
}

TEST_F(SafeFileTest, ReadGivesTheWholeFileOrSaysWhyNot) {
    std::string bytes, error;
    EXPECT_EQ(SafeFile::read(dir + "/none", 100, bytes, error), SafeFile::READ_MISSING);
    put(dir + "/table", "abc\n");
    EXPECT_EQ(SafeFile::read(dir + "/table", 100, bytes, error), SafeFile::READ_OK);
    EXPECT_EQ(bytes, "abc\n");
    EXPECT_EQ(SafeFile::read(dir + "/table", 4, bytes, error), SafeFile::READ_OK);
    EXPECT_EQ(bytes, "abc\n");
}

TEST_F(SafeFileTest, ALongerFileIsReadUpToTheLimitAndCalledTruncated) {
    put(dir + "/big", std::string(100000, 'q'));
    std::string bytes, error;
    EXPECT_EQ(SafeFile::read(dir + "/big", 65536, bytes, error), SafeFile::READ_TRUNCATED);
    EXPECT_EQ(bytes, std::string(65536, 'q'));
}

TEST_F(SafeFileTest, ADirectoryOrAPipeInThePlaceOfTheFileIsNotReadAndNothingBlocks) {
    std::string bytes, error;
    mkdir((dir + "/sub").c_str(), 0755);
    EXPECT_EQ(SafeFile::read(dir + "/sub", 100, bytes, error), SafeFile::READ_NOT_FILE);
    EXPECT_EQ(error, "Is a directory");
    // Nothing writes to the pipe: a blocking open or read would wait for ever.
    mkfifo((dir + "/pipe").c_str(), 0644);
    EXPECT_EQ(SafeFile::read(dir + "/pipe", 100, bytes, error), SafeFile::READ_NOT_FILE);
    EXPECT_EQ(error, "Not a regular file");
}

TEST_F(SafeFileTest, ALoopOfSymbolicLinksFailsToRead) {
    symlink((dir + "/b").c_str(), (dir + "/a").c_str());
    symlink((dir + "/a").c_str(), (dir + "/b").c_str());
    std::string bytes, error;
    EXPECT_EQ(SafeFile::read(dir + "/a", 100, bytes, error), SafeFile::READ_FAILED);
    EXPECT_EQ(error, "Too many levels of symbolic links");
}

TEST_F(SafeFileTest, MoveAsideNamesTheFileBadAndNumbersWhenThatIsTaken) {
    put(dir + "/table", "one");
    EXPECT_EQ(SafeFile::moveAside(dir + "/table"), dir + "/table.bad");
    // A directory cannot go where a file is, nor over a directory that holds something.
    mkdir((dir + "/table").c_str(), 0755);
    put(dir + "/table/inside", "two");
    EXPECT_EQ(SafeFile::moveAside(dir + "/table"), dir + "/table.bad.2");
    EXPECT_EQ(contents(dir + "/table.bad"), "one");
    EXPECT_EQ(contents(dir + "/table.bad.2/inside"), "two");
    EXPECT_EQ(SafeFile::moveAside(dir + "/none"), "");
}

TEST_F(SafeFileTest, MakeDirectoriesMakesEveryMissingParentForThePlayerAlone) {
    std::string error;
    ASSERT_TRUE(SafeFile::makeDirectories(dir + "/a/b/c", error)) << error;
    struct stat info {};
    ASSERT_EQ(stat((dir + "/a/b/c").c_str(), &info), 0);
    EXPECT_TRUE(S_ISDIR(info.st_mode));
    EXPECT_EQ(info.st_mode & 0777, 0700u);
    EXPECT_TRUE(SafeFile::makeDirectories(dir + "/a/b/c", error));
    put(dir + "/file", "");
    EXPECT_FALSE(SafeFile::makeDirectories(dir + "/file", error));
    EXPECT_EQ(error, "Not a directory");
}

TEST_F(SafeFileTest, TheLockKeepsOutAnotherProcessUntilItsHolderLetsGo) {
    const std::string lockPath = dir + "/table.lock";
    int ready[2], release[2];
    ASSERT_EQ(pipe(ready), 0);
    ASSERT_EQ(pipe(release), 0);
    const pid_t child = fork();
    if (child == 0) {
        SafeFile::Lock lock(lockPath);
        char c = lock.isHeld() ? 'y' : 'n';
        if (write(ready[1], &c, 1) != 1) _exit(1);
        if (read(release[0], &c, 1) != 1) _exit(1);
        _exit(0);
    }
    char held = 0;
    ASSERT_EQ(read(ready[0], &held, 1), 1);
    EXPECT_EQ(held, 'y');
    const int probe = open(lockPath.c_str(), O_RDWR);
    ASSERT_GE(probe, 0);
    EXPECT_EQ(flock(probe, LOCK_EX | LOCK_NB), -1);
    EXPECT_EQ(errno, EWOULDBLOCK);
    char go = 'g';
    ASSERT_EQ(write(release[1], &go, 1), 1);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(flock(probe, LOCK_EX | LOCK_NB), 0);
    close(probe);
    SafeFile::Lock mine(lockPath);
    EXPECT_TRUE(mine.isHeld());
    for (int fd : {ready[0], ready[1], release[0], release[1]}) close(fd);
}
