#include "game/Resources.h"

#include <cstdio>

#include "engine/Font.h"
#include "engine/GfxUtil.h"
#include "engine/ImageLoader.h"
#include "engine/Surface.h"
#include "engine/Texture.h"

using namespace orvel;

void (*Resources::onProgress)(unsigned, unsigned) = nullptr;
Texture* Resources::title_tex = nullptr;
Texture* Resources::reticle_tex = nullptr;
Texture* Resources::reticle_glow_tex = nullptr;
Texture* Resources::star_tex = nullptr;
Texture* Resources::skybox_top_tex = nullptr;
Texture* Resources::skybox_bottom_tex = nullptr;
Texture* Resources::skybox_left_tex = nullptr;
Texture* Resources::skybox_right_tex = nullptr;
Texture* Resources::skybox_front_tex = nullptr;
Texture* Resources::skybox_back_tex = nullptr;
Texture* Resources::player_top_tex = nullptr;
Texture* Resources::player_mid_tex = nullptr;
Texture* Resources::player_bot_tex = nullptr;
Texture* Resources::player_top_glow_tex = nullptr;
Texture* Resources::player_bot_glow_tex = nullptr;
Texture* Resources::laser_tex = nullptr;
Texture* Resources::plasmabullet_tex = nullptr;
Texture* Resources::powerup_anim_tex = nullptr;
Texture* Resources::powerup_glow_anim_tex = nullptr;
Texture* Resources::enemy_fighter_tex = nullptr;
Texture* Resources::enemy_fighter_glow_tex = nullptr;
Texture* Resources::enemy_fighter2_tex = nullptr;
Texture* Resources::enemy_fighter2_glow_tex = nullptr;
Texture* Resources::enemy_hammerhead_tex = nullptr;
Texture* Resources::enemy_hammerhead_glow_tex = nullptr;
Texture* Resources::enemy_hammerhead2_tex = nullptr;
Texture* Resources::enemy_hammerhead2_glow_tex = nullptr;
Texture* Resources::enemy_probe_tex = nullptr;
Texture* Resources::enemy_probe_glow_tex = nullptr;
Texture* Resources::enemy_probe2_tex = nullptr;
Texture* Resources::enemy_probe2_glow_tex = nullptr;
Texture* Resources::enemy_probe3_tex = nullptr;
Texture* Resources::enemy_probe3_glow_tex = nullptr;
Texture* Resources::hud_radar_dials_tex = nullptr;
Texture* Resources::hud_radar_mask_tex = nullptr;
Texture* Resources::hud_bars_mask_tex = nullptr;
Texture* Resources::hud_score_tex = nullptr;
Texture* Resources::hud_power_dials_tex = nullptr;
Texture* Resources::proc_particle0_tex = nullptr;
Texture* Resources::proc_particle1_tex = nullptr;

Font* Resources::font_big = nullptr;
Font* Resources::font_medium = nullptr;
Font* Resources::font_small = nullptr;
Font* Resources::font_mini = nullptr;

namespace {

struct TextureFile {
    const char* path;
    Texture** member;
};

// Load order. The second hammerhead type has no art of its own: it loads the first one's
// files again into textures of its own, and the report of texture memory counts them twice.
const TextureFile TEXTURES[] = {
    {"gfx/title.png", &Resources::title_tex},
    {"gfx/reticle.png", &Resources::reticle_tex},
    {"gfx/reticle_glow.png", &Resources::reticle_glow_tex},
    {"gfx/star.png", &Resources::star_tex},
    {"gfx/sky_top.png", &Resources::skybox_top_tex},
    {"gfx/sky_bottom.png", &Resources::skybox_bottom_tex},
    {"gfx/sky_left.png", &Resources::skybox_left_tex},
    {"gfx/sky_right.png", &Resources::skybox_right_tex},
    {"gfx/sky_front.png", &Resources::skybox_front_tex},
    {"gfx/sky_back.png", &Resources::skybox_back_tex},
    {"gfx/player_top.png", &Resources::player_top_tex},
    {"gfx/player_mid.png", &Resources::player_mid_tex},
    {"gfx/player_bot.png", &Resources::player_bot_tex},
    {"gfx/player_glow_top.png", &Resources::player_top_glow_tex},
    {"gfx/player_glow_bot.png", &Resources::player_bot_glow_tex},
    {"gfx/slaser.png", &Resources::laser_tex},
    {"gfx/plasmabullet.png", &Resources::plasmabullet_tex},
    {"gfx/powerup_anim.png", &Resources::powerup_anim_tex},
    {"gfx/powerup_glow_anim.png", &Resources::powerup_glow_anim_tex},
    {"gfx/enemy_fighter.png", &Resources::enemy_fighter_tex},
    {"gfx/enemy_fighter_glow.png", &Resources::enemy_fighter_glow_tex},
    {"gfx/enemy_fighter2.png", &Resources::enemy_fighter2_tex},
    {"gfx/enemy_fighter2_glow.png", &Resources::enemy_fighter2_glow_tex},
    {"gfx/enemy_hammerhead.png", &Resources::enemy_hammerhead_tex},
    {"gfx/enemy_hammerhead_glow.png", &Resources::enemy_hammerhead_glow_tex},
    {"gfx/enemy_hammerhead.png", &Resources::enemy_hammerhead2_tex},
    {"gfx/enemy_hammerhead_glow.png", &Resources::enemy_hammerhead2_glow_tex},
    {"gfx/enemy_probe.png", &Resources::enemy_probe_tex},
    {"gfx/enemy_probe_glow.png", &Resources::enemy_probe_glow_tex},
    {"gfx/enemy_probe2.png", &Resources::enemy_probe2_tex},
    {"gfx/enemy_probe2_glow.png", &Resources::enemy_probe2_glow_tex},
    {"gfx/enemy_probe3.png", &Resources::enemy_probe3_tex},
    {"gfx/enemy_probe3_glow.png", &Resources::enemy_probe3_glow_tex},
    {"gfx/hud_radar_dials.png", &Resources::hud_radar_dials_tex},
    {"gfx/hud_radar_mask.png", &Resources::hud_radar_mask_tex},
    {"gfx/hud_bars_mask.png", &Resources::hud_bars_mask_tex},
    {"gfx/hud_score.png", &Resources::hud_score_tex},
    {"gfx/hud_power_dials.png", &Resources::hud_power_dials_tex},
};

struct FontFile {
    const char* path;
    Font** member;
};

const FontFile FONTS[] = {
    {"gfx/hugefont.png", &Resources::font_big},
    {"gfx/medfont.png", &Resources::font_medium},
    {"gfx/smallfont.png", &Resources::font_small},
    {"gfx/minifont.png", &Resources::font_mini},
};

// Ends a loading line. Lines go out as loading proceeds, also into a pipe or a file.
void reportResult() {
    puts(ImageLoader::lastError ? "ERROR" : "OK");
    fflush(stdout);
}

// A soft white disc of the given radius in the middle of `surface`, after clearing it.
Texture* particleTexture(Surface* surface, int radius) {
    for (int i = 0; i < surface->width * surface->height; ++i) surface->pixels[i] = 0;
    GfxUtil::drawGradientCircle(surface, 64, 64, radius, 0x000000, 0xffffff);
    return new Texture(surface);
}

} // namespace

void Resources::load() {
    puts(":: loading resources...");
    fflush(stdout);

    // Every file in the order it is loaded below, decoded ahead on a second thread.
    const unsigned TEXTURE_COUNT = sizeof TEXTURES / sizeof TEXTURES[0];
    const unsigned FONT_COUNT = sizeof FONTS / sizeof FONTS[0];
    const char* paths[TEXTURE_COUNT + FONT_COUNT];
    for (unsigned i = 0; i < TEXTURE_COUNT; ++i) paths[i] = TEXTURES[i].path;
    for (unsigned i = 0; i < FONT_COUNT; ++i) paths[TEXTURE_COUNT + i] = FONTS[i].path;
    ImageLoader::prefetch(paths, TEXTURE_COUNT + FONT_COUNT);

    const unsigned total = TEXTURE_COUNT + FONT_COUNT;
    unsigned done = 0;
    for (const TextureFile& file : TEXTURES) {
        printf("Loading texture %s... ", file.path);
        fflush(stdout);
        *file.member = ImageLoader::loadTexture(file.path, false);
        reportResult();
        if (onProgress) onProgress(++done, total);
    }

    for (const FontFile& file : FONTS) {
        printf("Loading image %s... ", file.path);
        fflush(stdout);
        Surface* image = ImageLoader::load(file.path, false);
        reportResult();
        *file.member = new Font(image);
        if (onProgress) onProgress(++done, total);
    }
    ImageLoader::finishPrefetch();
    // Every font is ready for the GL text path at once.
    for (const FontFile& file : FONTS) {
        Font* font = *file.member;
        if (!font->texture) font->texture = new Texture(font->surface);
    }

    printf(":: Generating procedural textures... ");
    fflush(stdout);
    Surface surface(128, 128);
    proc_particle0_tex = particleTexture(&surface, 60);
    proc_particle1_tex = particleTexture(&surface, 30);
    puts(":: All done.");
    fflush(stdout);
}
