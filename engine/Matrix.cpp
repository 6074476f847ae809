#include "engine/Matrix.h"
