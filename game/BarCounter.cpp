#include "game/BarCounter.h"

BarCounter::BarCounter()
    : value(0), maxValue(0), shownValue(0), segments(0), barWidth(0), barHeight(0), rollStart(0), rollEnd(0) {
}

BarCounter::~BarCounter() {}

void BarCounter::draw(SceneState&) {}
