#include "game/TextIndicator.h"

#include "engine/Orvel.h"
#include "game/Game.h"
#include "game/Main.h"
#include "game/Resources.h"
#include "scene/Container.h"
#include "scene/DirectScene2D.h"
#include "scene/Text.h"

using orvel::Orvel;

namespace {

const float BANNER_SCALE = 1.5f;

} // namespace

float TextIndicator::speed = 35.0f;
uint32_t TextIndicator::lifeTime = 2750;

TextIndicator::TextIndicator() : text(new Text(Resources::font_medium, nullptr)), startTime(0) {
    text->color = orvel::vec4(1.0f, 1.0f, 1.0f, 1.0f);
    text->fontSize = 16.0f;
    text->setHotSpot(Center);
    drawable = text;
}

TextIndicator* TextIndicator::show(Container* scene, const char* line, const orvel::vec2& position, float scale) {
    TextIndicator* indicator = new TextIndicator();
    indicator->text->setText(line);
    indicator->startTime = Orvel::currentTime;
    indicator->scale = scale;
    indicator->position = position;
    if (scene) scene->add(indicator->drawable);
    g_game->actors.push(indicator);
    return indicator;
}

TextIndicator* TextIndicator::showBanner(const char* line) {
    const orvel::vec2 at(Orvel::getScreenWidth() * 0.5f, Orvel::getScreenHeight() * 0.4f);
    return show(g_hud, line, at, BANNER_SCALE);
}

TextIndicator::~TextIndicator() {
    if (g_game) g_game->removeActor(this);
    delete text;
}

void TextIndicator::update() {
    position.y -= speed * Orvel::sync;
    text->color.w = 1.0f - (float)(Orvel::currentTime - startTime) / (float)lifeTime;
    syncDrawable();
    // Unsigned: a start time near the top of the clock's range wraps like the clock does.
    if (Orvel::currentTime > (uint32_t)(startTime + lifeTime)) delete this;
}
