#include "engine/Random.h"

#include <cstdlib>

namespace orvel {

Random::Random(int seed)
    : intTable(new int[TABLE_SIZE]), floatTable(new float[TABLE_SIZE]), intCursor(0), floatCursor(0) {
    init(seed);
}

Random::~Random() {
    delete[] intTable;
    delete[] floatTable;
}

void Random::init(int seed) {
    srand(seed);
    intCursor = 0;
    floatCursor = 0;
    for (int i = 0; i < TABLE_SIZE; ++i) {
        intTable[i] = rand() & 0x7fffffff;
        // 2^-31: the largest value rounds to exactly 1.0 as a float.
        floatTable[i] = (float)(rand() & 0x7fffffff) * 4.656612873077393e-10f;
    }
}

int Random::randi() {
    int v = intTable[intCursor];
    intTable[intCursor] = ~v & 0x7fffffff;
    intCursor = (intCursor + 1) & 0xffff;
    return v;
}

int Random::randi(int n) { return randi() % n; }

int Random::randi(int a, int b) {
    if (a == b) return a;
    return a + randi() % (b - a);
}

float Random::randf() {
    float v = floatTable[floatCursor];
    // The complement goes to the int cursor's slot, not the float cursor's: the float
    // sequence then depends on how many ints were drawn, which keeps it from settling.
    floatTable[intCursor] = 1.0f - v;
    floatCursor = (floatCursor + 1) & 0xffff;
    return v;
}

float Random::randf(float max) { return randf() * max; }

float Random::randf(float min, float max) { return randf() * (max - min) + min; }

} // namespace orvel
