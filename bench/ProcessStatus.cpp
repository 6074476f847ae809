#include "bench/ProcessStatus.h"

#include <cstdio>
#include <cstring>

#include <unistd.h>

namespace process_status {

namespace {

// The file `name` under /proc/<pid>, or under /proc/self for pid 0.
FILE* openProcFile(int pid, const char* name) {
    char path[64];
    if (pid > 0)
        snprintf(path, sizeof path, "/proc/%d/%s", pid, name);
    else
        snprintf(path, sizeof path, "/proc/self/%s", name);
    return fopen(path, "r");
}

} // namespace

double peakResidentKib(int pid) {
    FILE* file = openProcFile(pid, "status");
    if (!file) return -1.0;
    char line[256];
    double kib = -1.0;
    while (fgets(line, sizeof line, file)) {
        // "VmHWM:     123456 kB"
        if (strncmp(line, "VmHWM:", 6) == 0) {
            long value = 0;
            if (sscanf(line + 6, "%ld", &value) == 1) kib = (double)value;
            break;
        }
    }
    fclose(file);
    return kib;
}

double cpuSeconds(int pid) {
    FILE* file = openProcFile(pid, "stat");
    if (!file) return -1.0;
    char line[1024];
    const bool read = fgets(line, sizeof line, file) != nullptr;
    fclose(file);
    if (!read) return -1.0;
    // "pid (name) state ..." with utime and stime the 14th and 15th fields; the name may hold
    // spaces and brackets, so the fields are counted from its last ')'.
    const char* rest = strrchr(line, ')');
    if (!rest) return -1.0;
    unsigned long utime = 0;
    unsigned long stime = 0;
    if (sscanf(rest + 1, " %*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %lu %lu", &utime, &stime) != 2) return -1.0;
    return (double)(utime + stime) / (double)sysconf(_SC_CLK_TCK);
}

} // namespace process_status
