#include "bench/TableReporter.h"

#include <cstdio>
#include <ostream>
#include <string>

namespace {

double counter(const benchmark::BenchmarkReporter::Run& run, const char* name) {
    const auto it = run.counters.find(name);
    return it == run.counters.end() ? 0.0 : it->second.value;
}

const char* const RULE = "-------------------------------------------------------------------------------------------\n";

} // namespace

bool TableReporter::ReportContext(const Context& context) {
    char line[256];
    snprintf(line, sizeof line, "%d CPUs at %.0f MHz; frame times in ms of wall clock, %s\n",
             context.cpu_info.num_cpus, context.cpu_info.cycles_per_second / 1e6,
             "measured over the frames after the warm-up");
    std::ostream& out = GetOutputStream();
    out << line << RULE;
    snprintf(line, sizeof line, "%-12s %5s %10s %10s %10s %13s %8s %10s\n", "Scenario", "Wave", "Mean ms",
             "Median ms", "p99 ms", "Allocs/frame", "Enemies", "Particles");
    out << line << RULE;
    out.flush();
    return true;
}

void TableReporter::ReportRuns(const std::vector<Run>& runs) {
    std::ostream& out = GetOutputStream();
    for (const Run& run : runs) {
        // "wave:17" -> "17"
        std::string wave = run.run_name.args;
        const size_t colon = wave.find(':');
        if (colon != std::string::npos) wave = wave.substr(colon + 1);
        char line[256];
        if (run.error_occurred) {
            snprintf(line, sizeof line, "%-12s %5s  error: %s\n", run.run_name.function_name.c_str(),
                     wave.c_str(), run.error_message.c_str());
        } else {
            // Manual time is reported per iteration, one iteration being one frame.
            const double meanMs = run.GetAdjustedRealTime() *
                                  (run.time_unit == benchmark::kMillisecond ? 1.0
                                   : run.time_unit == benchmark::kMicrosecond ? 1e-3
                                   : run.time_unit == benchmark::kNanosecond ? 1e-6
                                                                            : 1e3);
            snprintf(line, sizeof line, "%-12s %5s %10.3f %10.3f %10.3f %13.3f %8.0f %10.0f\n",
                     run.run_name.function_name.c_str(), wave.c_str(), meanMs, counter(run, "median_ms"),
                     counter(run, "p99_ms"), counter(run, "allocs/frame"), counter(run, "enemies"),
                     counter(run, "particles"));
        }
        out << line;
    }
    out.flush();
}
