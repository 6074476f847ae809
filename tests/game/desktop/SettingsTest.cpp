// The settings and their file: the defaults, a round trip, every setting's values, damaged,
// foreign and huge files, a directory the player cannot write and a disk that fills up.

#include "game/desktop/Settings.h"

#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "engine/SafeFile.h"
#include "tests/support/FileChecks.h"
#include "tests/support/PlayerHome.h"
#include "tests/support/Processes.h"

using orvel::SafeFile;

namespace {

class SettingsFileTest : public ::testing::Test {
protected:
    testing_support::PlayerHome home;
    std::string dir = home.configHome() + "/nightvector";
    std::string path = dir + "/settings";

    void TearDown() override { SafeFile::writeCall = ::write; }

    void put(const std::string& bytes) {
        std::string error;
        ASSERT_TRUE(SafeFile::makeDirectories(dir, error));
        testing_support::writeFileContents(path, bytes);
    }
    std::string contents() const { return testing_support::fileContents(path); }
    // Loads the file, with what it says on standard error.
    Settings load(std::string& said) {
        testing::internal::CaptureStderr();
        const Settings s = file.load();
        said = testing::internal::GetCapturedStderr();
        return s;
    }

    SettingsFile file{path};
};

Settings changedSettings() {
    Settings s;
    s.musicVolume = 3;
    s.effectsVolume = 0;
    s.fullscreen = false;
    s.screenShake = false;
    s.softFlashes = true;
    s.frameCap = 144;
    return s;
}

} // namespace

TEST(Settings, TheDefaultsAreTheGameAsItHasAlwaysBeen) {
    const Settings s;
    EXPECT_EQ(s.musicVolume, 10);
    EXPECT_EQ(s.effectsVolume, 10);
    EXPECT_TRUE(s.fullscreen);
    EXPECT_TRUE(s.screenShake);
    EXPECT_FALSE(s.softFlashes);
    EXPECT_EQ(s.frameCap, Settings::FRAME_CAP_DISPLAY);
}

TEST(SettingsFormat, TheFileNamesItselfAndEachSettingOnALine) {
    EXPECT_EQ(SettingsFile::format(Settings()), "nightvector settings 1\n"
                                                 "music-volume = 10\n"
                                                 "effects-volume = 10\n"
                                                 "display = fullscreen\n"
                                                 "screen-shake = on\n"
                                                 "flashes = full\n"
                                                 "frame-cap = display\n");
    EXPECT_EQ(SettingsFile::format(changedSettings()), "nightvector settings 1\n"
                                                        "music-volume = 3\n"
                                                        "effects-volume = 0\n"
                                                        "display = window\n"
                                                        "screen-shake = off\n"
                                                        "flashes = soft\n"
                                                        "frame-cap = 144\n");
}

TEST(SettingsFormat, WhatIsWrittenReadsBackTheSame) {
    std::string problems;
    EXPECT_TRUE(SettingsFile::parse(SettingsFile::format(changedSettings()), problems) == changedSettings());
    EXPECT_EQ(problems, "");
    EXPECT_TRUE(SettingsFile::parse(SettingsFile::format(Settings()), problems) == Settings());
    EXPECT_EQ(problems, "");
}

TEST(SettingsFormat, SpacesCommentsBlankLinesAndAnyOrderAreFine) {
    std::string problems;
    const Settings s = SettingsFile::parse("nightvector settings 1\r\n"
                                           "# mine\n"
                                           "\n"
                                           "  frame-cap=0  \n"
                                           "flashes\t=\tsoft\n",
                                           problems);
    EXPECT_EQ(problems, "");
    EXPECT_EQ(s.frameCap, 0);
    EXPECT_TRUE(s.softFlashes);
    EXPECT_EQ(s.musicVolume, 10);
}

TEST(SettingsFormat, ABadValueKeepsThatSettingsDefaultAndSaysSo) {
    std::string problems;
    const Settings s = SettingsFile::parse("nightvector settings 1\n"
                                           "music-volume = 11\n"
                                           "effects-volume = -1\n"
                                           "display = huge\n"
                                           "screen-shake = yes\n"
                                           "flashes = 30\n"
                                           "frame-cap = 1001\n"
                                           "music-volume = 4\n",
                                           problems);
    EXPECT_TRUE(s == [] {
        Settings expected;
        expected.musicVolume = 4;
        return expected;
    }());
    EXPECT_EQ(problems, "line 2: bad value '11' for music-volume, the default is kept\n"
                        "line 3: bad value '-1' for effects-volume, the default is kept\n"
                        "line 4: bad value 'huge' for display, the default is kept\n"
                        "line 5: bad value 'yes' for screen-shake, the default is kept\n"
                        "line 6: bad value '30' for flashes, the default is kept\n"
                        "line 7: bad value '1001' for frame-cap, the default is kept\n");
}

TEST(SettingsFormat, AnUnknownKeyAndALineThatIsNoSettingAreSaidAndSkipped) {
    std::string problems;
    const Settings s = SettingsFile::parse("nightvector settings 1\n"
                                           "gamma = 2\n"
                                           "just words\n"
                                           "display = window\n",
                                           problems);
    EXPECT_FALSE(s.fullscreen);
    EXPECT_EQ(problems, "line 2: unknown setting 'gamma'\n"
                        "line 3 is not a setting: 'just words'\n");
}

TEST(SettingsFormat, AFileWithoutTheHeaderIsSaidToBeForeignAndWhatReadsIsKept) {
    std::string problems;
    const Settings s = SettingsFile::parse("display = window\n", problems);
    EXPECT_FALSE(s.fullscreen);
    EXPECT_EQ(problems, "line 1 is not \"nightvector settings 1\"\n");
}

TEST_F(SettingsFileTest, TheFileLivesInTheConfigHome) { EXPECT_EQ(SettingsFile::defaultPath(), path); }

TEST_F(SettingsFileTest, NoFileGivesTheDefaultsWithoutAWord) {
    std::string said;
    EXPECT_TRUE(load(said) == Settings());
    EXPECT_EQ(said, "");
}

TEST_F(SettingsFileTest, SavedSettingsLoadAgainAndTheFileIsMadeWithItsDirectory) {
    ASSERT_TRUE(file.save(changedSettings()));
    EXPECT_EQ(contents(), SettingsFile::format(changedSettings()));
    std::string said;
    EXPECT_TRUE(SettingsFile(path).load() == changedSettings());
    EXPECT_EQ(testing_support::directoryListing(dir, "settings.lock"), "settings ");
}

TEST_F(SettingsFileTest, ADamagedFileKeepsWhatReadsAndGoesAsideBeforeTheNextSave) {
    put("nightvector settings 1\nmusic-volume = 2\nvolume = loud\n");
    std::string said;
    const Settings s = load(said);
    EXPECT_EQ(s.musicVolume, 2);
    EXPECT_EQ(said, "Settings file " + path + ": line 3: unknown setting 'volume'\n");
    ASSERT_TRUE(file.save(s));
    EXPECT_EQ(testing_support::fileContents(path + ".bad"),
              "nightvector settings 1\nmusic-volume = 2\nvolume = loud\n");
    EXPECT_EQ(contents(), SettingsFile::format(s));
    // The file written is whole: loaded again, it says nothing.
    SettingsFile again(path);
    testing::internal::CaptureStderr();
    again.load();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(SettingsFileTest, AGoodFileIsNotMovedAsideBySaving) {
    put(SettingsFile::format(changedSettings()));
    file.load();
    ASSERT_TRUE(file.save(Settings()));
    EXPECT_EQ(testing_support::directoryListing(dir, "settings.lock"), "settings ");
}

TEST_F(SettingsFileTest, JunkSaysAFewLinesAndCountsTheRest) {
    std::string junk;
    for (int i = 0; i < 40; ++i) junk += "\x01\x02 junk \xff line\n";
    put(junk);
    std::string said;
    EXPECT_TRUE(load(said) == Settings());
    std::string expected = "Settings file " + path + ": line 1 is not \"nightvector settings 1\"\n";
    for (int line = 1; line <= 4; ++line)
        expected +=
            "Settings file " + path + ": line " + std::to_string(line) + " is not a setting: '?? junk ? line'\n";
    expected += "Settings file " + path + ": 36 more problems not shown\n";
    EXPECT_EQ(said, expected);
}

TEST_F(SettingsFileTest, AHugeFileIsReadOnlyToItsStart) {
    std::string huge = "nightvector settings 1\ndisplay = window\n";
    while (huge.size() < 1024 * 1024) huge += "# a long comment that goes on and on and on and on and on\n";
    put(huge);
    std::string said;
    const Settings s = load(said);
    EXPECT_FALSE(s.fullscreen);
    EXPECT_EQ(said, "Settings file " + path + ": is longer than 16 KiB; only its start was read\n");
}

TEST_F(SettingsFileTest, ADirectoryInThePlaceOfTheFileGivesTheDefaultsAndIsMovedAsideOnSaving) {
    std::string error;
    ASSERT_TRUE(SafeFile::makeDirectories(path, error));
    std::string said;
    EXPECT_TRUE(load(said) == Settings());
    EXPECT_EQ(said.rfind("Settings file " + path + ": cannot be read (", 0), 0u) << said;
    ASSERT_TRUE(file.save(changedSettings()));
    EXPECT_EQ(contents(), SettingsFile::format(changedSettings()));
    struct stat aside {};
    EXPECT_EQ(stat((path + ".bad").c_str(), &aside), 0);
    EXPECT_TRUE(S_ISDIR(aside.st_mode));
}

TEST_F(SettingsFileTest, InADirectoryThePlayerCannotWriteTheSaveFailsWithOneLineAndTheFileStays) {
    put(SettingsFile::format(Settings()));
    chmod(home.home().c_str(), 0755);
    chmod(home.configHome().c_str(), 0755);
    chmod(path.c_str(), 0644);
    chmod(dir.c_str(), 0555);
    const std::string errors = home.home() + "/errors.txt";
    testing_support::writeFileContents(errors, "");
    chmod(errors.c_str(), 0666);
    const int result = processes::runUnprivileged([&] {
        if (!freopen(errors.c_str(), "w", stderr)) return 9;
        const bool saved = SettingsFile(path).save(changedSettings());
        fflush(stderr);
        return saved ? 1 : 0;
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(testing_support::fileContents(errors),
              "Could not save the settings to " + path + ": Permission denied\n");
    EXPECT_EQ(contents(), SettingsFile::format(Settings()));
}

TEST_F(SettingsFileTest, ADiskThatFillsUpHalfWayKeepsTheOldFile) {
    put(SettingsFile::format(Settings()));
    SafeFile::writeCall = testing_support::writeHalfThenDiskFull;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(file.save(changedSettings()));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Could not save the settings to " + path + ": No space left on device\n");
    EXPECT_EQ(contents(), SettingsFile::format(Settings()));
}
