#include "game/Radar.h"

Radar* g_radarEngine = nullptr;

Radar::Radar() : range(0), blipCount(0), mode(0) {}

Radar::~Radar() {}

void Radar::draw(SceneState&) {}
