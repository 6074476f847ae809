#include "tests/support/GameSession.h"

#include <cstdlib>
#include <utility>
#include <vector>

#include "engine/Random.h"
#include "game/EnergyGauges.h"
#include "game/GameSessions.h"
#include "game/HUDRadarBox.h"
#include "game/HUDScoreBox.h"
#include "game/HUDWeaponBox.h"
#include "game/Player.h"
#include "game/Powerup.h"
#include "game/RadarDisplay.h"
#include "game/Resources.h"
#include "game/Reticle.h"
#include "game/ScoreCounter.h"
#include "game/Starfield.h"
#include "scene/DirectScene2D.h"
#include "scene/Fader.h"
#include "scene/Group.h"
#include "scene/ParticleSlice.h"
#include "scene/ParticleSystem.h"
#include "scene/Scene2D.h"
#include "scene/Shaders.h"
#include "scene/Text.h"

namespace testing_support {

namespace {

// What GameSceneTest::keep took, in order.
std::vector<std::function<void()>> keptDeletions;

} // namespace

void GameSceneTest::SetUp() {
    openWindow(SCREEN_WIDTH, SCREEN_HEIGHT);
    Shaders::wasInit = false;
    if (!Resources::font_medium || reloadResources) {
        testing::internal::CaptureStdout();
        Resources::load();
        testing::internal::GetCapturedStdout();
    }
    g_world = new Scene2D(-1, -1);
    g_world->worldWidth = WORLD;
    g_world->worldHeight = WORLD;
    g_hud = new DirectScene2D(-1, -1);
}

void GameSceneTest::keepDeleting(std::function<void()> deletion) { keptDeletions.push_back(std::move(deletion)); }

void GameSceneTest::TearDown() {
    while (!keptDeletions.empty()) {
        keptDeletions.back()();
        keptDeletions.pop_back();
    }
    GameSessions::end();
    delete g_fader;
    g_fader = nullptr;
    delete g_hud;
    g_hud = nullptr;
    delete g_world;
    g_world = nullptr;
    GLTest::TearDown();
}

void HudScene::SetUp() {
    GameSceneTest::SetUp();
    g_world->debugDraw = false;
    g_hud->debugDraw = false;
    g_game = nullptr;
    orvel::Orvel::currentTime = 0;
}

void HudScene::setMouse(int x, int y) {
    orvel::Orvel::events->mouseLiveX = x;
    orvel::Orvel::events->mouseLiveY = y;
    orvel::Orvel::events->update();
}

void HudScene::drawHud() {
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    g_hud->draw();
}

void HudScene::savePictureIfAsked(const Pixels& p, const char* variable) {
    if (const char* path = std::getenv(variable)) savePicture(p, path);
}

void StarfieldScene::SetUp() {
    HudScene::SetUp();
    projection = orvel::mat4::createOrthoMatrix(-640, 640, -360, 360, -10, 10);
    state.projection2D = &projection;
    state.projection3D = &projection;
    state.color = Color4ub{255, 255, 255, 255};
    state.viewRects = nullptr;
}

void SessionTest::SetUp() {
    GameSceneTest::SetUp();
    g_fader = new Fader();
    g_rand.init(1234);
    ParticleSystem::random.init((int)0xd34db33f);
    setTime(START);
    orvel::Orvel::sync = FRAME;
    setInput(0, 0, 0);
    g_game = new Game();
}

void SessionTest::setInput(uint32_t buttons, int mouseX, int mouseY, int key, int key2) {
    orvel::Orvel::GEvent* e = orvel::Orvel::events;
    for (uint32_t& w : e->keysLive) w = 0;
    if (key >= 0) e->keysLive[key / 32] |= 1u << (key % 32);
    if (key2 >= 0) e->keysLive[key2 / 32] |= 1u << (key2 % 32);
    e->buttonsLive = buttons;
    e->mouseLiveX = mouseX;
    e->mouseLiveY = mouseY;
    e->update();
}

void SessionTest::plantInts(std::initializer_list<int> values) {
    int i = g_rand.intCursor;
    for (int v : values) g_rand.intTable[(i++) & 0xffff] = v;
}

void SessionTest::plantFloats(std::initializer_list<float> values) {
    g_rand.intCursor = 30000;
    g_rand.floatCursor = 100;
    int i = g_rand.floatCursor;
    for (float v : values) g_rand.floatTable[i++] = v;
}

DummyEnemy* SessionTest::addDummyInWorld(float x, float y, float radius) {
    DummyEnemy* e = addEnemy<DummyEnemy>(x, y, radius);
    e->drawable = keep(new Group());
    g_world->add(e->drawable);
    return e;
}

} // namespace testing_support
