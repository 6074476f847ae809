#pragma once
// Starts programs for the benchmarks, and reads a process's resident memory and CPU time from
// /proc/<pid> for them and the tests.

#include <functional>

#include <sys/types.h>

namespace processes {

// Starts `path` with `argv` (null-terminated, argv[0] included) and this process's environment
// with `setting` ("NAME=value") in place of any NAME there, its standard output and error going
// to /dev/null. The child's pid, or -1 when it could not start.
pid_t spawnQuietly(const char* path, char* const argv[], const char* setting);

// VmHWM, the peak resident set size, in KiB, of process `pid` (0 for this process); -1 when
// the file or the line cannot be read.
double peakResidentKib(int pid);

// The CPU time process `pid` (0 for this process) has used so far, all its threads together, user
// and system, in seconds; -1 when it cannot be read.
double cpuSeconds(int pid);

// Runs `body` in a child process that has given up root's rights (as the user "nobody") when it
// had them, so that file permissions hold for it as for a player; returns the value `body`
// returned, or -1 when the child did not end normally. Call it from a single-threaded process.
int runUnprivileged(const std::function<int()>& body);

} // namespace processes
