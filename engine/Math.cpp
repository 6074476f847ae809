#include "engine/Math.h"
