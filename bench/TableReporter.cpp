#include "bench/TableReporter.h"

#include "bench/FloorBench.h"

#include <cstdio>
#include <ostream>
#include <string>

namespace {

const char* const RULE =
    "---------------------------------------------------------------------------------------------------------\n";

// Name, wave, mean, median, p99, unit, allocations per iteration, enemies, particles.
const char* const ROW = "%-30s %4s %10s %10s %10s %-4s %12s %8s %9s\n";

bool has(const benchmark::BenchmarkReporter::Run& run, const char* name) {
    return run.counters.find(name) != run.counters.end();
}

double counter(const benchmark::BenchmarkReporter::Run& run, const char* name) {
    const auto it = run.counters.find(name);
    return it == run.counters.end() ? 0.0 : it->second.value;
}

// `value` with `decimals` decimals, or "-" when the row lacks it.
std::string figure(bool present, double value, int decimals) {
    if (!present) return "-";
    char text[32];
    snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string counterFigure(const benchmark::BenchmarkReporter::Run& run, const char* name, int decimals) {
    return figure(has(run, name), counter(run, name), decimals);
}

// The run's mean time per iteration in ms.
double meanMs(const benchmark::BenchmarkReporter::Run& run) {
    const double t = run.GetAdjustedRealTime();
    switch (run.time_unit) {
    case benchmark::kNanosecond:
        return t * 1e-6;
    case benchmark::kMicrosecond:
        return t * 1e-3;
    case benchmark::kMillisecond:
        return t;
    default:
        return t * 1e3;
    }
}

} // namespace

bool TableReporter::ReportContext(const Context& context) {
    char line[256];
    snprintf(line, sizeof line, "%d CPUs at %.0f MHz; wall-clock times per iteration, %s\n",
             context.cpu_info.num_cpus, context.cpu_info.cycles_per_second / 1e6,
             "measured after the warm-up; one iteration of a session scenario is one frame");
    std::ostream& out = GetOutputStream();
    out << line << RULE;
    snprintf(line, sizeof line, ROW, "Scenario", "Wave", "Mean", "Median", "p99", "Unit", "Allocs/iter", "Enemies",
             "Particles");
    out << line << RULE;
    out.flush();
    return true;
}

void TableReporter::ReportRuns(const std::vector<Run>& runs) {
    std::ostream& out = GetOutputStream();
    for (const Run& run : runs) {
        const std::string name = run.report_label.empty() ? run.run_name.function_name : run.report_label;
        // "wave:17" -> "17"
        std::string wave = "-";
        const std::string& args = run.run_name.args;
        if (args.compare(0, 5, "wave:") == 0) wave = args.substr(5);
        char line[512];
        if (run.error_occurred) {
            snprintf(line, sizeof line, "%-30s %4s  error: %s\n", name.c_str(), wave.c_str(), run.error_message.c_str());
        } else if (has(run, "cpu_percent")) {
            snprintf(line, sizeof line, ROW, name.c_str(), wave.c_str(), figure(true, counter(run, "cpu_percent"), 1).c_str(),
                     "-", "-", "%", "-", "-", "-");
        } else if (has(run, "rss_growth_kib")) {
            snprintf(line, sizeof line, ROW, name.c_str(), wave.c_str(),
                     figure(true, counter(run, "rss_after_first_mib"), 1).c_str(), "-", "-", "MiB", "-", "-", "-");
            out << line;
            snprintf(line, sizeof line, "%-30s %.0f KiB most resident memory grew past it in the later sessions\n",
                     "  growth:", counter(run, "rss_growth_kib"));
        } else if (has(run, "peak_rss_mib")) {
            snprintf(line, sizeof line, ROW, name.c_str(), wave.c_str(), figure(true, counter(run, "peak_rss_mib"), 1).c_str(),
                     "-", "-", "MiB", "-", "-", "-");
        } else {
            const bool micro = run.time_unit == benchmark::kMicrosecond || run.time_unit == benchmark::kNanosecond;
            const double scale = micro ? 1000.0 : 1.0;
            const int decimals = micro ? 2 : 3;
            const bool perFrame = has(run, "allocs/frame");
            const std::string allocs = perFrame ? counterFigure(run, "allocs/frame", 3) : counterFigure(run, "allocs/iter", 3);
            snprintf(line, sizeof line, ROW, name.c_str(), wave.c_str(), figure(true, meanMs(run) * scale, decimals).c_str(),
                     figure(has(run, "median_ms"), counter(run, "median_ms") * scale, decimals).c_str(),
                     figure(has(run, "p99_ms"), counter(run, "p99_ms") * scale, decimals).c_str(), micro ? "us" : "ms",
                     allocs.c_str(), counterFigure(run, "enemies", 0).c_str(), counterFigure(run, "particles", 0).c_str());
        }
        out << line;
        const bool wholeFrame = name.compare(0, 9, "FullFrame") == 0;
        if (!run.error_occurred && wholeFrame && FloorBench::medianMs() > 0.0) {
            snprintf(line, sizeof line, "%-30s %.2f x the floor's median (%.3f ms)\n", "  ratio:",
                     counter(run, "median_ms") / FloorBench::medianMs(), FloorBench::medianMs());
            out << line;
        }
        if (!run.error_occurred && wholeFrame && has(run, "on_screen")) {
            snprintf(line, sizeof line, "%-30s %.1f enemies on the screen, on average over the frames\n", "  on screen:",
                     counter(run, "on_screen"));
            out << line;
        }
        if (!run.error_occurred && wholeFrame && has(run, "cpu_cores")) {
            snprintf(line, sizeof line, "%-30s %.2f cores busy with the frames back to back\n", "  cpu:",
                     counter(run, "cpu_cores"));
            out << line;
        }
        if (!run.error_occurred && has(run, "plays/frame")) {
            snprintf(line, sizeof line, "%-30s %.2f effects started per frame", "  sound:", counter(run, "plays/frame"));
            out << line;
            if (has(run, "mix_us/frame")) {
                snprintf(line, sizeof line, "; mixing %.1f us per 16.7 ms of sound", counter(run, "mix_us/frame"));
                out << line;
            }
            out << "\n";
        }
    }
    out.flush();
}
