#include "game/Resources.h"

#include <string>
#include <utility>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "engine/Font.h"
#include "engine/Surface.h"
#include "engine/Texture.h"
#include "tests/support/GLFixture.h"
#include "tests/support/ResourceFiles.h"

using orvel::Texture;
using testing_support::FONT_FILES;
using testing_support::GLTest;
using testing_support::TEXTURE_FILES;
using testing_support::loadingLines;

namespace {

std::vector<uint32_t> texels(const Texture* t) {
    std::vector<uint32_t> out((size_t)t->width * t->height);
    glBindTexture(GL_TEXTURE_2D, t->id);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, out.data());
    return out;
}

uint32_t alphaAt(const std::vector<uint32_t>& pixels, int x, int y) { return pixels[y * 128 + x] >> 24; }

std::vector<Texture*> allTextures() {
    return {Resources::title_tex, Resources::reticle_tex, Resources::reticle_glow_tex, Resources::star_tex,
            Resources::skybox_top_tex, Resources::skybox_bottom_tex, Resources::skybox_left_tex,
            Resources::skybox_right_tex, Resources::skybox_front_tex, Resources::skybox_back_tex,
            Resources::player_top_tex, Resources::player_mid_tex, Resources::player_bot_tex,
            Resources::player_top_glow_tex, Resources::player_bot_glow_tex, Resources::laser_tex,
            Resources::plasmabullet_tex, Resources::powerup_anim_tex, Resources::powerup_glow_anim_tex,
            Resources::enemy_fighter_tex, Resources::enemy_fighter_glow_tex, Resources::enemy_fighter2_tex,
            Resources::enemy_fighter2_glow_tex, Resources::enemy_hammerhead_tex,
            Resources::enemy_hammerhead_glow_tex, Resources::enemy_hammerhead2_tex,
            Resources::enemy_hammerhead2_glow_tex, Resources::enemy_probe_tex, Resources::enemy_probe_glow_tex,
            Resources::enemy_probe2_tex, Resources::enemy_probe2_glow_tex, Resources::enemy_probe3_tex,
            Resources::enemy_probe3_glow_tex, Resources::hud_radar_dials_tex, Resources::hud_radar_mask_tex,
            Resources::hud_bars_mask_tex, Resources::hud_score_tex, Resources::hud_power_dials_tex,
            Resources::proc_particle0_tex, Resources::proc_particle1_tex};
}

// What load() reported through Resources::onProgress, call by call.
std::vector<std::pair<unsigned, unsigned>> progressCalls;

void recordProgress(unsigned done, unsigned total) { progressCalls.emplace_back(done, total); }

} // namespace

// Tests run on a real GL context.
class ResourcesTest : public GLTest {};

TEST_F(ResourcesTest, LoadReportsFortyTwoFilesOkInTableOrder) {
    testing::internal::CaptureStdout();
    Resources::load();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), loadingLines());
}

TEST_F(ResourcesTest, LoadReportsItsProgressAfterEachFileAndPrintsTheSameLines) {
    progressCalls.clear();
    Resources::onProgress = recordProgress;
    testing::internal::CaptureStdout();
    Resources::load();
    const std::string printed = testing::internal::GetCapturedStdout();
    Resources::onProgress = nullptr;
    EXPECT_EQ(printed, loadingLines());
    // One call after each of the 38 textures and 4 fonts, counting up to 42 of 42.
    ASSERT_EQ(progressCalls.size(), 42u);
    for (unsigned i = 0; i < progressCalls.size(); ++i) {
        EXPECT_EQ(progressCalls[i].first, i + 1);
        EXPECT_EQ(progressCalls[i].second, 42u);
    }
}

TEST_F(ResourcesTest, LoadFillsEveryMember) {
    Resources::load();
    for (Texture* t : allTextures()) {
        ASSERT_NE(t, nullptr);
        EXPECT_GT(t->width, 0);
    }
    for (orvel::Font* f : {Resources::font_big, Resources::font_medium, Resources::font_small, Resources::font_mini}) {
        ASSERT_NE(f, nullptr);
        EXPECT_NE(f->surface, nullptr);
        EXPECT_NE(f->texture, nullptr);
    }
}

TEST_F(ResourcesTest, LoadCountsEveryTextureInUsedMemory) {
    uint32_t before = Texture::usedMemory;
    Resources::load();
    uint32_t sum = 0;
    for (Texture* t : allTextures()) sum += t->width * t->height * 4;
    for (orvel::Font* f : {Resources::font_big, Resources::font_medium, Resources::font_small, Resources::font_mini})
        sum += f->texture->width * f->texture->height * 4;
    EXPECT_EQ(Texture::usedMemory - before, sum);
}

TEST_F(ResourcesTest, SecondHammerheadIsDistinctTextureWithSamePixels) {
    Resources::load();
    EXPECT_NE(Resources::enemy_hammerhead_tex, Resources::enemy_hammerhead2_tex);
    EXPECT_NE(Resources::enemy_hammerhead_tex->id, Resources::enemy_hammerhead2_tex->id);
    EXPECT_EQ(texels(Resources::enemy_hammerhead_tex), texels(Resources::enemy_hammerhead2_tex));
    EXPECT_NE(Resources::enemy_hammerhead_glow_tex->id, Resources::enemy_hammerhead2_glow_tex->id);
    EXPECT_EQ(texels(Resources::enemy_hammerhead_glow_tex), texels(Resources::enemy_hammerhead2_glow_tex));
}

TEST_F(ResourcesTest, GeneratedParticleDiscsAreOpaqueInsideAndClearOutside) {
    Resources::load();
    ASSERT_EQ(Resources::proc_particle0_tex->width, 128);
    ASSERT_EQ(Resources::proc_particle1_tex->height, 128);
    std::vector<uint32_t> big = texels(Resources::proc_particle0_tex);
    std::vector<uint32_t> small = texels(Resources::proc_particle1_tex);
    EXPECT_EQ(big[64 * 128 + 64], 0xFFFFFFFFu);      // centre: white, opaque
    EXPECT_EQ(alphaAt(big, 64 + 59, 64), 255u);      // inside radius 60
    EXPECT_EQ(alphaAt(big, 64 + 61, 64), 0u);        // outside
    EXPECT_EQ(alphaAt(big, 0, 0), 0u);
    EXPECT_EQ(small[64 * 128 + 64], 0xFFFFFFFFu);
    EXPECT_EQ(alphaAt(small, 64 + 29, 64), 255u);    // inside radius 30
    // Between the two radii nothing of the first disc remains: the surface is cleared in between.
    EXPECT_EQ(small[64 * 128 + 64 + 45], 0u);
    EXPECT_EQ(small[(64 - 45) * 128 + 64], 0u);
    EXPECT_EQ(alphaAt(small, 64 + 31, 64), 0u);
}

TEST_F(ResourcesTest, MissingFileEndsItsLineInErrorAndLoadingGoesOn) {
    char dir[] = "/tmp/resourcesXXXXXX";
    ASSERT_NE(mkdtemp(dir), nullptr);
    std::string root = std::string(dir);
    std::string gfx = root + "/gfx";
    ASSERT_EQ(mkdir(gfx.c_str(), 0755), 0);
    char cwd[4096];
    ASSERT_NE(getcwd(cwd, sizeof cwd), nullptr);
    for (const char* f : TEXTURE_FILES)
        if (std::string(f) != "gfx/star.png")
            symlink((std::string(cwd) + "/" + f).c_str(), (root + "/" + f).c_str());
    for (const char* f : FONT_FILES) symlink((std::string(cwd) + "/" + f).c_str(), (root + "/" + f).c_str());
    ASSERT_EQ(chdir(dir), 0);
    testing::internal::CaptureStdout();
    Resources::load();
    std::string output = testing::internal::GetCapturedStdout();
    ASSERT_EQ(chdir(cwd), 0);
    EXPECT_EQ(system(("rm -rf " + root).c_str()), 0);
    EXPECT_EQ(output, loadingLines({"gfx/star.png"}));
    ASSERT_NE(Resources::star_tex, nullptr);
    EXPECT_EQ(Resources::star_tex->width, 0);
    EXPECT_GT(Resources::skybox_top_tex->width, 0);
}
