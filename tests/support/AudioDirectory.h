#pragma once
// Audio tests in a working directory of their own: a fresh temporary folder with an empty sfx/,
// SDL's dummy audio driver unless a test names another, and everything closed and removed again.

#include <string>

#include <gtest/gtest.h>

namespace testing_support {

class AudioDirectoryTest : public ::testing::Test {
protected:
    // Makes the folder and its sfx/, changes into it and names the dummy driver.
    void SetUp() override;
    // Plays g_sound through nothing, frees the music, closes the device and its subsystem, drops
    // the driver's name, changes back and removes the folder.
    void TearDown() override;

    // Links the repository's sfx/`name` into the folder's sfx/.
    void linkSound(const std::string& name) const;

    std::string dir;        // the folder
    std::string repository; // the working directory before, the repository root
};

} // namespace testing_support
