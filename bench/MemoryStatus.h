#pragma once
// Reads a process's resident memory figures from /proc/<pid>/status.

namespace memory_status {

// VmHWM, the peak resident set size, in KiB, of process `pid` (0 for this process); -1 when
// the file or the line cannot be read.
double peakResidentKib(int pid);

} // namespace memory_status
