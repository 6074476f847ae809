#include "engine/Color.h"
