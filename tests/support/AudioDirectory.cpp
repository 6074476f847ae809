#include "tests/support/AudioDirectory.h"

#include <cstdlib>

#include <SDL/SDL.h>
#include <SDL/SDL_mixer.h>
#include <sys/stat.h>
#include <unistd.h>

#include "game/Main.h"
#include "game/SoundEffects.h"

namespace testing_support {

void AudioDirectoryTest::SetUp() {
    char pattern[] = "/tmp/nightvector-audio-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    dir = pattern;
    ASSERT_EQ(mkdir((dir + "/sfx").c_str(), 0755), 0);
    char cwd[4096];
    ASSERT_NE(getcwd(cwd, sizeof cwd), nullptr);
    repository = cwd;
    ASSERT_EQ(chdir(dir.c_str()), 0);
    setenv("SDL_AUDIODRIVER", "dummy", 1);
}

void AudioDirectoryTest::TearDown() {
    g_sound.setOutput(nullptr);
    if (music) Mix_FreeMusic(music);
    music = nullptr;
    Mix_CloseAudio();
    SDL_QuitSubSystem(SDL_INIT_AUDIO);
    unsetenv("SDL_AUDIODRIVER");
    EXPECT_EQ(chdir(repository.c_str()), 0);
    EXPECT_EQ(system(("rm -rf '" + dir + "'").c_str()), 0);
}

void AudioDirectoryTest::linkSound(const std::string& name) const {
    ASSERT_EQ(symlink((repository + "/sfx/" + name).c_str(), (dir + "/sfx/" + name).c_str()), 0);
}

} // namespace testing_support
