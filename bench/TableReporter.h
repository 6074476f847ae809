#pragma once
// Prints every benchmark of the binary as one table: a row per scenario with its times per
// iteration and its counters in plain decimals.

#include <vector>

#include <benchmark/benchmark.h>

// A row is named by the run's label when it has one, else by its function; its wave is the
// argument named "wave". Times are shown in ms, or in us (microseconds) for runs whose time unit is µs or ns:
// the mean from the library, the median and 99th percentile from the counters median_ms and
// p99_ms. Allocations per iteration come from allocs/iter or allocs/frame (one iteration is one
// frame there); enemies and particles from the counters of those names. A run with the counter
// peak_rss_mib is a memory row: that figure in MiB under Mean. A figure a row lacks shows "-".
class TableReporter : public benchmark::BenchmarkReporter {
public:
    // The machine line and the header.
    bool ReportContext(const Context& context) override;
    // One row per run, printed as it finishes.
    void ReportRuns(const std::vector<Run>& runs) override;
};
