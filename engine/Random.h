#pragma once
// Table-driven pseudo-random numbers: one load, one store and one mask per draw.

namespace orvel {

class Random {
public:
    static const int TABLE_SIZE = 65536;

    int* intTable;     // owned; TABLE_SIZE values in [0, 2^31)
    float* floatTable; // owned; TABLE_SIZE values in [0, 1]
    int intCursor;     // next int slot, 0..65535
    int floatCursor;   // next float slot, 0..65535

    explicit Random(int seed);
    ~Random();
    Random(const Random&) = delete;
    Random& operator=(const Random&) = delete;

    // Refills both tables from the C library generator seeded with `seed`; both cursors restart.
    void init(int seed);

    // The next table value; its slot flips to its 31-bit complement, so the period is 131,072 draws.
    int randi();
    // [0, n) for positive n; n must not be 0.
    int randi(int n);
    // [a, b) for b > a; a itself when a == b, without drawing.
    int randi(int a, int b);

    // The next float in [0, 1]; stores its complement in the slot under the int cursor.
    float randf();
    // [0, max]
    float randf(float max);
    // [min, max]
    float randf(float min, float max);
};

} // namespace orvel
