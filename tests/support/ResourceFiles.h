#pragma once
// The game's load table as the tests expect it: every file in loading order, and the progress
// lines of a run.

#include <set>
#include <string>

namespace testing_support {

// Textures in loading order; the two hammerhead files load twice.
const char* const TEXTURE_FILES[] = {
    "gfx/title.png", "gfx/reticle.png", "gfx/reticle_glow.png", "gfx/star.png", "gfx/sky_top.png",
    "gfx/sky_bottom.png", "gfx/sky_left.png", "gfx/sky_right.png", "gfx/sky_front.png", "gfx/sky_back.png",
    "gfx/player_top.png", "gfx/player_mid.png", "gfx/player_bot.png", "gfx/player_glow_top.png",
    "gfx/player_glow_bot.png", "gfx/slaser.png", "gfx/plasmabullet.png", "gfx/powerup_anim.png",
    "gfx/powerup_glow_anim.png", "gfx/enemy_fighter.png", "gfx/enemy_fighter_glow.png", "gfx/enemy_fighter2.png",
    "gfx/enemy_fighter2_glow.png", "gfx/enemy_hammerhead.png", "gfx/enemy_hammerhead_glow.png",
    "gfx/enemy_hammerhead.png", "gfx/enemy_hammerhead_glow.png", "gfx/enemy_probe.png", "gfx/enemy_probe_glow.png",
    "gfx/enemy_probe2.png", "gfx/enemy_probe2_glow.png", "gfx/enemy_probe3.png", "gfx/enemy_probe3_glow.png",
    "gfx/hud_radar_dials.png", "gfx/hud_radar_mask.png", "gfx/hud_bars_mask.png", "gfx/hud_score.png",
    "gfx/hud_power_dials.png"};

// Font images in loading order.
const char* const FONT_FILES[] = {"gfx/hugefont.png", "gfx/medfont.png", "gfx/smallfont.png", "gfx/minifont.png"};

// The progress lines of loading, with "ERROR" behind every file in `failing`.
inline std::string loadingLines(const std::set<std::string>& failing = {}) {
    std::string out = ":: loading resources...\n";
    for (const char* f : TEXTURE_FILES)
        out += std::string("Loading texture ") + f + "... " + (failing.count(f) ? "ERROR" : "OK") + "\n";
    for (const char* f : FONT_FILES)
        out += std::string("Loading image ") + f + "... " + (failing.count(f) ? "ERROR" : "OK") + "\n";
    return out + ":: Generating procedural textures... :: All done.\n";
}

} // namespace testing_support
