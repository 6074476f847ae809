#pragma once
// A crash that leaves its trace: on a fatal signal, one line naming the signal and the thread
// that met it, then that thread's stack, go to standard error; the signal then ends the process
// as it would have without the report (same exit status, same core dump).

#include <cstdint>

namespace orvel {

class CrashReport {
public:
    CrashReport() = delete;

    // Installs the report for SIGSEGV, SIGBUS, SIGILL, SIGFPE and SIGABRT, each line starting with
    // `program` (kept, not copied). Builds with AddressSanitizer keep the sanitizer's own report.
    static void install(const char* program);

    // The line for signal `signal` (at `address` when `hasAddress`) in thread `threadId` named
    // `threadName`, without the newline, written into `out` (at most `size` bytes with the
    // terminating zero). Uses nothing a signal handler may not.
    static void describe(char* out, unsigned size, const char* program, int signal, bool hasAddress,
                         uintptr_t address, long threadId, const char* threadName);
};

} // namespace orvel
