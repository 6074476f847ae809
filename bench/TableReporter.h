#pragma once
// Prints the frame benchmarks as one table: a row per scenario with its frame times in ms and
// its counters in plain decimals.

#include <vector>

#include <benchmark/benchmark.h>

// Reads the counters median_ms, p99_ms, allocs/frame, enemies and particles; a row without
// one shows 0 there.
class TableReporter : public benchmark::BenchmarkReporter {
public:
    // The machine line and the header.
    bool ReportContext(const Context& context) override;
    // One row per run, printed as it finishes.
    void ReportRuns(const std::vector<Run>& runs) override;
};
