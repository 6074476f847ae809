#pragma once
// The floor of a frame, measured by the Floor benchmark: what the whole-frame rows are judged by.

class FloorBench {
public:
    // The floor's median frame in ms from this run; 0 before the Floor benchmark has run.
    static double medianMs();
};
