#include "engine/String.h"
