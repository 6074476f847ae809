// Nightvector's entry point.

#include "game/Main.h"

int main(int argc, char** argv) { return runNightvector(argc, argv); }
