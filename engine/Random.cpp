#include "engine/Random.h"
