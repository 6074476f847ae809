#pragma once
// Reads a process's resident memory and CPU time from /proc/<pid>.

namespace process_status {

// VmHWM, the peak resident set size, in KiB, of process `pid` (0 for this process); -1 when
// the file or the line cannot be read.
double peakResidentKib(int pid);

// The CPU time process `pid` (0 for this process) has used so far, all its threads together, user
// and system, in seconds; -1 when it cannot be read.
double cpuSeconds(int pid);

} // namespace process_status
