#include "bench/MemoryStatus.h"

#include <cstdio>
#include <cstring>

namespace memory_status {

double peakResidentKib(int pid) {
    char path[64];
    if (pid > 0)
        snprintf(path, sizeof path, "/proc/%d/status", pid);
    else
        snprintf(path, sizeof path, "/proc/self/status");
    FILE* file = fopen(path, "r");
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

} // namespace memory_status
