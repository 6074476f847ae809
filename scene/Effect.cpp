#include "scene/Effect.h"

Effect::Effect() { flags |= EFFECT; }

Effect::~Effect() {}
