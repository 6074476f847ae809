#include "engine/Vector.h"
