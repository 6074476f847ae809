// The radar box: its frame alone.

#include "game/HUDRadarBox.h"

#include "scene/Sprite.h"
#include "tests/support/GameSession.h"

using testing_support::HudScene;

namespace {

class HUDRadarBoxTest : public HudScene {};

} // namespace

TEST_F(HUDRadarBoxTest, HoldsTheRadarFrameAtHalfScale) {
    HUD_RadarBox box;
    ASSERT_NE(box.frame, nullptr);
    EXPECT_EQ(box.frame->texture, Resources::hud_radar_dials_tex);
    EXPECT_EQ(box.frame->size.x, 520.0f);
    EXPECT_EQ(box.frame->size.y, 520.0f);
    EXPECT_EQ(box.frame->scale, 0.5f);
    EXPECT_EQ(box.first, box.frame);
    EXPECT_EQ(box.count, 1);
}

TEST_F(HUDRadarBoxTest, DeletingTheBoxUnlinksItAndItsFrame) {
    HUD_RadarBox* box = new HUD_RadarBox();
    g_hud->add(box);
    delete box;
    EXPECT_EQ(g_hud->count, 0);
}
