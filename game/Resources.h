#pragma once
// The game's catalogue of loaded art: every texture and font, loaded once at start-up.

namespace orvel {
class Font;
class Texture;
} // namespace orvel

// Static members only, filled by load() and read everywhere as Resources::<member>.
// Nothing is ever unloaded. A file that fails to load leaves what the loader returned for a
// failure (an empty texture, or a font around a missing image) and loading goes on.
class Resources {
public:
    Resources() = delete;

    // Loads everything in order and reports each file on standard output ("OK" or "ERROR").
    // Needs the GL context of Orvel::init.
    static void load();

    // Called by load() after each image file, with the files done and their total: null, or
    // what shows the loading (LoadingBar::show). It must not write to standard output.
    static void (*onProgress)(unsigned done, unsigned total);

    static orvel::Texture* title_tex; // loaded, never drawn
    static orvel::Texture* reticle_tex;
    static orvel::Texture* reticle_glow_tex;
    static orvel::Texture* star_tex;
    static orvel::Texture* skybox_top_tex;
    static orvel::Texture* skybox_bottom_tex;
    static orvel::Texture* skybox_left_tex;
    static orvel::Texture* skybox_right_tex;
    static orvel::Texture* skybox_front_tex;
    static orvel::Texture* skybox_back_tex;
    static orvel::Texture* player_top_tex;
    static orvel::Texture* player_mid_tex;
    static orvel::Texture* player_bot_tex;
    static orvel::Texture* player_top_glow_tex;
    static orvel::Texture* player_bot_glow_tex;
    static orvel::Texture* laser_tex;
    static orvel::Texture* plasmabullet_tex;
    static orvel::Texture* powerup_anim_tex;
    static orvel::Texture* powerup_glow_anim_tex;
    static orvel::Texture* enemy_fighter_tex;
    static orvel::Texture* enemy_fighter_glow_tex;
    static orvel::Texture* enemy_fighter2_tex;
    static orvel::Texture* enemy_fighter2_glow_tex;
    static orvel::Texture* enemy_hammerhead_tex;
    static orvel::Texture* enemy_hammerhead_glow_tex;
    static orvel::Texture* enemy_hammerhead2_tex;
    static orvel::Texture* enemy_hammerhead2_glow_tex;
    static orvel::Texture* enemy_probe_tex;
    static orvel::Texture* enemy_probe_glow_tex;
    static orvel::Texture* enemy_probe2_tex;
    static orvel::Texture* enemy_probe2_glow_tex;
    static orvel::Texture* enemy_probe3_tex;
    static orvel::Texture* enemy_probe3_glow_tex;
    static orvel::Texture* hud_radar_dials_tex;
    static orvel::Texture* hud_radar_mask_tex;
    static orvel::Texture* hud_bars_mask_tex;
    static orvel::Texture* hud_score_tex;
    static orvel::Texture* hud_power_dials_tex;
    // Generated at start-up: soft white discs of radius 60 and 30 on 128 x 128.
    static orvel::Texture* proc_particle0_tex;
    static orvel::Texture* proc_particle1_tex;

    static orvel::Font* font_big;
    static orvel::Font* font_medium;
    static orvel::Font* font_small;
    static orvel::Font* font_mini;
};
