#include "game/GrappleEffect.h"

GrappleEffect::GrappleEffect() {}

GrappleEffect::~GrappleEffect() {}
