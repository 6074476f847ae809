// The images under gfx/, checked as the game loads them: through SDL_image.

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include <SDL/SDL.h>
#include <SDL/SDL_image.h>

#include <gtest/gtest.h>

namespace {

struct ImageFile {
    const char* path;  // relative to the repository root
    int width;
    int height;
};

// Every file the game loads, in its load order, with the size it is drawn for.
// The second hammerhead type loads the hammerhead's two files a second time.
const ImageFile LOAD_TABLE[] = {
    {"gfx/title.png", 512, 128},
    {"gfx/reticle.png", 64, 64},
    {"gfx/reticle_glow.png", 64, 64},
    {"gfx/star.png", 32, 16},
    {"gfx/sky_top.png", 1024, 1024},
    {"gfx/sky_bottom.png", 1024, 1024},
    {"gfx/sky_left.png", 1024, 1024},
    {"gfx/sky_right.png", 1024, 1024},
    {"gfx/sky_front.png", 1024, 1024},
    {"gfx/sky_back.png", 1024, 1024},
    {"gfx/player_top.png", 64, 64},
    {"gfx/player_mid.png", 64, 64},
    {"gfx/player_bot.png", 64, 64},
    {"gfx/player_glow_top.png", 64, 64},
    {"gfx/player_glow_bot.png", 64, 64},
    {"gfx/slaser.png", 64, 32},
    {"gfx/plasmabullet.png", 32, 32},
    {"gfx/powerup_anim.png", 1024, 1024},
    {"gfx/powerup_glow_anim.png", 512, 512},
    {"gfx/enemy_fighter.png", 128, 128},
    {"gfx/enemy_fighter_glow.png", 128, 128},
    {"gfx/enemy_fighter2.png", 128, 128},
    {"gfx/enemy_fighter2_glow.png", 128, 128},
    {"gfx/enemy_hammerhead.png", 128, 128},
    {"gfx/enemy_hammerhead_glow.png", 128, 128},
    {"gfx/enemy_hammerhead.png", 128, 128},
    {"gfx/enemy_hammerhead_glow.png", 128, 128},
    {"gfx/enemy_probe.png", 128, 128},
    {"gfx/enemy_probe_glow.png", 128, 128},
    {"gfx/enemy_probe2.png", 128, 128},
    {"gfx/enemy_probe2_glow.png", 128, 128},
    {"gfx/enemy_probe3.png", 128, 128},
    {"gfx/enemy_probe3_glow.png", 128, 128},
    {"gfx/hud_radar_dials.png", 520, 520},
    {"gfx/hud_radar_mask.png", 520, 520},
    {"gfx/hud_bars_mask.png", 400, 200},
    {"gfx/hud_score.png", 400, 120},
    {"gfx/hud_power_dials.png", 400, 200},
    {"gfx/hugefont.png", 256, 512},
    {"gfx/medfont.png", 256, 512},
    {"gfx/smallfont.png", 128, 256},
    {"gfx/minifont.png", 128, 128},
};

const char* const FONT_FILES[] = {"gfx/hugefont.png", "gfx/medfont.png", "gfx/smallfont.png",
                                  "gfx/minifont.png"};

// Drawn additively: whatever lies on their border would show as a hard edge.
const char* const GLOW_FILES[] = {
    "gfx/reticle_glow.png", "gfx/star.png", "gfx/player_glow_top.png", "gfx/player_glow_bot.png",
    "gfx/plasmabullet.png", "gfx/enemy_fighter_glow.png", "gfx/enemy_fighter2_glow.png",
    "gfx/enemy_hammerhead_glow.png", "gfx/enemy_probe_glow.png", "gfx/enemy_probe2_glow.png",
    "gfx/enemy_probe3_glow.png"};

// Art that the game multiplies by a colour at draw time.
const char* const TINTED_FILES[] = {"gfx/star.png", "gfx/slaser.png", "gfx/plasmabullet.png",
                                    "gfx/hugefont.png", "gfx/medfont.png", "gfx/smallfont.png",
                                    "gfx/minifont.png"};

struct Rgba {
    int r, g, b, a;
};

// Owns one decoded image and reads its pixels through the surface's own format.
class Image {
public:
    explicit Image(const char* relativePath) {
        std::string path = std::string(ASSET_ROOT) + "/" + relativePath;
        surface = IMG_Load(path.c_str());
    }
    ~Image() {
        if (surface) SDL_FreeSurface(surface);
    }
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;

    bool isLoaded() const { return surface != nullptr; }
    int width() const { return surface->w; }
    int height() const { return surface->h; }

    Rgba at(int x, int y) const {
        const Uint8* row = static_cast<const Uint8*>(surface->pixels) + y * surface->pitch;
        const Uint8* p = row + x * surface->format->BytesPerPixel;
        Uint32 value = 0;
        switch (surface->format->BytesPerPixel) {
        case 4: value = *reinterpret_cast<const Uint32*>(p); break;
        case 3: value = p[0] | (p[1] << 8) | (p[2] << 16); break;
        case 2: value = *reinterpret_cast<const Uint16*>(p); break;
        default: value = p[0]; break;
        }
        Uint8 r, g, b, a;
        SDL_GetRGBA(value, surface->format, &r, &g, &b, &a);
        return {r, g, b, a};
    }

    // Largest alpha in the w x h rectangle at (x0, y0).
    int maxAlpha(int x0, int y0, int w, int h) const {
        int most = 0;
        for (int y = y0; y < y0 + h; ++y)
            for (int x = x0; x < x0 + w; ++x) most = std::max(most, at(x, y).a);
        return most;
    }

    SDL_Surface* surface = nullptr;
};

// Light a pixel adds when drawn additively with source alpha: brightest channel x alpha.
int additiveLight(const Rgba& c) {
    return std::max(c.r, std::max(c.g, c.b)) * c.a / 255;
}

// Largest additive light on the outermost ring of pixels of a w x h rectangle.
int borderLight(const Image& image, int x0, int y0, int w, int h) {
    int most = 0;
    for (int i = 0; i < w; ++i) {
        most = std::max(most, additiveLight(image.at(x0 + i, y0)));
        most = std::max(most, additiveLight(image.at(x0 + i, y0 + h - 1)));
    }
    for (int j = 0; j < h; ++j) {
        most = std::max(most, additiveLight(image.at(x0, y0 + j)));
        most = std::max(most, additiveLight(image.at(x0 + w - 1, y0 + j)));
    }
    return most;
}

// ---------------------------------------------------------------------------
// The skybox's faces: cube corners and the texture coordinates drawn at them.

struct Vec3 {
    int x, y, z;
    bool operator==(const Vec3& o) const { return x == o.x && y == o.y && z == o.z; }
};

struct SkyFace {
    const char* path;
    Vec3 corners[4];
    int texcoords[4][2];  // (s, t); t = 0 is the image's top row
};

const SkyFace SKY_FACES[] = {
    {"gfx/sky_front.png", {{1, -1, -1}, {-1, -1, -1}, {-1, 1, -1}, {1, 1, -1}}, {{0, 1}, {1, 1}, {1, 0}, {0, 0}}},
    {"gfx/sky_left.png", {{1, -1, 1}, {1, -1, -1}, {1, 1, -1}, {1, 1, 1}}, {{0, 1}, {1, 1}, {1, 0}, {0, 0}}},
    {"gfx/sky_back.png", {{-1, -1, 1}, {1, -1, 1}, {1, 1, 1}, {-1, 1, 1}}, {{0, 1}, {1, 1}, {1, 0}, {0, 0}}},
    {"gfx/sky_right.png", {{-1, -1, -1}, {-1, -1, 1}, {-1, 1, 1}, {-1, 1, -1}}, {{0, 1}, {1, 1}, {1, 0}, {0, 0}}},
    {"gfx/sky_top.png", {{-1, 1, -1}, {-1, 1, 1}, {1, 1, 1}, {1, 1, -1}}, {{1, 1}, {1, 0}, {0, 0}, {0, 1}}},
    {"gfx/sky_bottom.png", {{-1, -1, -1}, {-1, -1, 1}, {1, -1, 1}, {1, -1, -1}}, {{1, 0}, {1, 1}, {0, 1}, {0, 0}}},
};

// One side of a face image, walked from its (s, t) start corner to its end corner.
struct FaceEdge {
    int face;
    int startS, startT, endS, endT;
    Vec3 start, end;  // the cube corners at those texture coordinates
};

Vec3 cornerAt(const SkyFace& face, int s, int t) {
    for (int i = 0; i < 4; ++i)
        if (face.texcoords[i][0] == s && face.texcoords[i][1] == t) return face.corners[i];
    ADD_FAILURE() << face.path << " has no corner at texture coordinate (" << s << ", " << t << ")";
    return {0, 0, 0};
}

std::vector<FaceEdge> allFaceEdges() {
    // The image's top, bottom, left and right sides as texture-coordinate segments.
    const int SIDES[4][4] = {{0, 0, 1, 0}, {0, 1, 1, 1}, {0, 0, 0, 1}, {1, 0, 1, 1}};
    std::vector<FaceEdge> edges;
    for (int f = 0; f < 6; ++f)
        for (const auto& side : SIDES)
            edges.push_back({f, side[0], side[1], side[2], side[3],
                             cornerAt(SKY_FACES[f], side[0], side[1]),
                             cornerAt(SKY_FACES[f], side[2], side[3])});
    return edges;
}

struct SharedEdge {
    FaceEdge a, b;
    bool reversed;  // b runs from a's end to a's start
};

std::vector<SharedEdge> sharedEdges() {
    std::vector<FaceEdge> edges = allFaceEdges();
    std::vector<SharedEdge> shared;
    for (size_t i = 0; i < edges.size(); ++i)
        for (size_t j = i + 1; j < edges.size(); ++j) {
            const FaceEdge& a = edges[i];
            const FaceEdge& b = edges[j];
            if (a.face == b.face) continue;
            if (a.start == b.start && a.end == b.end) shared.push_back({a, b, false});
            if (a.start == b.end && a.end == b.start) shared.push_back({a, b, true});
        }
    return shared;
}

// Pixel k of n along an edge, from its start corner to its end corner.
void edgePixel(const FaceEdge& e, int k, int n, int* x, int* y) {
    int s = e.startS * (n - 1 - k) + e.endS * k;
    int t = e.startT * (n - 1 - k) + e.endT * k;
    *x = s;
    *y = t;
}

}  // namespace

TEST(ImageAssets, EveryFileLoadsWithItsSize) {
    EXPECT_EQ(sizeof(LOAD_TABLE) / sizeof(LOAD_TABLE[0]), 42u);
    for (const ImageFile& file : LOAD_TABLE) {
        Image image(file.path);
        ASSERT_TRUE(image.isLoaded()) << file.path << ": " << IMG_GetError();
        EXPECT_EQ(image.width(), file.width) << file.path;
        EXPECT_EQ(image.height(), file.height) << file.path;
    }
}

TEST(ImageAssets, EveryFileHas32BitPixelsWithAlpha) {
    for (const ImageFile& file : LOAD_TABLE) {
        Image image(file.path);
        ASSERT_TRUE(image.isLoaded()) << file.path;
        EXPECT_EQ(image.surface->format->BitsPerPixel, 32) << file.path;
        EXPECT_NE(image.surface->format->Amask, 0u) << file.path;
    }
}

TEST(ImageAssets, TintedArtIsNeutralSoTheTintShows) {
    for (const char* path : TINTED_FILES) {
        Image image(path);
        ASSERT_TRUE(image.isLoaded()) << path;
        int coloured = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) {
                Rgba c = image.at(x, y);
                if (c.a > 0 && (c.r != c.g || c.g != c.b)) ++coloured;
            }
        EXPECT_EQ(coloured, 0) << path;
    }
}

TEST(FontAssets, CellOfCapitalAHoldsAGlyph) {
    const int CODE = 'A';
    for (const char* path : FONT_FILES) {
        Image font(path);
        ASSERT_TRUE(font.isLoaded()) << path;
        int cw = font.width() / 16, ch = font.height() / 16;
        EXPECT_GT(font.maxAlpha((CODE % 16) * cw, (CODE / 16) * ch, cw, ch), 0) << path;
    }
}

TEST(FontAssets, CellOfSpaceIsEmpty) {
    const int CODE = ' ';
    for (const char* path : FONT_FILES) {
        Image font(path);
        ASSERT_TRUE(font.isLoaded()) << path;
        int cw = font.width() / 16, ch = font.height() / 16;
        EXPECT_EQ(font.maxAlpha((CODE % 16) * cw, (CODE / 16) * ch, cw, ch), 0) << path;
    }
}

TEST(FontAssets, EveryPrintableCharacterHasInkAndStaysInItsCell) {
    for (const char* path : FONT_FILES) {
        Image font(path);
        ASSERT_TRUE(font.isLoaded()) << path;
        int cw = font.width() / 16, ch = font.height() / 16;
        for (int code = 33; code <= 126; ++code) {
            int x0 = (code % 16) * cw, y0 = (code / 16) * ch;
            EXPECT_GT(font.maxAlpha(x0, y0, cw, ch), 0) << path << " code " << code;
        }
        // Codes outside 32..126 have no glyph, so nothing spills into them.
        for (int code : {0, 31, 127, 128, 255})
            EXPECT_EQ(font.maxAlpha((code % 16) * cw, (code / 16) * ch, cw, ch), 0) << path << " code " << code;
    }
}

TEST(SkyAssets, FaceTablesShareTwelveEdgesFourPerFace) {
    std::vector<SharedEdge> shared = sharedEdges();
    EXPECT_EQ(shared.size(), 12u);
    int perFace[6] = {0, 0, 0, 0, 0, 0};
    for (const SharedEdge& e : shared) {
        ++perFace[e.a.face];
        ++perFace[e.b.face];
    }
    for (int f = 0; f < 6; ++f) EXPECT_EQ(perFace[f], 4) << SKY_FACES[f].path;
}

TEST(SkyAssets, NeighbouringFacesAgreeAlongEveryEdge) {
    const int TOLERANCE = 3;  // per channel, out of 255
    for (const SharedEdge& e : sharedEdges()) {
        Image a(SKY_FACES[e.a.face].path);
        Image b(SKY_FACES[e.b.face].path);
        ASSERT_TRUE(a.isLoaded() && b.isLoaded());
        ASSERT_EQ(a.width(), b.width());
        int n = a.width();
        int worst = 0, worstK = 0;
        for (int k = 0; k < n; ++k) {
            int ax, ay, bx, by;
            edgePixel(e.a, k, n, &ax, &ay);
            edgePixel(e.b, e.reversed ? n - 1 - k : k, n, &bx, &by);
            Rgba ca = a.at(ax, ay), cb = b.at(bx, by);
            int diff = std::max(std::abs(ca.r - cb.r), std::max(std::abs(ca.g - cb.g), std::abs(ca.b - cb.b)));
            if (diff > worst) {
                worst = diff;
                worstK = k;
            }
        }
        EXPECT_LE(worst, TOLERANCE) << SKY_FACES[e.a.face].path << " and " << SKY_FACES[e.b.face].path
                                    << " differ by " << worst << " at edge pixel " << worstK;
    }
}

TEST(SkyAssets, FacesAreOpaque) {
    for (const SkyFace& face : SKY_FACES) {
        Image image(face.path);
        ASSERT_TRUE(image.isLoaded()) << face.path;
        int lowest = 255;
        for (int y = 0; y < image.height(); y += 7)
            for (int x = 0; x < image.width(); x += 7) lowest = std::min(lowest, image.at(x, y).a);
        EXPECT_EQ(lowest, 255) << face.path;
    }
}

TEST(GlowAssets, BordersAddNoLight) {
    for (const char* path : GLOW_FILES) {
        Image glow(path);
        ASSERT_TRUE(glow.isLoaded()) << path;
        EXPECT_LE(borderLight(glow, 0, 0, glow.width(), glow.height()), 1) << path;
    }
}

TEST(GlowAssets, LaserBeamFadesOutAcrossItsWidth) {
    Image beam("gfx/slaser.png");
    ASSERT_TRUE(beam.isLoaded());
    for (int x = 0; x < beam.width(); ++x) {
        EXPECT_LE(additiveLight(beam.at(x, 0)), 1) << "column " << x;
        EXPECT_LE(additiveLight(beam.at(x, beam.height() - 1)), 1) << "column " << x;
        EXPECT_GT(additiveLight(beam.at(x, beam.height() / 2)), 200) << "column " << x;
    }
}

TEST(PowerupAssets, EveryFrameOfBothSheetsHasAnEmptyBorder) {
    const int GRID = 16;
    for (const char* path : {"gfx/powerup_anim.png", "gfx/powerup_glow_anim.png"}) {
        Image sheet(path);
        ASSERT_TRUE(sheet.isLoaded()) << path;
        int fw = sheet.width() / GRID, fh = sheet.height() / GRID;
        int worst = 0;
        for (int frame = 0; frame < GRID * GRID; ++frame) {
            int x0 = (frame % GRID) * fw, y0 = (frame / GRID) * fh;
            worst = std::max(worst, borderLight(sheet, x0, y0, fw, fh));
            worst = std::max(worst, sheet.maxAlpha(x0, y0, fw, 1));
            worst = std::max(worst, sheet.maxAlpha(x0, y0 + fh - 1, fw, 1));
            worst = std::max(worst, sheet.maxAlpha(x0, y0, 1, fh));
            worst = std::max(worst, sheet.maxAlpha(x0 + fw - 1, y0, 1, fh));
        }
        EXPECT_EQ(worst, 0) << path;
    }
}

TEST(HudAssets, BoxesReachTheirScreenCorners) {
    // Each box is drawn at half size centred so that one image corner meets a screen corner.
    Image score("gfx/hud_score.png");
    Image power("gfx/hud_power_dials.png");
    Image radar("gfx/hud_radar_dials.png");
    ASSERT_TRUE(score.isLoaded() && power.isLoaded() && radar.isLoaded());
    EXPECT_GT(score.at(0, 0).a, 128);
    EXPECT_GT(power.at(0, power.height() - 1).a, 128);
    EXPECT_GT(radar.at(radar.width() - 1, radar.height() - 1).a, 128);
}

TEST(HudAssets, MasksAreOpaqueWhiteOrClear) {
    for (const char* path : {"gfx/hud_radar_mask.png", "gfx/hud_bars_mask.png"}) {
        Image mask(path);
        ASSERT_TRUE(mask.isLoaded()) << path;
        int covered = 0, notWhite = 0;
        for (int y = 0; y < mask.height(); ++y)
            for (int x = 0; x < mask.width(); ++x) {
                Rgba c = mask.at(x, y);
                if (c.a == 255) ++covered;
                if (c.a > 0 && (c.r != 255 || c.g != 255 || c.b != 255)) ++notWhite;
            }
        EXPECT_GT(covered, 0) << path;
        EXPECT_EQ(notWhite, 0) << path;
    }
}
