#include "engine/Orvel.h"
