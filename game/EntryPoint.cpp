// Nightvector's entry point. Command-line arguments are ignored.

#include "game/Main.h"

int main() { return runNightvector(); }
